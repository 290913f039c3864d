// DLViewerPrivate: the views side of the control. The fills themselves are plain classes over the
// grid data (SummaryGrid, HierarchyGrid, CollapsedNodes, BUSelection); this file hands them the
// model and the widgets' state, writes the panel labels, sizes and shows the grid views, and
// keeps the order in which a data message refreshes the hierarchy, the unit list and the summary.

#include "common/conversions.h"
#include "control/dlviewer_p.h"
#include "control/livecues.h"
#include "control/unitlistpane.h"
#include "model/cdlvcontroller.h"
#include "model/errortrap.h"
#include "views/buselection.h"
#include "views/hierarchygrid.h"
#include "views/outlinegridview.h"
#include "views/panellayout.h"
#include "views/panelvalues.h"
#include "views/summarygrid.h"

#include <QFrame>
#include <QItemSelection>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTreeWidget>
#include <array>
#include <cmath>

namespace {

const QString kShowBUs = QStringLiteral("DLViewer.ShowBUs");
const QString kFillHierarchy = QStringLiteral("DLViewer.mDLV_FillBUHierarchyGrid");

} // namespace

void DLViewerPrivate::createGrids()
{
    for (int i = 0; i < 3; ++i) {
        // The summary grid lives on the summary tab's frame, both hierarchy grids on the other.
        vsFlex[i] = new OutlineGridView(fraBU[i == 0 ? 0 : 1]);
        vsFlex[i]->setObjectName(QStringLiteral("vsFlex%1").arg(i));
        vsFlex[i]->setGrid(&grids[i]);
    }
    vsFlex[2]->setVisible(false);

    QObject::connect(Tabs, &QTabBar::currentChanged, q, [this](int) { Tabs_Click(); });
    bindViewChoice();
    QObject::connect(cmdView, &QPushButton::clicked, q, [this] { cmdView_Click(); });
}

void DLViewerPrivate::bindViewChoice()
{
    for (int i = 0; i < 2; ++i) {
        QObject::connect(optBU[std::size_t(i)], &QRadioButton::toggled, q, [this, i](bool checked) {
            if (checked && choice.singleUnits() != (i == 0))
                choice.setSingleUnits(i == 0);
        });
        // Setting the option from code (profiles, first layout) switches the display like a
        // click.
        QObject::connect(optDisplay[std::size_t(i)], &QRadioButton::toggled, q,
                         [this, i](bool checked) {
                             if (!checked)
                                 return;
                             if (choice.byWorkOrders() != (i == 0))
                                 choice.setByWorkOrders(i == 0);
                             optDisplay_Click(i);
                         });
    }
    QObject::connect(&choice, &ViewChoice::singleUnitsSet, q,
                     [this](bool single) { optBU[single ? 0 : 1]->setChecked(true); });
    // A display set from code switches the grid in view even when the option was already
    // checked, as a profile being applied expects.
    QObject::connect(&choice, &ViewChoice::byWorkOrdersSet, q, [this](bool workOrders) {
        optDisplay[workOrders ? 0 : 1]->setChecked(true);
        optDisplay_Click(workOrders ? 0 : 1);
    });
}

void DLViewerPrivate::InitSingleBUGrid()
{
    ErrorTrap::run(this, QStringLiteral("DLViewer.InitSingleBUGrid"), [&] {
        SummaryGrid(grids[0]).InitSingleBUGrid([this](const QString &key) { return caption(key); },
                                               twipsPerPixelX());
    });
}

void DLViewerPrivate::InitBUHierarchyGrid(int index)
{
    ErrorTrap::run(this, QStringLiteral("DLViewer.InitBUHierarchyGrid"), [&] {
        if (index < 1 || index > 2)
            throw DLVError::subscriptOutOfRange(QStringLiteral("grid %1").arg(index));
        HierarchyGrid::InitBUHierarchyGrid(
            grids[std::size_t(index)], index, [this](const QString &key) { return caption(key); },
            twipsPerPixelX());
    });
}

void DLViewerPrivate::FitGridHeight(int index)
{
    if (index < 0 || index > 2 || !vsFlex[std::size_t(index)])
        return;
    OutlineGridView *view = vsFlex[std::size_t(index)];
    const double p = twipsPerPixelY();
    const double twips = SummaryGrid::FitGridHeight(grids[std::size_t(index)], view->y() * p,
                                                    fraBU[0]->height() * p, p);
    view->resize(view->width(), std::max(0, int(std::lround(twips / p))));
}

void DLViewerPrivate::setGridColumnWidths(double widthTwips)
{
    // Widths are whole twips; below the minimum width the grids keep the minimum's widths and
    // scroll rather than squeeze.
    const PanelLayout::Result r = PanelLayout::compute(widthTwips, 0, twipsPerPixelX());
    OutlineGrid &summary = grids[0];
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
        if (grids[i].colCount() == PanelLayout::kHierarchyColumns)
            grids[i].setColWidths(widths);
    }
}

void DLViewerPrivate::writePanel(const PanelValues &panel)
{
    const auto labels = panelFigures();
    for (int i = 0; i < PanelValues::FigureCount; ++i)
        labels[std::size_t(i)]->setText(panel.text(i));
    if (liveCues)
        liveCues->panelWritten(panel);
}

void DLViewerPrivate::mDLV_FillSingleBUGrid(BusinessUnits &bus)
{
    if (!ProfileSettingsLoaded)
        LoadProfileSettings();
    ShowBUs(bus);
    ProfileSettingsLoaded = true;
    summaryGridFilled = true;
    if (liveCues)
        liveCues->fillsEnded();
}

