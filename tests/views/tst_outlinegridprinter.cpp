#include "views/outlinegrid.h"
#include "views/outlinegridprinter.h"

#include <QFile>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// Header rows, then Root > [A > [a1, a2], B > [b1]] and 40 plain rows under B.
void makeTree(OutlineGrid &g)
{
    g.setColCount(3);
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setText(0, 1, 0, 2, "Band");
    g.setText(1, 0, "Name");
    (void)g.appendTree(
        {{"Root", "#", -1}, {"A", "A", 0}, {"a1", "a1", 1}, {"a2", "a2", 1}, {"B", "B", 0}}, 0);
    for (int i = 0; i < 40; ++i)
        g.setText(g.addRow(), 0, QStringLiteral("b%1").arg(i));
}

} // namespace

TEST(OutlineGridPrinter, PrintsOnlyRowsThatShow)
{
    OutlineGrid g;
    makeTree(g);
    OutlineGridPrinter p(g);
    EXPECT_EQ(p.printedRows().size(), 45u);
    g.setCollapsed(g.findRow("A"), true);
    EXPECT_EQ(p.printedRows().size(), 43u);
    g.setCollapsed(g.findRow("#"), true);
    EXPECT_EQ(p.printedRows(), std::vector<int>({2}));
}

TEST(OutlineGridPrinter, PagesSplitByRowHeights)
{
    OutlineGrid g;
    makeTree(g);
    g.setRowHeight(3, 3 * OutlineGrid::DefaultRowHeight);
    OutlineGridPrinter p(g);
    const int h = OutlineGrid::DefaultRowHeight;
    const auto pages = p.pages(10 * h);
    // Page 1: Root, A (3 rows tall), a1..a2, B, b0..b2 = 10 row heights.
    ASSERT_EQ(pages.size(), 5u);
    EXPECT_EQ(pages[0], std::vector<int>({2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(pages[1].front(), 10);
    EXPECT_EQ(pages.back().back(), g.rowCount() - 1);
    size_t total = 0;
    for (const auto &page : pages)
        total += page.size();
    EXPECT_EQ(total, 45u);
    EXPECT_EQ(p.pages(1).size(), 45u) << "a page always takes at least one row";
    OutlineGrid empty;
    empty.setColCount(1);
    empty.setRowCount(2);
    empty.setFixedRows(2);
    EXPECT_EQ(OutlineGridPrinter(empty).pages(1000).size(), 1u) << "the header prints alone";
}

TEST(OutlineGridPrinter, WritesAPdfWithOnePagePerBlock)
{
    OutlineGrid g;
    makeTree(g);
    for (int i = 0; i < 200; ++i)
        g.setText(g.addRow(), 1, QString::number(i));
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath("grid.pdf"));
    printer.setPageOrientation(QPageLayout::Landscape);
    ASSERT_TRUE(OutlineGridPrinter(g).print(printer, "BU Summary"));
    EXPECT_EQ(printer.docName(), "BU Summary");
    EXPECT_NEAR(printer.pageLayout().margins(QPageLayout::Inch).left(), 1200.0 / 1440.0, 1e-3);

    QFile pdf(dir.filePath("grid.pdf"));
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const QString bytes = QString::fromLatin1(pdf.readAll());
    const qsizetype pageObjects = bytes.count(QRegularExpression("/Type\\s*/Page[^s]"));
    const double pageTwips = printer.pageLayout().paintRect(QPageLayout::Inch).height() * 1440.0;
    const int perPage =
        int((pageTwips - 2 * OutlineGrid::DefaultRowHeight) / OutlineGrid::DefaultRowHeight);
    EXPECT_EQ(pageObjects, (245 + perPage - 1) / perPage);
}
