#include "model/businessunit.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/businessunits.h"
#include "model/counter.h"
#include "model/detailcolumns.h"
#include "model/errortrap.h"
#include "model/generalcolumns.h"
#include "webdata/qzwebtable.h"

#include <vector>

void BusinessUnit::Initialize(const QZWebRow &row, GeneralColumns &columns)
{
    columns.resolveFields();
    m_buid = row.value(columns.buid()).toString();
    m_buDesc = row.value(columns.buDesc()).toString();
    m_techCount = Conv::textToLong(row.value(columns.techCount()));
    m_hoursWorked = Conv::textToLong(row.value(columns.hoursWorked()));
    m_hoursRemaining = Conv::textToLong(row.value(columns.hoursRemaining()));
}

void BusinessUnit::AddJobType(const QZWebRow &row, DetailColumns &columns)
{
    JobType *jobType = m_jobTypes.Item(row.value(columns.jobType()));
    if (!jobType)
        jobType = &m_jobTypes.Add(row, columns);
    jobType->AddJobClass(row, columns);
}

void BusinessUnit::CalcTotal(ErrorReporter *reporter)
{
    ErrorTrap::run(reporter, QStringLiteral("BusinessUnit.CalcTotal"), [this] { calcTotal(); });
}

void BusinessUnit::calcTotal()
{
    m_totalJobType.SetCode(QStringLiteral("TOTAL"));
    JobClasses &totals = m_totalJobType.Classes();

    // The "TOTAL" classes are the union of all class codes, first appearance first. The sums are
    // then addressed through an exact-case lookup of each code, so a class whose code differs
    // only in case from an earlier one (kept once by the case-blind collection) has no position:
    // the accumulator is addressed outside its bounds. The position of every (job type, class)
    // pair is resolved here, in the same walk, instead of through a second dictionary.
    std::vector<qsizetype> positions;
    for (const JobType &jobType : m_jobTypes) {
        for (const JobClass &jobClass : jobType.Classes()) {
            qsizetype at = totals.IndexOf(jobClass.Code());
            if (at < 0) {
                totals.AddTotalClass(jobClass.Code());
                at = totals.Count() - 1;
            }
            positions.push_back(totals.At(at).Code() == jobClass.Code() ? at : -1);
        }
    }
    const int n = totals.Count();
    if (n < 1)
        return;

    std::vector<std::array<qint32, CounterCount>> accumulator(std::size_t(n),
                                                              std::array<qint32, CounterCount>{});
    std::size_t firstOfType = 0;
    for (const JobType &jobType : m_jobTypes) {
        const JobClasses &classes = jobType.Classes();
        for (int s = 0; s < CounterCount; ++s) {
            std::size_t pair = firstOfType;
            for (const JobClass &jobClass : classes) {
                const qsizetype p = positions[pair++];
                if (p < 0)
                    throw DLVError::subscriptOutOfRange(
                        QStringLiteral("no total position for job class \"%1\"")
                            .arg(jobClass.Code()));
                const qint32 value = jobClass.JobDetails()[std::size_t(s)];
                qint32 &cell = accumulator[std::size_t(p)][std::size_t(s)];
                cell = Conv::addChecked(cell, value);
                m_grandTotals[std::size_t(s)] =
                    Conv::addChecked(m_grandTotals[std::size_t(s)], value);
            }
        }
        firstOfType += std::size_t(classes.Count());
    }

    for (int s = 0; s < CounterCount; ++s)
        for (int p = 0; p < n; ++p)
            totals.At(p).SetJobDetails(accumulator[std::size_t(p)][std::size_t(s)], s);

    using namespace Counter;
    m_wosPerHour = Conv::rate(m_grandTotals[workOrders(Completed)], m_hoursWorked);
    m_wosPerHrReq = Conv::rate(m_grandTotals[workOrders(Open)], m_hoursRemaining);
    m_ptsPerHour = Conv::rate(m_grandTotals[points(Completed)], m_hoursWorked);
    m_ptsPerHrReq = Conv::rate(m_grandTotals[points(Open)], m_hoursRemaining);
}

void BusinessUnit::Terminate()
{
    m_jobTypes.clear();
    m_totalJobType = JobType();
}

void BusinessUnit::SetBUIndex(qint32 index)
{
    m_buIndex = index;
    if (m_owner)
        m_owner->buIndexChanged();
}

qint32 BusinessUnit::GetGrandTotal(int index) const
{
    if (index < 0 || index >= CounterCount)
        throw DLVError::subscriptOutOfRange(QStringLiteral("counter index %1").arg(index));
    return m_grandTotals[std::size_t(index)];
}
