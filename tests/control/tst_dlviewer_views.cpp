#include "controlfixture.h"
#include "model/cdlvcontroller.h"
#include "views/outlinegrid.h"
#include "views/outlinegridmodel.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <string>
#include <vector>

namespace {

/// Records when a grid's redraw comes back on (once per fill).
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
    QString figure(const char *label) { return child<QLabel>(label)->text(); }
    QString hierarchyCell(const QString &id, int col)
    {
        return d().views().grid(1).text(d().views().grid(1).findRow(id), col);
    }
    bool visible(const char *name) { return child<QWidget>(name)->isVisibleTo(viewer.get()); }
};

} // namespace

TEST_F(DLViewerViews, ADataMessageRefreshesHierarchyUnitListAndSummaryInThatOrder)
{
    host = std::make_unique<ScriptedHost>(*viewer);
    initialize();
    QStringList units{"R1", "C1", "R2"};
    viewer->SetSessionBUIDList(units);
    std::vector<std::string> log;
    FillLog summary(log, "summary"), workOrders(log, "work orders"), points(log, "points");
    d().views().grid(0).addObserver(&summary);
    d().views().grid(1).addObserver(&workOrders);
    d().views().grid(2).addObserver(&points);
    QObject::connect(d().unitListWidget()->model(), &QAbstractItemModel::rowsInserted, viewer.get(),
                     [&log] { log.push_back("unit list"); });
    send(regions());
    for (int g = 0; g < 3; ++g)
        d().views().grid(g).removeObserver(g == 0 ? &summary : g == 1 ? &workOrders : &points);
    const auto at = [&log](const char *name) {
        return std::find(log.begin(), log.end(), name) - log.begin();
    };
    ASSERT_LT(at("summary"), std::ptrdiff_t(log.size()));
    EXPECT_LT(at("work orders"), at("unit list"));
    EXPECT_LT(at("points"), at("unit list"));
    EXPECT_LT(at("unit list"), at("summary"));

    // The list offers the session's units in tree order; the new profile selects the first.
    EXPECT_EQ(listKeys(false), (QStringList{"_R1", "_C1", "_R2"}));
    EXPECT_EQ(listKeys(true), QStringList{"_R1"});
    EXPECT_EQ(d().views().grid(0).text(2, 3), "1");
    EXPECT_EQ(figure("lblWODone"), "5");
    EXPECT_EQ(figure("lblWOsPerHrToday"), "2.5");
    // The hierarchy was filled before anything was chosen: every row grey and empty.
    EXPECT_TRUE(hierarchyCell("R1", 1).isEmpty());
    EXPECT_EQ(d().views().grid(1).backColor(d().views().grid(1).findRow("R1"), 0),
              QColor(208, 208, 208));

    // The next refresh sums the chosen unit's row, keeps the choice and the collapsed nodes.
    d().views().grid(2).setCollapsed(d().views().grid(2).findRow("R2"), true);
    send(regions());
    EXPECT_EQ(hierarchyCell("R1", 1), "3"); // R1 and C1
    EXPECT_TRUE(hierarchyCell("C1", 1).isEmpty());
    EXPECT_EQ(listKeys(true), QStringList{"_R1"});
    EXPECT_TRUE(d().views().grid(2).isCollapsed(d().views().grid(2).findRow("R2")));
    EXPECT_FALSE(d().views().grid(1).isCollapsed(d().views().grid(1).findRow("R2")));
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerViews, ViewRedrawsOnlyForANewSelectionOrMode)
{
    start(regions(), {"R1", "C1", "R2", "C2"});
    int fills = 0;
    QObject::connect(d().controller(), &cDLVController::FillSingleBUGrid, viewer.get(),
                     [&fills](BusinessUnits &) { ++fills; });
    const struct
    {
        QStringList select;
        bool aggregate;
        int fills;
        const char *techCount;
    } steps[] = {
        {{"_R1"}, false, 0, "1"},        // same selection, same mode
        {{"_R1", "_C1"}, false, 1, "3"}, // a new selection
        {{"_R1", "_C1"}, true, 2, "3"},  // R1 brings C1 and C3 (lacking); C1 counts once
        {{"_R2"}, true, 3, "5"},         // R2 and C2
    };
    for (const auto &s : steps) {
        SCOPED_TRACE(s.select.join(u',').toStdString());
        select(s.select);
        child<QRadioButton>(s.aggregate ? "optBU1" : "optBU0")->setChecked(true);
        child<QPushButton>("cmdView")->click();
        EXPECT_EQ(fills, s.fills);
        EXPECT_EQ(figure("lblTechCount"), s.techCount);
    }
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerViews, TabsAndDisplayOptionChooseTheVisibleGrid)
{
    start(regions(), {"R1"});
    EXPECT_TRUE(visible("vsFlex0"));
    child<QTabBar>("Tabs")->setCurrentIndex(1);
    EXPECT_FALSE(visible("fraBU0"));
    child<QRadioButton>("optDisplay1")->click();
    EXPECT_FALSE(visible("vsFlex1"));
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
    start(regions(), {"R1", "C1", "R2"});
    // While the error dialog is open the host's refresh timer still fires: that message arrives
    // in the middle of the fill and is dropped.
    QSignalSpy fills(d().controller(), &cDLVController::FillBUHierarchyGrid);
    bool droppedDuringFill = false;
    dialogs->whileShown = [&](const RecordingDialogHost::Call &) {
        const qsizetype before = fills.count();
        send(regions(QStringLiteral("5")));
        droppedDuringFill = fills.count() == before;
    };
    // The hierarchy row of the chosen R1 sums R1 and C1: past the 32-bit range.
    send(regions(QStringLiteral("2147483647")));
    dialogs->whileShown = nullptr;
    EXPECT_TRUE(droppedDuringFill);
    ASSERT_EQ(dialogs->calls.size(), 1u);
    EXPECT_EQ(dialogs->calls[0].number, 6);
    EXPECT_EQ(dialogs->calls[0].location, "DLViewer.mDLV_FillBUHierarchyGrid");
    EXPECT_FALSE(d().controller()->Busy().isSet(FillBusy::SummaryFill));
    EXPECT_FALSE(d().controller()->Busy().isSet(FillBusy::HierarchyFill));

    send(regions()); // no longer blocked: the next message is taken
    EXPECT_EQ(dialogs->calls.size(), 1u);
    EXPECT_EQ(hierarchyCell("R1", 1), "3"); // R1 and C1
}

