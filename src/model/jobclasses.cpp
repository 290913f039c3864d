#include "model/jobclasses.h"

void JobClasses::Add(const QZWebRow &row, DetailColumns &columns)
{
    JobClass jobClass;
    jobClass.Initialize(row, columns);
    m_items.add(std::move(jobClass));
}

void JobClasses::AddTotalClass(const QString &name)
{
    JobClass jobClass;
    jobClass.AddTotalClass(name);
    m_items.add(std::move(jobClass));
}
