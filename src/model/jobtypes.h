#pragma once

#include "model/jobtype.h"
#include "model/keyedlist.h"

#include <vector>

class DetailColumns;
class QZWebRow;

/// The real job types of one business unit, keyed by code without regard to letter case, in
/// insertion order. Item() gives nullptr for a missing code. Pointers to members stay valid until
/// the next Add or Remove.
class JobTypes
{
public:
    using const_iterator = std::vector<JobType>::const_iterator;

    JobTypes() = default;

    /// Creates a job type from a detail row, adds it under its code and returns it; throws
    /// DLVError(457) when the code is present.
    JobType &Add(const QZWebRow &row, DetailColumns &columns);

    [[nodiscard]] JobType *Item(QStringView code) { return m_items.find(code); }
    [[nodiscard]] const JobType *Item(QStringView code) const { return m_items.find(code); }
    [[nodiscard]] int Count() const { return int(m_items.count()); }
    bool Remove(QStringView code) { return m_items.remove(code); }
    /// Kept for symmetry with the other collections: a job type holds nothing to release.
    void Terminate() {}
    void clear() { m_items.clear(); }

    [[nodiscard]] const_iterator begin() const { return m_items.begin(); }
    [[nodiscard]] const_iterator end() const { return m_items.end(); }

private:
    KeyedList<JobType> m_items;
};
