// Selection lists: descendants from the parent map, list-view selections and aggregate sets.
#include "model/controllerfixture.h"
#include "model/keptpositions.h"
#include "model/viewchoice.h"

#include <QRandomGenerator>
#include <QStringList>
#include <gtest/gtest.h>

namespace {

std::vector<QString> split(const char *joined)
{
    std::vector<QString> out;
    for (const QString &piece : QString::fromUtf8(joined).split(u' ', Qt::SkipEmptyParts))
        out.push_back(piece);
    return out;
}

class SelectionTest : public ControllerFixture
{
protected:
    // # -> A -> B -> D -> G;  A -> C -> F;  # -> H.
    // R is its own parent; O's parent is no unit; "" parents E.
    void SetUp() override
    {
        load(DLVDataBuilder()
                 .unit("#", "All", "#")
                 .unit("A", "a", "#")
                 .unit("B", "b", "A")
                 .unit("C", "c", "A")
                 .unit("D", "d", "B")
                 .unit("F", "f", "C")
                 .unit("G", "g", "D")
                 .unit("H", "h", "#")
                 .unit("R", "r", "R")
                 .unit("O", "o", "nowhere")
                 .unit("E", "e", ""));
        ASSERT_TRUE(reporter.reports.empty());
    }
};

TEST_F(SelectionTest, DescendantsListChildrenFirstThenEachSubtree)
{
    const struct
    {
        const char *start, *children, *idList;
    } rows[] = {{"A", "B,C,D,G,F,", "A B C D G F"},
                {"#", "A,H,B,C,D,G,F,", "# A H B C D G F"},
                {"R", "", "R"}, // its own parent is not its own child
                {"nowhere", "O,", "nowhere O"},
                {"a", "", "a"}}; // exact case
    for (const auto &r : rows) {
        SCOPED_TRACE(r.start);
        EXPECT_EQ(controller.GetChildBUIDList(r.start), r.children);
        EXPECT_EQ(controller.GetBUIDList(r.start).keys(), split(r.idList));
    }
    EXPECT_TRUE(reporter.reports.empty());
}

TEST(SelectionCycles, AreCutWhereTheyClose)
{
    const struct
    {
        std::vector<std::pair<const char *, const char *>> parents;
        const char *start, *children;
    } rows[] = {{{{"A", "B"}, {"B", "A"}}, "A", "B,"},
                {{{"A", "C"}, {"B", "A"}, {"C", "B"}}, "B", "C,A,"},
                {{{"A", "B"}, {"B", "A"}, {"X", "A"}}, "B", "A,X,"}};
    for (const auto &r : rows) {
        SCOPED_TRACE(r.children);
        ControllerRig rig;
        DLVDataBuilder builder;
        for (const auto &[id, parent] : r.parents)
            builder.unit(id, id, parent);
        rig.load(builder);
        EXPECT_EQ(rig.controller.GetChildBUIDList(r.start), r.children);
    }
}

TEST_F(ControllerFixture, DeepChainIsWalkedWithoutRecursionAndCommaIdsSplit)
{
    constexpr int Depth = 10000;
    DLVDataBuilder builder;
    builder.unit("U0", "root", "U0");
    for (int i = 1; i <= Depth; ++i)
        builder.unit(QStringLiteral("U%1").arg(i), "u", QStringLiteral("U%1").arg(i - 1));
    builder.unit("P", "p", "P").unit("X,Y", "xy", "P").unit("Y", "y", "P");
    load(builder);
    const StringSet all = controller.GetBUIDList("U0");
    ASSERT_EQ(all.count(), Depth + 1);
    EXPECT_EQ(all.keyAt(Depth), QStringLiteral("U%1").arg(Depth));
    // An id holding a comma arrives as its pieces.
    EXPECT_EQ(controller.GetBUIDList("P").keys(), split("P X Y"));
}

TEST_F(SelectionTest, SelectedItemsGiveListAndAggregateSetsInListOrder)
{
    const struct
    {
        std::vector<std::pair<const char *, bool>> items;
        const char *buList, *aggregate;
    } rows[] = {{{{"H", true}, {"B", true}, {"A", false}}, "H B", "H B D G"},
                {{{"C", true}, {"A", true}}, "C A", "C F A B D G"},
                {{{"A", true}, {"C", true}}, "A C", "A B C D G F"},
                {{{"Z", true}}, "Z", "Z"},
                // A unit or a stranger listed twice counts once; a stranger never hides a unit.
                {{{"B", true}, {"Z", true}, {"B", true}, {"Z", true}, {"b", true}, {"D", true}},
                 "B Z b D",
                 "B D G Z b"},
                {{{"D", true}, {"B", true}, {"D", true}, {"A", false}}, "D B", "D G B"}};
    for (const auto &r : rows) {
        SCOPED_TRACE(r.buList);
        surface.items.clear();
        for (const auto &[id, selected] : r.items)
            surface.addItem(id, selected);
        EXPECT_EQ(controller.GetBUList().keys(), split(r.buList));
        EXPECT_EQ(controller.GetAggregateBUList().keys(), split(r.aggregate));
    }
    EXPECT_TRUE(reporter.reports.empty());

    // Without a surface the load still completes (it writes nothing on the control; the refresh
    // times go out as a signal), while the selections, which read the unit list, report.
    cDLVController bare(&reporter);
    FillCounter fills(&bare, &cDLVController::FillBUHierarchyGrid);
    bare.ReceiveMessage(DLVDataBuilder().general("B1").variant(), 0, {});
    EXPECT_EQ(fills.count(), 1);
    EXPECT_NE(bare.BUs().Item(u"B1"), nullptr);
    EXPECT_EQ(bare.GetBUList().count(), 0);
    EXPECT_EQ(bare.GetAggregateBUList().count(), 0);
    EXPECT_EQ(reportTexts(),
              (Reports{"cDLVController.GetBUList 5", "cDLVController.GetAggregateBUList 5"}));
}

TEST_F(SelectionTest, HierarchyIndexServesTheTreeBuild)
{
    const BUHierarchy &tree = controller.Hierarchy();
    ASSERT_EQ(tree.count(), 11);
    const auto names = [&](std::span<const int> units) {
        std::vector<QString> out;
        for (const int u : units)
            out.push_back(tree.id(u));
        return out;
    };
    EXPECT_EQ(names(tree.children(u"#")), split("A H"));
    EXPECT_EQ(names(tree.childrenOf(tree.indexOf(u"A"))), split("B C"));
    EXPECT_EQ(names(tree.children(u"")), split("E"));
    EXPECT_EQ(tree.parentIndex(tree.indexOf(u"R")), tree.indexOf(u"R"));
    EXPECT_EQ(tree.parentIndex(tree.indexOf(u"O")), -1);
    EXPECT_EQ(tree.parentId(tree.indexOf(u"O")), "nowhere");
    load(DLVDataBuilder().unit("#", "All", "#").unit("N", "n", "#")); // a later load re-indexes
    EXPECT_EQ(names(controller.Hierarchy().children(u"#")), split("N"));
}

} // namespace

