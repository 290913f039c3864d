// DLViewerPrivate: drill-down requests. A double-click (or Enter) on a figure of a grid, or a
// click on the technician count, raises GetDetails; DrillDown decides whether and with what.

#include "control/dlviewer_p.h"
#include "model/cdlvcontroller.h"
#include "model/errortrap.h"
#include "views/drilldown.h"
#include "views/labelactivator.h"
#include "views/outlinegridview.h"

#include <QLabel>

void DLViewerPrivate::connectDrillDown()
{
    for (int i = 0; i < int(vsFlex.size()); ++i) {
        OutlineGridView *view = vsFlex[size_t(i)];
        QObject::connect(view, &OutlineGridView::mouseButtonPressed, q,
                         [this, i](Qt::MouseButton button, Qt::KeyboardModifiers, int, int) {
                             vsFlex_MouseDown(i, DrillDown::buttonCode(button));
                         });
        QObject::connect(
            view, &OutlineGridView::cellDoubleClicked, q,
            [this, i](int, int, Qt::MouseButton, Qt::KeyboardModifiers) { vsFlex_DblClick(i); });
        QObject::connect(view, &OutlineGridView::enterPressed, q,
                         [this, i](int, int, Qt::KeyboardModifiers modifiers) {
                             vsFlex_KeyDown(i, Qt::Key_Return, modifiers);
                         });
    }
    // The label is owned by the panel; the activator by the label.
    auto *activator = new LabelActivator(lblTechCount);
    QObject::connect(activator, &LabelActivator::activated, q, [this] { lblTechCount_Click(); });
}

void DLViewerPrivate::vsFlex_MouseDown(int /*index*/, qint16 button)
{
    lastMouseButton = button;
}

void DLViewerPrivate::vsFlex_KeyDown(int index, int key, Qt::KeyboardModifiers modifiers)
{
    if ((key != Qt::Key_Return && key != Qt::Key_Enter) || (modifiers & Qt::ShiftModifier))
        return;
    lastMouseButton = DrillDown::LeftButton;
    // A keyboard user points at the current cell, so it stands for the cell under the mouse.
    const OutlineGrid &grid = grids[size_t(index)];
    vsFlex_DblClick(index, grid.currentRow(), grid.currentCol());
}

void DLViewerPrivate::vsFlex_DblClick(int index)
{
    const OutlineGridView *view = vsFlex[size_t(index)];
    vsFlex_DblClick(index, view->mouseRow(), view->mouseCol());
}

void DLViewerPrivate::vsFlex_DblClick(int index, int mouseRow, int mouseCol)
{
    ErrorTrap::run(this, QStringLiteral("DLViewer.vsFlex_DblClick"), [&] {
        const DrillDown::Click click{index, mouseRow, mouseCol, lastMouseButton};
        std::optional<DLVParams> params = drillDown().gridRequest(grids[size_t(index)], click);
        if (params)
            Q_EMIT q->GetDetails(*params);
    });
}

void DLViewerPrivate::lblTechCount_Click()
{
    ErrorTrap::run(this, QStringLiteral("DLViewer.lblTechCount_Click"), [&] {
        DLVParams params = drillDown().techCountRequest();
        Q_EMIT q->GetDetails(params);
    });
}

DrillDown DLViewerPrivate::drillDown()
{
    DrillDown::Sources sources;
    sources.unitKeys = [this] {
        QStringList keys;
        const int count = buListCount();
        keys.reserve(count);
        for (int i = 0; i < count; ++i)
            keys.append(buListKey(i));
        return keys;
    };
    sources.currentBUs = [this] { return currentBUIds(); };
    sources.buIdList = [this](const QString &buID) {
        QStringList ids;
        if (mDLV)
            for (const auto &entry : mDLV->GetBUIDList(buID))
                ids.append(entry.key);
        return ids;
    };
    sources.jeopardyThreshold = [this] { return mDLV ? mDLV->JeopardyThreshold() : QString(); };
    return DrillDown(std::move(sources));
}

QStringList DLViewerPrivate::currentBUIds() const
{
    QStringList ids;
    ids.reserve(currentSelection.count());
    for (const auto &entry : currentSelection)
        ids.append(entry.key);
    return ids;
}
