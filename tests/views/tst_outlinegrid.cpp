#include "common/dlverror.h"
#include "views/outlinegrid.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

/// A grid with two fixed rows and one column per entry; data rows get the texts given.
void fill(OutlineGrid &g, int cols, const std::vector<QStringList> &rows)
{
    g.setColCount(cols);
    g.setRowCount(2);
    g.setFixedRows(2);
    for (const QStringList &texts : rows) {
        const int r = g.addRow();
        for (int c = 0; c < texts.size(); ++c)
            g.setText(r, c, texts[c]);
    }
}

QStringList column(const OutlineGrid &g, int col, int first = 2)
{
    QStringList out;
    for (int r = first; r < g.rowCount(); ++r)
        out << g.text(r, col);
    return out;
}

QStringList rowDatas(const OutlineGrid &g, int first = 2)
{
    QStringList out;
    for (int r = first; r < g.rowCount(); ++r)
        out << g.rowData(r);
    return out;
}

std::vector<int> levels(const OutlineGrid &g)
{
    std::vector<int> out;
    for (int r = g.fixedRows(); r < g.rowCount(); ++r)
        out.push_back(g.outlineLevel(r));
    return out;
}

int errorNumber(const std::function<void()> &f)
{
    try {
        f();
    } catch (const DLVError &e) {
        return e.number();
    }
    return 0;
}

/// Records what the grid announces.
class Recorder final : public OutlineGrid::Observer
{
public:
    QStringList events;
    void gridStructureAboutToChange() override { events << "about"; }
    void gridStructureChanged() override { events << "structure"; }
    void gridCellsChanged(int r1, int c1, int r2, int c2) override
    {
        events << QStringLiteral("cells %1,%2-%3,%4").arg(r1).arg(c1).arg(r2).arg(c2);
    }
    void gridCollapseStateChanged(int row) override
    {
        events << QStringLiteral("collapse %1").arg(row);
    }
    void gridLayoutSettingsChanged() override { events << "layout"; }
    void gridCurrentCellChanged(int row, int col) override
    {
        events << QStringLiteral("current %1,%2").arg(row).arg(col);
    }
    void gridRedrawSuspended() override { events << "suspended"; }
    void gridRedrawResumed() override { events << "resumed"; }
    void gridDestroyed() override { events << "destroyed"; }
};

} // namespace

TEST(OutlineGrid, DimensionsGrowAndCut)
{
    OutlineGrid g;
    g.setColCount(3);
    g.setRowCount(12);
    g.setFixedRows(2);
    g.setText(11, 2, "x");
    EXPECT_EQ(g.rowCount(), 12);
    g.setRowCount(5);
    EXPECT_EQ(g.rowCount(), 5);
    g.setRowCount(12);
    EXPECT_EQ(g.text(11, 2), QString()) << "cut rows come back empty";
    g.setColCount(5);
    EXPECT_EQ(g.colWidth(4), OutlineGrid::DefaultColWidth);
    g.setRowCount(1);
    EXPECT_EQ(g.fixedRows(), 1) << "fixed rows shrink with the grid";
    g.setRowCount(0);
    EXPECT_EQ(g.rowCount(), 0);
}

TEST(OutlineGrid, ClearKeepsShapeAndRowData)
{
    OutlineGrid g;
    fill(g, 2, {{"a", "1"}});
    g.setRowData(2, "k");
    g.setBold(2, 0, true);
    g.setBackColor(2, 1, Qt::red);
    g.clear();
    EXPECT_EQ(g.rowCount(), 3);
    EXPECT_EQ(g.text(2, 0), QString());
    EXPECT_FALSE(g.isBold(2, 0));
    EXPECT_FALSE(g.backColor(2, 1).isValid());
    EXPECT_EQ(g.findRow("k"), 2);
}

