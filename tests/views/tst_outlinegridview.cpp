#include "views/gridheaderview.h"
#include "views/outlinegrid.h"
#include "views/outlinegridmodel.h"
#include "views/outlinegridprinter.h"
#include "views/outlinegridview.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QPrinter>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr int TwipsPerPixel96 = 15;

int px(double pixels)
{
    return qRound(pixels * TwipsPerPixel96);
}

/// The summary layout: margin, hidden job-type column, tree column, 7 + 7 status columns.
void makeSummaryGrid(OutlineGrid &g)
{
    const QStringList statuses = {"Open",      "Warning",  "Jeopardy", "Late",
                                  "Completed", "Canceled", "Not Done"};
    OutlineGrid::RedrawSuspender suspend(g);
    g.setColCount(17);
    g.setColWidth(0, px(15));
    g.setColWidth(1, 0);
    g.setColWidth(2, px(111));
    for (int c = 3; c < 17; ++c)
        g.setColWidth(c, px(52));
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setRowHeight(1, 2 * g.rowHeight(0));
    g.setBackColor(0, 0, 1, 16, OutlineGrid::fromBgr(0xD9FCFD));
    g.setBackColor(0, 3, 1, 9, OutlineGrid::fromBgr(0xFAFDC6));
    g.setBackColor(0, 10, 1, 16, OutlineGrid::fromBgr(0xEAE6FC));
    g.setBold(0, 0, 0, 16, true);
    g.setText(0, 3, 0, 9, "Work Orders");
    g.setText(0, 10, 0, 16, "Points");
    g.setText(1, 2, "Job Types and Job Classes");
    for (int i = 0; i < 7; ++i) {
        g.setText(1, 3 + i, statuses[i]);
        g.setText(1, 10 + i, statuses[i]);
    }
    g.setOutlineCol(2);
    g.setOutlineTextCol(1);

    struct Line
    {
        const char *type, *cls, *key;
        int figures[14];
    };
    const Line lines[] = {
        {"Installation", "Fiber", "INS|FIB", {3, 1, 0, 2, 12, 0, 1, 9, 3, 0, 6, 36, 0, 3}},
        {"Installation", "Copper", "INS|COP", {1, 0, 1, 0, 7, 1, 0, 2, 0, 2, 0, 14, 2, 0}},
        {"Maintenance", "Line check", "MNT|LCK", {5, 2, 0, 0, 4, 0, 0, 5, 2, 0, 0, 4, 0, 0}},
        {"Repair", "Cable", "REP|CAB", {2, 0, 0, 1, 9, 0, 2, 6, 0, 0, 3, 27, 0, 6}},
        {"Repair", "Modem", "REP|MOD", {0, 1, 1, 0, 3, 0, 0, 0, 1, 1, 0, 3, 0, 0}},
    };
    const int total = g.addRow();
    for (const Line &l : lines) {
        const int r = g.addRow();
        g.setRowData(r, QString::fromLatin1(l.key));
        g.setText(r, 1, QString::fromLatin1(l.type));
        g.setText(r, 2, QString::fromLatin1(l.cls));
        for (int s = 0; s < 14; ++s)
            g.setText(r, s + 3, QString::number(l.figures[s]));
    }
    g.sortRows(total, g.rowCount() - 1, 1, 2);
    g.subtotal(1, {3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}, OutlineGrid::fromBgr(0xE0E0E0),
               true);
    // The empty run's group row becomes the grand total; its empty data row goes.
    g.setText(2, 1, "Total");
    for (int s = 0; s < 14; ++s) {
        int sum = 0;
        for (const Line &l : lines)
            sum += l.figures[s];
        g.setText(2, s + 3, QString::number(sum));
    }
    g.removeRow(3);
    // Per-class totals below the grand total.
    for (const char *cls : {"Fiber", "Copper"}) {
        g.insertRow(3);
        g.setRowData(3, QStringLiteral("|") + QString::fromLatin1(cls).left(3).toUpper());
        g.setText(3, 1, "Total");
        g.setText(3, 2, QString::fromLatin1(cls));
        for (int s = 0; s < 14; ++s)
            g.setText(3, s + 3, QString::number((s * 7 + cls[0]) % 13));
    }
    for (int r = 3; r < g.rowCount(); ++r) {
        if (g.isNode(r) && r > 2)
            g.setRowData(r, g.rowData(r + 1).section(u'|', 0, 0));
    }
    g.setBold(2, 1, g.rowCount() - 1, 1, true);
    g.setCurrentCell(0, 0);
}

