#pragma once

#include "model/jobtype.h"

#include <QStringView>

/// The real job types of one business unit in order of first appearance: a view of the model's
/// job-type storage, valid as long as the model. Lookups compare codes without regard to letter
/// case; Item() gives nullptr for a missing code.
class JobTypes
{
public:
    using const_iterator = const JobType *;

    JobTypes() = default;
    JobTypes(const JobType *first, int count) : m_first(first), m_count(count) {}

    [[nodiscard]] const JobType *Item(QStringView code) const;
    [[nodiscard]] int Count() const { return m_count; }

    [[nodiscard]] const_iterator begin() const { return m_first; }
    [[nodiscard]] const_iterator end() const { return m_first + m_count; }

private:
    const JobType *m_first = nullptr;
    int m_count = 0;
};