TEST_F(DLViewerViews, TheRootIsNoUnitToPickAndGoesWhenNoUnitStays)
{
    // A host that lists the root mark among the session's units: the list still starts with the
    // first real unit, which the new profile selects, so the first screen shows its figures.
    start(regions(), {"#", "R1", "C1"});
    EXPECT_EQ(listKeys(false), (QStringList{"_R1", "_C1"}));
    EXPECT_EQ(figure("lblTechCount"), "1");

    // No unit in the model: no grey root row stands for nothing; the headers stay.
    DLVDataBuilder empty;
    empty.unit("#", "All", "").unit("R1", "Region 1", "#").unit("C1", "City 1", "R1");
    empty.jobType("T", "Install").jobClass("C", "Cable");
    send(empty);
    for (int g = 1; g <= 2; ++g)
        EXPECT_EQ(d().views().grid(g).rowCount(), 2) << g;
    EXPECT_TRUE(listKeys(false).isEmpty());
    EXPECT_TRUE(dialogs->calls.empty());
}

TEST_F(DLViewerViews, TheUnitTreeShowsTheSameChoiceIndentedWithChecksAndAFilter)
{
    start(regions(), {"R1", "C1", "R2", "C2"});
    select({"_C1", "_R2"});
    viewer->SetUnitTreeShown(true);
    QTreeWidget *list = d().unitListWidget();
    // Indented under the listed parents, in the same list order, with the choice kept.
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->child(0)->data(0, Qt::UserRole).toString(), "_C1");
    EXPECT_EQ(listKeys(false), (QStringList{"_R1", "_C1", "_R2", "_C2"}));
    EXPECT_EQ(listKeys(true), (QStringList{"_C1", "_R2"}));
    EXPECT_EQ(list->topLevelItem(0)->child(0)->checkState(0), Qt::Checked);
    EXPECT_EQ(list->topLevelItem(0)->checkState(0), Qt::Unchecked);

    // A click toggles a unit without touching the others; the View button sums the choice.
    list->setCurrentItem(list->topLevelItem(0), 0, QItemSelectionModel::NoUpdate);
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(listKeys(true), (QStringList{"_R1", "_C1", "_R2"}));
    EXPECT_EQ(list->topLevelItem(0)->checkState(0), Qt::Checked);
    child<QPushButton>("cmdView")->click();
    EXPECT_EQ(figure("lblTechCount"), "7"); // R1 1, C1 2, R2 4
    EXPECT_EQ(d().fills().currentSelection().keys(), (std::vector<QString>{"R1", "C1", "R2"}));

    // The filter narrows what is shown, not what is chosen; "all" takes the shown units only.
    child<QPushButton>("cmdSelectNone")->click();
    EXPECT_TRUE(listKeys(true).isEmpty());
    child<QLineEdit>("txtBUFilter")->setText("city 2");
    EXPECT_FALSE(list->topLevelItem(1)->isHidden()); // Region 2 leads the way to City 2
    EXPECT_TRUE(list->topLevelItem(0)->isHidden());
    child<QPushButton>("cmdSelectAll")->click();
    EXPECT_EQ(listKeys(true), (QStringList{"_R2", "_C2"}));

    // Back to the flat list: same items, same choice, no checks, no filter.
    viewer->SetUnitTreeShown(false);
    EXPECT_EQ(list->topLevelItemCount(), 4);
    EXPECT_EQ(listKeys(true), (QStringList{"_R2", "_C2"}));
    EXPECT_FALSE(list->topLevelItem(0)->data(0, Qt::CheckStateRole).isValid());
    EXPECT_FALSE(list->topLevelItem(0)->isHidden());
    EXPECT_FALSE(child<QLineEdit>("txtBUFilter")->isVisible());
    EXPECT_TRUE(dialogs->calls.empty());
}

