#include "model/detailcolumns.h"

#include "webdata/qzwebtable.h"

const std::array<QStringView, DetailColumns::CounterCount> DetailColumns::CounterColumns = {
    u"WOOpen",     u"WOWarning",    u"WOJeopardy",  u"WOLate",     u"WOCompleted",
    u"WOCanceled", u"WONotDone",    u"PtsOpen",     u"PtsWarning", u"PtsJeopardy",
    u"PtsLate",    u"PtsCompleted", u"PtsCanceled", u"PtsNotDone"};

int DetailColumns::buid()
{
    if (m_buid < 0)
        m_buid = m_table->requireColumn(u"BUID");
    return m_buid;
}

int DetailColumns::jobType()
{
    if (m_jobType < 0)
        m_jobType = m_table->requireColumn(u"JobType");
    return m_jobType;
}

int DetailColumns::jobClass()
{
    if (m_jobClass < 0)
        m_jobClass = m_table->requireColumn(u"JobClass");
    return m_jobClass;
}

void DetailColumns::resolveClassFields()
{
    if (m_classFieldsResolved)
        return;
    (void)jobClass();
    for (int s = 0; s < CounterCount; ++s)
        m_counters[std::size_t(s)] = m_table->requireColumn(CounterColumns[std::size_t(s)]);
    m_classFieldsResolved = true;
}
