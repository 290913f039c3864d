#include "views/outlinegrid.h"
#include "views/outlinegridmodel.h"

#include <QAbstractItemModelTester>
#include <QFont>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <memory>

namespace {

/// A small summary-like grid: margin column 0, group text in column 1, tree in column 2, two
/// figure columns under one band.
void makeSummary(OutlineGrid &g)
{
    g.setColCount(5);
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setText(0, 3, "Work Orders");
    g.setText(0, 4, "Work Orders");
    g.setText(1, 2, "Jobs");
    g.setText(1, 3, "Open");
    g.setText(1, 4, "Late");
    g.setBold(0, 0, 0, 4, true);
    g.setBackColor(0, 3, 1, 4, OutlineGrid::fromBgr(0xFAFDC6));
    g.setOutlineCol(2);
    g.setOutlineTextCol(1);
    const char *rows[][4] = {{"Install", "Fiber", "3", "1"},
                             {"Install", "Copper", "2", "0"},
                             {"Repair", "Line", "7", "4"}};
    for (const auto &row : rows) {
        const int r = g.addRow();
        g.setText(r, 1, row[0]);
        g.setText(r, 2, row[1]);
        g.setText(r, 3, row[2]);
        g.setText(r, 4, row[3]);
        g.setRowData(r, QString::fromLatin1(row[0]) + "|" + row[1]);
    }
    g.subtotal(1, {3, 4}, OutlineGrid::fromBgr(0xE0E0E0), true);
}

} // namespace

TEST(OutlineGridModel, TreeFollowsTheOutline)
{
    OutlineGrid g;
    makeSummary(g);
    OutlineGridModel m(&g);
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);

    // Rows: 2 Install group, 3 Fiber, 4 Copper, 5 Repair group, 6 Line.
    ASSERT_EQ(m.rowCount(), 2);
    EXPECT_EQ(m.columnCount(), 5);
    const QModelIndex install = m.index(0, 0);
    const QModelIndex repair = m.index(1, 0);
    EXPECT_EQ(OutlineGridModel::gridRow(install), 2);
    EXPECT_EQ(OutlineGridModel::gridRow(repair), 5);
    ASSERT_EQ(m.rowCount(install), 2);
    const QModelIndex copper = m.index(1, 3, install);
    EXPECT_EQ(copper.data().toString(), "2");
    EXPECT_EQ(copper.data(OutlineGridModel::RowDataRole).toString(), "Install|Copper");
    EXPECT_EQ(copper.data(OutlineGridModel::GridRowRole).toInt(), 4);
    EXPECT_EQ(copper.data(OutlineGridModel::OutlineLevelRole).toInt(), 1);
    EXPECT_FALSE(copper.data(OutlineGridModel::IsNodeRole).toBool());
    EXPECT_EQ(m.parent(copper), install);
    EXPECT_EQ(m.indexForRow(4, 3), copper);
    EXPECT_FALSE(m.indexForRow(1, 3).isValid()) << "fixed rows are header data, not items";
    EXPECT_FALSE(m.indexForRow(7, 0).isValid());
    EXPECT_TRUE(m.flags(copper) & Qt::ItemNeverHasChildren);
    EXPECT_FALSE(m.flags(install) & Qt::ItemIsEditable);
}

