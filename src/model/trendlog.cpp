#include "model/trendlog.h"

bool TrendLog::add(const PanelTrendPoint &point)
{
    bool newDay = false;
    if (!m_points.isEmpty() && m_points.constLast().time.date() != point.time.date()) {
        m_points.clear();
        newDay = true;
    }
    if (m_points.size() >= m_maxPoints)
        m_points.remove(0, m_points.size() - m_maxPoints + 1);
    m_points.append(point);
    return newDay;
}
