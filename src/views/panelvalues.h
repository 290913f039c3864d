#pragma once

#include <QString>
#include <QtGlobal>

/// The eleven figures of the productivity panel as the summary fill computes them: seven sums over
/// the chosen units and four hourly rates of those sums. The control writes them into the labels
/// lblTechCount ... lblPtsPerHrReq; a default-constructed value is the reset panel ("0" in every
/// label).
///
/// The sums are 64-bit so that a sum past the 32-bit range can still be shown before the rate that
/// needs it as a 32-bit operand fails with the overflow error.
class PanelValues
{
public:
    qint64 techCount = 0;
    qint64 hoursWorked = 0;
    qint64 hoursRemaining = 0;
    qint64 woDone = 0;
    qint64 woOpen = 0;
    qint64 ptsDone = 0;
    qint64 ptsOpen = 0;
    float wosPerHrToday = 0;
    float wosPerHrReq = 0;
    float ptsPerHrToday = 0;
    float ptsPerHrReq = 0;

    /// The label texts in the order lblTechCount, lblHrsWorked, lblHrsRemaining, lblWODone,
    /// lblWOOpen, lblPtsDone, lblPtsOpen, lblWOsPerHrToday, lblWOsPerHrReq, lblPtsPerHrToday,
    /// lblPtsPerHrReq: sums as plain number text, rates as the shortest single-precision text.
    [[nodiscard]] QString text(int figure) const;
    static constexpr int FigureCount = 11;
};
