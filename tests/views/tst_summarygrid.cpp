#include "common/dlverror.h"
#include "loadedmodel.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

/// Counters from index 0 on, the rest "0".
QStringList counters(std::initializer_list<int> values)
{
    QStringList out;
    for (int v : values)
        out << QString::number(v);
    return out;
}

/// Rows from 2 on as "<node mark><row data>;<col 1>;<col 2>;<counters joined by ','>".
std::vector<std::string> dump(const OutlineGrid &grid)
{
    std::vector<std::string> out;
    for (int r = 2; r < grid.rowCount(); ++r) {
        QString line = QString(grid.isNode(r) ? u'+' : u' ') + grid.rowData(r) + u';' +
                       grid.text(r, 1) + u';' + grid.text(r, 2) + u';';
        for (int c = 3; c < SummaryGrid::ColumnCount; ++c)
            line += grid.text(r, c) +
                    (c + 1 < SummaryGrid::ColumnCount ? QStringLiteral(",") : QString());
        out.push_back(line.toStdString());
    }
    return out;
}

std::vector<std::string> panelTexts(const PanelValues &panel)
{
    std::vector<std::string> out;
    for (int i = 0; i < PanelValues::FigureCount; ++i)
        out.push_back(panel.text(i).toStdString());
    return out;
}

class SummaryGridTest : public ::testing::Test, protected SummaryFill
{};

/// Two units, job types T (Install) and U (Repair), classes C (Cable) and D (Dish).
DLVDataBuilder twoUnits()
{
    DLVDataBuilder b;
    b.unit("#", "All", "").unit("A", "Alpha", "#").unit("B", "Beta", "#");
    b.jobType("T", "Install").jobType("U", "Repair");
    b.jobClass("C", "Cable").jobClass("D", "Dish");
    b.general("A", "Alpha", "2", "3", "4").general("B", "Beta", "1", "5", "0");
    b.detail("A", "T", "C", counters({1, 0, 0, 0, 2, 0, 0, 10}));
    b.detail("A", "T", "D", counters({3}));
    b.detail("B", "T", "C", counters({4}));
    b.detail("B", "U", "C", counters({0, 7}));
    return b;
}

} // namespace

TEST_F(SummaryGridTest, LayoutHasHeaderBandsCaptionsAndTwipWidths)
{
    EXPECT_EQ(grid.fixedRows(), 2);
    EXPECT_EQ(grid.rowHeight(1), 2 * grid.rowHeight(0));
    EXPECT_EQ(grid.text(0, 9), "WorkOrders");
    EXPECT_EQ(grid.text(0, 10), "Points");
    EXPECT_EQ(grid.text(1, 16), "NotDone");
    EXPECT_EQ(grid.backColor(1, 0), QColor(253, 252, 217));
    EXPECT_EQ(grid.backColor(1, 12), QColor(252, 230, 234));
    EXPECT_EQ(grid.colWidth(1), 0);
    EXPECT_EQ(grid.colWidth(16), 780);

    // 12.5 twips per pixel: 187.5 and 1387.5 round to the even neighbours.
    SummaryGrid(grid).InitSingleBUGrid(identity, 12.5);
    EXPECT_EQ(grid.colWidth(0), 188);
    EXPECT_EQ(grid.colWidth(2), 1388);
    EXPECT_EQ(grid.colWidth(3), 650);
}

