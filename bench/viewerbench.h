#pragma once

#include <QStringList>
#include <QVariant>
#include <memory>

class DLViewer;
class QZWebMessage;

/// Drives a real control (offscreen, initialised, every unit in the session and selected,
/// aggregate summary) through the fills of a data refresh and times each of them.
class ViewerBench
{
public:
    struct Times
    {
        double hierarchyFill = 0; ///< both hierarchy grids, collapsed nodes, view reset
        double unitList = 0;      ///< LoadBUListView with the selection kept
        double summaryFill = 0;   ///< ShowBUs: summary grid, panel, view reset
        double refresh = 0;       ///< one data message end to end: load plus all fills
        /// The three fills again, each run after the caches were flooded (as inside a refresh).
        double hierarchyFillCold = 0;
        double unitListCold = 0;
        double summaryFillCold = 0;
        int units = 0;
        int hierarchyRows = 0;
        int listItems = 0;
        int selected = 0;
        int summaryRows = 0;
        int errors = 0;
    };

    /// Loads message once to fill the list and select everything, then times the stages on a
    /// second delivery of the same message. Each stage is timed `runs` times; the best counts.
    [[nodiscard]] static Times run(const std::shared_ptr<QZWebMessage> &message, int runs);

    /// Every unit of the message's "BusinessUnits" but the root: the session of a bench control.
    [[nodiscard]] static QStringList sessionUnits(const QZWebMessage &message);
    /// The set-up every control run shares, on an initialised control: the message's units as
    /// the session, a first delivery that fills the unit list, then every unit chosen and summed
    /// with everything below it (View pressed). Returns the message as the control takes it.
    static QVariant chooseEverything(DLViewer &viewer,
                                     const std::shared_ptr<QZWebMessage> &message);
};
