// Drill-down through the real control: mouse and key events on the grid views, and what the host
// receives in its GetDetails slot.

#include "common/dlverror.h"
#include "controlfixture.h"
#include "model/dlvdatabuilder.h"
#include "scriptedhost.h"
#include "views/outlinegridview.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QTreeWidget>

namespace {

// North has a child East that no chosen unit reaches (a grey row); West is outside the session,
// so the unit list does not offer it and it is never part of a request.
DLVDataBuilder drillData()
{
    DLVDataBuilder b;
    b.unit("#", "All units", "#")
        .unit("N", "North", "#")
        .unit("E", "East", "N")
        .unit("S", "South", "#")
        .unit("W", "West", "S")
        .jobType("INS", "Installation")
        .jobType("REP", "Repair")
        .jobClass("A", "Class A")
        .jobClass("B", "Class B")
        .format("EN", "hh:mm")
        .general("N", "N", "10", "8", "4")
        .general("E", "E", "1", "1", "1")
        .general("S", "S", "5", "4", "2")
        .general("W", "W", "2", "2", "2")
        .detail("N", "INS", "A", {"3", "1", "0", "0", "7"})
        .detail("E", "INS", "A", {"1", "1", "1", "1", "1"})
        .detail("S", "REP", "B", {"2", "0", "1", "0", "1"})
        .detail("W", "REP", "B", {"2", "0", "1", "0", "1"})
        .property("tqJeopardyThreshold", "45");
    return b;
}

DLVParams expected(const QString &buid, const QString &info, const QString &status = {},
                   const QString &jobType = {}, const QString &jobClass = {})
{
    DLVParams p;
    p.BUID = buid;
    p.Info = info;
    p.JobStatus = status;
    p.JobType = jobType;
    p.JobClass = jobClass;
    p.JeopardyThreshold = QStringLiteral("45");
    return p;
}

std::string describe(const std::vector<DLVParams> &list)
{
    std::string out;
    for (const DLVParams &p : list)
        out += QStringLiteral("[BUID=%1 Info=%2 JobStatus=%3 JobType=%4 JobClass=%5 Thr=%6]")
                   .arg(p.BUID, p.Info, p.JobStatus, p.JobType, p.JobClass, p.JeopardyThreshold)
                   .toStdString();
    return out.empty() ? "nothing" : out;
}

class DLViewerDrillDown : public ControlFixture
{
protected:
    void SetUp() override
    {
        ControlFixture::SetUp();
        host = std::make_unique<ScriptedHost>(*viewer);
        initialize();
        QStringList units{"N", "E", "S"};
        viewer->SetSessionBUIDList(units);
        QVariant data = drillData().variant();
        viewer->ReceiveMessage(data, QVariant(0), QVariant());
        // Choose North and South; the next data message fills the hierarchy with them.
        for (int i = 0; i < d().lvBU->topLevelItemCount(); ++i) {
            QTreeWidgetItem *item = d().lvBU->topLevelItem(i);
            item->setSelected(item->data(0, Qt::UserRole).toString() != "_E");
        }
        d().cmdView_Click();
        viewer->ReceiveMessage(data, QVariant(0), QVariant());
        viewer->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(viewer.get()));
        host->details.clear();
    }

    OutlineGridView *view(int index)
    {
        d().Tabs->setCurrentIndex(index == 0 ? 0 : 1);
        if (index > 0)
            d().optDisplay[size_t(index - 1)]->click();
        OutlineGridView *v = d().vsFlex[size_t(index)];
        EXPECT_TRUE(v->isVisible());
        return v;
    }

    QPoint cellCentre(OutlineGridView *v, int row, int col)
    {
        v->scrollTo(v->model()->index(0, 0)); // keep the geometry simple
        const QRect r = v->cellRect(row, col);
        EXPECT_FALSE(r.isEmpty()) << "row " << row << " col " << col;
        return r.center();
    }

