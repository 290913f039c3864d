#include "loadedmodel.h"
#include "ui/captioncatalogue.h"
#include "views/gridheaderview.h"
#include "views/outlinegridmodel.h"
#include "views/outlinegridview.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <vector>

namespace {

QString english(const QString &key)
{
    return CaptionCatalogue().caption(key);
}

/// The summary of one unit as the fill leaves it: total (row 2), per-class rows Cable, Copper and
/// Fiber (3 to 5), group INS (6) with COP and FIB, group REP (9) with CAB.
DLVDataBuilder summaryData()
{
    DLVDataBuilder b;
    b.unit("A", "A", "").general("A");
    b.jobType("INS", "Installation").jobType("REP", "Repair");
    b.jobClass("FIB", "Fiber").jobClass("COP", "Copper").jobClass("CAB", "Cable");
    b.detail("A", "INS", "FIB", {"3", "1", "0", "2", "12", "0", "1", "9", "3", "0", "6", "36"});
    b.detail("A", "INS", "COP", {"1", "0", "1", "0", "7", "1", "0", "2", "0", "2", "0", "14"});
    b.detail("A", "REP", "CAB", {"2", "0", "0", "1", "9", "0", "2", "6", "0", "0", "3", "27"});
    return b;
}

/// Units under "#": N > [N1, N2 > N3], S > [S1 > S3, S2]; S2 is reached by no chosen unit.
DLVDataBuilder hierarchyData()
{
    DLVDataBuilder b;
    b.unit("#", "All Business Units", "").unit("N", "North Region", "#");
    b.unit("S", "South Region", "#").unit("N1", "Dispatch North", "N");
    b.unit("N2", "Field Team A", "N").unit("N3", "Field Team B", "N2");
    b.unit("S1", "Coastal", "S").unit("S2", "Inland", "S").unit("S3", "Harbour Crew", "S1");
    for (const char *id : {"N", "S", "N1", "N2", "N3", "S1", "S2", "S3"})
        b.general(id, id, "3", "8", "4").detail(id, "T", "C", {"4", "1", "0", "2", "9"});
    return b;
}

struct Fixture
{
    explicit Fixture(bool hierarchy)
        : model(hierarchy ? hierarchyData() : summaryData()),
          grid(hierarchy ? hierarchyGrids.workOrders : summary.grid), hierarchy(hierarchy)
    {
        refill();
        view.setGrid(&grid);
        tester = std::make_unique<QAbstractItemModelTester>(
            view.gridModel(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        view.resize(960, 360);
        view.show();
        QApplication::processEvents();
    }

    void refill()
    {
        if (!hierarchy)
            return summary.show(model, {"A"});
        hierarchyGrids.fill(model, {"N", "S1", "S3", "#"});
        grid.setCollapsed(grid.findRow("S1"), true);
    }

    LoadedModel model;
    SummaryFill summary{english};
    HierarchyFill hierarchyGrids{english};
    OutlineGrid &grid;
    bool hierarchy;
    OutlineGridView view;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

QPoint branchPoint(const OutlineGridView &view, int row)
{
    const QRect cell = view.cellRect(row, view.grid()->outlineCol());
    return QPoint(cell.left() - view.indentation() / 2, cell.center().y());
}

} // namespace

TEST(OutlineGridView, LayoutComesFromTheGrid)
{
    Fixture f(false);
    const double tpp = f.view.twipsPerPixelX();
    EXPECT_DOUBLE_EQ(tpp, 1440.0 / f.view.logicalDpiX());
    EXPECT_TRUE(f.view.isColumnHidden(1));
    EXPECT_EQ(f.view.header()->sectionSize(2), qRound(f.grid.colWidth(2) / tpp));
    EXPECT_EQ(f.view.treePosition(), 2);
    EXPECT_EQ(f.view.gridHeader()->captionHeight() >= 2 * f.view.gridHeader()->bandHeight(), true);

    f.grid.setColWidth(3, 0);
    EXPECT_TRUE(f.view.isColumnHidden(3));
    f.grid.setColWidth(3, 1500);
    EXPECT_FALSE(f.view.isColumnHidden(3));
    EXPECT_EQ(f.view.header()->sectionSize(3), qRound(1500 / tpp));

    // A picture for a human look.
    f.grid.setColWidth(3, f.grid.colWidth(4));
    f.grid.setCollapsed(f.grid.findRow("REP"), true);
    f.view.resize(880, 260);
    QApplication::processEvents();
    EXPECT_TRUE(f.view.grab().save(QStringLiteral(DLV_SCREENSHOT_DIR "/outlinegrid-summary.png")));
}

TEST(OutlineGridView, HeaderMergesEqualBandTexts)
{
    Fixture f(false);
    const GridHeaderView *h = f.view.gridHeader();
    EXPECT_EQ(h->bandRange(5), std::make_pair(3, 9));
    EXPECT_EQ(h->bandRange(16), std::make_pair(10, 16));
    EXPECT_EQ(h->bandRange(2), std::make_pair(2, 2)) << "empty band cells do not merge";
    EXPECT_EQ(h->bandRange(0), std::make_pair(0, 0));
    EXPECT_EQ(h->headerRowAt(1), 0);
    EXPECT_EQ(h->headerRowAt(h->bandHeight() + 1), 1);
    EXPECT_EQ(h->headerRowAt(h->bandHeight() + h->captionHeight() + 5), -1);
}

TEST(OutlineGridView, MouseOnTheTreeWritesCollapseState)
{
    Fixture f(true);
    const int north = f.grid.findRow("N");
    ASSERT_TRUE(f.view.isExpanded(f.view.gridModel()->indexForRow(north, 0)));
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      branchPoint(f.view, north));
    EXPECT_TRUE(f.grid.isCollapsed(north));
    EXPECT_FALSE(f.grid.isRowVisible(f.grid.findRow("N1")));
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      branchPoint(f.view, north));
    EXPECT_FALSE(f.grid.isCollapsed(north));

