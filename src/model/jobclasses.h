#pragma once

#include "model/jobclass.h"
#include "model/keyedlist.h"

#include <vector>

class DetailColumns;
class QZWebRow;

/// The job classes of one job type, keyed by class code without regard to letter case, in
/// insertion order. Item() gives nullptr for a missing code, never an error. Pointers to members
/// stay valid until the next Add or Remove.
class JobClasses
{
public:
    using const_iterator = std::vector<JobClass>::const_iterator;

    JobClasses() = default;

    /// Creates a class from a detail row and adds it under its code; throws DLVError(457) when
    /// the code is present, and whatever the row's conversion throws (nothing is added then).
    void Add(const QZWebRow &row, DetailColumns &columns);
    /// Adds a class with all counters 0 under name; throws DLVError(457) when present.
    void AddTotalClass(const QString &name);

    [[nodiscard]] JobClass *Item(QStringView code) { return m_items.find(code); }
    [[nodiscard]] const JobClass *Item(QStringView code) const { return m_items.find(code); }
    /// Position of a code (compared without regard to case) in insertion order, or -1.
    [[nodiscard]] qsizetype IndexOf(QStringView code) const { return m_items.indexOf(code); }
    [[nodiscard]] JobClass &At(qsizetype position) { return m_items.at(position); }
    [[nodiscard]] const JobClass &At(qsizetype position) const { return m_items.at(position); }

    [[nodiscard]] int Count() const { return int(m_items.count()); }
    bool Remove(QStringView code) { return m_items.remove(code); }
    /// Kept for symmetry with the other collections: a class holds nothing to release.
    void Terminate() {}
    void clear() { m_items.clear(); }

    [[nodiscard]] const_iterator begin() const { return m_items.begin(); }
    [[nodiscard]] const_iterator end() const { return m_items.end(); }

private:
    KeyedList<JobClass> m_items;
};
