#include "controlfixture.h"
#include "model/cdlvcontroller.h"
#include "model/dlvdatabuilder.h"
#include "scriptedhost.h"
#include "views/outlinegrid.h"
#include "views/outlinegridview.h"

#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTreeWidget>
#include <algorithm>
#include <string>
#include <vector>

namespace {

/// Records when each grid's redraw comes back on (once per fill) and when the unit list gets
/// items, in one log.
class FillLog final : public OutlineGrid::Observer
{
public:
    FillLog(std::vector<std::string> &log, std::string name) : m_log(log), m_name(std::move(name))
    {}
    void gridStructureAboutToChange() override {}
    void gridStructureChanged() override {}
    void gridCellsChanged(int, int, int, int) override {}
    void gridCollapseStateChanged(int) override {}
    void gridLayoutSettingsChanged() override {}
    void gridCurrentCellChanged(int, int) override {}
    void gridRedrawSuspended() override {}
    void gridRedrawResumed() override { m_log.push_back(m_name); }
    void gridDestroyed() override {}

private:
    std::vector<std::string> &m_log;
    std::string m_name;
};

/// R1 (C1, and C3 which the model lacks) and R2 (C2) under "#".
DLVDataBuilder regions(const QString &r1TechCount = QStringLiteral("1"),
                       const QString &r2OpenWorkOrders = QStringLiteral("4"))
{
    DLVDataBuilder b;
    b.unit("#", "All", "").unit("R1", "Region 1", "#").unit("C1", "City 1", "R1");
    b.unit("R2", "Region 2", "#").unit("C2", "City 2", "R2").unit("C3", "City 3", "R1");
    b.jobType("T", "Install").jobClass("C", "Cable");
    b.general("R1", "Region 1", r1TechCount, "2", "3").general("C1", "City 1", "2", "4", "1");
    b.general("R2", "Region 2", "4", "8", "2").general("C2", "City 2", "1", "1", "1");
    b.detail("R1", "T", "C", {"1", "0", "0", "0", "5"});
    b.detail("C1", "T", "C", {"2", "0", "0", "0", "3"});
    b.detail("R2", "T", "C", {r2OpenWorkOrders});
    return b;
}

class DLViewerViews : public ControlFixture
{
protected:
    void start(const QStringList &session)
    {
        host = std::make_unique<ScriptedHost>(*viewer);
        initialize();
        QStringList units = session;
        viewer->SetSessionBUIDList(units);
    }
    void send(const DLVDataBuilder &data)
    {
        QVariant message = data.variant();
        viewer->ReceiveMessage(message, QVariant(0), QVariant());
    }
    QTreeWidget *list() { return child<QTreeWidget>("lvBU"); }
    void select(const QStringList &keys)
    {
        list()->clearSelection();
        for (int i = 0; i < list()->topLevelItemCount(); ++i) {
            QTreeWidgetItem *item = list()->topLevelItem(i);
            if (keys.contains(item->data(0, Qt::UserRole).toString()))
                item->setSelected(true);
        }
    }
    QStringList listKeys()
    {
        QStringList keys;
        for (int i = 0; i < list()->topLevelItemCount(); ++i)
            keys << list()->topLevelItem(i)->data(0, Qt::UserRole).toString();
        return keys;
    }
    QStringList selectedKeys()
    {
        QStringList keys;
        for (int i = 0; i < list()->topLevelItemCount(); ++i) {
            if (list()->topLevelItem(i)->isSelected())
                keys << list()->topLevelItem(i)->data(0, Qt::UserRole).toString();
        }
        return keys;
    }
    QString figure(const char *label) { return child<QLabel>(label)->text(); }
    QString hierarchyCell(const QString &id, int col)
    {
        const OutlineGrid &grid = d().grids[1];
        return grid.text(grid.findRow(id), col);
    }
    [[nodiscard]] bool visible(const char *name)
    {
        return child<QWidget>(name)->isVisibleTo(viewer.get());
    }

    std::unique_ptr<ScriptedHost> host;
};

} // namespace