TEST_F(SummaryGridTest, NothingToShowGivesOneGreyTotalRowAndAZeroPanel)
{
    LoadedModel model(DLVDataBuilder()
                          .unit("#", "All", "")
                          .unit("E", "Empty", "#")
                          .unit("F", "Bare", "#")
                          .general("E", "Empty", "5", "6", "7")
                          .general("F", "Bare", "1", "1", "1"));
    const struct
    {
        const char *name;
        QStringList set;
        std::vector<std::string> panel;
    } cases[] = {
        {"nothing chosen", {}, {"0", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0"}},
        // A unit without detail rows still adds its technicians and hours to the panel.
        {"unit without details", {"E"}, {"5", "6", "7", "0", "0", "0", "0", "0", "0", "0", "0"}},
        // No unit has a class: no unit's class block lies anywhere.
        {"units without details",
         {"E", "F"},
         {"6", "7", "8", "0", "0", "0", "0", "0", "0", "0", "0"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        show(model, c.set);
        ASSERT_EQ(grid.rowCount(), 3);
        EXPECT_EQ(dump(grid), std::vector<std::string>{" ;;Total;0,0,0,0,0,0,0,0,0,0,0,0,0,0"});
        EXPECT_FALSE(grid.isNode(2));
        EXPECT_TRUE(grid.isBold(2, 0));
        EXPECT_TRUE(grid.isBold(2, 16));
        EXPECT_FALSE(grid.backColor(2, 1).isValid());
        EXPECT_EQ(grid.backColor(2, 2), QColor(224, 224, 224));
        EXPECT_EQ(grid.backColor(2, 16), QColor(224, 224, 224));
        EXPECT_EQ(panelTexts(panel), c.panel);
    }
    EXPECT_TRUE(model.reporter.reports.empty());
}

TEST_F(SummaryGridTest, SharedRowsGroupsPerClassTotalsAndCleanUp)
{
    LoadedModel model(twoUnits());
    show(model, {"A", "B"});
    // Row T|C holds both units; |C sums C over both job types of both units. The Repair group
    // sums no open work orders, so the clean-up drops it and its row joins the Install group.
    const std::vector<std::string> expected = {
        "+;Total;;8,7,0,0,2,0,0,10,0,0,0,0,0,0",
        " |C;Total;Cable;5,7,0,0,2,0,0,10,0,0,0,0,0,0",
        " |D;Total;Dish;3,0,0,0,0,0,0,0,0,0,0,0,0,0",
        "+T;Install;;8,,,,2,,,10,,,,,,",
        " T|C;Install;Cable;5,0,0,0,2,0,0,10,0,0,0,0,0,0",
        " T|D;Install;Dish;3,0,0,0,0,0,0,0,0,0,0,0,0,0",
        " U|C;Repair;Cable;0,7,0,0,0,0,0,0,0,0,0,0,0,0",
    };
    EXPECT_EQ(dump(grid), expected);
    EXPECT_EQ(grid.parentRow(3), 2);
    EXPECT_EQ(grid.parentRow(8), 5);
    EXPECT_EQ(grid.backColor(5, 0), QColor(224, 224, 224));
    EXPECT_TRUE(grid.isBold(5, 16));
    EXPECT_FALSE(grid.isBold(6, 3));
    for (int r = 0; r < grid.rowCount(); ++r)
        EXPECT_TRUE(grid.isBold(r, 1)) << r;
    EXPECT_EQ(grid.currentRow(), 0);
    EXPECT_EQ(grid.currentCol(), 0);
    // Sums 3 technicians, 8 hours worked, 4 remaining, 2 done and 8 open work orders, 10 open
    // points; rates of those sums.
    EXPECT_EQ(panelTexts(panel), (std::vector<std::string>{"3", "8", "4", "2", "8", "0", "10",
                                                           "0.25", "2", "0", "2.5"}));

    // Unknown units in an aggregate set are skipped silently.
    show(model, {"ghost", "A", "B", "nobody"});
    EXPECT_EQ(dump(grid), expected);
    EXPECT_TRUE(model.reporter.reports.empty());
}

TEST_F(SummaryGridTest, OnlyTheLargestUnitsClassCountOfPerClassRowsIsSorted)
{
    DLVDataBuilder b;
    b.unit("A", "A", "").unit("B", "B", "");
    // P and Q share a description: the sort's second key is the open work orders as text, so
    // "10" goes before "9".
    b.jobClass("P", "Same").jobClass("Q", "Same");
    b.general("A").general("B");
    b.detail("A", "T", "A1", counters({1})).detail("A", "T", "B2", counters({1}));
    b.detail("B", "T", "P", counters({9})).detail("B", "T", "Q", counters({10}));
    b.detail("B", "T", "Z9", counters({1}));
    LoadedModel model(b);
    show(model, {"A", "B"});
    // Created A1, B2, P, Q, Z9; each went to row 3, so rows 3.. read Z9, Q, P, B2, A1. B has the
    // most classes (3): rows 3 to 5 are sorted, B2 and A1 keep their places although a full sort
    // would put them first. Codes without a description show the code.
    std::vector<std::string> perClass;
    for (int r = 3; r <= 7; ++r)
        perClass.push_back((grid.text(r, 2) + u'/' + grid.rowData(r)).toStdString());
    EXPECT_EQ(perClass,
              (std::vector<std::string>{"Same/|Q", "Same/|P", "Z9/|Z9", "B2/|B2", "A1/|A1"}));
    EXPECT_EQ(SummaryGrid::GetMaxClassCnt(ids({"A", "B", "ghost"}), model.controller.BUs(),
                                          &model.reporter),
              3);
    EXPECT_EQ(SummaryGrid::GetMaxClassCnt(ids({}), model.controller.BUs(), &model.reporter), 0);
}

TEST_F(SummaryGridTest, SumsPastThe32BitRangeRaiseOverflowAndLeaveTheGridCleared)
{
    DLVDataBuilder b;
    b.unit("A", "A", "").unit("B", "B", "").general("A").general("B");
    b.detail("A", "T", "C", counters({0, 2000000000}))
        .detail("B", "T", "C", counters({0, 2000000000}));
    LoadedModel model(b);
    try {
        show(model, {"A", "B"});
        FAIL() << "no overflow";
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), DLVError::Overflow);
    }
    EXPECT_EQ(grid.rowCount(), 2);

    // Open work orders past the range: the panel shows the sum, then its rate fails.
    DLVDataBuilder open;
    open.unit("A", "A", "").unit("B", "B", "").general("A").general("B");
    open.detail("A", "T", "C", counters({2000000000}))
        .detail("B", "U", "C", counters({2000000000}));
    LoadedModel openModel(open);
    EXPECT_THROW(show(openModel, {"A", "B"}), DLVError);
    EXPECT_EQ(panel.text(4), "4000000000");
}

TEST(SummaryGridHeight, FitsRowsOrStopsAtTheFrame)
{
    OutlineGrid grid;
    grid.setColCount(1);
    const struct
    {
        int rows;
        double top, frame, expected;
    } cases[] = {
        {2, 0, 100, (2 + 2.25) * 285},    // headers only: natural height, unrounded
        {10, 300, 100000, 3491},          // 12.25 x 285 = 3491.25, rounded
        {10, 300, 300 + 3491 + 45, 3491}, // just fits with the 3-pixel margin
        {10, 300, 300 + 3491 + 44, 3490}, // one twip short: what is left
    };
    for (const auto &c : cases) {
        grid.setRowCount(c.rows);
        EXPECT_DOUBLE_EQ(SummaryGrid::FitGridHeight(grid, c.top, c.frame, 15), c.expected)
            << c.rows << " rows in " << c.frame;
    }
}
