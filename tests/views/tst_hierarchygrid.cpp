#include "common/conversions.h"
#include "common/dlverror.h"
#include "loadedmodel.h"
#include "model/businessunit.h"
#include "model/keptpositions.h"
#include "support/expecterror.h"
#include "views/buselection.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace {

using Grids = HierarchyFill;

/// Rows from 2 on as "<level> <text> <row data>".
std::vector<std::string> tree(const OutlineGrid &grid)
{
    std::vector<std::string> out;
    for (int r = 2; r < grid.rowCount(); ++r)
        out.push_back(QStringLiteral("%1 %2 %3")
                          .arg(grid.outlineLevel(r))
                          .arg(grid.text(r, 0), grid.rowData(r))
                          .toStdString());
    return out;
}

/// Columns 1 to 11 of a row joined by ",".
std::string figures(const OutlineGrid &grid, int row)
{
    QStringList cells;
    for (int c = 1; c < HierarchyGrid::ColumnCount; ++c)
        cells << grid.text(row, c);
    return cells.join(u',').toStdString();
}

/// The unit list for the grid's rows, made from previous as the control makes it.
std::vector<BUSelection::Item> listed(const OutlineGrid &grid, const StringSet &session,
                                      std::vector<BUSelection::Item> previous = {},
                                      const KnownRows &known = {})
{
    BUSelection::updateItems(grid, session, previous, known);
    return previous;
}

/// The step-by-step build the direct one must match: every unit under the root in description
/// order, each moved under its parent in parent-lookup order (a move into the unit's own subtree
/// is impossible and leaves it under the root), childless nodes the model lacks pruned from the
/// bottom up (the root too), children sorted by text. Quadratic; a yardstick for tests only.
void stepByStep(OutlineGrid &g, const cDLVController &controller)
{
    const StringSet &descriptions = controller.BUDescriptions();
    g.setColCount(HierarchyGrid::ColumnCount);
    g.setRowCount(2);
    g.setFixedRows(2);
    const int root = g.addNodeRow(0);
    const QString *rootText = descriptions.find(u"#");
    g.setText(root, 0, rootText ? *rootText : QString());
    g.setRowData(root, QStringLiteral("#"));
    for (const auto &entry : descriptions) {
        if (entry.key == u"#")
            continue;
        const int r = g.addNodeRow(1);
        g.setText(r, 0, entry.value);
        g.setRowData(r, entry.key);
    }
    for (const auto &entry : controller.ParentBUIDs()) {
        const int parent = g.findRow(entry.value);
        const int unit = g.findRow(entry.key);
        if (parent == -1 || unit == -1)
            continue;
        try {
            g.moveUnder(unit, parent);
        } catch (const DLVError &) {
            // The parent lies in the unit's own subtree.
        }
    }
    for (int r = g.rowCount() - 1; r >= 2; --r) {
        if (g.childCount(r) == 0 && !controller.BUs().Item(g.rowData(r)))
            g.removeRow(r);
    }
    for (int r = 2; r < g.rowCount(); ++r) {
        if (g.childCount(r) > 0)
            g.sortChildren(r, 0);
    }
}

/// A region tree: R1 (City 1, and C3 which the model lacks) and R2 (City 2) under "All".
DLVDataBuilder regions()
{
    DLVDataBuilder b;
    b.unit("#", "All", "").unit("R1", "Region 1", "#").unit("C1", "City 1", "R1");
    b.unit("R2", "Region 2", "#").unit("C2", "City 2", "R2").unit("C3", "City 3", "R1");
    b.general("R1", "Region 1", "1", "2.5", "3").general("C1", "City 1", "2", "0.4", "1");
    b.general("R2", "Region 2", "4", "8", "0").general("C2", "City 2", "1", "1", "1");
    QStringList r1(14, QStringLiteral("0"));
    r1[0] = "1";  // open work orders
    r1[4] = "5";  // completed work orders
    r1[7] = "2";  // open points
    r1[11] = "7"; // completed points
    b.detail("R1", "T", "C", r1);
    QStringList c1(14, QStringLiteral("0"));
    c1[4] = "3";
    c1[11] = "2";
    b.detail("C1", "T", "C", c1);
    return b;
}

} // namespace

