// Selection lists: descendants from the parent map, list-view selections and aggregate sets.
#include "model/controllerfixture.h"

#include <gtest/gtest.h>

namespace {

std::vector<QString> ids(const StringSet &set)
{
    return set.keys();
}

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
    // #
    // +- A
    // |  +- B
    // |  |  +- D
    // |  |     +- G
    // |  +- C
    // |     +- F
    // +- H
    // R is its own parent; O's parent is no unit; "" parents E.
    void loadTree()
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

struct ListCase
{
    const char *name;
    const char *start;
    const char *children; // GetChildBUIDList
    const char *idList;   // GetBUIDList, space separated
};

class DescendantTest : public SelectionTest, public ::testing::WithParamInterface<ListCase>
{};

TEST_P(DescendantTest, ListsChildrenFirstThenEachSubtree)
{
    loadTree();
    EXPECT_EQ(controller.GetChildBUIDList(GetParam().start), GetParam().children);
    EXPECT_EQ(ids(controller.GetBUIDList(GetParam().start)), split(GetParam().idList));
    EXPECT_TRUE(reporter.reports.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Tree, DescendantTest,
    ::testing::Values(ListCase{"Inner", "A", "B,C,D,G,F,", "A B C D G F"},
                      ListCase{"Root", "#", "A,H,B,C,D,G,F,", "# A H B C D G F"},
                      ListCase{"Leaf", "G", "", "G"},
                      ListCase{"SelfParentIsNotItsOwnChild", "R", "", "R"},
                      ListCase{"UnknownId", "Z", "", "Z"},
                      ListCase{"ParentThatIsNoUnit", "nowhere", "O,", "nowhere O"},
                      ListCase{"ExactCase", "a", "", "a"}),
    [](const auto &info) { return std::string(info.param.name); });

struct CycleCase
{
    const char *name;
    std::vector<std::pair<const char *, const char *>> parents;
    const char *start;
    const char *children;
};

class CycleTest : public ControllerFixture, public ::testing::WithParamInterface<CycleCase>
{};

TEST_P(CycleTest, IsCutWhereItCloses)
{
    DLVDataBuilder builder;
    for (const auto &[id, parent] : GetParam().parents)
        builder.unit(id, id, parent);
    load(builder);
    EXPECT_EQ(controller.GetChildBUIDList(GetParam().start), GetParam().children);
}

INSTANTIATE_TEST_SUITE_P(
    Cycles, CycleTest,
    ::testing::Values(CycleCase{"TwoUnits", {{"A", "B"}, {"B", "A"}}, "A", "B,"},
                      CycleCase{"ThreeUnits", {{"A", "C"}, {"B", "A"}, {"C", "B"}}, "B", "C,A,"},
                      CycleCase{
                          "CycleWithBranch", {{"A", "B"}, {"B", "A"}, {"X", "A"}}, "B", "A,X,"},
                      CycleCase{"StartOutsideCycle", {{"A", "B"}, {"B", "A"}}, "Q", ""}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SelectionTest, DeepChainIsWalkedWithoutRecursion)
{
    constexpr int Depth = 10000;
    DLVDataBuilder builder;
    builder.unit("U0", "root", "U0");
    for (int i = 1; i <= Depth; ++i)
        builder.unit(QStringLiteral("U%1").arg(i), "u", QStringLiteral("U%1").arg(i - 1));
    load(builder);
    const StringSet all = controller.GetBUIDList("U0");
    ASSERT_EQ(all.count(), Depth + 1);
    EXPECT_EQ(all.keyAt(Depth), QStringLiteral("U%1").arg(Depth));
}

TEST_F(SelectionTest, IdsHoldingACommaArriveAsTheirPieces)
{
    load(DLVDataBuilder().unit("P", "p", "P").unit("X,Y", "xy", "P").unit("Y", "y", "P"));
    EXPECT_EQ(ids(controller.GetBUIDList("P")), split("P X Y"));
}

struct PickCase
{
    const char *name;
    std::vector<std::pair<const char *, bool>> items;
    const char *buList;
    const char *aggregate;
};

class PickTest : public SelectionTest, public ::testing::WithParamInterface<PickCase>
{};

TEST_P(PickTest, SelectedItemsGiveTheseSets)
{
    loadTree();
    for (const auto &[id, selected] : GetParam().items)
        surface.addItem(id, selected);
    EXPECT_EQ(ids(controller.GetBUList()), split(GetParam().buList));
    EXPECT_EQ(ids(controller.GetAggregateBUList()), split(GetParam().aggregate));
    EXPECT_TRUE(reporter.reports.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Picks, PickTest,
    ::testing::Values(
        PickCase{"NothingSelected", {{"A", false}, {"B", false}}, "", ""},
        PickCase{"EmptyList", {}, "", ""},
        PickCase{
            "ListOrderNotTreeOrder", {{"H", true}, {"B", true}, {"A", false}}, "H B", "H B D G"},
        PickCase{"ChildBeforeAncestor", {{"C", true}, {"A", true}}, "C A", "C F A B D G"},
        PickCase{"AncestorBeforeChild", {{"A", true}, {"C", true}}, "A C", "A B C D G F"},
        PickCase{"UnknownUnitStillListed", {{"Z", true}}, "Z", "Z"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SelectionTest, WithoutSurfaceTheSelectionFunctionsReportAndGiveEmptySets)
{
    cDLVController bare(&reporter);
    EXPECT_EQ(bare.GetBUList().count(), 0);
    EXPECT_EQ(bare.GetAggregateBUList().count(), 0);
    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"cDLVController.GetBUList 5",
                                                       "cDLVController.GetAggregateBUList 5"}));
}

TEST_F(SelectionTest, HierarchyIndexServesTheTreeBuild)
{
    loadTree();
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
    EXPECT_TRUE(tree.children(u"G").empty());
    EXPECT_EQ(tree.parentIndex(tree.indexOf(u"R")), tree.indexOf(u"R"));
    EXPECT_EQ(tree.parentIndex(tree.indexOf(u"O")), -1);
    EXPECT_EQ(tree.parentId(tree.indexOf(u"O")), "nowhere");

    // A later load re-indexes.
    load(DLVDataBuilder().unit("#", "All", "#").unit("N", "n", "#"));
    EXPECT_EQ(names(controller.Hierarchy().children(u"#")), split("N"));
}

} // namespace
