#pragma once

#include "common/dlvparams.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <functional>
#include <optional>

class OutlineGrid;

/// Decides what a drill-down asks the host for: a double-click (or Enter) on one of the three
/// grids, or a click on the technician count. Plain code over the grid data, so every rule is
/// tested without widgets; the control only gathers the inputs and raises GetDetails.
///
/// The control's state enters through Sources, read only when a request gets far enough to need
/// it: the unit list's keys are indexed once per request, never scanned per id.
class DrillDown final
{
public:
    /// Grid elements, as the control numbers them.
    enum Grid : int
    {
        Summary = 0,
        WorkOrderHierarchy = 1,
        PointHierarchy = 2
    };

    /// The host platform's mouse-button codes, kept as the last mouse button of a grid.
    enum ButtonCode : qint16
    {
        NoButton = 0,
        LeftButton = 1,
        RightButton = 2,
        MiddleButton = 4
    };

    struct Sources
    {
        /// The unit ids of the unit list lvBU (each key less its "_"), as a set.
        std::function<const QSet<QString> &()> unitIds;
        /// The unit ids of the control's current selection (the last summary fill's), in order.
        std::function<QStringList()> currentBUs;
        /// The data controller's GetBUIDList: a unit (or "#" for the root) and its descendants.
        std::function<QStringList(const QString &buID)> buIdList;
        /// The jeopardy threshold held by the data controller.
        std::function<QString()> jeopardyThreshold;
    };

    /// Where the double-click happened: the grid's current cell is read from the grid itself.
    struct Click
    {
        int gridIndex = Summary;
        int mouseRow = -1;
        int mouseCol = -1;
        qint16 lastButton = NoButton;
    };

    explicit DrillDown(Sources sources);

    /// The request for a double-click on a grid, or nothing when the cell is not drillable.
    /// Throws DLVError(9) when the grid lacks a column the rules read.
    [[nodiscard]] std::optional<DLVParams> gridRequest(const OutlineGrid &grid,
                                                       const Click &click) const;
    /// The request for a click on the technician count: every technician of the current units.
    [[nodiscard]] DLVParams techCountRequest() const;

    [[nodiscard]] static qint16 buttonCode(Qt::MouseButton button);
    /// The ids that pass the membership test, in order, joined with "|" (no trailing "|").
    [[nodiscard]] static QString joinMembers(const QStringList &ids, const QSet<QString> &members);

private:
    [[nodiscard]] std::optional<DLVParams> summaryRequest(const OutlineGrid &grid,
                                                          const Click &click) const;
    [[nodiscard]] std::optional<DLVParams> hierarchyRequest(const OutlineGrid &grid,
                                                            const Click &click) const;
    [[nodiscard]] QString currentBUIDs() const;
    /// ids that pass the membership test, joined; the unit list's ids are read once per call.
    [[nodiscard]] QString joinedMembers(const QStringList &ids) const;
    [[nodiscard]] QString threshold() const;

    Sources m_sources;
};
