#pragma once

#include "common/dlverror.h"

#include <QChar>
#include <QHashFunctions>
#include <QString>
#include <QStringView>
#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

/// How an OrderedDict compares its keys.
enum class KeyCompare
{
    Exact,
    CaseInsensitive
};

/// A string-keyed dictionary that keeps insertion order, as the host platform's dictionaries and
/// collections do. Adding a key that is present throws the duplicate-key error (457); lookups
/// never throw (find() gives nullptr). Lookups take a QStringView and do not allocate, also in the
/// case-insensitive mode, so hot loops can look up by a view into a host table.
/// Removal is linear (it re-indexes the entries after the removed one); the project removes rarely.
template <typename V> class OrderedDict
{
public:
    struct Entry
    {
        QString key;
        V value;
    };

    explicit OrderedDict(KeyCompare compare = KeyCompare::Exact)
        : m_index(16, Hash{compare}, Equal{compare}), m_compare(compare)
    {}

    [[nodiscard]] KeyCompare keyCompare() const { return m_compare; }
    [[nodiscard]] qsizetype count() const { return qsizetype(m_entries.size()); }
    [[nodiscard]] bool isEmpty() const { return m_entries.empty(); }

    /// Adds key with value; throws DLVError(457) when the key is already present.
    V &add(const QString &key, V value)
    {
        if (m_index.find(QStringView(key)) != m_index.end())
            throw DLVError::duplicateKey(key);
        m_entries.push_back(Entry{key, std::move(value)});
        m_index.emplace(m_entries.back().key, m_entries.size() - 1);
        return m_entries.back().value;
    }

    /// Adds the key unless present; returns true when it was added.
    bool addIfAbsent(const QString &key, V value)
    {
        if (contains(key))
            return false;
        add(key, std::move(value));
        return true;
    }

    [[nodiscard]] bool contains(QStringView key) const
    {
        return m_index.find(key) != m_index.end();
    }

    [[nodiscard]] const V *find(QStringView key) const
    {
        const auto it = m_index.find(key);
        return it == m_index.end() ? nullptr : &m_entries[it->second].value;
    }
    [[nodiscard]] V *find(QStringView key)
    {
        const auto it = m_index.find(key);
        return it == m_index.end() ? nullptr : &m_entries[it->second].value;
    }

    /// Position of the key in insertion order, or -1.
    [[nodiscard]] qsizetype indexOf(QStringView key) const
    {
        const auto it = m_index.find(key);
        return it == m_index.end() ? -1 : qsizetype(it->second);
    }

    /// The value of a key that must exist; throws DLVError(5) otherwise.
    [[nodiscard]] const V &item(QStringView key) const
    {
        if (const V *v = find(key))
            return *v;
        throw DLVError::invalidCall(QStringLiteral("no entry with key \"%1\"").arg(key));
    }

    /// Sets the value of a key, adding the key at the end when absent.
    V &set(const QString &key, V value)
    {
        if (V *v = find(key)) {
            *v = std::move(value);
            return *v;
        }
        return add(key, std::move(value));
    }

    bool remove(QStringView key)
    {
        const auto it = m_index.find(key);
        if (it == m_index.end())
            return false;
        const std::size_t pos = it->second;
        m_index.erase(it);
        m_entries.erase(m_entries.begin() + qsizetype(pos));
        for (std::size_t i = pos; i < m_entries.size(); ++i)
            m_index[m_entries[i].key] = i;
        return true;
    }

    void clear()
    {
        m_index.clear();
        m_entries.clear();
    }

    void reserve(qsizetype n)
    {
        m_entries.reserve(std::size_t(n));
        m_index.reserve(std::size_t(n));
    }

    /// Entry by 0-based position; throws DLVError(9) outside 0 to count() - 1.
    [[nodiscard]] const Entry &at(qsizetype i) const { return m_entries[checkedIndex(i)]; }
    [[nodiscard]] Entry &at(qsizetype i) { return m_entries[checkedIndex(i)]; }
    [[nodiscard]] const QString &keyAt(qsizetype i) const { return m_entries[checkedIndex(i)].key; }

    [[nodiscard]] auto begin() const { return m_entries.cbegin(); }
    [[nodiscard]] auto end() const { return m_entries.cend(); }
    [[nodiscard]] auto begin() { return m_entries.begin(); }
    [[nodiscard]] auto end() { return m_entries.end(); }

    [[nodiscard]] std::vector<QString> keys() const
    {
        std::vector<QString> out;
        out.reserve(m_entries.size());
        for (const Entry &e : m_entries)
            out.push_back(e.key);
        return out;
    }

private:
    [[nodiscard]] std::size_t checkedIndex(qsizetype i) const
    {
        if (i < 0 || i >= count())
            throw DLVError::subscriptOutOfRange(
                QStringLiteral("index %1 of %2").arg(i).arg(count()));
        return std::size_t(i);
    }

    struct Hash
    {
        using is_transparent = void;
        KeyCompare compare = KeyCompare::Exact;
        std::size_t operator()(QStringView key) const noexcept
        {
            if (compare == KeyCompare::Exact)
                return qHash(key);
            // FNV-1a over case-folded code points: no temporary folded string. Folding whole code
            // points (not UTF-16 units) keeps the hash in step with the case-insensitive compare,
            // which folds letters outside the BMP too.
            std::size_t h = 1469598103934665603ull;
            const qsizetype n = key.size();
            for (qsizetype i = 0; i < n; ++i) {
                char32_t cp = key[i].unicode();
                if (cp < 0x80) { // ASCII folds to lower case: skip the Unicode tables
                    h ^= cp >= u'A' && cp <= u'Z' ? cp + (u'a' - u'A') : cp;
                    h *= 1099511628211ull;
                    continue;
                }
                if (QChar::isHighSurrogate(cp) && i + 1 < n && key[i + 1].isLowSurrogate()) {
                    cp = QChar::surrogateToUcs4(key[i], key[i + 1]);
                    ++i;
                }
                h ^= QChar::toCaseFolded(cp);
                h *= 1099511628211ull;
            }
            return h;
        }
        std::size_t operator()(const QString &key) const noexcept
        {
            return (*this)(QStringView(key));
        }
    };
    struct Equal
    {
        using is_transparent = void;
        KeyCompare compare = KeyCompare::Exact;
        bool operator()(QStringView a, QStringView b) const noexcept
        {
            if (a == b) // hosts send one spelling: the exact compare settles most lookups
                return true;
            return a.compare(b, compare == KeyCompare::Exact ? Qt::CaseSensitive
                                                             : Qt::CaseInsensitive) == 0;
        }
    };

    std::vector<Entry> m_entries;
    std::unordered_map<QString, std::size_t, Hash, Equal> m_index;
    KeyCompare m_compare;
};

/// The id sets and name lists of the control: key = item.
using StringSet = OrderedDict<QString>;