    // A picture for a human look.
    f.view.resize(880, 300);
    f.grid.setCurrentCell(f.grid.findRow("N2"), 4);
    QApplication::processEvents();
    EXPECT_TRUE(
        f.view.grab().save(QStringLiteral(DLV_SCREENSHOT_DIR "/outlinegrid-hierarchy.png")));
}

TEST(OutlineGridView, KeyboardExpandsAndCollapses)
{
    struct Step
    {
        const char *name;
        const char *unit; // current row by row data
        int col;
        int key;
        const char *checkUnit;
        bool collapsedAfter;
    };
    const Step steps[] = {
        {"Left collapses in the tree column", "N", 0, Qt::Key_Left, "N", true},
        {"Right expands in the tree column", "N", 0, Qt::Key_Right, "N", false},
        {"Left in a figure column only moves", "S", 5, Qt::Key_Left, "S", false},
        {"minus collapses in any column", "#", 3, Qt::Key_Minus, "#", true},
        {"star expands the whole subtree", "#", 3, Qt::Key_Asterisk, "S1", false},
    };
    Fixture f(true);
    for (const Step &s : steps) {
        const int row = f.grid.findRow(QString::fromLatin1(s.unit));
        f.grid.setCurrentCell(row, s.col);
        ASSERT_EQ(f.view.currentIndex(), f.view.gridModel()->indexForRow(row, s.col)) << s.name;
        QTest::keyClick(&f.view, Qt::Key(s.key));
        const int check = f.grid.findRow(QString::fromLatin1(s.checkUnit));
        EXPECT_EQ(f.grid.isCollapsed(check), s.collapsedAfter) << s.name;
        EXPECT_EQ(f.view.isExpanded(f.view.gridModel()->indexForRow(check, 0)), !s.collapsedAfter)
            << s.name;
    }
    // Left on a leaf in the tree column goes to its parent.
    const int leaf = f.grid.findRow("N1");
    f.grid.setCurrentCell(leaf, 0);
    QTest::keyClick(&f.view, Qt::Key_Left);
    EXPECT_EQ(f.grid.currentRow(), f.grid.findRow("N"));
    EXPECT_EQ(f.grid.currentCol(), 0);
}

TEST(OutlineGridView, GridCollapseStateIsAppliedAfterEveryFill)
{
    Fixture f(true);
    const auto check = [&f](const char *when) {
        for (int r = 2; r < f.grid.rowCount(); ++r) {
            if (f.grid.isNode(r) && f.grid.childCount(r) > 0) {
                EXPECT_EQ(f.view.isExpanded(f.view.gridModel()->indexForRow(r, 0)),
                          !f.grid.isCollapsed(r))
                    << when << " row " << r;
            }
        }
    };
    check("first show");
    EXPECT_FALSE(f.view.isExpanded(f.view.gridModel()->indexForRow(f.grid.findRow("S1"), 0)));
    // A refill that rebuilds everything and collapses other nodes.
    {
        OutlineGrid::RedrawSuspender suspend(f.grid);
        f.refill();
        f.grid.setCollapsed(f.grid.findRow("S1"), false);
        f.grid.setCollapsed(f.grid.findRow("N2"), true);
        f.grid.setCollapsed(f.grid.findRow("S"), true);
    }
    check("after refill");
    f.grid.setCollapsed(f.grid.findRow("S"), false);
    check("after a live change");
}

TEST(OutlineGridView, DoubleClickReportsTheCellUnderTheMouseAndButton)
{
    Fixture f(false);
    QSignalSpy doubles(&f.view, &OutlineGridView::cellDoubleClicked);
    QSignalSpy presses(&f.view, &OutlineGridView::mouseButtonPressed);
    ASSERT_TRUE(doubles.isValid() && presses.isValid());

    struct Case
    {
        int row, col;
        Qt::MouseButton button;
    };
    for (const Case &c : {Case{4, 5, Qt::LeftButton}, Case{5, 3, Qt::RightButton}}) {
        doubles.clear();
        presses.clear();
        const QPoint at = f.view.cellRect(c.row, c.col).center();
        QTest::mouseClick(f.view.viewport(), c.button, Qt::NoModifier, at);
        QTest::mouseDClick(f.view.viewport(), c.button, Qt::NoModifier, at);
        ASSERT_EQ(doubles.count(), 1) << c.row << "," << c.col;
        EXPECT_EQ(doubles[0][0].toInt(), c.row);
        EXPECT_EQ(doubles[0][1].toInt(), c.col);
        EXPECT_EQ(doubles[0][2].value<Qt::MouseButton>(), c.button);
        ASSERT_GE(presses.count(), 1);
        EXPECT_EQ(presses[0][0].value<Qt::MouseButton>(), c.button);
        if (c.button == Qt::LeftButton) {
            EXPECT_EQ(f.grid.currentRow(), c.row);
            EXPECT_EQ(f.grid.currentCol(), c.col);
        }
    }
    // Below the last row: no row, but a column.
    doubles.clear();
    const QRect last = f.view.cellRect(f.grid.rowCount() - 1, 4);
    const QPoint below(last.center().x(), last.bottom() + 40);
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, below);
    QTest::mouseDClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, below);
    ASSERT_EQ(doubles.count(), 1);
    EXPECT_EQ(doubles[0][0].toInt(), -1);
    EXPECT_EQ(doubles[0][1].toInt(), 4);
}
