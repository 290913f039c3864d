// Printing a grid over several pages, checked on real PDF output with poppler's tools.

#include "views/gridprintjob.h"
#include "views/outlinegrid.h"

#include <QDir>
#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString run(const QString &program, const QStringList &args)
{
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(120000) || p.exitCode() != 0) {
        ADD_FAILURE() << program.toStdString()
                      << " failed: " << p.readAllStandardError().toStdString();
        return {};
    }
    return QString::fromUtf8(p.readAllStandardOutput());
}

QString pdfField(const QString &info, const QString &field)
{
    const QRegularExpression re(QStringLiteral("^%1:\\s*(.*)$").arg(field),
                                QRegularExpression::MultilineOption);
    return re.match(info).captured(1).trimmed();
}

/// A hierarchy-like grid: 12 columns of screen widths (twips), header rows 285 and 570 twips,
/// then `units` rows in a tree three levels deep.
void fillHierarchy(OutlineGrid &g, int units, int colTwips = 945)
{
    g.setColCount(12);
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setColWidth(0, 2250);
    for (int c = 1; c < 12; ++c)
        g.setColWidth(c, colTwips);
    g.setRowHeight(1, 570);
    g.setText(1, 0, "Business Units");
    for (int c = 4; c <= 10; ++c) {
        g.setText(0, c, "Work Orders");
        g.setBackColor(0, c, 1, c, OutlineGrid::fromBgr(0xFAFDC6));
    }
    for (int i = 0; i < units; ++i) {
        const int level = i == 0 ? 0 : (i % 10 == 1 ? 1 : 2);
        const int row = g.addNodeRow(level);
        g.setText(row, 0, i == 0 ? QStringLiteral("All Units") : QStringLiteral("Unit %1").arg(i));
        g.setBold(row, 0, true);
        for (int c = 1; c < 12; ++c)
            g.setText(row, c, QString::number((i * 7 + c * 3) % 50));
        if (i % 13 == 5) // an unreached unit, grey with empty figures
            for (int c = 0; c < 12; ++c) {
                g.setBackColor(row, c, OutlineGrid::fromBgr(0xD0D0D0));
                if (c > 0)
                    g.setText(row, c, QString());
            }
    }
}

} // namespace

TEST(GridPrintJob, PrintsFiveHundredRowsOnLandscapePagesWithTheTitle)
{
    OutlineGrid g;
    fillHierarchy(g, 500);
    QTemporaryDir dir;
    const QString path = dir.filePath("hierarchy.pdf");
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Landscape);
    ASSERT_TRUE(GridPrintJob(g).print(printer, QStringLiteral("BU Hierarchy"), 1200));

    // A4 landscape is 210 mm high: 11905 twips, less two 1200-twip margins leaves 9505. The
    // header rows take 855 and the footer 240, so 8410 / 285 = 29 rows fit: 500 rows need 18
    // pages. The grid (2250 + 11 x 945 = 12645 twips) fits the 14437-twip width unshrunk.
    const QString info = run(QStringLiteral("pdfinfo"), {path});
    EXPECT_EQ(pdfField(info, "Pages"), "18");
    EXPECT_EQ(pdfField(info, "Title"), "BU Hierarchy");
    EXPECT_TRUE(pdfField(info, "Page size").startsWith("842 x 595")) << "A4 landscape";

    // Rows of every page reach the printout, in order: the last unit ends the last page.
    const QString lastPage =
        run(QStringLiteral("pdftotext"), {"-f", "18", "-l", "18", "-layout", path, "-"});
    EXPECT_TRUE(lastPage.contains("Unit 499"));
    EXPECT_TRUE(lastPage.contains("Business Units")) << "the header repeats on every page";
    EXPECT_TRUE(lastPage.contains("18 / 18"));
    const QString firstPage =
        run(QStringLiteral("pdftotext"), {"-f", "1", "-l", "1", "-layout", path, "-"});
    EXPECT_TRUE(firstPage.contains("All Units"));
    EXPECT_TRUE(firstPage.contains("Unit 28"));
    EXPECT_FALSE(firstPage.contains("Unit 29")) << "the 30th row starts page 2";

#ifdef DLV_SCREENSHOT_DIR
    // A picture of page 1 for a human look.
    run(QStringLiteral("pdftoppm"), {"-png", "-r", "60", "-f", "1", "-l", "1", "-singlefile", path,
                                     QStringLiteral(DLV_SCREENSHOT_DIR "/print_hierarchy_page1")});
    EXPECT_TRUE(QFile::exists(QStringLiteral(DLV_SCREENSHOT_DIR "/print_hierarchy_page1.png")));
#endif
}

TEST(GridPrintJob, SlightlyWideGridsShrinkAndWideOnesSplitAcrossPages)
{
    // Total width 2250 + 11 x colTwips.
    const struct
    {
        const char *name;
        int colTwips;
        double bodyWidth;
        int expectedBands;
        bool shrunk;
    } cases[] = {
        {"fits", 945, 14437, 1, false},
        {"a little too wide: shrinks", 1200, 14437, 1, true}, // 15450 twips
        {"far too wide: three bands", 2600, 14437, 3, false}, // 30850 twips
    };
    for (const auto &c : cases) {
        OutlineGrid g;
        fillHierarchy(g, 40, c.colTwips);
        const GridPrintJob::Layout plan = GridPrintJob(g).layout(c.bodyWidth, 9505);
        std::vector<std::vector<int>> bands;
        for (const GridPrintJob::Page &p : plan.pages)
            if (p.rows == plan.pages.front().rows)
                bands.push_back(p.cols);
        EXPECT_EQ(int(bands.size()), c.expectedBands) << c.name;
        EXPECT_EQ(plan.scale < 1.0, c.shrunk) << c.name;

        // Every column prints, and every band after the first repeats the name column.
        std::vector<int> seen;
        for (size_t b = 0; b < bands.size(); ++b) {
            EXPECT_EQ(bands[b].front(), 0) << c.name << " band " << b;
            double width = 0;
            for (int col : bands[b]) {
                width += g.colWidth(col) * plan.scale;
                if (b == 0 || col != 0)
                    seen.push_back(col);
            }
            EXPECT_LE(width, c.bodyWidth + 0.5) << c.name << " band " << b;
        }
        EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11})) << c.name;
        // Pages run across the bands first: each row block appears once per band.
        EXPECT_EQ(plan.pages.size() % bands.size(), 0u) << c.name;
    }
}

TEST(GridPrintJob, RowsSplitByHeightAndHiddenColumnsAndFoldedRowsAreLeftOut)
{
    OutlineGrid g;
    fillHierarchy(g, 30);
    g.setColWidth(3, 0);
    g.setCollapsed(3, true); // "Unit 1" folds its nine children away
    const int h = OutlineGrid::DefaultRowHeight;
    g.setRowHeight(13, 3 * h);
    const GridPrintJob job(g);
    const GridPrintJob::Layout plan = job.layout(14437, 9505);
    ASSERT_EQ(plan.pages.size(), 1u);
    const GridPrintJob::Page &page = plan.pages.front();
    EXPECT_EQ(std::count(page.cols.begin(), page.cols.end(), 3), 0);
    EXPECT_EQ(page.rows.size(), 21u);
    EXPECT_EQ(page.rows[2], 13); // the next unit of level 1, after Unit 1's children

    // Blocks of at most the given height: row 13 is three rows tall.
    const auto blocks = job.rowPages(5 * h);
    ASSERT_EQ(blocks.size(), 5u);
    EXPECT_EQ(blocks[0], (std::vector<int>{2, 3, 13}));
}
