#include "controlfixture.h"

#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

// What a host reads through DLViewer::Grid() and PanelText() is what the user sees: the same
// texts the export writes, the tree the hierarchy shows, the figures the panel labels show.
TEST_F(ControlFixture, HostsReadTheGridsAndThePanelAsShown)
{
    startChosen();

    // Every cell of the summary equals the field the export writes for it.
    const DLVGrid summary = viewer->Grid(DLVGrid::Summary);
    ASSERT_EQ(summary.Cols(), DLVGrid::SummaryColumnCount);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("summary.csv"));
    ASSERT_TRUE(viewer->ExportGrid(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll())
                                  .remove(QChar(0xFEFF))
                                  .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), summary.Rows());
    for (int r = 0; r < summary.Rows(); ++r) {
        const QStringList fields = lines[r].split(u',');
        ASSERT_EQ(fields.size(), summary.Cols()) << r;
        for (int c = 0; c < summary.Cols(); ++c)
            EXPECT_EQ(summary.TextMatrix(r, c), fields[c]) << r << "," << c;
    }
    const int inspection = summary.FindRow(QStringLiteral("INS"));
    ASSERT_GE(inspection, summary.FixedRows());
    EXPECT_TRUE(summary.IsNode(inspection));
    EXPECT_EQ(summary.TextMatrix(summary.FindRow(QStringLiteral("INS|A")), DLVGrid::SummaryWOOpen),
              QStringLiteral("3"));

    // The hierarchy: the root, North with East below it, South; figures of the chosen units.
    const DLVGrid tree = viewer->Grid(DLVGrid::HierarchyWorkOrders);
    ASSERT_EQ(tree.Cols(), DLVGrid::HierarchyColumnCount);
    EXPECT_EQ(tree.RowData(tree.FixedRows()), QStringLiteral("#"));
    const struct
    {
        const char *id;
        int level;
        const char *techs;
    } units[] = {{"#", 0, ""}, {"N", 1, "11"}, {"E", 2, ""}, {"S", 1, "7"}};
    for (const auto &u : units) {
        const int row = tree.FindRow(QString::fromLatin1(u.id));
        ASSERT_GE(row, tree.FixedRows()) << u.id;
        EXPECT_EQ(tree.Level(row), u.level) << u.id;
        EXPECT_EQ(tree.TextMatrix(row, DLVGrid::HierarchyTechCount), QString::fromLatin1(u.techs))
            << u.id;
    }
    const int north = tree.FindRow(QStringLiteral("N"));
    const int east = tree.FindRow(QStringLiteral("E"));
    EXPECT_TRUE(tree.BackColor(east, DLVGrid::HierarchyTechCount).isValid()); // a grey row
    EXPECT_TRUE(tree.IsBold(north, DLVGrid::HierarchyUnit));

    // Folding North on screen shows in what the host reads.
    OutlineGridView *view = showGrid(DLVGrid::HierarchyWorkOrders);
    view->collapse(view->model()->index(0, 0, view->model()->index(0, 0)));
    EXPECT_TRUE(tree.IsCollapsed(north));
    EXPECT_FALSE(tree.IsVisible(east));
    EXPECT_TRUE(tree.IsVisible(north));

    // Each panel figure is the label of the same name.
    const struct
    {
        DLViewer::PanelFigure figure;
        const char *label;
    } figures[] = {
        {DLViewer::PanelFigure::TechCount, "lblTechCount"},
        {DLViewer::PanelFigure::HoursWorked, "lblHrsWorked"},
        {DLViewer::PanelFigure::HoursRemaining, "lblHrsRemaining"},
        {DLViewer::PanelFigure::WODone, "lblWODone"},
        {DLViewer::PanelFigure::WOOpen, "lblWOOpen"},
        {DLViewer::PanelFigure::PtsDone, "lblPtsDone"},
        {DLViewer::PanelFigure::PtsOpen, "lblPtsOpen"},
        {DLViewer::PanelFigure::WOsPerHrToday, "lblWOsPerHrToday"},
        {DLViewer::PanelFigure::WOsPerHrReq, "lblWOsPerHrReq"},
        {DLViewer::PanelFigure::PtsPerHrToday, "lblPtsPerHrToday"},
        {DLViewer::PanelFigure::PtsPerHrReq, "lblPtsPerHrReq"},
    };
    for (const auto &f : figures)
        EXPECT_EQ(viewer->PanelText(f.figure), child<QLabel>(f.label)->text()) << f.label;
    EXPECT_EQ(viewer->PanelText(DLViewer::PanelFigure::TechCount),
              QStringLiteral("15")); // North and South alone
}

// A host that asks for a cell that is not there gets an empty answer, never a crash.
TEST_F(ControlFixture, ReadingOutsideAGridGivesEmptyValues)
{
    startChosen();
    const DLVGrid none = viewer->Grid(DLVGrid::Element(3));
    EXPECT_EQ(none.Rows(), 0);
    EXPECT_EQ(none.TextMatrix(0, 0), QString());
    const DLVGrid grid = viewer->Grid(DLVGrid::HierarchyPoints);
    const int rows = grid.Rows();
    const int cols = grid.Cols();
    ASSERT_GT(rows, grid.FixedRows());
    for (const auto &[row, col] : {std::pair{-1, 0}, std::pair{rows, 0}, std::pair{0, -1},
                                   std::pair{0, cols}, std::pair{INT_MAX, INT_MAX}}) {
        EXPECT_EQ(grid.TextMatrix(row, col), QString()) << row << "," << col;
        EXPECT_FALSE(grid.BackColor(row, col).isValid()) << row << "," << col;
        EXPECT_FALSE(grid.IsBold(row, col)) << row << "," << col;
        EXPECT_EQ(grid.RowData(row), row == 0 ? grid.RowData(0) : QString()) << row;
    }
    // Header rows have no outline; a plain row cannot be collapsed.
    EXPECT_EQ(grid.Level(0), -1);
    EXPECT_FALSE(grid.IsNode(1));
    EXPECT_FALSE(grid.IsCollapsed(0));
    EXPECT_EQ(grid.FindRow(QStringLiteral("no such unit")), -1);
    EXPECT_EQ(DLVGrid().FindRow(QStringLiteral("#")), -1);
}