    /// A user's double-click: the first click sets the current cell, the second press comes as
    /// a double-click event.
    void doubleClick(OutlineGridView *v, int row, int col, Qt::MouseButton button = Qt::LeftButton)
    {
        const QPoint at = cellCentre(v, row, col);
        QTest::mouseClick(v->viewport(), button, {}, at);
        QTest::mouseDClick(v->viewport(), button, {}, at);
    }

    std::unique_ptr<ScriptedHost> host;
};

} // namespace

TEST_F(DLViewerDrillDown, SummaryFiguresAskForTheirRecords)
{
    OutlineGridView *v = view(0);
    const OutlineGrid &g = d().grids[0];
    const int insA = g.findRow("INS|A");
    const int classB = g.findRow("|B");
    const int groupRep = g.findRow("REP");
    ASSERT_GT(insA, 2);
    ASSERT_GT(classB, 2);
    ASSERT_GT(groupRep, 2);
    const QString wo = "WORKORDER";
    struct Case
    {
        const char *name;
        int row;
        int col;
        Qt::MouseButton button;
        std::vector<DLVParams> want;
    };
    const std::vector<Case> cases = {
        {"work orders open", insA, 3, Qt::LeftButton, {expected("N|S", wo, "WOOpen", "INS", "A")}},
        {"points late keep the WO prefix",
         insA,
         13,
         Qt::LeftButton,
         {expected("N|S", wo, "WOLate", "INS", "A")}},
        {"class column: no status", insA, 2, Qt::LeftButton, {expected("N|S", wo, {}, "INS", "A")}},
        {"per-class total",
         classB,
         5,
         Qt::LeftButton,
         {expected("N|S", wo, "WOJeopardy", {}, "B")}},
        {"job-type group", groupRep, 9, Qt::LeftButton, {expected("N|S", wo, "WONotDone", "REP")}},
        {"grand total", 2, 16, Qt::LeftButton, {expected("N|S", wo, "WONotDone")}},
        {"right button", insA, 3, Qt::RightButton, {}},
        {"middle button", insA, 3, Qt::MiddleButton, {}},
    };
    for (const Case &c : cases) {
        host->details.clear();
        doubleClick(v, c.row, c.col, c.button);
        EXPECT_EQ(describe(host->details), describe(c.want)) << c.name;
    }
    EXPECT_TRUE(dialogs->callsOf(RecordingDialogHost::Kind::Error).empty());
}

TEST_F(DLViewerDrillDown, EnterWithoutShiftActsAsALeftDoubleClick)
{
    OutlineGridView *v = view(0);
    QSignalSpy spy(viewer.get(), &DLViewer::GetDetails);
    ASSERT_TRUE(spy.isValid());
    const int insA = d().grids[0].findRow("INS|A");
    // A right click leaves the right button remembered; Enter stands for the left one.
    QTest::mouseClick(v->viewport(), Qt::RightButton, {}, cellCentre(v, insA, 4));
    QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, cellCentre(v, insA, 4));
    QTest::mouseClick(v->viewport(), Qt::RightButton, {}, cellCentre(v, insA, 4));
    v->setFocus();
    QTest::keyClick(v, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(spy.count(), 0) << "Shift+Enter does nothing";
    EXPECT_EQ(d().lastMouseButton, 2);
    QTest::keyClick(v, Qt::Key_Return);
    EXPECT_EQ(describe(host->details),
              describe({expected("N|S", "WORKORDER", "WOWarning", "INS", "A")}));
    EXPECT_EQ(d().lastMouseButton, 1);

    // The keyboard moves the current cell; Enter asks for the cell it is on.
    host->details.clear();
    QTest::keyClick(v, Qt::Key_Right);
    QTest::keyClick(v, Qt::Key_Enter);
    EXPECT_EQ(describe(host->details),
              describe({expected("N|S", "WORKORDER", "WOJeopardy", "INS", "A")}));
}