TEST(SelectionAggregate, EqualsTheJoinedDescendantListsOnRandomTrees)
{
    // The aggregate set is every selected unit's own list (the unit, then its descendants) joined
    // in selection order, each id once: whatever the shape (chains, cycles, self-parents, orphans,
    // ids differing only in case, commas) and however the selections overlap.
    QRandomGenerator random(7321);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        const bool chain = trial % 4 == 0;
        const int n = chain ? 100 + int(random.bounded(200)) : 1 + int(random.bounded(30));
        QStringList units;
        for (int i = 0; i < n; ++i) {
            const quint32 kind = random.bounded(20);
            units << (kind == 0                     ? QStringLiteral("u%1")
                      : kind == 1 && trial % 3 == 1 ? QStringLiteral("U%1,x")
                                                    : QStringLiteral("U%1"))
                         .arg(chain ? i : int(random.bounded(n + 3)));
        }
        units.removeDuplicates();
        DLVDataBuilder builder;
        for (int i = 0; i < units.size(); ++i) {
            const quint32 kind = random.bounded(10);
            const QString parent = chain && kind > 1 ? (i ? units[i - 1] : QStringLiteral("#"))
                                   : kind == 0       ? units[i]
                                   : kind == 1       ? QStringLiteral("nowhere")
                                   : kind < 4        ? QStringLiteral("#")
                                                     : units[int(random.bounded(units.size()))];
            builder.unit(units[i], "d", parent);
            if (kind % 3 != 0) // the model holds most units, in any letter case of their ids
                builder.general(kind == 5 ? units[i].toLower() : units[i]);
        }
        ControllerRig rig;
        rig.load(builder);
        const int items = int(random.bounded(8)) + (chain ? units.size() : 0);
        for (int k = 0; k < items; ++k) {
            const quint32 kind = random.bounded(12);
            const QString id = kind == 0   ? QStringLiteral("#")
                               : kind == 1 ? QStringLiteral("ghost")
                                           : units[int(random.bounded(units.size()))];
            rig.surface.addItem(id, random.bounded(5) != 0);
        }
        StringSet expected(KeyCompare::Exact);
        for (const auto &[key, selected] : rig.surface.items)
            if (selected)
                for (const auto &entry : rig.controller.GetBUIDList(key.mid(1)))
                    expected.addIfAbsent(entry.key, entry.key);
        ASSERT_EQ(rig.controller.GetAggregateBUList().keys(), expected.keys());
        // The units that come with the list are the ones its ids look up, pieces of ids too.
        std::vector<const BusinessUnit *> found;
        const StringSet listed = rig.controller.GetAggregateBUList(&found);
        ASSERT_EQ(qsizetype(found.size()), listed.count());
        const cDLVController &controller = rig.controller;
        for (qsizetype k = 0; k < listed.count(); ++k)
            ASSERT_TRUE(found[std::size_t(k)] == controller.BUs().Item(listed.keyAt(k)))
                << listed.keyAt(k).toStdString();
    }
}

