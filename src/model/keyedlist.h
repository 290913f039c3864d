#pragma once

#include "common/dlverror.h"
#include "common/ordereddict.h"

#include <QString>
#include <QStringView>
#include <memory>
#include <vector>

/// The storage of the job-type and job-class collections: members by value in insertion order,
/// keyed by their Code() without regard to letter case. A unit has a few dozen job types and a
/// type a handful of classes, and there are hundreds of thousands of such lists per refresh, so
/// a list is searched directly (exact matches first, see indexOf) and gets a hash index only once
/// it grows past LinearLimit members: building ten thousand small hash tables per refresh cost
/// more than the short scans they replace.
template <typename T> class KeyedList
{
public:
    static constexpr qsizetype LinearLimit = 64;

    [[nodiscard]] qsizetype count() const { return qsizetype(m_items.size()); }

    [[nodiscard]] qsizetype indexOf(QStringView key) const
    {
        if (m_index) {
            const qsizetype *i = m_index->find(key);
            return i ? *i : -1;
        }
        // Codes that differ only in letter case cannot both be members, so an exact match is the
        // one case-blind match there is; hosts send codes in one spelling, and the exact compare
        // is far cheaper than folding case, so it is tried first.
        for (std::size_t i = 0; i < m_items.size(); ++i)
            if (QStringView(m_items[i].Code()) == key)
                return qsizetype(i);
        for (std::size_t i = 0; i < m_items.size(); ++i) {
            const QString &code = m_items[i].Code();
            // Simple case folding keeps the length, so differing lengths never match.
            if (code.size() == key.size() && key.compare(code, Qt::CaseInsensitive) == 0)
                return qsizetype(i);
        }
        return -1;
    }

    [[nodiscard]] T *find(QStringView key)
    {
        const qsizetype i = indexOf(key);
        return i < 0 ? nullptr : &m_items[std::size_t(i)];
    }
    [[nodiscard]] const T *find(QStringView key) const
    {
        const qsizetype i = indexOf(key);
        return i < 0 ? nullptr : &m_items[std::size_t(i)];
    }

    /// Adds value under its Code(); throws DLVError(457) when the code is present.
    T &add(T value)
    {
        if (indexOf(value.Code()) >= 0)
            throw DLVError::duplicateKey(value.Code());
        m_items.push_back(std::move(value));
        if (m_index) {
            m_index->add(m_items.back().Code(), count() - 1);
        } else if (count() > LinearLimit) {
            rebuildIndex();
        }
        return m_items.back();
    }

    bool remove(QStringView key)
    {
        const qsizetype i = indexOf(key);
        if (i < 0)
            return false;
        m_items.erase(m_items.begin() + i);
        if (m_index)
            rebuildIndex();
        return true;
    }

    void clear()
    {
        m_items.clear();
        m_index.reset();
    }

    [[nodiscard]] T &at(qsizetype i) { return m_items[std::size_t(i)]; }
    [[nodiscard]] const T &at(qsizetype i) const { return m_items[std::size_t(i)]; }
    [[nodiscard]] auto begin() const { return m_items.cbegin(); }
    [[nodiscard]] auto end() const { return m_items.cend(); }

private:
    void rebuildIndex()
    {
        m_index = std::make_unique<OrderedDict<qsizetype>>(KeyCompare::CaseInsensitive);
        m_index->reserve(count());
        for (qsizetype i = 0; i < count(); ++i)
            m_index->add(m_items[std::size_t(i)].Code(), i);
    }

    std::vector<T> m_items;
    std::unique_ptr<OrderedDict<qsizetype>> m_index;
};