TEST(HierarchyGridLayout, HeadersColoursAndWidths)
{
    Grids g;
    for (const OutlineGrid *grid : {&g.workOrders, &g.points}) {
        EXPECT_EQ(grid->colWidth(0), 2250);
        EXPECT_EQ(grid->colWidth(11), 945);
        EXPECT_EQ(grid->text(0, 11), "Productivity");
        EXPECT_EQ(grid->text(1, 3), "HoursCompleted");
        EXPECT_EQ(grid->backColor(1, 2), QColor(253, 252, 217));
        EXPECT_EQ(grid->backColor(0, 7), QColor(198, 253, 250));
        EXPECT_EQ(grid->backColor(1, 11), QColor(227, 254, 228));
    }
    EXPECT_EQ(g.workOrders.text(0, 10), "WorkOrders");
    EXPECT_EQ(g.workOrders.text(1, 11), "WOsPerHour");
    EXPECT_EQ(g.points.text(0, 4), "Points");
    EXPECT_EQ(g.points.text(1, 11), "PtsPerHour");
}

TEST(HierarchyGridTree, ShapesOfTheTree)
{
    const struct
    {
        const char *name;
        DLVDataBuilder data;
        std::vector<std::string> expected;
    } cases[] = {
        {"no units: not even the root",
         DLVDataBuilder().unit("#", "All", "").unit("U", "U", "#"),
         {}},
        {"the root stays when the model holds it",
         DLVDataBuilder().unit("#", "All", "").general("#"),
         {"0 All #"}},
        {"leaves the model lacks go, and so do parents left childless",
         DLVDataBuilder()
             .unit("#", "All", "")
             .unit("P", "Pruned parent", "#")
             .unit("L1", "Leaf 1", "P")
             .unit("L2", "Leaf 2", "P")
             .unit("Q", "Kept parent", "#")
             .unit("M", "Modelled", "Q")
             .unit("L3", "Leaf 3", "Q")
             .general("M"),
         {"0 All #", "1 Kept parent Q", "2 Modelled M"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        LoadedModel model(c.data);
        Grids g;
        g.fill(model, {});
        EXPECT_EQ(tree(g.workOrders), c.expected);
        EXPECT_EQ(tree(g.points), c.expected);
        EXPECT_TRUE(model.reporter.reports.empty());
    }
}

TEST(HierarchyGridTree, DirectBuildMatchesTheStepByStepProcedureOnRandomData)
{
    QRandomGenerator random(20240301);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        const int n = 1 + int(random.bounded(40));
        QStringList units;
        for (int i = 0; i < n; ++i) {
            // Ids that differ only in case: exact in the lookups, one unit to the model.
            units << (random.bounded(6) == 0 ? QStringLiteral("u%1") : QStringLiteral("U%1"))
                         .arg(random.bounded(n + 5));
        }
        units.removeDuplicates();
        DLVDataBuilder b;
        const bool withRoot = random.bounded(8) != 0;
        if (withRoot)
            b.unit("#", "All", random.bounded(10) == 0 ? units.front() : QString());
        for (const QString &id : units) {
            QString parent;
            switch (random.bounded(10)) {
            case 0:
                parent = id; // its own parent
                break;
            case 1:
                parent = QStringLiteral("missing");
                break;
            case 2:
                parent = QString();
                break;
            case 3:
            case 4:
                parent = QStringLiteral("#");
                break;
            default:
                parent = units[int(random.bounded(units.size()))]; // cycles included
            }
            // Few distinct texts, so that the sort meets many ties.
            b.unit(id, QStringLiteral("d%1").arg(random.bounded(4)), parent);
            if (random.bounded(3) != 0)
                b.general(id);
        }
        LoadedModel model(b);
        ASSERT_TRUE(model.reporter.reports.empty());
        // Lookups of one table list the same ids: the build reads positions instead of ids.
        // Read by id (as for lookups of different loads), it must give the same nodes.
        const UnitLookups lookups = model.controller.Lookups();
        ASSERT_TRUE(lookups.aligned);
        UnitLookups byId = lookups;
        byId.aligned = false;
        const auto nodes = HierarchyGrid::BuildTree(lookups, model.controller.BUs());
        const auto nodesById = HierarchyGrid::BuildTree(byId, model.controller.BUs());
        ASSERT_EQ(nodes.size(), nodesById.size());
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            ASSERT_EQ(nodes[i].text, nodesById[i].text);
            ASSERT_EQ(nodes[i].rowData, nodesById[i].rowData);
            ASSERT_EQ(nodes[i].parent, nodesById[i].parent);
        }
        Grids g;
        g.fill(model, {});
        OutlineGrid reference;
        stepByStep(reference, model.controller);
        ASSERT_EQ(tree(g.workOrders), tree(reference));
        ASSERT_EQ(tree(g.points), tree(reference));

        // The unit list reads each unit's description from its row: the lookup's own, also
        // when the list is made again from the last one (whose keys it reuses).
        StringSet session(KeyCompare::Exact);
        for (const QString &id : units) {
            if (random.bounded(4) != 0)
                session.add(id, id);
        }
        if (random.bounded(5) == 0)
            session.add(QStringLiteral("#"), QStringLiteral("#"));
        const auto first = listed(g.workOrders, session);
        const auto again = listed(g.workOrders, session, first);
        for (const auto *items : {&first, &again}) {
            std::vector<std::string> expected;
            for (int row = 2; row < g.workOrders.rowCount(); ++row) {
                const QString &id = g.workOrders.rowData(row);
                if (id == QStringLiteral("#") || !session.contains(id))
                    continue;
                const QString *text = model.controller.BUDescriptions().find(id);
                expected.push_back(QStringLiteral("_%1 %2 %3")
                                       .arg(id, text ? *text : QString())
                                       .arg(g.workOrders.outlineLevel(row))
                                       .toStdString());
            }
            std::vector<std::string> listed;
            for (const BUSelection::Item &item : *items)
                listed.push_back(QStringLiteral("%1 %2 %3")
                                     .arg(item.key, item.text)
                                     .arg(item.level)
                                     .toStdString());
            ASSERT_EQ(listed, expected);
        }
        for (std::size_t i = 0; i < again.size(); ++i)
            ASSERT_EQ(again[i].key.constData(), first[i].key.constData()); // no new strings

        // Positions kept for the chosen units and the session, and each row's unit as the fill
        // laid them out, give the figures and the list that looking every id up gives. Rows
        // told wrongly (a grid changed since the fill) are looked up.
        StringSet chosen(KeyCompare::Exact);
        for (const QString &id : units) {
            if (random.bounded(3) == 0)
                chosen.add(id, id);
        }
        chosen.add(QStringLiteral("#"), QStringLiteral("#"));
        Grids lookedUp;
        const std::vector<QString> chosenIds = chosen.keys();
        lookedUp.fill(model, QStringList(chosenIds.begin(), chosenIds.end()));
        KeptPositions chosenAt;
        chosenAt.update(chosen, lookups.hierarchy, lookups.epoch);
        std::vector<int> unitOfRow;
        Grids byPosition;
        HierarchyGrid::Fill(byPosition.workOrders, byPosition.points, lookups,
                            model.controller.BUs(), chosen, chosenAt.positions(), &unitOfRow);
        ASSERT_EQ(unitOfRow.size(), std::size_t(byPosition.workOrders.rowCount()));
        for (int row = 2; row < lookedUp.workOrders.rowCount(); ++row) {
            ASSERT_EQ(figures(byPosition.workOrders, row), figures(lookedUp.workOrders, row));
            ASSERT_EQ(figures(byPosition.points, row), figures(lookedUp.points, row));
        }
        KeptPositions sessionAt;
        sessionAt.update(session, lookups.hierarchy, lookups.epoch);
        std::vector<int> shifted(unitOfRow.begin() + 1, unitOfRow.end());
        shifted.push_back(-1);
        for (const std::vector<int> *told : {&unitOfRow, &shifted}) {
            const auto known = listed(byPosition.workOrders, session, first,
                                      {*told, &lookups.hierarchy, sessionAt.members()});
            ASSERT_EQ(known.size(), first.size());
            for (std::size_t i = 0; i < known.size(); ++i) {
                ASSERT_EQ(known[i].key, first[i].key);
                ASSERT_EQ(known[i].text, first[i].text);
                ASSERT_EQ(known[i].level, first[i].level);
                // The unit comes with the item wherever the rows told it right.
                const int unit = lookups.hierarchy.indexOf(QStringView(known[i].key).mid(1));
                ASSERT_TRUE(known[i].unit == unit || (told == &shifted && known[i].unit == -1));
            }
        }

        // In place, from the last list made with the same lookups: an unchanged list keeps every
        // string and says so; a list for another session ends as one made afresh and says
        // whether it changed.
        // The grid is as the fill left it: its rows' units are taken without a check.
        const KnownRows sameLookups{unitOfRow, &lookups.hierarchy, sessionAt.members(), true, true};
        std::vector<BUSelection::Item> inPlace =
            listed(byPosition.workOrders, session, {}, sameLookups);
        const std::vector<BUSelection::Item> before = inPlace;
        ASSERT_FALSE(
            BUSelection::updateItems(byPosition.workOrders, session, inPlace, sameLookups));
        for (std::size_t i = 0; i < inPlace.size(); ++i) {
            ASSERT_EQ(inPlace[i].key.constData(), before[i].key.constData());
            ASSERT_EQ(inPlace[i].text.constData(), before[i].text.constData());
        }
        StringSet other(KeyCompare::Exact);
        for (const QString &id : units) {
            if (random.bounded(3) != 0)
                other.add(id, id);
        }
        KeptPositions otherAt;
        otherAt.update(other, lookups.hierarchy, lookups.epoch);
        const bool changed = BUSelection::updateItems(
            byPosition.workOrders, other, inPlace,
            {unitOfRow, &lookups.hierarchy, otherAt.members(), true, true});
        const auto afresh = listed(byPosition.workOrders, other);
        const auto line = [](const BUSelection::Item &item) {
            return QStringLiteral("%1 %2 %3")
                .arg(item.key, item.text)
                .arg(item.level)
                .toStdString();
        };
        std::vector<std::string> inPlaceLines, afreshLines, beforeLines;
        for (const auto &item : inPlace)
            inPlaceLines.push_back(line(item));
        for (const auto &item : afresh)
            afreshLines.push_back(line(item));
        for (const auto &item : before)
            beforeLines.push_back(line(item));
        ASSERT_EQ(inPlaceLines, afreshLines);
        ASSERT_EQ(changed, afreshLines != beforeLines);
    }
}