// The controller keeps the lists it computed while the choice and the parent map stay as they
// were. A kept list that outlived a change would sum the wrong units, so every kind of change
// must show in the next answer.
TEST(KeptSelectionLists, FollowEveryChangeOfTheChoiceAndTheParentMap)
{
    ViewChoice choice;
    RecordingReporter reporter;
    cDLVController controller(&reporter);
    controller.Initialize(&choice);
    const auto load = [&](const char *parentOfC) {
        controller.Busy().clear();
        controller.ReceiveMessage(DLVDataBuilder()
                                      .unit("A", "A", "#")
                                      .unit("B", "B", "A")
                                      .unit("C", "C", parentOfC)
                                      .general("A")
                                      .variant(),
                                  0, QString());
    };
    load("B");
    choice.setUnits({"_A", "_B", "_C"}, {1, 0, 0});
    const auto ids = [](const StringSet &set) { return set.keys(); };
    using Ids = std::vector<QString>;

    const struct
    {
        const char *name;
        std::function<void()> change;
        Ids chosen;
        Ids aggregate;
    } steps[] = {
        {"as loaded", [] {}, {"A"}, {"A", "B", "C"}},
        {"asked again", [] {}, {"A"}, {"A", "B", "C"}},
        {"one unit more", [&] { choice.setChosen(2, true); }, {"A", "C"}, {"A", "B", "C"}},
        {"a new selection",
         [&] {
             choice.setAllChosen({0, 1, 0});
         },
         {"B"},
         {"B", "C"}},
        {"a new parent map", [&] { load("A"); }, {"B"}, {"B"}},
        {"a new list",
         [&] {
             choice.setUnits({"_C", "_A"}, {1, 1});
         },
         {"C", "A"},
         {"C", "A", "B"}},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.name);
        step.change();
        StringSet chosen = controller.GetBUList();
        EXPECT_EQ(ids(chosen), step.chosen);
        EXPECT_EQ(ids(controller.GetAggregateBUList()), step.aggregate);
        chosen.add(QStringLiteral("X"), QStringLiteral("X")); // the caller's copy is its own
        EXPECT_EQ(ids(controller.GetBUList()), step.chosen);
    }
    EXPECT_TRUE(reporter.reports.empty());
}

// Kept positions answer for the set and the lookups they were taken from: a set changed in place
// after it was shown, other lookups or another epoch must all be seen, or a refresh would sum
// and list the wrong units.
TEST(KeptPositions, FollowTheSetAndTheLookups)
{
    const auto parentMap = [](std::initializer_list<const char *> ids) {
        StringSet map(KeyCompare::Exact);
        for (const char *id : ids)
            map.add(QString::fromUtf8(id), QStringLiteral("#"));
        return map;
    };
    BUHierarchy abc;
    abc.rebuild(parentMap({"A", "B", "C"}));
    BUHierarchy cba;
    cba.rebuild(parentMap({"C", "B", "A"}));
    const auto set = [](std::initializer_list<const char *> ids, KeyCompare compare) {
        StringSet out(compare);
        for (const char *id : ids)
            out.add(QString::fromUtf8(id), QString::fromUtf8(id));
        return out;
    };
    StringSet chosen = set({"C", "ghost", "A"}, KeyCompare::Exact);
    KeptPositions kept;
    using Positions = std::vector<int>;
    using Members = std::vector<char>;
    const struct
    {
        const char *name;
        std::function<void()> change;
        const BUHierarchy &hierarchy;
        quint64 epoch;
        Positions positions;
        Members members;
    } steps[] = {
        {"first", [] {}, abc, 1, {2, -1, 0}, {1, 0, 1}},
        {"asked again", [] {}, abc, 1, {2, -1, 0}, {1, 0, 1}},
        {"a copy of the set", [&] { chosen = StringSet(chosen); }, abc, 1, {2, -1, 0}, {1, 0, 1}},
        {"the set changed in place",
         [&] { chosen.add(QStringLiteral("B"), QStringLiteral("B")); },
         abc,
         1,
         {2, -1, 0, 1},
         {1, 1, 1}},
        {"a unit less", [&] { chosen.remove(u"C"); }, abc, 1, {-1, 0, 1}, {1, 1, 0}},
        {"new lookups", [] {}, cba, 2, {-1, 2, 1}, {0, 1, 1}},
        {"an equal set made anew",
         [&] {
             chosen = set({"ghost", "A", "B"}, KeyCompare::Exact);
         },
         cba,
         2,
         {-1, 2, 1},
         {0, 1, 1}},
        {"ids without regard to case",
         [&] {
             chosen = set({"a", "B"}, KeyCompare::CaseInsensitive);
         },
         cba,
         2,
         {-1, 1},
         {0, 0, 0}},
        {"an epoch of none",
         [&] { chosen = set({"A"}, KeyCompare::Exact); },
         abc,
         0,
         {0},
         {1, 0, 0}},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.name);
        step.change();
        kept.update(chosen, step.hierarchy, step.epoch);
        EXPECT_EQ(Positions(kept.positions().begin(), kept.positions().end()), step.positions);
        EXPECT_EQ(Members(kept.members().begin(), kept.members().end()), step.members);
    }
}