/// The hierarchy layout: tree of units in column 0, eleven figure columns.
void makeHierarchyGrid(OutlineGrid &g)
{
    const QStringList captions = {"Business Units",  "Tech Count", "Hours Remaining",
                                  "Hours Completed", "Open",       "Warning",
                                  "Jeopardy",        "Late",       "Completed",
                                  "Canceled",        "Not Done",   "WOs per Hour"};
    OutlineGrid::RedrawSuspender suspend(g);
    g.setColCount(12);
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setColWidth(0, px(150));
    for (int c = 1; c < 12; ++c)
        g.setColWidth(c, px(63));
    g.setRowHeight(1, 2 * g.rowHeight(0));
    g.setBackColor(0, 0, 1, 3, OutlineGrid::fromBgr(0xD9FCFD));
    g.setBackColor(0, 4, 1, 10, OutlineGrid::fromBgr(0xFAFDC6));
    g.setBackColor(0, 11, 1, 11, OutlineGrid::fromBgr(0xE4FEE3));
    g.setBold(0, 0, 0, 11, true);
    g.setText(0, 4, 0, 10, "Work Orders");
    g.setText(0, 11, "Productivity");
    for (int c = 0; c < 12; ++c)
        g.setText(1, c, captions[c]);

    const std::vector<OutlineGrid::TreeNode> units = {
        {"All Business Units", "#", -1},
        {"North Region", "N", 0},
        {"South Region", "S", 0},
        {"Dispatch North", "N1", 1},
        {"Field Team A", "N2", 1},
        {"Field Team B", "N3", 4},
        {"Coastal", "S1", 2},
        {"Inland", "S2", 2},
        {"Harbour Crew", "S3", 6},
    };
    (void)g.appendTree(units, 0, 0, true);
    int seed = 3;
    for (int r = 2; r < g.rowCount(); ++r) {
        if (g.rowData(r) == "S2")
            continue; // a unit no chosen unit reaches: grey, no figures
        for (int c = 1; c < 11; ++c) {
            seed = (seed * 37 + 11) % 97;
            g.setText(r, c, QString::number(seed % 40));
        }
        g.setText(r, 11, QString::number(seed % 7 + 0.25));
    }
    for (int r = 2; r < g.rowCount(); ++r) {
        if (g.text(r, 1).isEmpty())
            g.setBackColor(r, 0, r, 11, OutlineGrid::fromBgr(0xD0D0D0));
    }
    g.setBold(1, 0, g.rowCount() - 1, 0, true);
    g.setCollapsed(g.findRow("S1"), true);
}

QPoint branchPoint(const OutlineGridView &view, int row)
{
    const QRect cell = view.cellRect(row, view.grid()->outlineCol());
    return QPoint(cell.left() - view.indentation() / 2, cell.center().y());
}

void clickCell(OutlineGridView &view, int row, int col, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(view.viewport(), button, Qt::NoModifier, view.cellRect(row, col).center());
}

struct Fixture
{
    OutlineGrid grid;
    OutlineGridView view;
    std::unique_ptr<QAbstractItemModelTester> tester;

    explicit Fixture(void (*make)(OutlineGrid &))
    {
        make(grid);
        view.setGrid(&grid);
        tester = std::make_unique<QAbstractItemModelTester>(
            view.gridModel(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        view.resize(960, 360);
        view.show();
        QApplication::processEvents();
    }
};

} // namespace

TEST(OutlineGridView, LayoutComesFromTheGrid)
{
    Fixture f(makeSummaryGrid);
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
}

TEST(OutlineGridView, HeaderMergesEqualBandTexts)
{
    Fixture f(makeSummaryGrid);
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
    Fixture f(makeHierarchyGrid);
    const int north = f.grid.findRow("N");
    ASSERT_TRUE(f.view.isExpanded(f.view.gridModel()->indexForRow(north, 0)));
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      branchPoint(f.view, north));
    EXPECT_TRUE(f.grid.isCollapsed(north));
    EXPECT_FALSE(f.grid.isRowVisible(f.grid.findRow("N1")));
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      branchPoint(f.view, north));
    EXPECT_FALSE(f.grid.isCollapsed(north));
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
        {"minus collapses in any column", "N", 5, Qt::Key_Minus, "N", true},
        {"plus expands in any column", "N", 5, Qt::Key_Plus, "N", false},
        {"Left in a figure column only moves", "S", 5, Qt::Key_Left, "S", false},
        {"minus on the root", "#", 3, Qt::Key_Minus, "#", true},
        {"star expands the whole subtree", "#", 3, Qt::Key_Asterisk, "S1", false},
    };
    Fixture f(makeHierarchyGrid);
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
    Fixture f(makeHierarchyGrid);
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
    f.grid.setRowCount(2);
    makeHierarchyGrid(f.grid);
    {
        OutlineGrid::RedrawSuspender suspend(f.grid);
        f.grid.setCollapsed(f.grid.findRow("S1"), false);
        f.grid.setCollapsed(f.grid.findRow("N2"), true);
        f.grid.setCollapsed(f.grid.findRow("S"), true);
    }
    check("after refill");
    f.grid.setCollapsed(f.grid.findRow("S"), false);
    check("after a live change");
}