TEST(HierarchyGridFigures, SelectedRowsSumTheirUnitsAndUnreachedRowsAreGrey)
{
    LoadedModel model(regions());
    Grids g;
    g.fill(model, {"ghost", "R1", "C1"});
    ASSERT_EQ(tree(g.workOrders),
              (std::vector<std::string>{"0 All #", "1 Region 1 R1", "2 City 1 C1", "1 Region 2 R2",
                                        "2 City 2 C2"}));
    // Row R1 sums R1 and C1 (C3 is in the tree's lookups but not in the model): 3 technicians,
    // 4 hours remaining, 2 hours worked (2.5 reads 2, 0.4 reads 0). Productivity 8 / 2. C1 is
    // also counted in its own row, where 0 hours give productivity 0.
    EXPECT_EQ(figures(g.workOrders, 3), "3,4,2,1,0,0,0,8,0,0,4");
    EXPECT_EQ(figures(g.workOrders, 4), "2,1,0,0,0,0,0,3,0,0,0");
    EXPECT_EQ(figures(g.points, 3), "3,4,2,2,0,0,0,9,0,0,4.5");
    EXPECT_EQ(figures(g.points, 4), "2,1,0,0,0,0,0,2,0,0,0");
    const QColor grey(208, 208, 208);
    for (const OutlineGrid *grid : {&g.workOrders, &g.points}) {
        for (int row : {2, 5, 6}) {
            EXPECT_EQ(figures(*grid, row), ",,,,,,,,,,") << row;
            EXPECT_EQ(grid->backColor(row, 0), grey) << row;
            EXPECT_EQ(grid->backColor(row, 11), grey) << row;
        }
        EXPECT_FALSE(grid->backColor(3, 0).isValid());
        for (int row = 1; row < grid->rowCount(); ++row)
            EXPECT_TRUE(grid->isBold(row, 0)) << row;
        EXPECT_FALSE(grid->isBold(3, 1));
    }

    // A refill starts from scratch: nothing selected leaves every row grey and empty.
    g.fill(model, {});
    EXPECT_EQ(figures(g.workOrders, 3), ",,,,,,,,,,");
    EXPECT_EQ(g.workOrders.backColor(3, 4), grey);
}