// The user's choice has one home: what code sets there shows in the widgets, and what the user
// does in the widgets lands there (the controller and profiles read nothing else).
TEST_F(DLViewerViews, TheWidgetsMirrorTheViewChoiceBothWays)
{
    start(regions(), {"R1", "C1", "R2", "C2"});
    ViewChoice &choice = d().choice();
    QTreeWidget *list = d().unitListWidget();

    choice.setChosen(2, true); // R2
    EXPECT_TRUE(list->topLevelItem(2)->isSelected());
    choice.setSingleUnits(false);
    EXPECT_TRUE(child<QRadioButton>("optBU1")->isChecked());
    choice.setByWorkOrders(false);
    EXPECT_TRUE(child<QRadioButton>("optDisplay1")->isChecked());

    list->clearSelection();
    list->topLevelItem(3)->setSelected(true); // C2, as a click would
    EXPECT_FALSE(choice.isChosen(2));
    EXPECT_TRUE(choice.isChosen(3));
    child<QRadioButton>("optBU0")->click();
    EXPECT_TRUE(choice.singleUnits());
    child<QRadioButton>("optDisplay0")->click();
    EXPECT_TRUE(choice.byWorkOrders());
    EXPECT_EQ(d().controller()->GetBUList().keys(), (std::vector<QString>{"C2"}));

    send(regions()); // a refresh keeps the choice and shows it again
    EXPECT_TRUE(choice.isChosen(3));
    EXPECT_TRUE(list->topLevelItem(3)->isSelected());
}

// A refresh keeps the user's place: a hierarchy scrolled down stays scrolled to the same rows.
TEST_F(DLViewerViews, ARefreshKeepsTheScrollPositionOfAGrid)
{
    DLVDataBuilder data;
    data.unit("#", "All", "#").format("EN", "hh:mm");
    QStringList ids;
    for (int i = 0; i < 300; ++i) {
        const QString id = QStringLiteral("U%1").arg(i, 3, 10, QChar(u'0'));
        data.unit(id, id, "#").general(id, id, "1", "1", "1");
        ids << id;
    }
    start(data, ids);
    viewer->show();
    OutlineGridView *view = showGrid(1);
    QCoreApplication::processEvents();
    view->verticalScrollBar()->setValue(100);
    const QModelIndex top = view->indexAt(QPoint(1, 1));
    send(data);
    QCoreApplication::processEvents();
    EXPECT_EQ(view->verticalScrollBar()->value(), 100);
    EXPECT_EQ(view->indexAt(QPoint(1, 1)).data(OutlineGridModel::RowDataRole),
              top.data(OutlineGridModel::RowDataRole));
}
