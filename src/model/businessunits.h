#pragma once

#include "common/ordereddict.h"
#include "model/businessunit.h"
#include "model/collectioniterator.h"

#include <QHash>
#include <memory>
#include <utility>

class GeneralColumns;
class QZWebRow;

/// The business units of one data refresh, keyed by BUID without regard to letter case, in the
/// order of first appearance in the general-information table. Owns its units; a unit stays at
/// the same address until it is removed or the collection is destroyed, so views may keep
/// pointers for the life of one refresh. Not copyable or movable (units point back to it).
class BusinessUnits
{
public:
    using const_iterator = CollectionIterator<
        decltype(std::declval<const OrderedDict<std::unique_ptr<BusinessUnit>> &>().begin()),
        const BusinessUnit>;

    BusinessUnits() = default;
    BusinessUnits(const BusinessUnits &) = delete;
    BusinessUnits &operator=(const BusinessUnits &) = delete;
    ~BusinessUnits() = default;

    /// Creates a unit from a general-information row, adds it under its BUID and returns it.
    /// Throws what the row's conversion throws, or DLVError(457) when the BUID is present; the
    /// collection is unchanged then.
    BusinessUnit &Add(const QZWebRow &row, GeneralColumns &columns);

    /// The unit with that BUID (any letter case), or nullptr.
    [[nodiscard]] BusinessUnit *Item(QStringView buid);
    [[nodiscard]] const BusinessUnit *Item(QStringView buid) const;
    /// The first unit, in collection order, whose BUIndex equals index, or nullptr. Served from an
    /// index built on first use after a change, so repeated calls do not rescan the collection.
    [[nodiscard]] const BusinessUnit *BUItem(qint32 index) const;

    [[nodiscard]] int Count() const { return int(m_items.count()); }
    bool Remove(QStringView buid);
    /// Tells every unit to release its contents.
    void Terminate();

    [[nodiscard]] const_iterator begin() const { return const_iterator(m_items.begin()); }
    [[nodiscard]] const_iterator end() const { return const_iterator(m_items.end()); }
    /// Mutable access in collection order, for the loader.
    [[nodiscard]] BusinessUnit &At(qsizetype position) { return *m_items.at(position).value; }

private:
    friend class BusinessUnit;
    void buIndexChanged() { m_byIndexValid = false; }

    OrderedDict<std::unique_ptr<BusinessUnit>> m_items{KeyCompare::CaseInsensitive};
    mutable QHash<qint32, const BusinessUnit *> m_byIndex;
    mutable bool m_byIndexValid = false;
};
