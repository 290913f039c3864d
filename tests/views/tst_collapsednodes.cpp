#include "loadedmodel.h"
#include "views/collapsednodes.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::vector<std::string> keys(const StringSet &set)
{
    std::vector<std::string> out;
    for (const auto &entry : set)
        out.push_back(entry.key.toStdString());
    return out;
}

DLVDataBuilder regions(bool withRegion2)
{
    DLVDataBuilder b;
    b.unit("#", "All", "").unit("R1", "Region 1", "#").unit("C1", "City 1", "R1");
    b.general("R1").general("C1");
    if (withRegion2)
        b.unit("R2", "Region 2", "#").unit("C2", "City 2", "R2").general("R2").general("C2");
    return b;
}

class HierarchyMemory : public ::testing::Test, protected HierarchyFill
{
protected:
    void fill(LoadedModel &model) { HierarchyFill::fill(model, {}); }
    void collapse(const QString &key) { wo.setCollapsed(wo.findRow(key), true); }

    OutlineGrid &wo = workOrders;
};

} // namespace

TEST_F(HierarchyMemory, CollapsedNodesSurviveARefillAndVanishedKeysAreDropped)
{
    LoadedModel before(regions(true));
    fill(before);
    collapse("R2");
    collapse("R1");
    StringSet list = ids({"stale"});
    CollapsedNodes::SaveCollapsedList(wo, 1, list);
    EXPECT_EQ(keys(list), (std::vector<std::string>{"R1", "R2"})); // top to bottom, list emptied

    LoadedModel after(regions(false));
    fill(after);
    EXPECT_FALSE(wo.isCollapsed(wo.findRow("R1")));
    CollapsedNodes::RestoreCollapsedList(wo, 1, list);
    EXPECT_TRUE(wo.isCollapsed(wo.findRow("R1")));
    EXPECT_FALSE(wo.isRowVisible(wo.findRow("C1")));
    CollapsedNodes::SaveCollapsedList(wo, 1, list);
    EXPECT_EQ(keys(list), std::vector<std::string>{"R1"});

    CollapsedNodes::ExpandNodes(wo, 1);
    CollapsedNodes::SaveCollapsedList(wo, 1, list);
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(HierarchyMemory, TheRootMarkCollapsesTheWholeTree)
{
    LoadedModel model(regions(true));
    fill(model);
    CollapsedNodes::RestoreCollapsedList(wo, 1, ids({"#", "nobody"}));
    EXPECT_TRUE(wo.isCollapsed(2));
    for (int r = 3; r < wo.rowCount(); ++r)
        EXPECT_FALSE(wo.isRowVisible(r)) << r;
}

TEST(SummaryMemory, TheGrandTotalIsRememberedAsTotalFromFourRowsOn)
{
    DLVDataBuilder b;
    b.unit("A", "A", "").general("A");
    b.detail("A", "T", "C", {"1"}).detail("A", "U", "C", {"2"});
    LoadedModel model(b);
    SummaryFill summary;
    OutlineGrid &grid = summary.grid;
    const auto show = [&](const QStringList &set) { summary.show(model, set); };

    show({"A"});
    grid.setCollapsed(2, true);
    grid.setCollapsed(grid.findRow("U"), true);
    StringSet list;
    CollapsedNodes::SaveCollapsedList(grid, 0, list);
    EXPECT_EQ(keys(list), (std::vector<std::string>{"TOTAL", "U"}));

    show({"A"});
    CollapsedNodes::RestoreCollapsedList(grid, 0, list);
    EXPECT_TRUE(grid.isCollapsed(2));
    EXPECT_TRUE(grid.isCollapsed(grid.findRow("U")));
    EXPECT_FALSE(grid.isCollapsed(grid.findRow("T")));
    CollapsedNodes::ExpandNodes(grid, 0);
    EXPECT_FALSE(grid.isCollapsed(2));
    EXPECT_FALSE(grid.isCollapsed(grid.findRow("U")));

    // Nothing chosen: header rows and the total row only. "TOTAL" is neither saved nor restored.
    show({});
    ASSERT_EQ(grid.rowCount(), 3);
    CollapsedNodes::RestoreCollapsedList(grid, 0, list);
    EXPECT_FALSE(grid.isCollapsed(2));
    CollapsedNodes::SaveCollapsedList(grid, 0, list);
    EXPECT_TRUE(list.isEmpty());
}