TEST(OutlineGridModel, RolesShowCellsAndHeadersAsTheGridHoldsThem)
{
    OutlineGrid g;
    makeSummary(g);
    g.setRowHeight(1, 2 * g.rowHeight(0));
    OutlineGridModel m(&g);
    const QModelIndex groupSum = m.indexForRow(2, 3);
    const QModelIndex leafName = m.indexForRow(3, 2);
    EXPECT_EQ(m.indexForRow(2, 2).data().toString(), "Install") << "node rows show the group text";
    EXPECT_EQ(leafName.data().toString(), "Fiber");
    EXPECT_EQ(groupSum.data().toString(), "5");
    EXPECT_EQ(groupSum.data(Qt::BackgroundRole).value<QColor>(), QColor(224, 224, 224));
    EXPECT_TRUE(groupSum.data(Qt::FontRole).value<QFont>().bold());
    EXPECT_FALSE(leafName.data(Qt::FontRole).isValid());
    EXPECT_FALSE(leafName.data(Qt::BackgroundRole).isValid());
    EXPECT_EQ(groupSum.data(Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight | Qt::AlignVCenter));
    EXPECT_EQ(leafName.data(Qt::TextAlignmentRole).toInt(), int(Qt::AlignLeft | Qt::AlignVCenter));
    m.setTwipsPerPixel(15, 15);
    EXPECT_EQ(leafName.data(Qt::SizeHintRole).toSize().height(),
              OutlineGrid::DefaultRowHeight / 15);

    // Headers come from the fixed rows: captions from the last, bands from the one above.
    EXPECT_EQ(m.headerData(3, Qt::Horizontal).toString(), "Open");
    EXPECT_EQ(m.headerData(3, Qt::Horizontal, OutlineGridModel::BandTextRole).toString(),
              "Work Orders");
    EXPECT_TRUE(m.headerData(4, Qt::Horizontal, OutlineGridModel::BandBoldRole).toBool());
    EXPECT_FALSE(m.headerData(4, Qt::Horizontal, OutlineGridModel::CaptionBoldRole).toBool());
    EXPECT_EQ(m.headerData(4, Qt::Horizontal, Qt::BackgroundRole).value<QColor>(),
              QColor(198, 253, 250));
    EXPECT_FALSE(m.headerData(0, Qt::Horizontal, Qt::BackgroundRole).isValid());
    EXPECT_EQ(m.headerData(0, Qt::Horizontal, OutlineGridModel::CaptionHeightRole).toInt(),
              2 * m.headerData(0, Qt::Horizontal, OutlineGridModel::BandHeightRole).toInt());
    EXPECT_FALSE(m.headerData(0, Qt::Vertical).isValid());
}

// A host's text of megabytes must not be laid out whole (it froze the control for minutes):
// the cell shows a bounded part, the tool tip a longer one, and the data keep every character.
TEST(OutlineGridModel, LongTextsAreShownCutAndKeptWhole)
{
    OutlineGrid g;
    makeSummary(g);
    const QString huge = QStringLiteral("Crew ") + QString(4 << 20, u'x');
    g.setText(3, 2, huge);
    g.setText(2, 1, huge); // the group text that a node row shows in its tree column
    OutlineGridModel m(&g);
    for (const QModelIndex &cell : {m.indexForRow(3, 2), m.indexForRow(2, 2)}) {
        const QString shown = cell.data().toString();
        EXPECT_LE(shown.size(), 256);
        EXPECT_TRUE(shown.startsWith(QStringLiteral("Crew xx")) && shown.endsWith(QChar(0x2026)));
        const QString tip = cell.data(Qt::ToolTipRole).toString();
        EXPECT_GT(tip.size(), shown.size());
        EXPECT_LE(tip.size(), 2048);
    }
    EXPECT_FALSE(m.indexForRow(4, 2).data(Qt::ToolTipRole).isValid()) << "short texts: no tip";
    EXPECT_EQ(g.text(3, 2), huge);
    EXPECT_TRUE(g.commaText().contains(huge.toUtf8()));
}