TEST_F(DLViewerViews, ADataMessageRefreshesHierarchyUnitListAndSummaryInThatOrder)
{
    start({"R1", "C1", "R2"});
    std::vector<std::string> log;
    FillLog summary(log, "summary"), workOrders(log, "work orders"), points(log, "points");
    d().grids[0].addObserver(&summary);
    d().grids[1].addObserver(&workOrders);
    d().grids[2].addObserver(&points);
    QObject::connect(list()->model(), &QAbstractItemModel::rowsInserted, viewer.get(),
                     [&log] { log.push_back("unit list"); });

    send(regions());
    const auto at = [&log](const char *name) {
        return std::find(log.begin(), log.end(), name) - log.begin();
    };
    ASSERT_LT(at("summary"), std::ptrdiff_t(log.size()));
    EXPECT_LT(at("work orders"), at("unit list"));
    EXPECT_LT(at("points"), at("unit list"));
    EXPECT_LT(at("unit list"), at("summary"));
    for (auto *observer : {&summary, &workOrders, &points})
        for (OutlineGrid &grid : d().grids)
            grid.removeObserver(observer);

    // The list offers the session's units in tree order; the new profile selects the first.
    EXPECT_EQ(listKeys(), (QStringList{"_R1", "_C1", "_R2"}));
    EXPECT_EQ(list()->topLevelItem(1)->text(0), "City 1");
    EXPECT_EQ(selectedKeys(), QStringList{"_R1"});
    // Summary and panel for R1 alone.
    EXPECT_EQ(d().grids[0].text(2, 1), "Total");
    EXPECT_EQ(d().grids[0].text(2, 3), "1");
    EXPECT_EQ(figure("lblTechCount"), "1");
    EXPECT_EQ(figure("lblWODone"), "5");
    EXPECT_EQ(figure("lblWOsPerHrToday"), "2.5");
    // The hierarchy was filled before anything was chosen: every row grey and empty.
    EXPECT_TRUE(hierarchyCell("R1", 1).isEmpty());
    EXPECT_EQ(d().grids[1].backColor(d().grids[1].findRow("R1"), 0), QColor(208, 208, 208));
    EXPECT_FALSE(d().mDLV->SingleBUGridBusy);
    EXPECT_FALSE(d().mDLV->HierarchyGridBusy);
    EXPECT_TRUE(child<QPushButton>("cmdView")->isEnabled());
    EXPECT_TRUE(dialogs->calls.empty());

    // The next refresh sums the chosen unit's row, keeps the choice and the collapsed nodes.
    d().grids[2].setCollapsed(d().grids[2].findRow("R2"), true);
    send(regions());
    EXPECT_EQ(hierarchyCell("R1", 1), "3"); // R1 and C1
    EXPECT_TRUE(hierarchyCell("C1", 1).isEmpty());
    EXPECT_EQ(selectedKeys(), QStringList{"_R1"});
    EXPECT_TRUE(d().grids[2].isCollapsed(d().grids[2].findRow("R2")));
    EXPECT_FALSE(d().grids[1].isCollapsed(d().grids[1].findRow("R2")));
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerViews, ViewRedrawsOnlyForANewSelectionOrMode)
{
    start({"R1", "C1", "R2", "C2"});
    send(regions());
    int fills = 0;
    QObject::connect(d().mDLV.get(), &cDLVController::FillSingleBUGrid, viewer.get(),
                     [&fills](BusinessUnits &) { ++fills; });
    auto *view = child<QPushButton>("cmdView");

    view->click(); // same selection, same mode
    EXPECT_EQ(fills, 0);
    select({"_R1", "_C1"});
    view->click();
    EXPECT_EQ(fills, 1);
    EXPECT_EQ(figure("lblTechCount"), "3");
    view->click();
    EXPECT_EQ(fills, 1);

    // Aggregates: R1 brings C1 and C3 (which the model lacks, skipped), C1 adds itself once more.
    child<QRadioButton>("optBU1")->setChecked(true);
    view->click();
    EXPECT_EQ(fills, 2);
    EXPECT_EQ(figure("lblTechCount"), "3");
    select({"_R2"});
    view->click();
    EXPECT_EQ(fills, 3);
    EXPECT_EQ(figure("lblTechCount"), "5"); // R2 and C2
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerViews, TabsAndDisplayOptionChooseTheVisibleGrid)
{
    start({"R1"});
    send(regions());
    EXPECT_TRUE(visible("fraBU0"));
    EXPECT_FALSE(visible("fraBU1"));
    EXPECT_TRUE(visible("vsFlex0"));
    child<QTabBar>("Tabs")->setCurrentIndex(1);
    EXPECT_FALSE(visible("fraBU0"));
    EXPECT_TRUE(visible("fraBU1"));
    EXPECT_TRUE(visible("vsFlex1"));
    EXPECT_FALSE(visible("vsFlex2"));
    child<QRadioButton>("optDisplay1")->click();
    EXPECT_FALSE(visible("vsFlex1"));
    EXPECT_TRUE(visible("vsFlex2"));
    child<QRadioButton>("optDisplay1")->click();
    EXPECT_TRUE(visible("vsFlex2"));
    // Switching the option while the tab is hidden decides what the tab shows next.
    child<QTabBar>("Tabs")->setCurrentIndex(0);
    child<QRadioButton>("optDisplay0")->click();
    child<QTabBar>("Tabs")->setCurrentIndex(1);
    EXPECT_TRUE(visible("vsFlex1"));
    EXPECT_FALSE(visible("vsFlex2"));
}

TEST_F(DLViewerViews, AFailedFillIsReportedAndLeavesNoBusyFlagBehind)
{
    start({"R1", "C1", "R2"});
    send(regions());

    // The hierarchy row of the chosen R1 sums R1 and C1: past the 32-bit range.
    send(regions(QStringLiteral("2147483647")));
    ASSERT_EQ(dialogs->calls.size(), 1u);
    EXPECT_EQ(dialogs->calls[0].number, 6);
    EXPECT_EQ(dialogs->calls[0].location, "DLViewer.mDLV_FillBUHierarchyGrid");
    EXPECT_FALSE(d().mDLV->SingleBUGridBusy);
    EXPECT_FALSE(d().mDLV->HierarchyGridBusy);

    // No longer blocked: the next message is taken. R1 and R2 share a summary row whose open
    // work orders overflow; the panel keeps what it summed.
    send(regions(QStringLiteral("1"), QStringLiteral("2147483647")));
    EXPECT_EQ(dialogs->calls.size(), 1u);
    select({"_R1", "_R2"});
    child<QPushButton>("cmdView")->click();
    ASSERT_EQ(dialogs->calls.size(), 2u);
    EXPECT_EQ(dialogs->calls[1].number, 6);
    EXPECT_EQ(dialogs->calls[1].location, "DLViewer.ShowBUs");
    EXPECT_EQ(figure("lblWOOpen"), "2147483648");
    EXPECT_FALSE(d().mDLV->SingleBUGridBusy);
    send(regions());
    EXPECT_EQ(dialogs->calls.size(), 2u);
    EXPECT_EQ(figure("lblTechCount"), "5"); // R1 and R2, still chosen
}