TEST(OutlineGrid, OutOfRangeAccessThrowsError9)
{
    OutlineGrid g;
    fill(g, 3, {{"a"}});
    const std::vector<std::pair<const char *, std::function<void()>>> cases = {
        {"text row -1", [&] { (void)g.text(-1, 0); }},
        {"text row past end", [&] { (void)g.text(3, 0); }},
        {"text col past end", [&] { (void)g.text(0, 3); }},
        {"setText", [&] { g.setText(3, 0, "x"); }},
        {"range", [&] { g.setBold(2, 0, 2, 3, true); }},
        {"rowData", [&] { (void)g.rowData(5); }},
        {"removeRow", [&] { g.removeRow(3); }},
        {"insertRow past end+1", [&] { g.insertRow(5); }},
        {"colWidth", [&] { (void)g.colWidth(-1); }},
        {"current cell", [&] { g.setCurrentCell(3, 0); }},
        {"fixed rows above rows", [&] { g.setFixedRows(4); }},
        {"sort", [&] { g.sortRows(2, 3, 0); }},
        {"isNode", [&] { (void)g.isNode(9); }},
    };
    for (const auto &[name, call] : cases)
        EXPECT_EQ(errorNumber(call), DLVError::SubscriptOutOfRange) << name;
}

TEST(OutlineGrid, ColoursKeepRgbAndConvertFromBgr)
{
    EXPECT_EQ(OutlineGrid::fromBgr(0xD9FCFD), QColor(253, 252, 217));
    EXPECT_EQ(OutlineGrid::fromBgr(0xFAFDC6), QColor(198, 253, 250));
    EXPECT_EQ(OutlineGrid::fromBgr(0xE4FEE3), QColor(227, 254, 228));
    OutlineGrid g;
    fill(g, 3, {{}, {}});
    g.setBackColor(0, 0, 3, 2, OutlineGrid::fromBgr(0xE0E0E0));
    EXPECT_EQ(g.backColor(3, 2).rgb(), qRgb(224, 224, 224));
    g.setBackColor(1, 1, QColor());
    EXPECT_FALSE(g.backColor(1, 1).isValid());
    EXPECT_TRUE(g.backColor(1, 0).isValid());
}

TEST(OutlineGrid, SortIsExactAndStable)
{
    struct Case
    {
        const char *name;
        std::vector<QStringList> rows; // col0, col1, row data in col2
        int first, last, col1, col2;
        QStringList expectedData;
    };
    const std::vector<Case> cases = {
        {"uppercase sorts before lowercase",
         {{"b", "", "1"}, {"B", "", "2"}, {"a", "", "3"}, {"A", "", "4"}},
         2,
         5,
         0,
         -1,
         {"4", "2", "3", "1"}},
        {"equal keys keep their order",
         {{"x", "", "1"}, {"a", "", "2"}, {"x", "", "3"}, {"a", "", "4"}},
         2,
         5,
         0,
         -1,
         {"2", "4", "1", "3"}},
        {"second key breaks ties",
         {{"T", "c", "1"}, {"T", "a", "2"}, {"S", "z", "3"}, {"T", "b", "4"}},
         2,
         5,
         0,
         1,
         {"3", "2", "4", "1"}},
        {"empty text sorts first", {{"b", "", "1"}, {"", "", "2"}}, 2, 3, 0, -1, {"2", "1"}},
        {"only the range moves",
         {{"z", "", "1"}, {"c", "", "2"}, {"b", "", "3"}, {"a", "", "4"}},
         3,
         4,
         0,
         -1,
         {"1", "3", "2", "4"}},
        {"text compares, not numbers", {{"10", "", "1"}, {"9", "", "2"}}, 2, 3, 0, -1, {"1", "2"}},
        {"ordinal, not locale", {{"é", "", "1"}, {"f", "", "2"}}, 2, 3, 0, -1, {"2", "1"}},
    };
    for (const Case &c : cases) {
        OutlineGrid g;
        fill(g, 3, c.rows);
        for (int r = 2; r < g.rowCount(); ++r)
            g.setRowData(r, g.text(r, 2));
        g.setBold(2, 0, true);
        g.sortRows(c.first, c.last, c.col1, c.col2);
        EXPECT_EQ(rowDatas(g), c.expectedData) << c.name;
        for (int r = 2; r < g.rowCount(); ++r) {
            EXPECT_EQ(g.isBold(r, 0), g.rowData(r) == c.rows[0][2])
                << c.name << " bold moves along";
            EXPECT_EQ(g.findRow(g.rowData(r)), r) << c.name << " index follows the sort";
        }
    }
}

