#include "model/jobtype.h"

#include "model/detailcolumns.h"
#include "webdata/qzwebtable.h"

void JobType::Initialize(const QZWebRow &row, DetailColumns &columns)
{
    m_code = columns.jobTypeCode(row.value(columns.jobType()));
}

void JobType::AddJobClass(const QZWebRow &row, DetailColumns &columns)
{
    if (!m_classes.Item(row.value(columns.jobClass())))
        m_classes.Add(row, columns);
}

void JobType::AddTotalClass(const QString &name)
{
    if (!m_classes.Item(name))
        m_classes.AddTotalClass(name);
}
