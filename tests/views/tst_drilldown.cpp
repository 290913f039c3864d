// The drill-down rules on plain grid data: which clicks ask the host for details and with what.

#include "views/drilldown.h"
#include "views/outlinegrid.h"

#include <QHash>
#include <gtest/gtest.h>
#include <optional>

namespace {

DLVParams request(const QString &buid, const QString &info, const QString &status = {},
                  const QString &jobType = {}, const QString &jobClass = {})
{
    DLVParams p;
    p.BUID = buid;
    p.Info = info;
    p.JobStatus = status;
    p.JobType = jobType;
    p.JobClass = jobClass;
    p.JeopardyThreshold = QStringLiteral("30");
    return p;
}

std::string describe(const std::optional<DLVParams> &p)
{
    if (!p)
        return "nothing";
    return QStringLiteral("BUID=%1 Info=%2 JobStatus=%3 JobType=%4 JobClass=%5 Threshold=%6")
        .arg(p->BUID, p->Info, p->JobStatus, p->JobType, p->JobClass, p->JeopardyThreshold)
        .toStdString();
}

/// The control's state as the drill-down reads it, with a count of how often the unit list's
/// keys were read.
struct State
{
    QStringList keys{"_U1", "_U2", "_U3"};
    QStringList current{"U1", "X", "U3"};
    QHash<QString, QStringList> descendants{
        {"#", {"#", "U1", "U2", "Z"}},
        {"U1", {"U1"}},
        {"U2", {"U2", "U3"}},
        {"U3", {"U3"}},
        {"U9", {"U9"}},
    };
    int keyReads = 0;
    QSet<QString> ids; // the keys less their first character, as the unit list gives them
    QStringList idListAsked;

    DrillDown drillDown()
    {
        DrillDown::Sources s;
        s.unitIds = [this]() -> const QSet<QString> & {
            ++keyReads;
            ids.clear();
            for (const QString &key : keys)
                ids.insert(key.mid(1));
            return ids;
        };
        s.currentBUs = [this] { return current; };
        s.buIdList = [this](const QString &id) {
            idListAsked.append(id);
            return descendants.value(id);
        };
        s.jeopardyThreshold = [] { return QStringLiteral("30"); };
        return DrillDown(std::move(s));
    }
};

// Summary grid as a fill leaves it: grand total, a per-class total, a group, class rows.
void fillSummary(OutlineGrid &g)
{
    g.setColCount(17);
    g.setRowCount(2);
    g.setFixedRows(2);
    const QStringList keys = {"", "|INST", "WO", "WO|INST", "A|B|C", "RP|FIX"};
    for (const QString &key : keys) {
        const int row = g.addRow();
        g.setRowData(row, key);
        for (int c = 3; c <= 16; ++c)
            g.setText(row, c, QString::number(c));
    }
}

// Hierarchy grid: root, two reached units and a grey one between them.
void fillHierarchy(OutlineGrid &g)
{
    g.setColCount(12);
    g.setRowCount(2);
    g.setFixedRows(2);
    const QStringList keys = {"#", "U1", "U2", "U3"};
    for (const QString &key : keys) {
        const int row = g.addNodeRow(key == "#" ? 0 : 1);
        g.setRowData(row, key);
        g.setText(row, 0, key);
        if (key != "U2") // U2: no chosen unit reaches it
            for (int c = 1; c < 12; ++c)
                g.setText(row, c, QString::number(c));
    }
}

struct GridCase
{
    const char *name;
    int currentRow;
    int currentCol;
    int mouseRow;
    int mouseCol;
    qint16 button;
    std::optional<DLVParams> expected;
};

void runCases(int gridIndex, void (*fill)(OutlineGrid &), const std::vector<GridCase> &cases)
{
    for (const GridCase &c : cases) {
        OutlineGrid grid;
        fill(grid);
        grid.setCurrentCell(c.currentRow, c.currentCol);
        State state;
        const std::optional<DLVParams> got = state.drillDown().gridRequest(
            grid, DrillDown::Click{gridIndex, c.mouseRow, c.mouseCol, c.button});
        EXPECT_EQ(describe(got), describe(c.expected)) << c.name;
        EXPECT_LE(state.keyReads, 1) << c.name << ": the unit list is indexed once per request";
    }
}

constexpr qint16 L = DrillDown::LeftButton;

} // namespace