TEST(HierarchyGridFigures, SumsPastThe32BitRangeRaiseOverflow)
{
    DLVDataBuilder b;
    b.unit("#", "All", "").unit("A", "A", "#").unit("B", "B", "A");
    b.general("A", "A", "2000000000").general("B", "B", "2000000000");
    LoadedModel model(b);
    Grids g;
    try {
        g.fill(model, {"A"});
        FAIL() << "no overflow";
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), DLVError::Overflow);
    }
    // The tree stands; the figures were not written.
    EXPECT_EQ(g.workOrders.rowCount(), 5);
    EXPECT_TRUE(g.workOrders.text(3, 1).isEmpty());
}

// The rows' figures are summed bottom-up once per fill; they must equal adding each unit that the
// step-by-step listing of the row's unit names, one by one with the 32-bit overflow check, on any
// tree: deep chains, cycles, ids that differ in case, negative and huge figures.
TEST(HierarchyGridFigures, BottomUpSumsMatchTheUnitByUnitListingOnRandomData)
{
    QRandomGenerator random(20261124);
    int overflows = 0;
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        const int n = 1 + int(random.bounded(60));
        // Negative figures and cycles only in some trials, so most take the bottom-up way.
        const bool negatives = random.bounded(4) == 0;
        const bool cycles = random.bounded(4) == 0;
        DLVDataBuilder b;
        b.unit("#", "All", "").jobType("T", "T").jobClass("C", "C");
        QStringList ids;
        for (int i = 0; i < n; ++i) {
            // Now and then an id holding a comma: it lists as its pieces, which may be units.
            const QString id =
                random.bounded(12) == 0
                    ? QStringLiteral("U%1,U%2").arg(i).arg(random.bounded(n))
                    : (random.bounded(8) == 0 ? QStringLiteral("u%1") : QStringLiteral("U%1"))
                          .arg(i);
            QString parent;
            switch (random.bounded(8)) {
            case 0:
                parent = QStringLiteral("#");
                break;
            case 1:
                parent = QStringLiteral("U%1").arg(random.bounded(cycles ? n : i + 1));
                break;
            case 2:
                parent = QStringLiteral("missing");
                break;
            default:
                parent = i > 0 ? ids.back() : QStringLiteral("#"); // long chains
            }
            b.unit(id, id, parent);
            ids << id;
            const int kind = int(random.bounded(10));
            const auto figure = [&] {
                if (kind == 0 && negatives)
                    return QString::number(-qint64(random.bounded(50)));
                if (kind <= 2)
                    return QString::number(400000000 + random.bounded(100000000));
                return QString::number(random.bounded(100));
            };
            if (random.bounded(4) != 0)
                b.general(id, id, figure(), figure(), figure());
            if (random.bounded(3) != 0)
                b.detail(id, "T", "C", {figure(), figure(), figure(), figure(), figure()});
        }
        QStringList selection;
        for (const QString &id : ids) {
            if (random.bounded(3) == 0)
                selection << id;
        }
        selection << QStringLiteral("#") << QStringLiteral("ghost");
        LoadedModel model(b);

        // The expected figures, unit by unit, or the overflow.
        std::map<QString, std::vector<qint32>> expected;
        bool overflow = false;
        try {
            for (const QString &key : selection) {
                std::vector<qint32> sums(17, 0);
                bool reached = false;
                for (const auto &id : model.controller.GetBUIDList(key)) {
                    const BusinessUnit *bu = model.controller.BUs().Item(id.key);
                    if (!bu)
                        continue;
                    reached = true;
                    const auto &totals = bu->GrandTotals();
                    const qint32 own[17] = {bu->TechCount(),   bu->HoursRemaining(),
                                            bu->HoursWorked(), totals[0],
                                            totals[1],         totals[2],
                                            totals[3],         totals[4],
                                            totals[5],         totals[6],
                                            totals[7],         totals[8],
                                            totals[9],         totals[10],
                                            totals[11],        totals[12],
                                            totals[13]};
                    for (int i = 0; i < 17; ++i)
                        sums[std::size_t(i)] = Conv::addChecked(sums[std::size_t(i)], own[i]);
                }
                if (reached)
                    expected[key] = sums;
            }
        } catch (const DLVError &e) {
            ASSERT_EQ(e.number(), DLVError::Overflow);
            overflow = true;
        }
        Grids g;
        if (overflow) {
            ++overflows;
            EXPECT_EQ(thrownNumber([&] { g.fill(model, selection); }), DLVError::Overflow);
            continue;
        }
        ASSERT_EQ(thrownNumber([&] { g.fill(model, selection); }), 0);
        for (int row = 2; row < g.workOrders.rowCount(); ++row) {
            const QString key = g.workOrders.rowData(row);
            const auto it = expected.find(key);
            if (it == expected.end()) {
                EXPECT_TRUE(g.workOrders.text(row, 1).isEmpty()) << key.toStdString();
                continue;
            }
            const std::vector<qint32> &e = it->second;
            for (int c = 0; c < 3; ++c)
                EXPECT_EQ(g.workOrders.text(row, 1 + c).toInt(), e[std::size_t(c)]);
            for (int s = 0; s < 7; ++s) {
                EXPECT_EQ(g.workOrders.text(row, 4 + s).toInt(), e[std::size_t(3 + s)]);
                EXPECT_EQ(g.points.text(row, 4 + s).toInt(), e[std::size_t(10 + s)]);
            }
        }
    }
    EXPECT_GT(overflows, 10); // the data reach the overflow often enough to compare it too
}

