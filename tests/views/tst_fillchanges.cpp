#include "loadedmodel.h"
#include "views/celldecorator.h"
#include "views/outlinegrid.h"
#include "views/outlinegridmodel.h"
#include "views/outlinegridview.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QSignalSpy>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <vector>

// What the item model tells when a fill ends: the changed cells alone when the fill kept the
// grid's shape, one keyed layout change when it did not.

namespace {

constexpr int Cols = 6; // 0 margin, 1 group text, 2 tree, 3..5 figures

/// One data row as a fill writes it.
struct Line
{
    QString key;
    QString group; ///< column 1
    QString name;  ///< column 2
    qint64 open = 0, late = 0, done = 0;
    int level = -1; ///< >= 0: a node at that level
    bool collapsed = false;
    QRgb back = 0;
    bool bold = false;
};

std::vector<Line> summaryLines()
{
    return {
        {"INS", "Install", "", 5, 1, 3, 0},        {"INS|FIB", "Install", "Fiber", 3, 1, 2},
        {"INS|COP", "Install", "Copper", 2, 0, 1}, {"REP", "Repair", "", 7, 4, 0, 0},
        {"REP|LIN", "Repair", "Line", 7, 4, 0},
    };
}

/// Builds the header once, like a grid's initialisation.
void initGrid(OutlineGrid &g)
{
    g.setColCount(Cols);
    g.setRowCount(2);
    g.setFixedRows(2);
    g.setText(0, 3, 0, 5, "Work Orders");
    g.setText(1, 2, "Jobs");
    g.setText(1, 3, "Open");
    g.setText(1, 4, "Late");
    g.setText(1, 5, "Done");
    g.setOutlineCol(2);
    g.setOutlineTextCol(1);
}

/// A whole refill as the real fills do it: every data row removed and written anew (fresh
/// strings, numbers through setNumber), inside one suspension.
void refill(OutlineGrid &g, const std::vector<Line> &lines,
            const std::function<void(OutlineGrid &)> &after = {})
{
    OutlineGrid::RedrawSuspender suspend(g);
    g.removeSubtotals();
    g.setRowCount(2);
    for (const Line &line : lines) {
        const int r = line.level >= 0 ? g.addNodeRow(line.level) : g.addRow();
        g.setRowData(r, line.key);
        g.setText(r, 1, QString(line.group)); // a deep copy: equal text, not shared
        g.setText(r, 2, QString(line.name));
        g.setNumber(r, 3, line.open);
        g.setNumber(r, 4, line.late);
        g.setNumber(r, 5, line.done);
        if (line.back != 0)
            g.setBackColor(r, 0, r, Cols - 1, QColor::fromRgb(line.back));
        if (line.bold)
            g.setBold(r, 0, r, Cols - 1, true);
        if (line.collapsed)
            g.setCollapsed(r, true);
    }
    if (after)
        after(g);
}

/// Every notice the model can give, counted.
struct Spies
{
    explicit Spies(OutlineGridModel &m)
        : data(&m, &QAbstractItemModel::dataChanged),
          headers(&m, &QAbstractItemModel::headerDataChanged),
          layouts(&m, &QAbstractItemModel::layoutChanged),
          layoutsAhead(&m, &QAbstractItemModel::layoutAboutToBeChanged),
          resets(&m, &QAbstractItemModel::modelReset),
          inserts(&m, &QAbstractItemModel::rowsInserted),
          removes(&m, &QAbstractItemModel::rowsRemoved),
          collapses(&m, &OutlineGridModel::collapseStateChanged),
          currents(&m, &OutlineGridModel::currentCellChanged)
    {}
    [[nodiscard]] int structural() const
    {
        return int(layouts.count() + layoutsAhead.count() + resets.count() + inserts.count() +
                   removes.count());
    }
    QSignalSpy data, headers, layouts, layoutsAhead, resets, inserts, removes, collapses, currents;
};

/// A summary-shaped grid filled once, and a model over it that the tester watches.
struct WatchedSummary
{
    WatchedSummary()
    {
        initGrid(grid);
        refill(grid, summaryLines());
        model = std::make_unique<OutlineGridModel>(&grid);
        tester = std::make_unique<QAbstractItemModelTester>(
            model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    }
    OutlineGrid grid;
    std::unique_ptr<OutlineGridModel> model;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

/// A dataChanged notice as grid rows and columns.
struct Notice
{
    int row, col1, col2;
    std::set<int> roles;
    bool operator==(const Notice &) const = default;
};

std::vector<Notice> notices(const QSignalSpy &spy)
{
    std::vector<Notice> out;
    for (const QList<QVariant> &args : spy) {
        const auto from = args[0].value<QModelIndex>();
        const auto to = args[1].value<QModelIndex>();
        EXPECT_EQ(from.parent(), to.parent());
        EXPECT_EQ(from.row(), to.row()) << "one notice per row";
        const QList<int> roles = args[2].value<QList<int>>();
        out.push_back({OutlineGridModel::gridRow(from), from.column(), to.column(),
                       std::set<int>(roles.begin(), roles.end())});
    }
    return out;
}

const std::set<int> TextRoles{Qt::DisplayRole, Qt::ToolTipRole, Qt::TextAlignmentRole};

/// Marks every cell, reading the grid it decorates by row number as the real ones do.
struct ReadingDecorator final : CellDecorator
{
    explicit ReadingDecorator(const OutlineGrid &grid) : grid(grid) {}
    Decoration decoration(int row, int col) const override
    {
        ++calls;
        return {{}, {}, grid.text(row, col).isEmpty() ? QString() : QStringLiteral("*")};
    }
    const OutlineGrid &grid;
    mutable int calls = 0;
};

} // namespace

TEST(FillChanges, SameShapeTellsExactlyTheChangedCells)
{
    struct Case
    {
        const char *name;
        std::function<void(std::vector<Line> &)> edit; ///< on the lines of the second fill
        std::function<void(OutlineGrid &)> after;      ///< inside the second fill, at its end
        std::vector<Notice> expected;                  ///< grid rows: 2 INS, 3 FIB, ... 6 LIN
        int headers = 0;
        int collapses = 0;
        int currents = 0;
    };
    const std::vector<Case> cases = {
        {"same data", {}, {}, {}},
        {"one number", [](auto &l) { l[2].late = 9; }, {}, {{4, 4, 4, TextRoles}}},
        {"a number to zero and back to its own text",
         [](auto &l) { l[1].open = 0; },
         [](OutlineGrid &g) { g.setText(3, 4, "1"); }, // the same text, not as a number
         {{3, 3, 3, TextRoles}}},
        {"two cells of one row: one tight range",
         [](auto &l) {
             l[4].open = 8;
             l[4].done = 1;
         },
         {},
         {{6, 3, 5, TextRoles}}},
        {"two rows",
         [](auto &l) { l[0].done = 4, l[3].done = 2; },
         {},
         {{2, 5, 5, TextRoles}, {5, 5, 5, TextRoles}}},
        {"back colour",
         [](auto &l) { l[1].back = qRgb(255, 0, 0); },
         {},
         {{3, 0, Cols - 1, {Qt::BackgroundRole}}}},
        {"bold", [](auto &l) { l[2].bold = true; }, {}, {{4, 0, Cols - 1, {Qt::FontRole}}}},
        {"bold and a number",
         [](auto &l) {
             l[3].bold = true;
             l[3].late = 5;
         },
         {},
         {{5,
           0,
           Cols - 1,
           {Qt::FontRole, Qt::DisplayRole, Qt::ToolTipRole, Qt::TextAlignmentRole}}}},
        {"group text shows in the node's tree cell",
         [](auto &l) { l[3].group = "Repairs"; },
         {},
         {{5, 1, 2, TextRoles}}},
        {"group text of a plain row: its own cell only",
         [](auto &l) { l[4].group = "Repairs"; },
         {},
         {{6, 1, 1, TextRoles}}},
        {"row height",
         {},
         [](OutlineGrid &g) { g.setRowHeight(4, 600); },
         {{4, 0, Cols - 1, {Qt::SizeHintRole}}}},
        {"header text", {}, [](OutlineGrid &g) { g.setText(1, 4, "Overdue"); }, {}, 1},
        {"collapsed node", [](auto &l) { l[0].collapsed = true; }, {}, {}, 0, 1},
        {"current cell moved by the fill",
         {},
         [](OutlineGrid &g) { g.setCurrentCell(5, 3); },
         {},
         0,
         0,
         1},
    };
    for (const Case &c : cases) {
        WatchedSummary watched;
        OutlineGrid &g = watched.grid;
        OutlineGridModel &m = *watched.model;
        const QPersistentModelIndex held(m.indexForRow(4, 3));
        Spies spies(m);
        std::vector<Line> lines = summaryLines();
        if (c.edit)
            c.edit(lines);
        refill(g, lines, c.after);

        EXPECT_EQ(spies.structural(), 0) << c.name;
        EXPECT_EQ(notices(spies.data), c.expected) << c.name;
        EXPECT_EQ(spies.headers.count(), c.headers) << c.name;
        EXPECT_EQ(spies.collapses.count(), c.collapses) << c.name;
        EXPECT_EQ(spies.currents.count(), c.currents) << c.name;
        EXPECT_EQ(OutlineGridModel::gridRow(held), 4) << c.name;
        // What the notices promise is what the model now shows.
        for (const Notice &n : c.expected) {
            if (n.roles.contains(Qt::DisplayRole)) {
                const QString shown = m.indexForRow(n.row, n.col2).data().toString();
                EXPECT_TRUE(shown == g.text(n.row, n.col2) || shown == g.text(n.row, 1)) << c.name;
            }
        }
    }
}

// Fills that write into the rows they found (no rebuild): the rows share their cells with the
// baseline until written, so every writer must leave the baseline as it was.
TEST(FillChanges, InPlaceWritesAreToldAndLeaveTheBaselineAlone)
{
    struct Case
    {
        const char *name;
        std::function<void(OutlineGrid &)> write;
        std::vector<Notice> expected;
    };
    const std::set<int> back{Qt::BackgroundRole};
    const std::set<int> font{Qt::FontRole};
    const std::vector<Case> cases = {
        {"nothing", [](OutlineGrid &) {}, {}},
        {"same text again", [](OutlineGrid &g) { g.setText(3, 2, QString("Fiber")); }, {}},
        {"same number again", [](OutlineGrid &g) { g.setNumber(3, 3, qint64(3)); }, {}},
        {"text", [](OutlineGrid &g) { g.setText(3, 2, "Glass"); }, {{3, 2, 2, TextRoles}}},
        {"text range",
         [](OutlineGrid &g) { g.setText(3, 4, 4, 5, "x"); },
         {{3, 4, 5, TextRoles}, {4, 4, 5, TextRoles}}},
        {"number", [](OutlineGrid &g) { g.setNumber(4, 5, qint64(8)); }, {{4, 5, 5, TextRoles}}},
        {"rate", [](OutlineGrid &g) { g.setNumber(6, 3, 7.5, "7.5"); }, {{6, 3, 3, TextRoles}}},
        {"back colour",
         [](OutlineGrid &g) { g.setBackColor(5, 4, QColor(Qt::red)); },
         {{5, 4, 4, back}}},
        {"back colour range",
         [](OutlineGrid &g) { g.setBackColor(2, 0, 2, 1, QColor(Qt::red)); },
         {{2, 0, 1, back}}},
        {"bold", [](OutlineGrid &g) { g.setBold(6, 2, true); }, {{6, 2, 2, font}}},
        {"bold range",
         [](OutlineGrid &g) { g.setBold(3, 3, 4, 3, true); },
         {{3, 3, 3, font}, {4, 3, 3, font}}},
        {"clear: every filled cell",
         [](OutlineGrid &g) {
             for (int r = 0; r < g.rowCount(); ++r)
                 for (int c = 0; c < g.colCount(); ++c)
                     if (c != 1 && c != 2)
                         g.setText(r, c, g.text(r, c)); // the same texts, unshared
             g.clear();
             g.setText(0, 3, 0, 5, "Work Orders");
             g.setText(1, 2, "Jobs");
             g.setText(1, 3, "Open");
             g.setText(1, 4, "Late");
             g.setText(1, 5, "Done");
         },
         {{2, 1, 5, TextRoles},
          {3, 1, 5, TextRoles},
          {4, 1, 5, TextRoles},
          {5, 1, 5, TextRoles},
          {6, 1, 5, TextRoles}}},
    };
    for (const Case &c : cases) {
        WatchedSummary watched;
        OutlineGrid &g = watched.grid;
        OutlineGridModel &m = *watched.model;
        Spies spies(m);
        QByteArray baselineText;
        {
            OutlineGrid::RedrawSuspender suspend(g);
            const QByteArray before = g.commaText();
            c.write(g);
            baselineText = g.fillBaseline()->commaText();
            EXPECT_EQ(baselineText, before) << c.name << ": the baseline followed the fill";
        }
        EXPECT_EQ(spies.structural(), 0) << c.name;
        EXPECT_EQ(notices(spies.data), c.expected) << c.name;
    }
}

TEST(FillChanges, ChangedShapeIsOneKeyedLayoutChange)
{
    struct Case
    {
        const char *name;
        std::function<void(std::vector<Line> &)> edit;
        std::function<void(OutlineGrid &)> after;
        bool finHeld; ///< the index held on INS|FIN survives
    };
    const std::vector<Case> cases = {
        {"row added",
         [](auto &l) {
             l.insert(l.begin() + 1, Line{"INS|ALU", "Install", "Alu", 1, 0, 0});
         },
         {},
         true},
        {"row removed", [](auto &l) { l.erase(l.begin() + 1); }, {}, false},
        {"key changed", [](auto &l) { l[1].key = "INS|FIB2"; }, {}, false},
        {"rows swapped", [](auto &l) { std::swap(l[1], l[2]); }, {}, true},
        {"node level", [](auto &l) { l[3].level = 1; }, {}, true},
        {"plain row becomes a node", [](auto &l) { l[4].level = 1; }, {}, true},
        {"one more column", {}, [](OutlineGrid &g) { g.setColCount(Cols + 1); }, true},
    };
    for (const Case &c : cases) {
        WatchedSummary watched;
        OutlineGrid &g = watched.grid;
        OutlineGridModel &m = *watched.model;
        const QPersistentModelIndex copper(m.indexForRow(4, 5)); // INS|COP, column 5
        const QPersistentModelIndex fiber(m.indexForRow(3, 3));  // INS|FIB
        const QPersistentModelIndex repair(m.indexForRow(5, 0)); // REP, a node
        // Listeners of the announcement must still see the rows they knew, and the decorator,
        // which reads the grid as it is now, is not asked then.
        ReadingDecorator decorator(g);
        m.setDecorator(&decorator);
        int countSeen = -1;
        QString keySeen, textSeen;
        int decoratorCalls = -1;
        QObject::connect(&m, &QAbstractItemModel::layoutAboutToBeChanged, &m, [&] {
            countSeen = m.rowCount(m.index(0, 0));
            const QModelIndex copperName = m.index(1, 2, m.index(0, 0));
            keySeen = copperName.data(OutlineGridModel::RowDataRole).toString();
            const int before = decorator.calls;
            textSeen = copperName.data().toString();
            decoratorCalls = decorator.calls - before;
        });
        Spies spies(m);
        std::vector<Line> lines = summaryLines();
        if (c.edit)
            c.edit(lines);
        refill(g, lines, c.after);

        EXPECT_EQ(spies.layoutsAhead.count(), 1) << c.name;
        EXPECT_EQ(spies.layouts.count(), 1) << c.name;
        EXPECT_EQ(spies.resets.count(), 0) << c.name;
        EXPECT_EQ(spies.data.count(), 0) << c.name;
        EXPECT_EQ(countSeen, 2) << c.name << ": the Install node had two rows";
        EXPECT_EQ(keySeen, "INS|COP") << c.name;
        EXPECT_EQ(textSeen, "Copper") << c.name;
        EXPECT_EQ(decoratorCalls, 0) << c.name;
        EXPECT_EQ(copper.data().toString(), "* " + g.text(g.findRow("INS|COP"), 5)) << c.name;
        ASSERT_TRUE(copper.isValid()) << c.name;
        EXPECT_EQ(OutlineGridModel::gridRow(copper), g.findRow("INS|COP")) << c.name;
        EXPECT_EQ(copper.column(), 5) << c.name;
        EXPECT_EQ(copper.data(OutlineGridModel::RowDataRole).toString(), "INS|COP") << c.name;
        EXPECT_EQ(OutlineGridModel::gridRow(repair), g.findRow("REP")) << c.name;
        EXPECT_EQ(fiber.isValid(), c.finHeld) << c.name;
        if (c.finHeld) {
            EXPECT_EQ(OutlineGridModel::gridRow(fiber), g.findRow("INS|FIB")) << c.name;
        }
    }
}

// A hierarchy-style tree: nodes at levels 0 to 3, every figure a number. A change deep in the
// tree is told at that row, under its own parents.
TEST(FillChanges, NestedTreeTellsTheChangedRowUnderItsParents)
{
    // # > N > [N1, N2 > N3], S > [S1 > S3, S2]
    const auto tree = [](qint64 n3Late) {
        return std::vector<Line>{
            {"#", "", "All", 8, 2, 1, 0},       {"N", "", "North", 4, 1, 0, 1},
            {"N1", "", "N1", 1, 0, 0, 2},       {"N2", "", "N2", 2, n3Late, 0, 2},
            {"N3", "", "N3", 1, n3Late, 0, 3},  {"S", "", "South", 4, 1, 1, 1},
            {"S1", "", "S1", 2, 1, 0, 2, true}, {"S3", "", "S3", 1, 1, 0, 3},
            {"S2", "", "S2", 2, 0, 1, 2},
        };
    };
    OutlineGrid g;
    initGrid(g);
    g.setOutlineTextCol(-1);
    refill(g, tree(1));
    OutlineGridModel m(&g);
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    Spies spies(m);

    refill(g, tree(1));
    EXPECT_EQ(spies.data.count() + spies.structural() + spies.collapses.count(), 0);

    refill(g, tree(5));
    EXPECT_EQ(spies.structural(), 0);
    ASSERT_EQ(spies.data.count(), 2);
    QStringList where;
    for (const QList<QVariant> &args : spies.data) {
        QModelIndex at = args[0].value<QModelIndex>();
        EXPECT_EQ(at.column(), 4);
        QString path;
        for (; at.isValid(); at = at.parent())
            path.prepend(u'/' + at.data(OutlineGridModel::RowDataRole).toString());
        where << path;
    }
    EXPECT_EQ(where, QStringList({"/#/N/N2", "/#/N/N2/N3"}));
    EXPECT_EQ(m.indexForRow(g.findRow("N3"), 4).data().toString(), "5");

    // N3 moved under N1: same keys in the same order, but another tree.
    std::vector<Line> moved = tree(5);
    moved[3].level = 3; // N2 becomes N1's child, N3 follows as N2's
    moved[4].level = 4;
    const QPersistentModelIndex n3(m.indexForRow(g.findRow("N3"), 0));
    refill(g, moved);
    EXPECT_EQ(spies.layouts.count(), 1);
    ASSERT_TRUE(n3.isValid());
    EXPECT_EQ(n3.parent().parent().data(OutlineGridModel::RowDataRole).toString(), "N1");
}

TEST(FillChanges, BaselineLivesOnlyInsideAnObservedFill)
{
    OutlineGrid g;
    initGrid(g);
    EXPECT_EQ(g.fillBaseline(), nullptr);
    {
        OutlineGrid::RedrawSuspender suspend(g);
        EXPECT_EQ(g.fillBaseline(), nullptr) << "no observer: nothing kept";
    }
    OutlineGridModel m(&g);
    refill(g, summaryLines());
    {
        OutlineGrid::RedrawSuspender outer(g);
        const OutlineGrid *baseline = g.fillBaseline();
        ASSERT_NE(baseline, nullptr);
        g.setNumber(3, 3, qint64(42));
        g.addRow();
        {
            OutlineGrid::RedrawSuspender inner(g);
            EXPECT_EQ(g.fillBaseline(), baseline) << "nested: the outermost state stays";
        }
        EXPECT_EQ(baseline->rowCount(), 7);
        EXPECT_EQ(baseline->text(3, 3), "3");
        EXPECT_TRUE(g.changesSince(*baseline).shapeChanged);
    }
    EXPECT_EQ(g.fillBaseline(), nullptr);

    // Numbers compare as numbers, texts as texts; beyond 2^53 equal doubles are not enough.
    OutlineGrid before;
    initGrid(before);
    before.addRow();
    OutlineGrid after;
    initGrid(after);
    after.addRow();
    const qint64 big = (qint64(1) << 53) + 1;
    before.setNumber(2, 3, big);
    after.setNumber(2, 3, big + 1); // the same double, another text
    before.setNumber(2, 4, 2.5, "2.50");
    after.setNumber(2, 4, 2.5, "2.5");
    before.setNumber(2, 5, qint64(7));
    after.setText(2, 5, "7");
    const OutlineGrid::Changes changes = after.changesSince(before);
    ASSERT_EQ(changes.rows.size(), 1u);
    EXPECT_EQ(changes.rows[0].col1, 3);
    EXPECT_EQ(changes.rows[0].col2, 4);
    EXPECT_EQ(changes.rows[0].aspects, OutlineGrid::TextChanged);
}

// The real fills: a refresh with the same data tells nothing; one unit's figure changed tells
// exactly the cells whose text changed (that unit's and the sums above it), nothing else.
TEST(FillChanges, HierarchyRefreshTellsWhatChanged)
{
    const auto data = [](const char *northOpen) {
        DLVDataBuilder b;
        b.unit("#", "All Business Units", "").unit("N", "North Region", "#");
        b.unit("S", "South Region", "#").unit("N1", "Dispatch North", "N");
        b.unit("N2", "Field Team A", "N").unit("N3", "Field Team B", "N2");
        b.unit("S1", "Coastal", "S").unit("S2", "Inland", "S").unit("S3", "Harbour Crew", "S1");
        for (const char *id : {"N", "S", "N1", "N2", "N3", "S1", "S2", "S3"}) {
            const bool north = QByteArray(id) == "N"; // a chosen unit: its figures count
            b.general(id, id, "3", "8", "4")
                .detail(id, "T", "C", {north ? northOpen : "4", "1", "0", "2", "9"});
        }
        return b;
    };
    LoadedModel first(data("4"));
    LoadedModel second(data("4"));
    LoadedModel changed(data("6"));
    const QStringList selection = {"N", "S1", "S3", "#"};
    HierarchyFill grids;
    grids.fill(first, selection);
    OutlineGrid &g = grids.workOrders;
    OutlineGridModel m(&g);
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);
    Spies spies(m);