TEST(OutlineGrid, SubtotalsGroupRunsAndSum)
{
    OutlineGrid g;
    fill(g, 4,
         {{"", "", "", ""},
          {"T1", "a", "2", "0"},
          {"T1", "b", "3", "0"},
          {"T2", "c", "0", ""},
          {"T1", "d", "1.6", "-4"}});
    g.subtotal(0, {2, 3}, OutlineGrid::fromBgr(0xE0E0E0), true);

    // One group row above each run, the run that repeats later gets its own group.
    EXPECT_EQ(column(g, 0), QStringList({"", "", "T1", "T1", "T1", "T2", "T2", "T1", "T1"}));
    EXPECT_EQ(column(g, 1), QStringList({"", "", "", "a", "b", "", "c", "", "d"}));
    EXPECT_EQ(column(g, 2), QStringList({"", "", "5", "2", "3", "", "0", "2", "1.6"}))
        << "sums are written with \"#\": rounded, and nothing for zero";
    EXPECT_EQ(column(g, 3), QStringList({"", "", "", "0", "0", "", "", "-4", "-4"}));
    const std::vector<bool> nodes = {true, false, true, false, false, true, false, true, false};
    for (int r = 2; r < g.rowCount(); ++r) {
        EXPECT_EQ(g.isNode(r), nodes[size_t(r - 2)]) << r;
        if (g.isNode(r)) {
            EXPECT_TRUE(g.isBold(r, 1));
            EXPECT_EQ(g.backColor(r, 3), QColor(224, 224, 224));
            EXPECT_FALSE(g.isCollapsed(r));
        } else {
            EXPECT_FALSE(g.isBold(r, 1));
            EXPECT_FALSE(g.backColor(r, 3).isValid());
        }
    }
    EXPECT_EQ(levels(g), std::vector<int>({0, 1, 0, 1, 1, 0, 1, 0, 1}));
    EXPECT_EQ(g.childRows(4), QList<int>({5, 6}));
    EXPECT_EQ(g.childRows(-1), QList<int>({2, 4, 7, 9}));

    g.removeSubtotals();
    EXPECT_EQ(column(g, 1), QStringList({"", "a", "b", "c", "d"}));
    EXPECT_EQ(levels(g), std::vector<int>({0, 0, 0, 0, 0}));
}

TEST(OutlineGrid, SubtotalUsesGivenFormatAndKeepsExistingNodes)
{
    OutlineGrid g;
    fill(g, 2, {{"A", "1"}, {"A", "2"}, {"N", ""}, {"A", "4"}});
    g.setNode(4, true, 0);
    g.subtotal(0, {1}, QColor(), false, 0, [](double v) { return QString::number(v, 'f', 1); });
    EXPECT_EQ(column(g, 1), QStringList({"3.0", "1", "2", "", "4.0", "4"}));
    EXPECT_TRUE(g.isNode(5));
    EXPECT_EQ(g.text(5, 0), "N") << "an existing node ends the run and stays";
    EXPECT_TRUE(g.isNode(6));
}

