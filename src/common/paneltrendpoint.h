#pragma once

#include <QDateTime>
#include <QtGlobal>

/// The productivity panel's figures as one refresh left them, with the time of that refresh.
/// DLViewer::PanelTrend() returns the points of the current day in time order.
struct PanelTrendPoint
{
    QDateTime time;
    qint64 techCount = 0;
    qint64 hoursWorked = 0;
    qint64 hoursRemaining = 0;
    qint64 woDone = 0;
    qint64 woOpen = 0;
    qint64 ptsDone = 0;
    qint64 ptsOpen = 0;
    float wosPerHrToday = 0; ///< completed work orders per hour worked
    float wosPerHrReq = 0;   ///< open work orders per remaining hour
    float ptsPerHrToday = 0;
    float ptsPerHrReq = 0;
};