    grids.fill(second, selection);
    EXPECT_EQ(spies.data.count() + spies.headers.count() + spies.structural(), 0);

    std::vector<QStringList> texts;
    for (int r = 0; r < g.rowCount(); ++r) {
        QStringList row;
        for (int c = 0; c < g.colCount(); ++c)
            row << g.text(r, c);
        texts.push_back(row);
    }
    grids.fill(changed, selection);
    EXPECT_EQ(spies.structural(), 0);
    // The oracle: per row, the first and last column whose text differs.
    std::map<int, std::pair<int, int>> differing;
    for (int r = 0; r < g.rowCount(); ++r) {
        for (int c = 0; c < g.colCount(); ++c) {
            if (texts[size_t(r)][c] == g.text(r, c))
                continue;
            auto [it, added] = differing.try_emplace(r, c, c);
            it->second.second = c;
        }
    }
    ASSERT_TRUE(differing.contains(g.findRow("N")));
    std::map<int, std::pair<int, int>> told;
    for (const Notice &n : notices(spies.data)) {
        EXPECT_TRUE(told.try_emplace(n.row, n.col1, n.col2).second) << "row " << n.row;
        EXPECT_EQ(n.roles, TextRoles);
    }
    EXPECT_EQ(told, differing);
}

TEST(FillChanges, GridGoneInTheMiddleOfAFillEndsTheFill)
{
    auto g = std::make_unique<OutlineGrid>();
    initGrid(*g);
    refill(*g, summaryLines());
    OutlineGridView view;
    view.setGrid(g.get());
    QAbstractItemModelTester tester(view.gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy ended(view.gridModel(), &OutlineGridModel::fillEnded);
    g->suspendRedraw();
    g->addRow();
    EXPECT_FALSE(view.updatesEnabled());
    g.reset();
    EXPECT_EQ(ended.count(), 1);
    EXPECT_TRUE(view.updatesEnabled());
    EXPECT_EQ(view.gridModel()->rowCount(), 0);
}

// The view keeps its place either way: the current cell and the expanded nodes stay on their
// rows, through a refresh that changes figures and through one that adds rows above them.
TEST(FillChanges, ViewKeepsCurrentCellAndExpansionAcrossBothKindsOfRefresh)
{
    // Two groups of 40 rows, so that the current row is far down.
    const auto lines = [](int extraOnTop, qint64 figure) {
        std::vector<Line> out;
        for (int i = 0; i < extraOnTop; ++i)
            out.push_back({QStringLiteral("NEW%1").arg(i), "New", "x", 1, 0, 0});
        for (const char *group : {"A", "B"}) {
            out.push_back({group, group, "", 0, 0, 0, 0});
            for (int i = 0; i < 40; ++i)
                out.push_back({QStringLiteral("%1|%2").arg(group).arg(i), group,
                               QStringLiteral("row %1").arg(i), i, figure, 0});
        }
        return out;
    };
    OutlineGrid g;
    initGrid(g);
    // As the control does: collapsed nodes and the current cell go back to their rows by key.
    const auto fill = [&g](const std::vector<Line> &rows) {
        QStringList collapsed;
        for (int r = g.fixedRows(); r < g.rowCount(); ++r)
            if (g.isNode(r) && g.isCollapsed(r))
                collapsed << g.rowData(r);
        const QString current = g.rowData(g.currentRow());
        const int currentCol = g.currentCol();
        refill(g, rows, [&](OutlineGrid &grid) {
            for (const QString &key : collapsed)
                grid.setCollapsed(grid.findRow(key), true);
            if (const int row = grid.findRow(current); row >= 0)
                grid.setCurrentCell(row, currentCol);
        });
    };
    fill(lines(0, 1));
    OutlineGridView view;
    view.setGrid(&g);
    view.resize(700, 300);
    view.show();
    QApplication::processEvents();
    OutlineGridModel &m = *view.gridModel();
    QAbstractItemModelTester tester(&m, QAbstractItemModelTester::FailureReportingMode::Fatal);

    g.setCollapsed(g.findRow("A"), true);
    const int start = g.findRow("B|30");
    g.setCurrentCell(start, 4);
    view.scrollTo(view.currentIndex());
    ASSERT_EQ(OutlineGridModel::gridRow(view.currentIndex()), start);
    const QModelIndex currentBefore = view.currentIndex();

    Spies spies(m);
    fill(lines(0, 2)); // every row's column 4 changes
    EXPECT_EQ(spies.structural(), 0);
    EXPECT_EQ(spies.data.count(), 80);
    EXPECT_EQ(view.currentIndex(), currentBefore);
    EXPECT_FALSE(view.isExpanded(m.indexForRow(g.findRow("A"), 0)));
    EXPECT_TRUE(view.isExpanded(m.indexForRow(g.findRow("B"), 0)));
    EXPECT_TRUE(view.updatesEnabled());
    EXPECT_EQ(view.currentIndex().data().toString(), "2");

    // A fill that moves the grid's current cell takes the view along.
    refill(g, lines(0, 2), [](OutlineGrid &grid) {
        grid.setCollapsed(grid.findRow("A"), true);
        grid.setCurrentCell(grid.findRow("B|10"), 3);
    });
    EXPECT_FALSE(view.isExpanded(m.indexForRow(g.findRow("A"), 0)));
    EXPECT_EQ(spies.structural(), 0);
    EXPECT_EQ(OutlineGridModel::gridRow(view.currentIndex()), g.findRow("B|10"));
    EXPECT_EQ(view.currentIndex().column(), 3);
    g.setCurrentCell(start, 4);

    fill(lines(3, 2)); // three rows on top: every row moves down
    EXPECT_EQ(spies.layouts.count(), 1);
    EXPECT_EQ(OutlineGridModel::gridRow(view.currentIndex()), start + 3);
    EXPECT_EQ(view.currentIndex().column(), 4);
    EXPECT_EQ(view.currentIndex().data(OutlineGridModel::RowDataRole).toString(), "B|30");
    EXPECT_FALSE(view.isExpanded(m.indexForRow(g.findRow("A"), 0)));
    EXPECT_TRUE(view.isExpanded(m.indexForRow(g.findRow("B"), 0)));
    EXPECT_TRUE(view.updatesEnabled());

    // The view's own expand goes back to the grid, and a refill keeps it.
    view.expand(m.indexForRow(g.findRow("A"), 0));
    EXPECT_FALSE(g.isCollapsed(g.findRow("A")));
    fill(lines(3, 3));
    EXPECT_TRUE(view.isExpanded(m.indexForRow(g.findRow("A"), 0)));
    EXPECT_EQ(view.currentIndex().data(OutlineGridModel::RowDataRole).toString(), "B|30");
}