TEST_F(DLViewerDrillDown, HierarchyTechniciansAndStatusesButNotHoursOrGreyRows)
{
    for (const int index : {1, 2}) {
        SCOPED_TRACE(index);
        OutlineGridView *v = view(index);
        const OutlineGrid &g = d().grids[size_t(index)];
        const int north = g.findRow("N");
        const int east = g.findRow("E");
        ASSERT_GT(north, 2);
        ASSERT_GT(east, 2);
        ASSERT_TRUE(g.text(east, 1).isEmpty()) << "East is reached by no chosen unit";
        struct Case
        {
            const char *name;
            int row;
            int col;
            std::vector<DLVParams> want;
        };
        const std::vector<Case> cases = {
            {"technician count", north, 1, {expected("N|E", "USER")}},
            {"open", north, 4, {expected("N|E", "WORKORDER", "WOOpen")}},
            {"not done", north, 10, {expected("N|E", "WORKORDER", "WONotDone")}},
            {"root, reached by no chosen unit, is grey", 2, 7, {}},
            {"hours remaining", north, 2, {}},
            {"hours completed", north, 3, {}},
            {"productivity", north, 11, {}},
            {"grey row", east, 4, {}},
            {"grey row technicians", east, 1, {}},
        };
        for (const Case &c : cases) {
            host->details.clear();
            doubleClick(v, c.row, c.col);
            EXPECT_EQ(describe(host->details), describe(c.want)) << c.name;
        }
    }
}

TEST_F(DLViewerDrillDown, LastRowWhileTheCurrentRowIsTheFirstDataRow)
{
    for (const int index : {0, 1}) {
        SCOPED_TRACE(index);
        OutlineGridView *v = view(index);
        OutlineGrid &g = d().grids[size_t(index)];
        const int last = g.rowCount() - 1;
        const int col = 4;
        // The click lands on the last row; then a refresh puts the current cell back on row 2
        // before the second press arrives as a double-click event.
        QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, cellCentre(v, last, col));
        g.setCurrentCell(2, col);
        host->details.clear();
        const QPoint at = cellCentre(v, last, col);
        QMouseEvent dbl(QEvent::MouseButtonDblClick, at, v->viewport()->mapToGlobal(at),
                        Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(v->viewport(), &dbl);
        ASSERT_EQ(host->details.size(), 1u);
        EXPECT_EQ(host->details[0].JobType, "") << "row 2 is the grand total or the root";
        if (index == 1) {
            EXPECT_EQ(host->details[0].BUID, "N|S|E") << "the root's units, listed ones only";
        }

        // From any other current row the last row asks for nothing.
        QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, cellCentre(v, last, col));
        g.setCurrentCell(3, col);
        host->details.clear();
        QApplication::sendEvent(v->viewport(), &dbl);
        EXPECT_TRUE(host->details.empty());
    }
}

TEST_F(DLViewerDrillDown, TechnicianCountLabelByMouseAndKeyboard)
{
    QLabel *label = d().lblTechCount;
    EXPECT_NE(label->focusPolicy() & Qt::TabFocus, 0);
    const std::vector<DLVParams> want = {expected("N|S", "USER")};
    QTest::mouseClick(label, Qt::LeftButton);
    EXPECT_EQ(describe(host->details), describe(want)) << "click";
    host->details.clear();
    QTest::mouseClick(label, Qt::RightButton);
    EXPECT_TRUE(host->details.empty()) << "right click";
    label->setFocus();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
        host->details.clear();
        QTest::keyClick(label, key);
        EXPECT_EQ(describe(host->details), describe(want)) << "key " << key;
    }
}

TEST_F(DLViewerDrillDown, ErrorsInsideAreReportedWithTheProceduresLocation)
{
    // A host slot that fails: the failure is trapped and reported, never thrown to Qt.
    QObject::connect(viewer.get(), &DLViewer::GetDetails, viewer.get(),
                     [](DLVParams &) { throw DLVError(5, QStringLiteral("host failed")); });
    QTest::mouseClick(d().lblTechCount, Qt::LeftButton);
    OutlineGridView *v = view(0);
    doubleClick(v, 2, 3);
    const auto errors = dialogs->callsOf(RecordingDialogHost::Kind::Error);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0].location, "DLViewer.lblTechCount_Click");
    EXPECT_EQ(errors[1].location, "DLViewer.vsFlex_DblClick");
    EXPECT_EQ(errors[1].description, "host failed");
}
