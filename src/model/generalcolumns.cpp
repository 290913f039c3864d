#include "model/generalcolumns.h"

#include "webdata/qzwebtable.h"

int GeneralColumns::buid()
{
    if (m_buid < 0)
        m_buid = m_table->requireColumn(u"BUID");
    return m_buid;
}

void GeneralColumns::resolveFields()
{
    if (m_hoursRemaining >= 0)
        return;
    (void)buid();
    m_buDesc = m_table->requireColumn(u"BUDesc");
    m_techCount = m_table->requireColumn(u"TechCount");
    m_hoursWorked = m_table->requireColumn(u"HoursWorked");
    m_hoursRemaining = m_table->requireColumn(u"HoursRemaining");
}
