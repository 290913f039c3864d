#include "model/businessunit.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/businessunits.h"
#include "model/counter.h"
#include "model/generalcolumns.h"
#include "webdata/qzwebtable.h"

void BusinessUnit::Initialize(const QZWebRow &row, GeneralColumns &columns)
{
    columns.resolveFields();
    m_buid = row.value(columns.buid()).toString();
    m_buDesc = row.value(columns.buDesc()).toString();
    m_techCount = Conv::textToLong(row.value(columns.techCount()));
    m_hoursWorked = Conv::textToLong(row.value(columns.hoursWorked()));
    m_hoursRemaining = Conv::textToLong(row.value(columns.hoursRemaining()));
}

void BusinessUnit::calcRates()
{
    using namespace Counter;
    m_wosPerHour = Conv::rate(m_grandTotals[workOrders(Completed)], m_hoursWorked);
    m_wosPerHrReq = Conv::rate(m_grandTotals[workOrders(Open)], m_hoursRemaining);
    m_ptsPerHour = Conv::rate(m_grandTotals[points(Completed)], m_hoursWorked);
    m_ptsPerHrReq = Conv::rate(m_grandTotals[points(Open)], m_hoursRemaining);
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
