#include "control/drilldownrequests.h"

#include "control/gridviews.h"
#include "model/errortrap.h"
#include "views/drilldown.h"
#include "views/labelactivator.h"
#include "views/outlinegridview.h"

#include <QLabel>

DrillDownRequests::DrillDownRequests(GridViews &views, QLabel *techCount, ErrorReporter &reporter,
                                     Rules rules, QObject *parent)
    : QObject(parent), m_views(views), m_reporter(reporter), m_rules(std::move(rules))
{
    for (int i = 0; i < GridViews::kCount; ++i) {
        OutlineGridView *view = views.view(i);
        connect(view, &OutlineGridView::mouseButtonPressed, this,
                [this, i](Qt::MouseButton button, Qt::KeyboardModifiers, int, int) {
                    vsFlex_MouseDown(i, DrillDown::buttonCode(button));
                });
        connect(
            view, &OutlineGridView::cellDoubleClicked, this,
            [this, i](int, int, Qt::MouseButton, Qt::KeyboardModifiers) { vsFlex_DblClick(i); });
        connect(view, &OutlineGridView::enterPressed, this,
                [this, i](int, int, Qt::KeyboardModifiers modifiers) {
                    vsFlex_KeyDown(i, Qt::Key_Return, modifiers);
                });
    }
    auto *activator = new LabelActivator(techCount);
    connect(activator, &LabelActivator::activated, this, [this] { lblTechCount_Click(); });
}

DrillDownRequests::~DrillDownRequests() = default;

void DrillDownRequests::vsFlex_MouseDown(int /*index*/, qint16 button)
{
    m_lastMouseButton = button;
}

void DrillDownRequests::vsFlex_KeyDown(int index, int key, Qt::KeyboardModifiers modifiers)
{
    if ((key != Qt::Key_Return && key != Qt::Key_Enter) || (modifiers & Qt::ShiftModifier))
        return;
    m_lastMouseButton = DrillDown::LeftButton;
    // A keyboard user points at the current cell, so it stands for the cell under the mouse.
    const OutlineGrid &grid = m_views.grid(index);
    vsFlex_DblClick(index, grid.currentRow(), grid.currentCol());
}

void DrillDownRequests::vsFlex_DblClick(int index)
{
    const OutlineGridView *view = m_views.view(index);
    vsFlex_DblClick(index, view->mouseRow(), view->mouseCol());
}

void DrillDownRequests::vsFlex_DblClick(int index, int mouseRow, int mouseCol)
{
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.vsFlex_DblClick"), [&] {
        const DrillDown::Click click{index, mouseRow, mouseCol, m_lastMouseButton};
        std::optional<DLVParams> params = m_rules().gridRequest(m_views.grid(index), click);
        if (params)
            Q_EMIT detailsRequested(*params);
    });
}

void DrillDownRequests::lblTechCount_Click()
{
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.lblTechCount_Click"), [&] {
        DLVParams params = m_rules().techCountRequest();
        Q_EMIT detailsRequested(params);
    });
}