TEST(OutlineGrid, FindRowFollowsEveryChange)
{
    OutlineGrid g;
    fill(g, 1, {});
    g.setRowData(0, "header"); // fixed rows are never found
    // The summary fill's pattern: find, append, name, find again.
    for (int i = 0; i < 50; ++i) {
        const QString key = QStringLiteral("k%1").arg(i % 25);
        if (g.findRow(key) < 0)
            g.setRowData(g.addRow(), key);
    }
    EXPECT_EQ(g.rowCount(), 27);
    EXPECT_EQ(g.findRow("header"), -1);
    EXPECT_EQ(g.findRow("k0"), 2);
    EXPECT_EQ(g.findRow("k24"), 26);
    EXPECT_EQ(g.findRow(""), -1);
    EXPECT_EQ(g.findRow("K0"), -1) << "keys match exactly";

    g.insertRow(3);
    g.setRowData(3, "new");
    EXPECT_EQ(g.findRow("new"), 3);
    EXPECT_EQ(g.findRow("k1"), 4);
    g.removeRow(2);
    EXPECT_EQ(g.findRow("k0"), -1);
    EXPECT_EQ(g.findRow("new"), 2);
    EXPECT_EQ(g.findRow("k24"), 26);

    // Duplicates: the first row wins; renaming it exposes the next one.
    g.setRowData(20, "k1");
    EXPECT_EQ(g.findRow("k1"), 3);
    g.setRowData(3, "other");
    EXPECT_EQ(g.findRow("k1"), 20);
    EXPECT_EQ(g.findRow("other"), 3);
    g.setRowData(2, "k1");
    EXPECT_EQ(g.findRow("k1"), 2);

    g.sortRows(2, g.rowCount() - 1, 0);
    for (int r = 2; r < g.rowCount(); ++r) {
        if (!g.rowData(r).isEmpty() && g.rowData(r) != "k1") {
            EXPECT_EQ(g.findRow(g.rowData(r)), r);
        }
    }
}

TEST(OutlineGrid, RemoveRowsIfJudgesOriginalRows)
{
    OutlineGrid g;
    fill(g, 2, {{"a", "1"}, {"b", ""}, {"c", "3"}, {"d", ""}});
    g.setRowData(5, "d");
    g.removeRowsIf(2, [&g](int r) { return g.text(r, 1).isEmpty(); });
    EXPECT_EQ(column(g, 0), QStringList({"a", "c"}));
    EXPECT_EQ(g.findRow("d"), -1);
}

namespace {

/// Root(0) > A(1) [a1 plain] > A1(2) ; Root > B(1) ; plain row under B.
void buildTree(OutlineGrid &g)
{
    fill(g, 2, {{"Root"}, {"A"}, {"a1"}, {"A1"}, {"B"}, {"b1"}});
    const int lv[] = {0, 1, -1, 2, 1, -1};
    for (int i = 0; i < 6; ++i) {
        g.setRowData(i + 2, g.text(i + 2, 0));
        if (lv[i] >= 0)
            g.setNode(i + 2, true, lv[i]);
    }
}

} // namespace

TEST(OutlineGrid, OutlineNavigation)
{
    OutlineGrid g;
    buildTree(g);
    EXPECT_EQ(levels(g), std::vector<int>({0, 1, 2, 2, 1, 2}));
    struct Case
    {
        int row, parent, end, count;
    };
    for (const Case &c : {Case{2, -1, 7, 2}, Case{3, 2, 5, 2}, Case{4, 3, 4, 0}, Case{5, 3, 5, 0},
                          Case{6, 2, 7, 1}, Case{7, 6, 7, 0}}) {
        EXPECT_EQ(g.parentRow(c.row), c.parent) << c.row;
        EXPECT_EQ(g.subtreeEnd(c.row), c.end) << c.row;
        EXPECT_EQ(g.childCount(c.row), c.count) << c.row;
    }
    EXPECT_EQ(g.childRows(3), QList<int>({4, 5}));
    EXPECT_EQ(g.childRowAt(3, 1), 5);
    EXPECT_EQ(g.childRowAt(3, 2), -1);
    EXPECT_EQ(g.positionInParent(6), 1);
    EXPECT_EQ(g.parentRow(0), -1);
    EXPECT_EQ(g.childCount(0), 0) << "fixed rows have no children";
}

