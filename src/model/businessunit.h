#pragma once

#include "model/jobtype.h"
#include "model/jobtypes.h"

#include <QString>
#include <array>

class BusinessUnits;
class GeneralColumns;
class QZWebRow;

/// One business unit of one data refresh: its general figures, its real job types, the synthetic
/// "TOTAL" job type that sums same-named classes over all job types, fourteen unit-wide grand
/// totals and four hourly rates. The job types and classes live in the owning collection's flat
/// storage (filled by BusinessUnits::LoadDetails, totalled by BusinessUnits::CalcTotals); the
/// unit holds views of its part. Read-only once loaded.
class BusinessUnit
{
public:
    static constexpr int CounterCount = JobClass::CounterCount;

    BusinessUnit() = default;

    /// Reads "BUID" and "BUDesc" as text, then "TechCount", "HoursWorked" and "HoursRemaining"
    /// as numbers (leading-number parse, rounded to 32 bits; DLVError(6) outside the range).
    void Initialize(const QZWebRow &row, GeneralColumns &columns);

    [[nodiscard]] const QString &BUID() const { return m_buid; }
    [[nodiscard]] const QString &BUDesc() const { return m_buDesc; }
    [[nodiscard]] qint32 TechCount() const { return m_techCount; }
    [[nodiscard]] qint32 HoursWorked() const { return m_hoursWorked; }
    [[nodiscard]] qint32 HoursRemaining() const { return m_hoursRemaining; }
    [[nodiscard]] float WOsPerHour() const { return m_wosPerHour; }
    [[nodiscard]] float WOsPerHrReq() const { return m_wosPerHrReq; }
    [[nodiscard]] float PtsPerHour() const { return m_ptsPerHour; }
    [[nodiscard]] float PtsPerHrReq() const { return m_ptsPerHrReq; }

    [[nodiscard]] const ::JobTypes &JobTypes() const { return m_jobTypes; }
    /// Every class of every job type, job type by job type (one block in the model's storage).
    [[nodiscard]] const JobClasses &AllJobClasses() const { return m_allClasses; }
    /// The "TOTAL" job type; without code and classes until the unit is totalled.
    [[nodiscard]] const JobType &TotalJobType() const { return m_totalJobType; }

    /// Whether the "TOTAL" classes are exactly the unit's classes summed by code and no counter is
    /// negative: the unit was totalled without failure. Sums over such units may then be taken
    /// in any grouping, since no partial sum exceeds the final one.
    [[nodiscard]] bool PlainTotals() const { return m_plainTotals; }

    /// 1-based row of the unit's first row in the general-information table.
    [[nodiscard]] qint32 BUIndex() const { return m_buIndex; }
    void SetBUIndex(qint32 index);

    /// Throws DLVError(9) when index is outside 0..13.
    [[nodiscard]] qint32 GetGrandTotal(int index) const;
    [[nodiscard]] const std::array<qint32, CounterCount> &GrandTotals() const
    {
        return m_grandTotals;
    }

private:
    friend class BusinessUnits;
    /// Sets the four rates from the grand totals and the hours.
    void calcRates();

    // The figures the views sum over thousands of units come first and together: a sum then
    // reads one or two cache lines of each unit instead of three or four.
    qint32 m_techCount = 0;
    qint32 m_hoursWorked = 0;
    qint32 m_hoursRemaining = 0;
    std::array<qint32, CounterCount> m_grandTotals{};
    QString m_buid;
    QString m_buDesc;
    float m_wosPerHour = 0;
    float m_wosPerHrReq = 0;
    float m_ptsPerHour = 0;
    float m_ptsPerHrReq = 0;
    ::JobTypes m_jobTypes;
    JobClasses m_allClasses;
    JobType m_totalJobType;
    qint32 m_buIndex = 0;
    bool m_plainTotals = false;
    BusinessUnits *m_owner = nullptr; // told when BUIndex changes, to refresh its BUItem index
};
