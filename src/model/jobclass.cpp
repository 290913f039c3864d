#include "model/jobclass.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/detailcolumns.h"
#include "webdata/qzwebtable.h"

namespace {
void checkCounterIndex(int index)
{
    if (index < 0 || index >= JobClass::CounterCount)
        throw DLVError::subscriptOutOfRange(QStringLiteral("counter index %1").arg(index));
}
} // namespace

void JobClass::Initialize(const QZWebRow &row, DetailColumns &columns)
{
    columns.resolveClassFields();
    m_code = columns.jobClassCode(row.value(columns.jobClass()));
    for (int s = 0; s < CounterCount; ++s)
        m_counters[std::size_t(s)] = Conv::textToLong(row.value(columns.counter(s)));
}

void JobClass::AddTotalClass(const QString &name)
{
    m_code = name;
    m_counters.fill(0);
}

void JobClass::SetJobDetails(qint32 value, int index)
{
    checkCounterIndex(index);
    m_counters[std::size_t(index)] = value;
}

qint32 JobClass::GetJobDetails(int index) const
{
    checkCounterIndex(index);
    return m_counters[std::size_t(index)];
}