TEST(OutlineGrid, CollapseHidesDescendantsOnly)
{
    OutlineGrid g;
    buildTree(g);
    g.setCollapsed(3, true);
    EXPECT_EQ(g.collapseState(3), OutlineGrid::Collapsed);
    EXPECT_EQ(g.collapseState(2), OutlineGrid::Expanded);
    const bool visible[] = {true, true, false, false, true, true};
    for (int r = 2; r < 8; ++r)
        EXPECT_EQ(g.isRowVisible(r), visible[r - 2]) << r;
    g.setCollapsed(2, true);
    for (int r = 3; r < 8; ++r)
        EXPECT_FALSE(g.isRowVisible(r)) << r;
    g.setCollapsed(4, true); // a plain row: ignored
    EXPECT_FALSE(g.isCollapsed(4));
    g.expandAll();
    for (int r = 2; r < 8; ++r)
        EXPECT_TRUE(g.isRowVisible(r)) << r;
    g.setCollapsed(6, true);
    g.setNode(6, false);
    EXPECT_FALSE(g.isCollapsed(6)) << "a row that stops being a node is not collapsed";
}

TEST(OutlineGrid, MoveUnderCarriesTheSubtree)
{
    OutlineGrid g;
    buildTree(g);
    // A (with a1 and A1) under B: B's plain child stays ahead of the moved node.
    const int moved = g.moveUnder(3, 6);
    EXPECT_EQ(moved, 5);
    EXPECT_EQ(rowDatas(g), QStringList({"Root", "B", "b1", "A", "a1", "A1"}));
    EXPECT_EQ(levels(g), std::vector<int>({0, 1, 2, 2, 3, 3}));
    EXPECT_EQ(g.parentRow(5), 3);
    EXPECT_EQ(g.findRow("A1"), 7);

    // A plain row goes before the node children of its new parent.
    EXPECT_EQ(g.moveUnder(6, 2), 3);
    EXPECT_EQ(rowDatas(g), QStringList({"Root", "a1", "B", "b1", "A", "A1"}));
    EXPECT_EQ(g.parentRow(3), 2);

    EXPECT_EQ(errorNumber([&] { g.moveUnder(4, 6); }), DLVError::InvalidCall) << "own subtree";
    EXPECT_EQ(errorNumber([&] { g.moveUnder(6, 5); }), DLVError::InvalidCall) << "plain target";
    EXPECT_EQ(errorNumber([&] { g.moveUnder(0, 2); }), DLVError::InvalidCall) << "fixed row";
}

TEST(OutlineGrid, SortChildrenKeepsSubtreesAndPlainRowsFirst)
{
    OutlineGrid g;
    fill(g, 1, {{"R"}, {"z"}, {"C"}, {"c1"}, {"a"}, {"B"}, {"b"}});
    const int lv[] = {0, -1, 1, -1, -1, 1, -1};
    for (int i = 0; i < 7; ++i) {
        g.setRowData(i + 2, g.text(i + 2, 0));
        if (lv[i] >= 0)
            g.setNode(i + 2, true, lv[i]);
    }
    // As built: R > [z (plain), C > [c1, a], B > [b]]
    g.sortChildren(2, 0);
    EXPECT_EQ(column(g, 0), QStringList({"R", "z", "B", "b", "C", "c1", "a"}));
    g.sortAllChildren(0);
    EXPECT_EQ(column(g, 0), QStringList({"R", "z", "B", "b", "C", "a", "c1"}));
    EXPECT_EQ(g.findRow("c1"), 8);
}

