#pragma once

#include "common/dlvparams.h"

#include <QObject>
#include <functional>

class DrillDown;
class ErrorReporter;
class GridViews;
class QLabel;

/// Drill-down requests: a double-click (or Enter) on a figure of a grid, or a click on the
/// technician count, asks the host for the details behind it through detailsRequested().
/// DrillDown (views) decides whether and with what; this class hears the widgets and remembers
/// the mouse button of the last press on a grid.
class DrillDownRequests final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DrillDownRequests)

public:
    /// The drill-down rules over the control's current state, made when a request needs them.
    using Rules = std::function<DrillDown()>;

    /// Listens to the three grid views and to techCount (which gets a keyboard and mouse
    /// activator, owned by the label).
    DrillDownRequests(GridViews &views, QLabel *techCount, ErrorReporter &reporter, Rules rules,
                      QObject *parent = nullptr);
    ~DrillDownRequests() override;

    // Grid handlers, with the grid element as index. The double-click reads the cell under the
    // mouse from the view; Enter (without Shift) counts as a left double-click on the current
    // cell.
    void vsFlex_MouseDown(int index, qint16 button);
    void vsFlex_KeyDown(int index, int key, Qt::KeyboardModifiers modifiers);
    void vsFlex_DblClick(int index);
    void vsFlex_DblClick(int index, int mouseRow, int mouseCol);
    void lblTechCount_Click();

    /// The mouse button of the last mouse-button event on a grid (1 left, 2 right, 4 middle).
    [[nodiscard]] qint16 lastMouseButton() const { return m_lastMouseButton; }

Q_SIGNALS:
    /// Emitted synchronously: the receiver may fill params in its slot.
    void detailsRequested(DLVParams &params);

private:
    GridViews &m_views;
    ErrorReporter &m_reporter;
    Rules m_rules;
    qint16 m_lastMouseButton = 0;
};
