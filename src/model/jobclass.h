#pragma once

#include "model/counter.h"

#include <QString>
#include <array>

class DetailColumns;
class QZWebRow;

/// One job class inside one job type of one business unit: its code and fourteen signed 32-bit
/// counters, work orders per status at indexes 0 to 6 ("WOOpen" .. "WONotDone") and points per
/// status at 7 to 13 ("PtsOpen" .. "PtsNotDone").
class JobClass
{
public:
    static constexpr int CounterCount = Counter::Count;

    JobClass() = default;

    /// Reads the class code from "JobClass" and each counter from its column, in index order.
    /// Throws DLVError(6) for a counter outside the 32-bit range, DLVError(9) for a missing column.
    void Initialize(const QZWebRow &row, DetailColumns &columns);
    /// A class of the "TOTAL" job type: the code, all counters 0.
    void AddTotalClass(const QString &name);

    /// The class code (also its key in the owning collection).
    [[nodiscard]] const QString &Code() const { return m_code; }

    /// Throws DLVError(9) when index is outside 0..13.
    void SetJobDetails(qint32 value, int index);
    [[nodiscard]] qint32 GetJobDetails(int index) const;
    /// All fourteen counters by index, for the sums that read every one of them.
    [[nodiscard]] const std::array<qint32, CounterCount> &JobDetails() const { return m_counters; }

private:
    QString m_code;
    std::array<qint32, CounterCount> m_counters{};
};
