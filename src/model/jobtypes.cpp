#include "model/jobtypes.h"

#include "model/codelookup.h"

const JobType *JobTypes::Item(QStringView code) const
{
    const qsizetype i = CodeLookup::indexOf(begin(), end(), code);
    return i < 0 ? nullptr : m_first + i;
}