TEST(OutlineGrid, AppendTreeBuildsDepthFirst)
{
    OutlineGrid g;
    fill(g, 3, {});
    // Parents listed after children, as a lookup in any order may give them.
    const std::vector<OutlineGrid::TreeNode> nodes = {
        {"Root", "#", -1}, {"West", "W", 3},    {"East", "E", 0},  {"North", "N", 0},
        {"Alpha", "A", 3}, {"east 2", "E2", 2}, {"Same", "S1", 0}, {"Same", "S2", 0},
    };
    const std::vector<int> rows = g.appendTree(nodes, 1, 0, true);
    EXPECT_EQ(column(g, 1),
              QStringList({"Root", "East", "east 2", "North", "Alpha", "West", "Same", "Same"}));
    EXPECT_EQ(rowDatas(g), QStringList({"#", "E", "E2", "N", "A", "W", "S1", "S2"}))
        << "equal texts keep list order";
    EXPECT_EQ(levels(g), std::vector<int>({0, 1, 2, 1, 2, 2, 1, 1}));
    EXPECT_EQ(rows, std::vector<int>({2, 7, 3, 5, 6, 4, 8, 9}));
    for (int r = 2; r < g.rowCount(); ++r) {
        EXPECT_TRUE(g.isNode(r));
        EXPECT_EQ(g.findRow(g.rowData(r)), r);
    }

    OutlineGrid unsorted;
    fill(unsorted, 1, {});
    (void)unsorted.appendTree({{"b", "b", -1}, {"a", "a", -1}, {"c", "c", 0}}, 0);
    EXPECT_EQ(column(unsorted, 0), QStringList({"b", "c", "a"}));
}

TEST(OutlineGrid, AppendTreeRejectsBadInput)
{
    OutlineGrid g;
    fill(g, 1, {});
    EXPECT_EQ(errorNumber([&] {
                  (void)g.appendTree({{"a", "a", 1}, {"b", "b", 0}}, 0);
              }),
              DLVError::InvalidCall)
        << "cycle";
    EXPECT_EQ(errorNumber([&] { (void)g.appendTree({{"a", "a", 5}}, 0); }), DLVError::InvalidCall);
    EXPECT_EQ(errorNumber([&] { (void)g.appendTree({{"a", "a", 0}}, 0); }), DLVError::InvalidCall);
    EXPECT_EQ(g.rowCount(), 2) << "a rejected tree adds nothing";
}

TEST(OutlineGrid, DeepAndWideTreesBuild)
{
    // A chain 10,000 deep must not exhaust the stack; a wide tree must stay linear.
    OutlineGrid g;
    fill(g, 12, {});
    std::vector<OutlineGrid::TreeNode> chain(10000);
    for (int i = 0; i < 10000; ++i)
        chain[size_t(i)] = {QString::number(i), QStringLiteral("c%1").arg(i), i - 1};
    (void)g.appendTree(chain, 0, 0, true);
    EXPECT_EQ(g.outlineLevel(g.rowCount() - 1), 9999);
    EXPECT_EQ(g.subtreeEnd(2), g.rowCount() - 1);
    g.sortAllChildren(0);
    EXPECT_EQ(g.findRow("c9999"), 10001);
    g.setCollapsed(2, true);
    EXPECT_FALSE(g.isRowVisible(10001));
}

TEST(OutlineGrid, SuspendedRedrawSendsOneResume)
{
    OutlineGrid g;
    fill(g, 2, {{"a"}});
    Recorder rec;
    g.addObserver(&rec);
    {
        OutlineGrid::RedrawSuspender outer(g);
        g.suspendRedraw();
        g.setText(2, 0, "b");
        g.addRow();
        g.setCollapsed(2, true);
        g.setCurrentCell(2, 1);
        g.resumeRedraw();
        EXPECT_EQ(rec.events, QStringList({"suspended"})) << "nothing per cell while suspended";
    }
    EXPECT_EQ(rec.events, QStringList({"suspended", "resumed"}));
    rec.events.clear();
    g.setText(2, 1, "x");
    g.insertRow(2);
    g.setColWidth(1, 0);
    g.setCurrentCell(3, 0);
    EXPECT_EQ(rec.events,
              QStringList({"cells 2,1-2,1", "about", "structure", "layout", "current 3,0"}));
    EXPECT_TRUE(g.isColHidden(1));
    g.removeObserver(&rec);
}

