#include "control/viewscontroller.h"

#include "control/gridviews.h"
#include "control/panelview.h"
#include "control/selectionoptions.h"
#include "control/unitlistpane.h"
#include "model/cdlvcontroller.h"
#include "model/errortrap.h"
#include "model/fillbusy.h"
#include "model/unitlookups.h"
#include "model/viewchoice.h"
#include "profiles/profileexchange.h"
#include "views/buselection.h"
#include "views/hierarchygrid.h"
#include "views/outlinegridview.h"
#include "views/panelvalues.h"
#include "views/summarygrid.h"

#include <QHash>

namespace {

const QString kShowBUs = QStringLiteral("DLViewer.ShowBUs");
const QString kFillHierarchy = QStringLiteral("DLViewer.mDLV_FillBUHierarchyGrid");

} // namespace

ViewsController::ViewsController(Parts parts, QObject *parent)
    : QObject(parent), m_parts(std::move(parts)), m_sessionUnits(std::make_unique<StringSet>())
{}

ViewsController::~ViewsController() = default;

StringSet &ViewsController::newSessionUnits()
{
    m_sessionUnits = std::make_unique<StringSet>();
    return *m_sessionUnits;
}

void ViewsController::release()
{
    m_dlv = nullptr;
    m_sessionUnits.reset();
    for (StringSet &list : m_collapsedLists)
        list.clear();
    m_selectionPositions = KeptPositions();
    m_sessionPositions = KeptPositions();
    m_listedPositions = KeptPositions();
    m_unitOfRow.clear();
    m_writtenRows = WrittenRows();
    m_listEpoch = 0;
}

void ViewsController::writePanel(const PanelValues &panel)
{
    m_parts.panel.write(panel);
    Q_EMIT panelWritten(panel);
}

void ViewsController::LoadProfileSettings()
{
    if (m_profiles)
        m_profiles->document().LoadProfileSettings();
}

void ViewsController::RestoreNodes(const QString &id, int index)
{
    if (m_profiles)
        m_profiles->document().RestoreNodes(id, index);
}

void ViewsController::mDLV_FillSingleBUGrid(BusinessUnits &bus)
{
    if (!m_profileSettingsLoaded)
        LoadProfileSettings();
    ShowBUs(bus);
    m_profileSettingsLoaded = true;
    m_summaryFilled = true;
    Q_EMIT fillsEnded();
}

void ViewsController::ShowBUs(BusinessUnits &bus)
{
    if (!m_dlv)
        return;
    GridViews &views = m_parts.views;
    PanelValues panel;
    const bool done = ErrorTrap::run(&m_parts.reporter, kShowBUs, [&] {
        FillBusy::Scope busy(m_dlv->Busy(), FillBusy::SummaryFill);
        std::vector<const BusinessUnit *> setUnits; // the aggregate's units, found by position
        if (m_parts.choice.buListCount() > 0) {
            m_currentSelection = m_dlv->GetBUList();
            m_currentBUSet = m_parts.choice.singleUnits() ? m_currentSelection
                                                          : m_dlv->GetAggregateBUList(&setUnits);
        }
        m_lastFillSingleMode = m_parts.choice.singleUnits();
        if (m_summaryFilled)
            views.SaveCollapsedList(0, m_collapsedLists[0]);
        {
            OutlineGrid::RedrawSuspender suspend(views.grid(0));
            SummaryGrid(views.grid(0))
                .ShowBUs(bus, m_currentBUSet, m_dlv->JobTypeDescriptions(),
                         m_dlv->JobClassDescriptions(), m_parts.caption(QStringLiteral("Total")),
                         panel, &m_parts.reporter, setUnits);
            writePanel(panel);
            views.FitGridHeight(0);
            if (m_parts.options.currentTab() == 0)
                views.view(0)->setVisible(true);
            if (m_summaryFilled)
                views.RestoreCollapsedList(0, m_collapsedLists[0]);
            else
                RestoreNodes(QStringLiteral("JobTypes"), 0);
        }
        busy.end();
        Q_EMIT summaryShown();
    });
    if (!done) // the panel shows what was summed before the failure
        writePanel(panel);
}

void ViewsController::mDLV_FillBUHierarchyGrid(BusinessUnits &bus)
{
    if (!m_dlv)
        return;
    Q_EMIT refreshStarted();
    // The data message set the summary's flag too: the summary fill clears it as it ends, and
    // when this fill fails before the summary fill has run, this scope does.
    FillBusy::Scope summaryBusy(m_dlv->Busy(), FillBusy::SummaryFill);
    ErrorTrap::run(&m_parts.reporter, kFillHierarchy, [&] {
        FillBusy::Scope busy(m_dlv->Busy(), FillBusy::HierarchyFill);
        fillHierarchyGrids(bus);
        m_hierarchyFilled = true;
        LoadBUListView();
        busy.end();
        mDLV_FillSingleBUGrid(bus);
    });
}

