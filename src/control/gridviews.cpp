#include "control/gridviews.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/errortrap.h"
#include "views/collapsednodes.h"
#include "views/hierarchygrid.h"
#include "views/outlinegridview.h"
#include "views/panellayout.h"
#include "views/summarygrid.h"

#include <QFrame>
#include <algorithm>
#include <cmath>

GridViews::GridViews(QFrame *summaryFrame, QFrame *hierarchyFrame, const QWidget *metrics,
                     ErrorReporter &reporter)
    : m_summaryFrame(summaryFrame), m_hierarchyFrame(hierarchyFrame), m_metrics(metrics),
      m_reporter(reporter)
{
    for (int i = 0; i < kCount; ++i) {
        auto *view = new OutlineGridView(i == 0 ? summaryFrame : hierarchyFrame);
        view->setObjectName(QStringLiteral("vsFlex%1").arg(i));
        view->setGrid(&m_grids[std::size_t(i)]);
        m_views[std::size_t(i)] = view;
    }
    m_views[2]->setVisible(false);
}

double GridViews::twipsPerPixelX() const
{
    return 1440.0 / m_metrics->logicalDpiX();
}

double GridViews::twipsPerPixelY() const
{
    return 1440.0 / m_metrics->logicalDpiY();
}

void GridViews::InitSingleBUGrid(const CaptionLookup &caption)
{
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.InitSingleBUGrid"),
                   [&] { SummaryGrid(m_grids[0]).InitSingleBUGrid(caption, twipsPerPixelX()); });
}

void GridViews::InitBUHierarchyGrid(int index, const CaptionLookup &caption)
{
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.InitBUHierarchyGrid"), [&] {
        if (index < 1 || index > 2)
            throw DLVError::subscriptOutOfRange(QStringLiteral("grid %1").arg(index));
        HierarchyGrid::InitBUHierarchyGrid(m_grids[std::size_t(index)], index, caption,
                                           twipsPerPixelX());
    });
}

void GridViews::setColumnWidths(double widthTwips)
{
    // Widths are whole twips; below the minimum width the grids keep the minimum's widths and
    // scroll rather than squeeze.
    const PanelLayout::Result r = PanelLayout::compute(widthTwips, 0, twipsPerPixelX());
    OutlineGrid &summary = m_grids[0];
    // No redraw suspension here: resuming would reset the views' models on every resize, while a
    // width change only re-lays the header. All widths of a grid go in one call, so that its view
    // lays out once per resize rather than once per column.
    if (summary.colCount() == PanelLayout::kSummaryColumns) {
        std::array<int, PanelLayout::kSummaryColumns> widths{};
        for (std::size_t c = 0; c < widths.size(); ++c)
            widths[c] = Conv::toLong(r.summaryColumnWidths[c]);
        summary.setColWidths(widths);
    }
    std::array<int, PanelLayout::kHierarchyColumns> widths{};
    for (std::size_t c = 0; c < widths.size(); ++c)
        widths[c] = Conv::toLong(r.hierarchyColumnWidths[c]);
    for (std::size_t i = 1; i <= 2; ++i) {
        if (m_grids[i].colCount() == PanelLayout::kHierarchyColumns)
            m_grids[i].setColWidths(widths);
    }
}

void GridViews::setTops(int summaryTop, int hierarchyTop)
{
    m_tops = {summaryTop, hierarchyTop, hierarchyTop};
}

void GridViews::layout()
{
    for (int i = 0; i < kCount; ++i) {
        const QFrame *frame = i == 0 ? m_summaryFrame : m_hierarchyFrame;
        const QRect inner = frame->contentsRect();
        const int top = m_tops[std::size_t(i)];
        // The height is fitted to the rows afterwards; start from what the frame can hold.
        m_views[std::size_t(i)]->setGeometry(inner.left() + 2, top, inner.width() - 4,
                                             std::max(40, inner.bottom() - top - 2));
    }
}

void GridViews::FitGridHeight(int index)
{
    if (index < 0 || index >= kCount)
        return;
    OutlineGridView *view = m_views[std::size_t(index)];
    const double p = twipsPerPixelY();
    // Both frames share one geometry; the summary frame's height stands for either.
    const double twips = SummaryGrid::FitGridHeight(m_grids[std::size_t(index)], view->y() * p,
                                                    m_summaryFrame->height() * p, p);
    view->resize(view->width(), std::max(0, int(std::lround(twips / p))));
}

void GridViews::showDisplay(int index)
{
    if (index != 0 && index != 1)
        return;
    m_views[1]->setVisible(index == 0);
    m_views[2]->setVisible(index == 1);
}

bool GridViews::inView(int index, const QWidget *ancestor) const
{
    return index >= 0 && index < kCount && m_views[std::size_t(index)]->isVisibleTo(ancestor);
}

// The rules live in CollapsedNodes (views), shared by the fills and the profile side.

void GridViews::SaveCollapsedList(int index, StringSet &list) const
{
    // Reporting a failure is the one effect a save may have on the control.
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.SaveCollapsedList"), [&] {
        CollapsedNodes::SaveCollapsedList(m_grids.at(std::size_t(index)), index, list);
    });
}

void GridViews::RestoreCollapsedList(int index, const StringSet &list)
{
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.RestoreCollapsedList"), [&] {
        CollapsedNodes::RestoreCollapsedList(m_grids.at(std::size_t(index)), index, list);
    });
}

void GridViews::ExpandNodes(int index)
{
    ErrorTrap::run(&m_reporter, QStringLiteral("DLViewer.ExpandNodes"),
                   [&] { CollapsedNodes::ExpandNodes(m_grids.at(std::size_t(index)), index); });
}
