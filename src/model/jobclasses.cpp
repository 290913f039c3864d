#include "model/jobclasses.h"

#include "common/dlverror.h"
#include "model/codelookup.h"

const JobClass *JobClasses::Item(QStringView code) const
{
    const qsizetype i = IndexOf(code);
    return i < 0 ? nullptr : m_first + i;
}

qsizetype JobClasses::IndexOf(QStringView code) const
{
    return CodeLookup::indexOf(begin(), end(), code);
}

const JobClass &JobClasses::At(qsizetype position) const
{
    if (position < 0 || position >= m_count)
        throw DLVError::subscriptOutOfRange(QStringLiteral("job class %1").arg(position));
    return m_first[position];
}