void DLViewerPrivate::ShowBUs(BusinessUnits &bus)
{
    if (!mDLV)
        return;
    PanelValues panel;
    const bool done = ErrorTrap::run(this, kShowBUs, [&] {
        FillBusy::Scope busy(mDLV->Busy(), FillBusy::SummaryFill);
        if (buListCount() > 0) {
            currentSelection = mDLV->GetBUList();
            currentBUSet = choice.singleUnits() ? currentSelection : mDLV->GetAggregateBUList();
        }
        lastFillSingleMode = choice.singleUnits();
        if (!collapsedLists[0])
            collapsedLists[0] = std::make_unique<StringSet>();
        if (summaryGridFilled)
            SaveCollapsedList(0, *collapsedLists[0]);
        {
            OutlineGrid::RedrawSuspender suspend(grids[0]);
            SummaryGrid(grids[0]).ShowBUs(bus, currentBUSet, mDLV->JobTypeDescriptions(),
                                          mDLV->JobClassDescriptions(),
                                          caption(QStringLiteral("Total")), panel, this);
            writePanel(panel);
            FitGridHeight(0);
            if (Tabs->currentIndex() == 0)
                vsFlex[0]->setVisible(true);
            if (summaryGridFilled)
                RestoreCollapsedList(0, *collapsedLists[0]);
            else
                RestoreNodes(QStringLiteral("JobTypes"), 0);
        }
        busy.end();
        EnableDataControls(true);
    });
    if (!done) // the panel shows what was summed before the failure
        writePanel(panel);
}

void DLViewerPrivate::mDLV_FillBUHierarchyGrid(BusinessUnits &bus)
{
    if (!mDLV)
        return;
    if (liveCues)
        liveCues->refreshStarted();
    // The data message set the summary's flag too: the summary fill clears it as it ends, and
    // when this fill fails before the summary fill has run, this scope does.
    FillBusy::Scope summaryBusy(mDLV->Busy(), FillBusy::SummaryFill);
    ErrorTrap::run(this, kFillHierarchy, [&] {
        FillBusy::Scope busy(mDLV->Busy(), FillBusy::HierarchyFill);
        for (std::size_t i = 1; i <= 2; ++i) {
            if (!collapsedLists[i])
                collapsedLists[i] = std::make_unique<StringSet>();
        }
        if (hierarchyGridFilled) {
            SaveCollapsedList(1, *collapsedLists[1]);
            SaveCollapsedList(2, *collapsedLists[2]);
        }
        // The user's place in each tree (the keyboard's current cell, where Enter drills down)
        // goes back to the same unit after the refill, when that unit is still shown.
        std::array<std::pair<QString, int>, 2> places;
        for (std::size_t i = 1; i <= 2; ++i) {
            const OutlineGrid &grid = grids[i];
            if (grid.currentRow() >= grid.fixedRows())
                places[i - 1] = {grid.rowData(grid.currentRow()), grid.currentCol()};
        }
        {
            OutlineGrid::RedrawSuspender suspendWorkOrders(grids[1]);
            OutlineGrid::RedrawSuspender suspendPoints(grids[2]);
            HierarchyGrid::Fill(grids[1], grids[2], *mDLV, bus, currentSelection);
            FitGridHeight(1);
            FitGridHeight(2);
            if (hierarchyGridFilled) {
                RestoreCollapsedList(1, *collapsedLists[1]);
                RestoreCollapsedList(2, *collapsedLists[2]);
            } else {
                RestoreNodes(QStringLiteral("BUWorkOrders"), 1);
                RestoreNodes(QStringLiteral("BUPoints"), 2);
            }
            for (std::size_t i = 1; i <= 2; ++i) {
                OutlineGrid &grid = grids[i];
                const auto &[key, col] = places[i - 1];
                const int row = key.isEmpty() ? -1 : grid.findRow(key);
                if (row >= 0 && col < grid.colCount() && grid.isRowVisible(row))
                    grid.setCurrentCell(row, col);
            }
        }
        hierarchyGridFilled = true;
        LoadBUListView();
        busy.end();
        mDLV_FillSingleBUGrid(bus);
    });
}

void DLViewerPrivate::LoadBUListView()
{
    if (!mDLV)
        return;
    const StringSet kept = mDLV->GetBUList();
    static const StringSet noSession;
    std::vector<BUSelection::Item> items = BUSelection::listItems(
        grids[1], sessionBUs ? *sessionBUs : noSession, mDLV->BUDescriptions());

    unitList->fill(std::move(items), [&kept](QStringView id) { return kept.contains(id); });
}

void DLViewerPrivate::cmdView_Click()
{
    if (!mDLV)
        return;
    const bool singleMode = choice.singleUnits();
    if (singleMode != lastFillSingleMode) {
        mDLV->FillSingleBU();
        return;
    }
    const StringSet selection = mDLV->GetBUList();
    if (BUSelection::needsRedraw(lastFillSingleMode, currentSelection, singleMode, selection))
        mDLV->FillSingleBU();
}

void DLViewerPrivate::Tabs_Click()
{
    const int k = Tabs->currentIndex();
    for (int i = 0; i < 2; ++i) {
        QFrame *frame = fraBU[std::size_t(i)];
        if (i == k) {
            frame->setVisible(true);
            frame->raise();
        } else {
            frame->setVisible(false);
        }
    }
    Tabs->raise(); // the frames overlap the strip's lower edge by a pixel
}

void DLViewerPrivate::optDisplay_Click(int index)
{
    if (index != 0 && index != 1)
        return;
    vsFlex[1]->setVisible(index == 0);
    vsFlex[2]->setVisible(index == 1);
}
