#include "model/jobclass.h"

#include "common/dlverror.h"

const QString JobClass::s_noCode;

namespace {
void checkCounterIndex(int index)
{
    if (index < 0 || index >= JobClass::CounterCount)
        throw DLVError::subscriptOutOfRange(QStringLiteral("counter index %1").arg(index));
}
} // namespace

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