TEST(OutlineGridView, CurrentCellTravelsBothWays)
{
    Fixture f(makeSummaryGrid);
    clickCell(f.view, 4, 6);
    EXPECT_EQ(f.grid.currentRow(), 4);
    EXPECT_EQ(f.grid.currentCol(), 6);
    f.grid.setCurrentCell(2, 3);
    EXPECT_EQ(f.view.currentIndex(), f.view.gridModel()->indexForRow(2, 3));
    QTest::keyClick(&f.view, Qt::Key_Right);
    EXPECT_EQ(f.grid.currentCol(), 4);
    f.grid.setCurrentCell(0, 0); // a header cell: nothing is current in the view
    EXPECT_FALSE(f.view.currentIndex().isValid());
    EXPECT_EQ(f.grid.currentRow(), 0);
}

TEST(OutlineGridView, DoubleClickReportsTheCellUnderTheMouseAndButton)
{
    Fixture f(makeSummaryGrid);
    QSignalSpy doubles(&f.view, &OutlineGridView::cellDoubleClicked);
    QSignalSpy presses(&f.view, &OutlineGridView::mouseButtonPressed);
    ASSERT_TRUE(doubles.isValid() && presses.isValid());

    struct Case
    {
        int row, col;
        Qt::MouseButton button;
    };
    for (const Case &c :
         {Case{4, 5, Qt::LeftButton}, Case{2, 12, Qt::LeftButton}, Case{5, 3, Qt::RightButton}}) {
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

TEST(OutlineGridView, EnterReportsMouseCellAndModifiers)
{
    Fixture f(makeSummaryGrid);
    QSignalSpy enters(&f.view, &OutlineGridView::enterPressed);
    clickCell(f.view, 3, 4);
    QTest::mouseMove(f.view.viewport(), f.view.cellRect(5, 7).center());
    QTest::keyClick(&f.view, Qt::Key_Return);
    QTest::keyClick(&f.view, Qt::Key_Enter, Qt::ShiftModifier);
    ASSERT_EQ(enters.count(), 2);
    EXPECT_EQ(enters[0][0].toInt(), 5);
    EXPECT_EQ(enters[0][1].toInt(), 7);
    EXPECT_EQ(enters[0][2].value<Qt::KeyboardModifiers>(), Qt::NoModifier);
    EXPECT_TRUE(enters[1][2].value<Qt::KeyboardModifiers>() & Qt::ShiftModifier);
    EXPECT_EQ(f.grid.currentRow(), 3) << "Enter does not move the current cell";
}

TEST(OutlineGridView, LargeTreeShowsWithItsCollapsedNodes)
{
    OutlineGrid g;
    g.setColCount(12);
    g.setRowCount(2);
    g.setFixedRows(2);
    std::vector<OutlineGrid::TreeNode> nodes;
    nodes.push_back({"Root", "#", -1});
    for (int i = 1; i < 10000; ++i)
        nodes.push_back({QStringLiteral("Unit %1").arg(i), QStringLiteral("U%1").arg(i),
                         i < 100 ? 0 : (i % 99) + 1});
    OutlineGridView view;
    view.setGrid(&g);
    {
        OutlineGrid::RedrawSuspender suspend(g);
        (void)g.appendTree(nodes, 0, 0, true);
        for (int i = 1; i < 100; i += 2)
            g.setCollapsed(g.findRow(QStringLiteral("U%1").arg(i)), true);
    }
    view.resize(800, 400);
    view.show();
    QApplication::processEvents();
    const OutlineGridModel *m = view.gridModel();
    EXPECT_TRUE(view.isExpanded(m->indexForRow(2, 0)));
    EXPECT_FALSE(view.isExpanded(m->indexForRow(g.findRow("U1"), 0)));
    EXPECT_TRUE(view.isExpanded(m->indexForRow(g.findRow("U2"), 0)));
}

TEST(OutlineGridView, Screenshots)
{
    const QString dir = QStringLiteral(DLV_SCREENSHOT_DIR);
    QDir().mkpath(dir);
    {
        Fixture f(makeSummaryGrid);
        f.grid.setCollapsed(f.grid.findRow("MNT"), true);
        f.view.resize(880, 260);
        QApplication::processEvents();
        EXPECT_TRUE(f.view.grab().save(dir + "/outlinegrid-summary.png"));
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir + "/outlinegrid-summary.pdf");
        printer.setPageOrientation(QPageLayout::Landscape);
        EXPECT_TRUE(OutlineGridPrinter(f.grid).print(printer, "BU Summary"));
    }
    {
        Fixture f(makeHierarchyGrid);
        f.view.resize(880, 300);
        f.grid.setCurrentCell(f.grid.findRow("N2"), 4);
        QApplication::processEvents();
        EXPECT_TRUE(f.view.grab().save(dir + "/outlinegrid-hierarchy.png"));
    }
}