/// Everything a grid shows and keeps of its data rows, one line per row.
std::vector<std::string> wholeState(const OutlineGrid &g)
{
    std::vector<std::string> out;
    for (int r = 0; r < g.rowCount(); ++r) {
        QString line = QStringLiteral("%1 %2 %3 %4 %5 %6 |")
                           .arg(g.isNode(r))
                           .arg(g.outlineLevel(r))
                           .arg(g.rowData(r))
                           .arg(g.isCollapsed(r))
                           .arg(g.rowHeight(r))
                           .arg(g.isEmpty(r, 0));
        for (int c = 0; c < g.colCount(); ++c)
            line += QStringLiteral(" %1/%2/%3/%4")
                        .arg(g.text(r, c), g.backColor(r, c).name())
                        .arg(g.isBold(r, c))
                        .arg(g.number(r, c));
        out.push_back(line.toStdString());
    }
    return out;
}

// A refill keeps the rows of an unchanged tree and rewrites only what changed: whatever the grids
// held before (other figures, grey rows, a failed fill, a collapsed or resized row, a colour, bold
// or text a user's view left), they must end exactly as a first fill leaves new grids. The
// memory of what the last fill wrote passes over rows with the same figures: a row written
// since must not pass. The reused grids are filled from one controller, which keeps its unit
// lookups while the unit table stays, so that the memory's tree is taken as it stands: a tree
// text or row data written since, or a unit the model no longer holds, must not let it stand.
TEST(HierarchyGridFigures, ARefillLeavesTheGridsAFirstFillGives)
{
    QRandomGenerator random(20261125);
    Grids reused;
    WrittenRows written;
    LoadedModel reusedModel{DLVDataBuilder()};
    int overflows = 0;
    DLVDataBuilder b;
    QStringList selection;
    for (int round = 0; round < 160; ++round) {
        SCOPED_TRACE(round);
        // Two tree shapes, every unit in the model (none is pruned), so that most rounds meet the
        // tree of the round before and keep its rows. Every third round the message repeats.
        const int shape = random.bounded(4) == 0 ? 1 : 0;
        const bool repeat = round % 3 == 2;
        if (!repeat)
            b = DLVDataBuilder();
        if (!repeat)
            b.unit("#", "All", "").jobType("T", "T").jobClass("C", "C");
        QStringList ids;
        for (int i = 0; i < 8 + shape * 3 && !repeat; ++i) {
            const QString id = QStringLiteral("U%1").arg(i);
            b.unit(id, id, i == 0 ? QStringLiteral("#") : QStringLiteral("U%1").arg(i / 2));
            ids << id;
            const QString techs =
                QString::number(random.bounded(6) == 0 ? 1500000000 : random.bounded(50));
            // Now and then a leaf the model lacks: the same lookups, another tree.
            if (i < 4 || random.bounded(8) != 0)
                b.general(id, id, techs, QString::number(random.bounded(9)),
                          QString::number(random.bounded(9)));
            if (random.bounded(2) != 0)
                b.detail(id, "T", "C", {QString::number(random.bounded(30))});
        }
        if (!repeat) {
            selection.clear();
            for (const QString &id : ids) {
                if (random.bounded(3) == 0)
                    selection << id;
            }
        }
        LoadedModel model(b);
        // What a user or another feature may have done to the rows since the last fill.
        OutlineGrid &g = random.bounded(2) == 0 ? reused.workOrders : reused.points;
        if (g.rowCount() > 4) {
            const int row = 2 + int(random.bounded(quint32(g.rowCount() - 2)));
            switch (random.bounded(8)) {
            case 6:
                g.setText(row, 0, QStringLiteral("renamed"));
                break;
            case 7:
                g.setRowData(row, QStringLiteral("moved"));
                break;
            case 4:
                g.setText(row, 6, QStringLiteral("x"));
                break;
            case 5:
                g.setBold(row, 0, false);
                break;
            case 0:
                g.setCollapsed(row, true);
                break;
            case 1:
                g.setRowHeight(row, 500);
                break;
            case 2:
                g.setBackColor(row, 3, QColor(Qt::red));
                break;
            default:
                g.setBold(row, 5, true);
            }
        }
        Grids fresh;
        const int failedFresh = thrownNumber([&] { fresh.fill(model, selection); });
        reusedModel.controller.ReceiveMessage(b.variant(), 0, QString());
        reusedModel.controller.Busy().clear();
        const int failedReused =
            thrownNumber([&] { reused.fill(reusedModel, selection, &written); });
        ASSERT_EQ(failedReused, failedFresh);
        overflows += failedFresh != 0;
        ASSERT_EQ(wholeState(reused.workOrders), wholeState(fresh.workOrders));
        ASSERT_EQ(wholeState(reused.points), wholeState(fresh.points));
    }
    EXPECT_GT(overflows, 5);
    EXPECT_LT(overflows, 80); // most rounds write figures
}

