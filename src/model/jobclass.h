#pragma once

#include "model/counter.h"

#include <QString>
#include <array>

/// One job class inside one job type of one business unit: its code and fourteen signed 32-bit
/// counters, work orders per status at indexes 0 to 6 ("WOOpen" .. "WONotDone") and points per
/// status at 7 to 13 ("PtsOpen" .. "PtsNotDone"). The code is the message's shared string, and
/// its number (the same for the same spelling in every unit) lets the views sum classes without
/// comparing text.
class JobClass
{
public:
    static constexpr int CounterCount = Counter::Count;
    using Counters = std::array<qint32, CounterCount>;

    JobClass() = default;
    /// code must outlive the class (the message's code table keeps it).
    JobClass(const QString &code, int number, const Counters &counters = {}, int typeNumber = -1)
        : m_code(&code), m_number(number), m_typeNumber(typeNumber), m_counters(counters)
    {}

    /// The class code (also its key in the owning collection).
    [[nodiscard]] const QString &Code() const { return *m_code; }
    /// The number of the code's exact spelling within the data message.
    [[nodiscard]] int Number() const { return m_number; }
    /// The number of its job type's code (-1 for a class of "TOTAL"), so that a pass over all of
    /// a unit's classes needs not visit the job types.
    [[nodiscard]] int TypeNumber() const { return m_typeNumber; }

    /// Throws DLVError(9) when index is outside 0..13.
    void SetJobDetails(qint32 value, int index);
    [[nodiscard]] qint32 GetJobDetails(int index) const;
    /// All fourteen counters by index, for the sums that read every one of them.
    [[nodiscard]] const Counters &JobDetails() const { return m_counters; }

private:
    static const QString s_noCode;
    const QString *m_code = &s_noCode;
    int m_number = -1;
    int m_typeNumber = -1;
    Counters m_counters{};
};
