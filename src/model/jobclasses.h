#pragma once

#include "model/jobclass.h"

#include <QStringView>

/// The job classes of one job type, in order of first appearance: a view of the model's class
/// storage, valid as long as the model. Lookups compare codes without regard to letter case;
/// Item() gives nullptr for a missing code, never an error.
class JobClasses
{
public:
    using const_iterator = const JobClass *;

    JobClasses() = default;
    JobClasses(const JobClass *first, int count) : m_first(first), m_count(count) {}

    [[nodiscard]] const JobClass *Item(QStringView code) const;
    /// Position of a code (compared without regard to case), or -1.
    [[nodiscard]] qsizetype IndexOf(QStringView code) const;
    /// Throws DLVError(9) when position is outside 0..Count()-1.
    [[nodiscard]] const JobClass &At(qsizetype position) const;
    [[nodiscard]] int Count() const { return m_count; }

    [[nodiscard]] const_iterator begin() const { return m_first; }
    [[nodiscard]] const_iterator end() const { return m_first + m_count; }

private:
    const JobClass *m_first = nullptr;
    int m_count = 0;
};
