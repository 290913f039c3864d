#include "common/dlverror.h"
#include "views/outlinegrid.h"

#include <QStringList>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
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

/// A column (or, with col -1, the row data) of the data rows.
QStringList column(const OutlineGrid &g, int col)
{
    QStringList out;
    for (int r = g.fixedRows(); r < g.rowCount(); ++r)
        out << (col < 0 ? g.rowData(r) : g.text(r, col));
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

/// Root(0) > A(1) [a1 plain] > A1(2) ; Root > B(1) ; plain row under B.
void buildTree(OutlineGrid &g)
{
    fill(g, 2, {});
    const std::pair<const char *, int> rows[] = {{"Root", 0}, {"A", 1}, {"a1", -1},
                                                 {"A1", 2},   {"B", 1}, {"b1", -1}};
    for (const auto &[text, level] : rows) {
        const int r = g.addRow();
        g.setText(r, 0, text);
        g.setRowData(r, text);
        if (level >= 0)
            g.setNode(r, true, level);
    }
}

} // namespace

TEST(OutlineGrid, ShapeChangesCutCellsClearKeepsRowDataAndCurrentCellStaysInside)
{
    OutlineGrid g;
    fill(g, 3, {{"a", "1"}, {}, {}});
    g.setRowCount(12);
    g.setText(11, 2, "x");
    g.setRowCount(5);
    g.setRowCount(12);
    EXPECT_EQ(g.text(11, 2), QString()) << "cut rows come back empty";
    g.setColCount(5);
    EXPECT_EQ(g.colWidth(4), OutlineGrid::DefaultColWidth);

    g.setRowData(2, "k");
    g.setBold(2, 0, true);
    g.clear();
    EXPECT_EQ(g.text(2, 0), QString());
    EXPECT_FALSE(g.isBold(2, 0));
    EXPECT_EQ(g.findRow("k"), 2);

    g.setCurrentCell(4, 4);
    g.setRowCount(3);
    g.setColCount(2);
    EXPECT_EQ(g.currentRow(), 2);
    EXPECT_EQ(g.currentCol(), 1);
    g.setRowCount(1);
    EXPECT_EQ(g.fixedRows(), 1) << "fixed rows shrink with the grid";
}

TEST(OutlineGrid, NumbersReadBackAsTheirDigitsWhereverTheTextIsRead)
{
    // A whole number's text is written when first read: every reader must see the digits, a
    // sort must order by them, an export must hold them, and none is ever an empty cell.
    const qint64 values[] = {0,
                             -5,
                             42,
                             (qint64(1) << 53) - 1,
                             -((qint64(1) << 53) - 1),
                             (qint64(1) << 53) + 1,
                             std::numeric_limits<qint64>::min()};
    OutlineGrid g;
    g.setColCount(2);
    g.setRowCount(1);
    g.setFixedRows(1);
    for (const qint64 v : values) {
        const int row = g.addRow();
        g.setNumber(row, 0, v);
        g.setText(row, 1, QString::number(row));
        EXPECT_EQ(g.text(row, 0), QString::number(v));
        EXPECT_FALSE(g.isEmpty(row, 0));
        EXPECT_EQ(g.number(row, 0), double(v));
    }
    EXPECT_TRUE(g.isEmpty(0, 0));
    const QByteArray csv = g.commaText();
    for (const qint64 v : values)
        EXPECT_TRUE(csv.contains("\r\n" + QByteArray::number(v) + ","));
    g.sortRows(1, g.rowCount() - 1, 0);
    QStringList sorted;
    for (int r = 1; r < g.rowCount(); ++r)
        sorted << g.text(r, 0);
    EXPECT_EQ(sorted, (QStringList{"-5", "-9007199254740991", "-9223372036854775808", "0", "42",
                                   "9007199254740991", "9007199254740993"}));
}