TEST(DrillDown, SummaryGridRules)
{
    const QString wo = QStringLiteral("WORKORDER");
    const QString bu = QStringLiteral("U1|U3");
    runCases(DrillDown::Summary, fillSummary,
             {
                 {"class row, first work-order column", 5, 3, 5, 3, L,
                  request(bu, wo, "WOOpen", "WO", "INST")},
                 {"point column keeps the WO prefix", 5, 10, 5, 10, L,
                  request(bu, wo, "WOOpen", "WO", "INST")},
                 {"middle statuses", 5, 13, 5, 13, L, request(bu, wo, "WOLate", "WO", "INST")},
                 {"class description column: no status, raised all the same", 5, 2, 5, 2, L,
                  request(bu, wo, {}, "WO", "INST")},
                 {"hidden job-type column", 5, 1, 5, 1, L, std::nullopt},
                 {"per-class total: empty job type", 3, 4, 3, 4, L,
                  request(bu, wo, "WOWarning", {}, "INST")},
                 {"group row: job type only", 4, 5, 4, 5, L, request(bu, wo, "WOJeopardy", "WO")},
                 {"three pieces give the job type only", 6, 7, 6, 7, L,
                  request(bu, wo, "WOCompleted", "A")},
                 {"grand total row has no row data", 2, 8, 2, 8, L, request(bu, wo, "WOCanceled")},
                 {"right button", 5, 3, 5, 3, DrillDown::RightButton, std::nullopt},
                 {"mouse in another column", 5, 3, 5, 4, L, std::nullopt},
                 {"last row while the current row is the grand total", 2, 3, 7, 3, L,
                  request(bu, wo, "WOOpen")},
                 {"last row while the current row is another row", 3, 3, 7, 3, L, std::nullopt},
                 {"last row clicked directly", 7, 11, 7, 11, L,
                  request(bu, wo, "WOWarning", "RP", "FIX")},
             });
}

TEST(DrillDown, HierarchyGridRulesAreTheSameForBothGrids)
{
    const QString wo = QStringLiteral("WORKORDER");
    const QString user = QStringLiteral("USER");
    const std::vector<GridCase> cases = {
        {"technician count of the root", 2, 1, 2, 1, L, request("U1|U2", user)},
        {"technician count of a unit", 3, 1, 3, 1, L, request("U1", user)},
        {"first status column", 3, 4, 3, 4, L, request("U1", wo, "WOOpen")},
        {"last row clicked directly", 5, 8, 5, 8, L, request("U3", wo, "WOCompleted")},
        {"hours remaining", 3, 2, 3, 2, L, std::nullopt},
        {"productivity", 3, 11, 3, 11, L, std::nullopt},
        {"grey row", 4, 4, 4, 4, L, std::nullopt},
        {"grey row technician count", 4, 1, 4, 1, L, std::nullopt},
        {"right button", 3, 4, 3, 4, DrillDown::RightButton, std::nullopt},
        {"mouse in another column", 3, 4, 3, 5, L, std::nullopt},
        {"last row while the current row is the root", 2, 5, 5, 5, L,
         request("U1|U2", wo, "WOWarning")},
        {"last row while the current row is a unit", 3, 5, 5, 5, L, std::nullopt},
    };
    runCases(DrillDown::WorkOrderHierarchy, fillHierarchy, cases);
    runCases(DrillDown::PointHierarchy, fillHierarchy, cases);
}

TEST(DrillDown, HierarchyAsksForTheRowsUnitsOnlyWhenDrillableAndLeavesOutUnlistedOnes)
{
    OutlineGrid grid;
    fillHierarchy(grid);
    State state;
    grid.setCurrentCell(4, 4); // grey
    EXPECT_FALSE(state.drillDown().gridRequest(grid, {1, 4, 4, L}));
    grid.setCurrentCell(2, 4);
    EXPECT_TRUE(state.drillDown().gridRequest(grid, {1, 5, 4, L}));
    EXPECT_EQ(state.idListAsked, QStringList{"#"}); // the root's row data, passed on as it is

    // U9 is not in the unit list: left out, but the request still goes.
    grid.setRowData(3, "U9");
    grid.setCurrentCell(3, 6);
    const auto got = state.drillDown().gridRequest(grid, {1, 3, 6, L});
    ASSERT_TRUE(got);
    EXPECT_EQ(got->BUID, "");
    EXPECT_EQ(got->JobStatus, "WOJeopardy");
}

TEST(DrillDown, TechnicianCountAsksForTheCurrentUnits)
{
    struct Case
    {
        const char *name;
        QStringList keys;
        QStringList current;
        QString buid;
    };
    const std::vector<Case> cases = {
        {"members in selection order", {"_U1", "_U2", "_U3"}, {"U3", "X", "U1"}, "U3|U1"},
        {"no member", {"_U1"}, {"U2"}, ""},
        {"any prefix character is dropped", {"xU1", "#U2"}, {"U1", "U2"}, "U1|U2"},
        {"ids that end in the separator stay whole", {"_A|"}, {"A|"}, "A|"},
    };
    for (const Case &c : cases) {
        State state;
        state.keys = c.keys;
        state.current = c.current;
        const DLVParams got = state.drillDown().techCountRequest();
        DLVParams want = request(c.buid, QStringLiteral("USER"));
        EXPECT_EQ(describe(got), describe(want)) << c.name;
    }
}

TEST(DrillDown, JoinDropsOnlyOneTrailingSeparator)
{
    const QSet<QString> members{"a", "b", ""};
    EXPECT_EQ(DrillDown::joinMembers({"a", "b"}, members), "a|b");
    EXPECT_EQ(DrillDown::joinMembers({"b", "zz", "a", "a"}, members), "b|a|a");
    // The empty id is a member here (key "_"): joined it ends in "|", and only one is dropped.
    EXPECT_EQ(DrillDown::joinMembers({"a", ""}, members), "a|");
    EXPECT_EQ(DrillDown::joinMembers({}, members), "");
}
