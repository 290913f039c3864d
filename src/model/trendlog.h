#pragma once

#include "common/paneltrendpoint.h"

#include <QList>
#include <algorithm>

/// The panel figures of each refresh of one day, in time order. A point of another day than the
/// last one starts the day afresh; past maxPoints() the oldest point goes, so a day of refreshes
/// every few seconds stays bounded.
class TrendLog
{
public:
    static constexpr qsizetype DefaultMaxPoints = 2880; ///< a day at one refresh every 30 s

    explicit TrendLog(qsizetype maxPoints = DefaultMaxPoints)
        : m_maxPoints(std::max<qsizetype>(1, maxPoints))
    {}

    /// Records a refresh. Returns true when the log was cleared first (a new day).
    bool add(const PanelTrendPoint &point);
    [[nodiscard]] const QList<PanelTrendPoint> &points() const { return m_points; }
    [[nodiscard]] qsizetype maxPoints() const { return m_maxPoints; }
    void clear() { m_points.clear(); }

private:
    QList<PanelTrendPoint> m_points;
    qsizetype m_maxPoints;
};
