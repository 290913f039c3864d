#include "model/jobtypes.h"

JobType &JobTypes::Add(const QZWebRow &row, DetailColumns &columns)
{
    JobType jobType;
    jobType.Initialize(row, columns);
    return m_items.add(std::move(jobType));
}