TEST(OutlineGrid, OutOfRangeAccessThrowsError9)
{
    OutlineGrid g;
    fill(g, 3, {{"a"}});
    const std::vector<std::pair<const char *, std::function<void()>>> cases = {
        {"text row -1", [&] { (void)g.text(-1, 0); }},
        {"setText row past end", [&] { g.setText(3, 0, "x"); }},
        {"removeRow", [&] { g.removeRow(3); }},
        {"insertRow past end+1", [&] { g.insertRow(5); }},
        {"fixed rows above rows", [&] { g.setFixedRows(4); }},
        {"sort", [&] { g.sortRows(2, 3, 0); }},
    };
    for (const auto &[name, call] : cases)
        EXPECT_EQ(errorNumber(call), DLVError::SubscriptOutOfRange) << name;
}

TEST(OutlineGrid, SortIsExactAndStable)
{
    const struct
    {
        const char *name;
        QStringList keys, second; // column 0 and column 1; row data "1", "2", ...
        int first, last, col2;
        QStringList expectedData;
    } cases[] = {
        {"uppercase before lowercase", {"b", "B", "a", "A"}, {}, 2, 5, -1, {"4", "2", "3", "1"}},
        {"equal keys keep their order", {"x", "a", "x", "a"}, {}, 2, 5, -1, {"2", "4", "1", "3"}},
        {"second key breaks ties",
         {"T", "T", "S", "T"},
         {"c", "a", "z", "b"},
         2,
         5,
         1,
         {"3", "2", "4", "1"}},
        {"only the range moves, ordinal and not locale",
         {"z", "f", "é", "a"},
         {},
         3,
         4,
         -1,
         {"1", "2", "3", "4"}},
        {"text, not numbers", {"10", "9"}, {}, 2, 3, -1, {"1", "2"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        OutlineGrid g;
        fill(g, 2, {});
        for (qsizetype i = 0; i < c.keys.size(); ++i) {
            const int r = g.addRow();
            g.setText(r, 0, c.keys[i]);
            g.setText(r, 1, c.second.value(i));
            g.setRowData(r, QString::number(i + 1));
        }
        g.setBold(2, 0, true);
        g.sortRows(c.first, c.last, 0, c.col2);
        EXPECT_EQ(column(g, -1), c.expectedData);
        for (int r = 2; r < g.rowCount(); ++r) {
            EXPECT_EQ(g.isBold(r, 0), g.rowData(r) == "1") << "bold moves along";
            EXPECT_EQ(g.findRow(g.rowData(r)), r) << "index follows the sort";
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
    for (int r = 2; r < g.rowCount(); ++r) {
        const bool node = r == 2 || r == 4 || r == 7 || r == 9;
        EXPECT_EQ(g.isNode(r), node) << r;
        EXPECT_EQ(g.isBold(r, 1), node) << r;
        EXPECT_EQ(g.backColor(r, 3).isValid(), node) << r;
    }
    EXPECT_EQ(g.backColor(2, 3), QColor(224, 224, 224));
    EXPECT_EQ(levels(g), std::vector<int>({0, 1, 0, 1, 1, 0, 1, 0, 1}));
    EXPECT_EQ(g.childRows(-1), QList<int>({2, 4, 7, 9}));

    g.removeSubtotals();
    EXPECT_EQ(column(g, 1), QStringList({"", "a", "b", "c", "d"}));
    EXPECT_EQ(levels(g), std::vector<int>({0, 0, 0, 0, 0}));
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
    g.setRowData(2, "k1");
    EXPECT_EQ(g.findRow("k1"), 2);

    g.sortRows(2, g.rowCount() - 1, 0);
    for (int r = 2; r < g.rowCount(); ++r) {
        if (!g.rowData(r).isEmpty() && g.rowData(r) != "k1") {
            EXPECT_EQ(g.findRow(g.rowData(r)), r);
        }
    }

    // removeRowsIf judges the rows as they were before any removal.
    OutlineGrid h;
    fill(h, 2, {{"a", "1"}, {"b", ""}, {"c", "3"}, {"d", ""}});
    h.setRowData(5, "d");
    h.removeRowsIf(2, [&h](int r) { return h.text(r, 1).isEmpty(); });
    EXPECT_EQ(column(h, 0), QStringList({"a", "c"}));
    EXPECT_EQ(h.findRow("d"), -1);
}

TEST(OutlineGrid, OutlineNavigationAndCollapse)
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
    EXPECT_EQ(g.childRowAt(3, 1), 5);
    EXPECT_EQ(g.childRowAt(3, 2), -1);
    EXPECT_EQ(g.positionInParent(6), 1);
    EXPECT_EQ(g.childCount(0), 0) << "fixed rows have no children";

    g.setCollapsed(3, true);
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

// The shape revision vouches that every row still holds its data: whatever adds, removes or
// moves rows, or changes a row's data, must change it; cell writes and outline state must not
// (they would only cost a check). The text revision vouches that every cell shows what it
// showed: any write of another text or number must change it, writing the same value or
// anything besides texts must not.
TEST(OutlineGrid, RevisionsFollowWhatTheyVouchFor)
{
    const struct
    {
        const char *name;
        std::function<void(OutlineGrid &)> change;
        bool shape;
        bool text;
    } cases[] = {
        {"text", [](OutlineGrid &g) { g.setText(3, 1, QStringLiteral("x")); }, false, true},
        {"tree text", [](OutlineGrid &g) { g.setText(3, 0, QStringLiteral("x")); }, false, true},
        {"same text", [](OutlineGrid &g) { g.setText(3, 0, QString(g.text(3, 0))); }, false, false},
        {"range", [](OutlineGrid &g) { g.setText(2, 0, 4, 2, QStringLiteral("x")); }, false, true},
        {"number", [](OutlineGrid &g) { g.setNumber(3, 2, qint64(7)); }, false, true},
        {"decimal", [](OutlineGrid &g) { g.setDecimal(3, 2, 0.5); }, false, true},
        {"clear", [](OutlineGrid &g) { g.clear(); }, false, true},
        {"colour", [](OutlineGrid &g) { g.setBackColor(3, 1, QColor(Qt::red)); }, false, false},
        {"bold", [](OutlineGrid &g) { g.setBold(3, 0, true); }, false, false},
        {"height", [](OutlineGrid &g) { g.setRowHeight(3, 500); }, false, false},
        {"collapse", [](OutlineGrid &g) { g.setCollapsed(2, true); }, false, false},
        {"same row data", [](OutlineGrid &g) { g.setRowData(3, g.rowData(3)); }, false, false},
        {"row data", [](OutlineGrid &g) { g.setRowData(3, QStringLiteral("other")); }, true, false},
        {"add", [](OutlineGrid &g) { (void)g.addRow(); }, true, false},
        {"insert", [](OutlineGrid &g) { g.insertRow(3); }, true, false},
        {"remove", [](OutlineGrid &g) { g.removeRow(3); }, true, false},
        {"row count", [](OutlineGrid &g) { g.setRowCount(3); }, true, false},
        {"sort", [](OutlineGrid &g) { g.sortAllChildren(0); }, true, false},
        {"move", [](OutlineGrid &g) { (void)g.moveUnder(g.findRow("c"), g.findRow("b")); }, true,
         false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        OutlineGrid g;
        fill(g, 3, {});
        const std::vector<OutlineGrid::TreeNode> tree = {
            {"root", "r", -1}, {"b", "b", 0}, {"a", "a", 0}, {"c", "c", 0}};
        (void)g.appendTree(tree, 0);
        const quint64 shape = g.shapeRevision();
        const quint64 text = g.textRevision();
        c.change(g);
        EXPECT_EQ(g.shapeRevision() != shape, c.shape);
        EXPECT_EQ(g.textRevision() != text, c.text);
    }
}

TEST(OutlineGrid, AppendTreeRejectsBadInput)
{
    const std::vector<std::pair<const char *, std::vector<OutlineGrid::TreeNode>>> bad = {
        {"cycle", {{"a", "a", 1}, {"b", "b", 0}}},
        {"parent out of range", {{"a", "a", 5}}},
        {"own parent", {{"a", "a", 0}}},
    };
    for (const auto &[name, tree] : bad) {
        OutlineGrid r;
        fill(r, 1, {});
        EXPECT_EQ(errorNumber([&] { (void)r.appendTree(tree, 0); }), DLVError::InvalidCall) << name;
        EXPECT_EQ(r.rowCount(), 2) << name << ": a rejected tree adds nothing";
    }
}

TEST(OutlineGrid, TreeSiblingsSortExactlyByTheirWholeTexts)
{
    // The sort settles most pairs by a packed prefix of eight units; these texts tie there, end
    // inside it, hold U+0000 or units above 0x7FFF, so that any slip in the packing shows.
    const QString nul(QChar(0));
    const QString texts[] = {
        "Unit 1234 (level 3)",
        "Unit 1234 (level 2)",
        "Unit 1234",
        "Unit 12",
        "Unit 123",
        "Unit 12345",
        "",
        "U",
        "Unit" + nul,
        "Unit",
        "Unit" + nul + "x",
        QString(QChar(0xFFFF)) + "a",
        QString(QChar(0x8000)),
        QString(QChar(0x7FFF)),
        "unit",
        "Unit 1234 (level 3)", // equal texts keep their list order
        "abcdefghZ",
        "abcdefgh",
        "abcdefghA",
        "abcdefgi",
    };
    std::vector<OutlineGrid::TreeNode> nodes{{"root", "r", -1}};
    for (const QString &text : texts)
        nodes.push_back({text, QStringLiteral("k%1").arg(nodes.size()), 0});
    std::vector<int> expected(nodes.size() - 1);
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = int(i) + 1;
    std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) {
        return QString::compare(nodes[size_t(a)].text, nodes[size_t(b)].text, Qt::CaseSensitive) <
               0;
    });
    const OutlineGrid::TreeLayout layout = OutlineGrid::layOutTree(nodes, true);
    ASSERT_EQ(layout.order.size(), nodes.size());
    EXPECT_EQ(layout.order.front(), 0);
    EXPECT_EQ(std::vector<int>(layout.order.begin() + 1, layout.order.end()), expected);
}

TEST(OutlineGrid, DeepTreesBuildWithoutExhaustingTheStack)
{
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

TEST(OutlineGrid, CommaTextQuotesAndGuardsFormulas)
{
    const std::vector<std::tuple<const char *, QString, QByteArray>> cases = {
        {"plain", "Open", "Open"},
        {"comma", "a,b", "\"a,b\""},
        {"quote", "say \"hi\"", "\"say \"\"hi\"\"\""},
        {"line feed", "a\nb", "\"a\nb\""},
        {"formula", "=SUM(A1:A2)", "'=SUM(A1:A2)"},
        {"at sign", "@cmd", "'@cmd"},
        {"lone minus", "-", "'-"},
        {"negative decimal", "-0.5", "-0.5"},
        {"positive sign number", "+3", "+3"},
        {"exponent", "-1E5", "-1E5"},
        {"broken exponent", "-1E", "'-1E"},
        {"guarded and quoted", "=a,b", "\"'=a,b\""},
        // Spreadsheets skip leading TAB and CR before they read a formula.
        {"tab then formula", "\t=cmd|' /c calc'!A0", "'\t=cmd|' /c calc'!A0"},
        {"carriage return then formula", "\r@SUM(1)", "\"'\r@SUM(1)\""},
        {"tab before a number", "\t-12", "'\t-12"},
        {"unicode", "Técnico",
         "T\xc3\xa9"
         "cnico"},
    };
    for (const auto &[name, cell, field] : cases) {
        OutlineGrid g;
        g.setColCount(1);
        g.setRowCount(1);
        g.setText(0, 0, cell);
        EXPECT_EQ(g.commaText(), field + "\r\n") << name;
    }
}

namespace {

/// Counts the layout notices a grid sends.
class LayoutNoticeCounter final : public OutlineGrid::Observer
{
public:
    void gridStructureAboutToChange() override {}
    void gridStructureChanged() override {}
    void gridCellsChanged(int, int, int, int) override {}
    void gridCollapseStateChanged(int) override {}
    void gridLayoutSettingsChanged() override { ++notices; }
    void gridCurrentCellChanged(int, int) override {}
    void gridRedrawSuspended() override {}
    void gridRedrawResumed() override {}
    void gridDestroyed() override {}
    int notices = 0;
};

} // namespace

TEST(OutlineGrid, ColumnWidthsAtOnceSendOneLayoutNotice)
{
    constexpr int D = OutlineGrid::DefaultColWidth;
    struct Case
    {
        std::vector<int> widths;
        int notices;
        int error;
        std::vector<int> after;
    };
    // Applied in turn to one grid of four columns.
    const Case cases[] = {
        {{100, 200, -5}, 1, 0, {100, 200, 0, D}}, // negative widths hide, like setColWidth
        {{100, 200, 0}, 0, 0, {100, 200, 0, D}},  // nothing changed: no notice
        {{}, 0, 0, {100, 200, 0, D}},
        {{1, 2, 3, 4}, 1, 0, {1, 2, 3, 4}},
        {{9, 9, 9, 9, 9}, 0, 9, {1, 2, 3, 4}}, // more widths than columns: nothing changes
    };
    OutlineGrid g;
    fill(g, 4, {{"a"}});
    LayoutNoticeCounter counter;
    g.addObserver(&counter);
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.widths));
        counter.notices = 0;
        EXPECT_EQ(errorNumber([&] { g.setColWidths(c.widths); }), c.error);
        EXPECT_EQ(counter.notices, c.notices);
        std::vector<int> after;
        for (int col = 0; col < g.colCount(); ++col)
            after.push_back(g.colWidth(col));
        EXPECT_EQ(after, c.after);
    }
    g.removeObserver(&counter);
}

// A number written with setNumber() stays with its cell's text wherever the row goes, and any
// other write of the text drops it, so a reader of numbers never sees a stale one.
TEST(OutlineGrid, NumbersWrittenAsSuchTravelWithTheirTextAndGoWithAnyOtherWrite)
{
    const auto isNumber = [](double v) { return v == v; };
    const struct
    {
        const char *name;
        std::function<void(OutlineGrid &)> change;
        bool kept;
    } cases[] = {
        {"sort moves the row", [](OutlineGrid &g) { g.sortRows(2, 3, 0); }, true},
        {"text written", [](OutlineGrid &g) { g.setText(g.findRow("B"), 1, "-7"); }, false},
        {"range written", [](OutlineGrid &g) { g.setText(2, 1, 3, 1, "-7"); }, false},
        {"cleared", [](OutlineGrid &g) { g.clear(); }, false},
    };
    for (const auto &c : cases) {
        OutlineGrid g;
        fill(g, 2, {{"b", "0"}, {"a", "0"}});
        g.setRowData(2, QStringLiteral("B"));
        g.setRowData(3, QStringLiteral("A"));
        g.setNumber(2, 1, -2147483648LL);
        EXPECT_EQ(g.text(2, 1), QStringLiteral("-2147483648")) << c.name;
        EXPECT_EQ(g.number(2, 1), -2147483648.0) << c.name;
        EXPECT_FALSE(isNumber(g.number(3, 1))) << c.name << ": text-written cells have none";
        c.change(g);
        const int row = g.findRow(QStringLiteral("B"));
        EXPECT_EQ(isNumber(g.number(row, 1)), c.kept) << c.name;
        if (c.kept) {
            EXPECT_NE(row, 2) << c.name;
            EXPECT_EQ(g.text(row, 1), QStringLiteral("-2147483648")) << c.name;
        }
    }
}