// A fill is one layout change keyed by row data: an index held on a row follows that row to its
// new place, an index on a row that is gone becomes invalid.
TEST(OutlineGridModel, SuspendedFillIsOneLayoutChangeThatKeepsRowsByTheirData)
{
    OutlineGrid g;
    makeSummary(g);
    OutlineGridModel m(&g);
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy resets(&m, &QAbstractItemModel::modelReset);
    QSignalSpy layouts(&m, &QAbstractItemModel::layoutChanged);
    QSignalSpy changes(&m, &QAbstractItemModel::dataChanged);
    QSignalSpy collapses(&m, &OutlineGridModel::collapseStateChanged);
    ASSERT_TRUE(resets.isValid() && layouts.isValid() && changes.isValid() && collapses.isValid());
    g.setRowData(4, QStringLiteral("kept"));
    g.setRowData(3, QStringLiteral("dropped"));
    const QPersistentModelIndex kept(m.indexForRow(4, 3));
    const QPersistentModelIndex dropped(m.indexForRow(3, 3));
    ASSERT_TRUE(kept.isValid() && dropped.isValid());
    {
        OutlineGrid::RedrawSuspender suspend(g);
        g.suspendRedraw(); // nested: only the outermost resume counts
        g.removeSubtotals();
        for (int i = 0; i < 1000; ++i) {
            const int r = g.addRow();
            g.setText(r, 1, QStringLiteral("T%1").arg(i % 7));
            g.setText(r, 3, QString::number(i));
        }
        g.sortRows(2, g.rowCount() - 1, 1, 2);
        g.subtotal(1, {3}, QColor(Qt::lightGray), true);
        g.setCollapsed(2, true);
        g.removeRowsIf(2, [&g](int r) { return g.rowData(r) == u"dropped"; });
        g.resumeRedraw();
        EXPECT_EQ(layouts.count(), 0);
    }
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(layouts.count(), 1);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(collapses.count(), 0) << "collapsed states travel with the layout change";
    EXPECT_EQ(m.rowCount(), 9) << "Install, Repair and T0 to T6";
    ASSERT_TRUE(kept.isValid());
    EXPECT_NE(OutlineGridModel::gridRow(kept), 4) << "the row moved in the fill";
    EXPECT_EQ(OutlineGridModel::gridRow(kept), g.findRow(QStringLiteral("kept")));
    EXPECT_EQ(kept.column(), 3);
    EXPECT_EQ(kept.data().toString(), QStringLiteral("2")); // Copper's open count
    EXPECT_FALSE(dropped.isValid());
}

TEST(OutlineGridModel, LiveChangesNotifyPrecisely)
{
    OutlineGrid g;
    makeSummary(g);
    OutlineGridModel m(&g);
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy changes(&m, &QAbstractItemModel::dataChanged);
    QSignalSpy headers(&m, &QAbstractItemModel::headerDataChanged);
    QSignalSpy resets(&m, &QAbstractItemModel::modelReset);
    QSignalSpy collapses(&m, &OutlineGridModel::collapseStateChanged);

    g.setText(4, 3, "9");
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].value<QModelIndex>(), m.indexForRow(4, 3));

    // The group text also shows in the tree column, so both columns change.
    changes.clear();
    g.setText(2, 1, "Installs");
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].value<QModelIndex>().column(), 1);
    EXPECT_EQ(changes[0][1].value<QModelIndex>().column(), 2);

    g.setText(1, 3, "Opened");
    EXPECT_EQ(headers.count(), 1);

    g.setCollapsed(2, true);
    ASSERT_EQ(collapses.count(), 1);
    EXPECT_EQ(collapses[0][0].value<QModelIndex>(), m.indexForRow(2, 0));
    EXPECT_TRUE(collapses[0][1].toBool());

    g.insertRow(4);
    g.moveUnder(5, 2);
    g.sortChildren(2, 2);
    EXPECT_EQ(resets.count(), 3) << "one reset per structural change";
}

TEST(OutlineGridModel, TesterAcceptsEveryOperation)
{
    OutlineGrid g;
    OutlineGridModel m(&g);
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    makeSummary(g);
    g.removeSubtotals();
    g.sortRows(2, 4, 2);
    g.subtotal(1, {3, 4}, QColor(), false);
    g.setCollapsed(2, true);
    g.removeRowsIf(2, [&g](int r) { return g.text(r, 2) == "Line"; });
    g.setRowCount(2);
    std::vector<OutlineGrid::TreeNode> tree = {
        {"Root", "#", -1}, {"b", "B", 0}, {"a", "A", 0}, {"a1", "A1", 2}};
    (void)g.appendTree(tree, 0, 0, true);
    g.setCollapsed(3, true);
    g.sortAllChildren(0);
    g.moveUnder(g.findRow("A1"), g.findRow("B"));
    g.setNode(2, false);
    g.setColCount(3);
    g.setFixedRows(0);
    g.setRowCount(0);
    EXPECT_EQ(m.rowCount(), 0);
}
