// Drill-down through the real control: mouse and key events on the grid views, and what the host
// receives in its GetDetails slot. The rules themselves are tested on plain grid data.

#include "common/dlverror.h"
#include "controlfixture.h"
#include "views/outlinegridmodel.h"

#include <QTest>

namespace {

/// The requests as "BUID/Info/JobStatus/JobType/JobClass/threshold", one per line.
std::string describe(const std::vector<DLVParams> &list)
{
    std::string out;
    for (const DLVParams &p : list)
        out += QStringList{p.BUID, p.Info, p.JobStatus, p.JobType, p.JobClass, p.JeopardyThreshold}
                   .join(u'/')
                   .toStdString() +
               "\n";
    return out;
}

class DLViewerDrillDown : public ControlFixture
{
protected:
    void SetUp() override
    {
        ControlFixture::SetUp();
        startChosen();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(viewer.get()));
        host->details.clear();
    }

    QPoint at(OutlineGridView *v, int row, int col)
    {
        v->scrollTo(v->model()->index(0, 0)); // keep the geometry simple
        return v->cellRect(row, col).center();
    }

    /// A user's double-click: the first click sets the current cell, the second press comes as
    /// a double-click event.
    std::string doubleClick(int index, int row, int col, Qt::MouseButton button = Qt::LeftButton)
    {
        OutlineGridView *v = showGrid(index);
        host->details.clear();
        QTest::mouseClick(v->viewport(), button, {}, at(v, row, col));
        QTest::mouseDClick(v->viewport(), button, {}, at(v, row, col));
        return describe(host->details);
    }
};

} // namespace

TEST_F(DLViewerDrillDown, DoubleClicksAskForTheRecordsBehindAFigure)
{
    const OutlineGrid &summary = d().views().grid(0);
    const int insA = summary.findRow("INS|A");
    const int north = d().views().grid(1).findRow("N");
    const struct
    {
        const char *name;
        int grid, row, col;
        Qt::MouseButton button;
        const char *want;
    } cases[] = {
        {"late points keep the WO prefix", 0, insA, 13, Qt::LeftButton,
         "N|S/WORKORDER/WOLate/INS/A/45\n"},
        {"per-class total", 0, summary.findRow("|B"), 5, Qt::LeftButton,
         "N|S/WORKORDER/WOJeopardy//B/45\n"},
        {"right button", 0, insA, 3, Qt::RightButton, ""},
        {"technician count", 1, north, 1, Qt::LeftButton, "N|E/USER////45\n"},
        {"not done in points", 2, north, 10, Qt::LeftButton, "N|E/WORKORDER/WONotDone///45\n"},
        {"root, reached by no chosen unit, is grey", 1, 2, 7, Qt::LeftButton, ""},
        {"productivity", 2, north, 11, Qt::LeftButton, ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(doubleClick(c.grid, c.row, c.col, c.button), c.want) << c.name;
    EXPECT_TRUE(dialogs->callsOf(RecordingDialogHost::Kind::Error).empty());
}

TEST_F(DLViewerDrillDown, EnterWithoutShiftActsAsALeftDoubleClick)
{
    OutlineGridView *v = showGrid(0);
    const int insA = d().views().grid(0).findRow("INS|A");
    // A right click leaves the right button remembered; Enter stands for the left one.
    QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, at(v, insA, 4));
    QTest::mouseClick(v->viewport(), Qt::RightButton, {}, at(v, insA, 4));
    v->setFocus();
    QTest::keyClick(v, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(host->details.empty()) << "Shift+Enter does nothing";
    EXPECT_EQ(d().details().lastMouseButton(), 2);
    QTest::keyClick(v, Qt::Key_Return);
    EXPECT_EQ(describe(host->details), "N|S/WORKORDER/WOWarning/INS/A/45\n");
    EXPECT_EQ(d().details().lastMouseButton(), 1);
}

TEST_F(DLViewerDrillDown, TechnicianCountLabelByMouseAndKeyboard)
{
    QLabel *label = d().panel().techCount();
    EXPECT_NE(label->focusPolicy() & Qt::TabFocus, 0);
    QTest::mouseClick(label, Qt::RightButton);
    EXPECT_TRUE(host->details.empty()) << "right click";
    QTest::mouseClick(label, Qt::LeftButton);
    label->setFocus();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return})
        QTest::keyClick(label, key);
    EXPECT_EQ(describe(host->details), "N|S/USER////45\nN|S/USER////45\nN|S/USER////45\n")
        << "a click, Space and Return";
}

TEST_F(DLViewerDrillDown, ErrorsInsideAreReportedWithTheProceduresLocation)
{
    // A host slot that fails: the failure is trapped and reported, never thrown to Qt.
    QObject::connect(viewer.get(), &DLViewer::GetDetails, viewer.get(),
                     [](DLVParams &) { throw DLVError(5, QStringLiteral("host failed")); });
    QTest::mouseClick(d().panel().techCount(), Qt::LeftButton);
    doubleClick(0, 2, 3);
    const auto errors = dialogs->callsOf(RecordingDialogHost::Kind::Error);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0].location, "DLViewer.lblTechCount_Click");
    EXPECT_EQ(errors[1].location, "DLViewer.vsFlex_DblClick");
    EXPECT_EQ(errors[1].description, "host failed");
}

// The keyboard's place in a hierarchy survives a refresh: after new data the current cell is on
// the same unit, so Enter still asks for that unit's records.
TEST_F(DLViewerDrillDown, TheCurrentCellOfAHierarchyStaysOnItsUnitAcrossARefresh)
{
    OutlineGridView *v = showGrid(1);
    QTest::mouseClick(v->viewport(), Qt::LeftButton, {},
                      at(v, d().views().grid(1).findRow("S"), 1));
    send(sampleData());
    const OutlineGrid &grid = d().views().grid(1);
    ASSERT_GE(grid.currentRow(), grid.fixedRows());
    EXPECT_EQ(grid.rowData(grid.currentRow()), QStringLiteral("S"));
    EXPECT_EQ(grid.currentCol(), 1);
    EXPECT_EQ(OutlineGridModel::gridRow(v->currentIndex()), grid.currentRow());
    v->setFocus();
    QTest::keyClick(v, Qt::Key_Return);
    EXPECT_EQ(describe(host->details), "S/USER////45\n"); // W is not in the session
}