// The unit list as a tree: where each listed unit hangs, and what a filter leaves visible.
TEST(UnitListTree, ItemsHangUnderTheirNearestListedAncestorAndFiltersKeepTheWayToAMatch)
{
    // Levels of a list in tree order; the session lacks the level-2 parent of "d".
    const std::vector<BUSelection::Item> items = {
        {"_a", "North", 1}, {"_b", "Alpha crew", 2}, {"_c", "Beta crew", 3},
        {"_d", "Delta", 3}, {"_e", "South", 1},      {"_f", "Gamma CREW", 2},
    };
    const std::vector<int> parents = BUSelection::treeParents(items);
    EXPECT_EQ(parents, (std::vector<int>{-1, 0, 1, 1, -1, 4}));
    const struct
    {
        const char *filter;
        std::vector<char> visible;
    } cases[] = {
        {"", {1, 1, 1, 1, 1, 1}},
        {"crew", {1, 1, 1, 0, 1, 1}}, // case-blind; parents of matches stay
        {"delta", {1, 1, 0, 1, 0, 0}},
        {"south", {0, 0, 0, 0, 1, 0}},
        {"nobody", {0, 0, 0, 0, 0, 0}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(BUSelection::filterMatches(items, parents, QString::fromLatin1(c.filter)),
                  c.visible)
            << c.filter;
}