void ViewsController::fillHierarchyGrids(const BusinessUnits &bus)
{
    if (!m_dlv)
        return;
    GridViews &views = m_parts.views;
    if (m_hierarchyFilled) {
        views.SaveCollapsedList(1, m_collapsedLists[1]);
        views.SaveCollapsedList(2, m_collapsedLists[2]);
    }
    // The user's place in each tree (the keyboard's current cell, where Enter drills down)
    // goes back to the same unit after the refill, when that unit is still shown.
    std::array<std::pair<QString, int>, 2> places;
    for (int i = 1; i <= 2; ++i) {
        const OutlineGrid &grid = views.grid(i);
        if (grid.currentRow() >= grid.fixedRows())
            places[std::size_t(i - 1)] = {grid.rowData(grid.currentRow()), grid.currentCol()};
    }
    {
        OutlineGrid::RedrawSuspender suspendWorkOrders(views.grid(1));
        OutlineGrid::RedrawSuspender suspendPoints(views.grid(2));
        const UnitLookups lookups = m_dlv->Lookups();
        m_selectionPositions.update(m_currentSelection, lookups.hierarchy, lookups.epoch);
        HierarchyGrid::Fill(views.grid(1), views.grid(2), lookups, bus, m_currentSelection,
                            m_selectionPositions.positions(), &m_unitOfRow, &m_writtenRows);
        views.FitGridHeight(1);
        views.FitGridHeight(2);
        if (m_hierarchyFilled) {
            views.RestoreCollapsedList(1, m_collapsedLists[1]);
            views.RestoreCollapsedList(2, m_collapsedLists[2]);
        } else {
            RestoreNodes(QStringLiteral("BUWorkOrders"), 1);
            RestoreNodes(QStringLiteral("BUPoints"), 2);
        }
        for (int i = 1; i <= 2; ++i) {
            OutlineGrid &grid = views.grid(i);
            const auto &[key, col] = places[std::size_t(i - 1)];
            const int row = key.isEmpty() ? -1 : grid.findRow(key);
            if (row >= 0 && col < grid.colCount() && grid.isRowVisible(row))
                grid.setCurrentCell(row, col);
        }
    }
}

void ViewsController::LoadBUListView()
{
    if (!m_dlv)
        return;
    const StringSet kept = m_dlv->GetBUList();
    static const StringSet noSession;
    const StringSet &session = m_sessionUnits ? *m_sessionUnits : noSession;
    const UnitLookups lookups = m_dlv->Lookups();
    m_sessionPositions.update(session, lookups.hierarchy, lookups.epoch);
    m_listedPositions.update(kept, lookups.hierarchy, lookups.epoch);
    const bool rowsAsTold = m_writtenRows.rowsStand(m_parts.views.grid(1), lookups.epoch);
    const KnownRows known{m_unitOfRow, &lookups.hierarchy, m_sessionPositions.members(), rowsAsTold,
                          m_listEpoch == lookups.epoch};
    m_listEpoch = lookups.epoch;
    // An item whose unit the rows told is kept by position; kept holds exact ids as the
    // hierarchy does, so both answers agree.
    const std::span<const char> keptUnits = m_listedPositions.members();
    m_parts.unitList.refill(
        [&](std::vector<BUSelection::Item> &items) {
            return BUSelection::updateItems(m_parts.views.grid(1), session, items, known);
        },
        [&](const BUSelection::Item &item) {
            return item.unit >= 0 && std::size_t(item.unit) < keptUnits.size()
                       ? keptUnits[std::size_t(item.unit)] != 0
                       : kept.contains(QStringView(item.key).mid(1));
        });
}

void ViewsController::cmdView_Click()
{
    if (!m_dlv)
        return;
    const bool singleMode = m_parts.choice.singleUnits();
    if (singleMode != m_lastFillSingleMode) {
        m_dlv->FillSingleBU();
        return;
    }
    const StringSet selection = m_dlv->GetBUList();
    if (BUSelection::needsRedraw(m_lastFillSingleMode, m_currentSelection, singleMode, selection))
        m_dlv->FillSingleBU();
}

void ViewsController::profileReplaced()
{
    m_profileSettingsLoaded = false;
    // Apply the new profile now rather than at the next data refresh, when there are data.
    if (m_dlv && m_hierarchyFilled)
        m_dlv->FillSingleBU();
}

QStringList ViewsController::currentBUIds() const
{
    QStringList ids;
    ids.reserve(m_currentSelection.count());
    for (const auto &entry : m_currentSelection)
        ids.append(entry.key);
    return ids;
}

QString ViewsController::selectionContext() const
{
    // The chosen units (in any order: the list follows the tree) and the mode, not the units
    // they sum up to: a unit that moves in the tree changes an aggregate's figures as truly as
    // new data do. Every refresh asks, so the units go in as an order-free fingerprint (two
    // differently seeded hash sums and the count) rather than as a sorted list of thousands of
    // ids; two choices that collide would only cue one refresh that should not have been.
    quint64 sum = 0;
    quint64 mixed = 0;
    for (const auto &entry : m_currentSelection) {
        sum += quint64(qHash(entry.key, 0x5bd1e995u));
        mixed += quint64(qHash(entry.key, 0x27d4eb2fu)) * 0x9E3779B97F4A7C15ull;
    }
    return QStringLiteral("%1:%2:%3:%4")
        .arg(m_lastFillSingleMode ? QStringLiteral("single") : QStringLiteral("aggregate"))
        .arg(m_currentSelection.count())
        .arg(sum, 16, 16, QChar(u'0'))
        .arg(mixed, 16, 16, QChar(u'0'));
}