TEST(OutlineGrid, CurrentCellStaysInside)
{
    OutlineGrid g;
    fill(g, 3, {{}, {}, {}});
    g.setCurrentCell(4, 2);
    g.setRowCount(3);
    g.setColCount(2);
    EXPECT_EQ(g.currentRow(), 2);
    EXPECT_EQ(g.currentCol(), 1);
    g.setCurrentCell(0, 0);
    EXPECT_EQ(g.currentRow(), 0);
}

TEST(OutlineGrid, CommaTextQuotesAndGuardsFormulas)
{
    struct Case
    {
        const char *name;
        QString cell;
        QByteArray field;
    };
    const std::vector<Case> cases = {
        {"plain", "Open", "Open"},
        {"empty", "", ""},
        {"comma", "a,b", "\"a,b\""},
        {"quote", "say \"hi\"", "\"say \"\"hi\"\"\""},
        {"line feed", "a\nb", "\"a\nb\""},
        {"carriage return", "a\rb", "\"a\rb\""},
        {"formula", "=SUM(A1:A2)", "'=SUM(A1:A2)"},
        {"plus formula", "+A1", "'+A1"},
        {"at sign", "@cmd", "'@cmd"},
        {"minus text", "-x", "'-x"},
        {"lone minus", "-", "'-"},
        {"negative integer", "-12", "-12"},
        {"negative decimal", "-0.5", "-0.5"},
        {"positive sign number", "+3", "+3"},
        {"exponent", "-1E5", "-1E5"},
        {"broken exponent", "-1E", "'-1E"},
        {"two periods", "-1.2.3", "'-1.2.3"},
        {"guarded and quoted", "=a,b", "\"'=a,b\""},
        {"unicode", "Técnico",
         "T\xc3\xa9"
         "cnico"},
        {"digits only", "12", "12"},
    };
    for (const Case &c : cases) {
        OutlineGrid g;
        g.setColCount(1);
        g.setRowCount(1);
        g.setText(0, 0, c.cell);
        EXPECT_EQ(g.commaText(), c.field + "\r\n") << c.name;
    }
}

TEST(OutlineGrid, CommaTextWritesEveryRowAndColumn)
{
    OutlineGrid g;
    fill(g, 3, {{"", "Job", "5"}, {"", "", ""}});
    g.setText(0, 2, "Work Orders");
    g.setText(1, 1, "Jobs");
    g.setText(1, 2, "Open");
    g.setNode(2, true, 0);
    g.setCollapsed(2, true); // collapsed rows are written too
    const QByteArray expected = ",,Work Orders\r\n,Jobs,Open\r\n,Job,5\r\n,,\r\n";
    EXPECT_EQ(g.commaText(), expected);

    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath("grid.csv");
    ASSERT_TRUE(g.saveCommaText(path));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), expected);
    EXPECT_FALSE(g.saveCommaText(dir.filePath("missing/dir/grid.csv")));
}

TEST(OutlineGrid, LargeFillKeepsIndexCorrect)
{
    OutlineGrid g;
    g.setColCount(12);
    g.setRowCount(2);
    g.setFixedRows(2);
    {
        OutlineGrid::RedrawSuspender suspend(g);
        for (int i = 0; i < 10000; ++i) {
            const QString key = QStringLiteral("u%1").arg(i);
            int r = g.findRow(key);
            if (r < 0) {
                r = g.addRow();
                g.setRowData(r, key);
            }
            for (int c = 1; c < 12; ++c)
                g.setText(r, c, QString::number(i + c));
        }
    }
    EXPECT_EQ(g.rowCount(), 10002);
    EXPECT_EQ(g.findRow("u9999"), 10001);
    EXPECT_EQ(g.text(10001, 11), "10010");
}
