// The records behind the figures: which records a detail request selects, and the "Details" table.
#include "common/dlverror.h"
#include "host/detailrecords.h"
#include "support/qtprinters.h"
#include "webdata/qzwebtable.h"

#include <gtest/gtest.h>
#include <ostream>

namespace {

using Status = DetailRecords::Status;

DetailRecords sample()
{
    DetailRecords r;
    r.workOrders = {
        {"W1", "C1", "INST", "RES", Status::Open, 5, "Ana", QTime(9, 0)},
        {"W2", "C1", "INST", "BUS", Status::Late, 5, "Ben", QTime(8, 0)},
        {"W3", "C1", "REP", "RES", Status::Completed, 1, "Ana", QTime(10, 0)},
        {"W4", "C2", "INST", "RES", Status::Completed, 5, "Cara", QTime(11, 0)},
        {"W5", "C2", "REP", "BUS", Status::Open, 1, "", QTime()},
        {"W6", "C1", "INST", "RES", Status::Completed, 5, "Ana", QTime(12, 0)},
    };
    r.technicians = {
        {"T1", "Ana", "C1", 4, 4}, {"T2", "Ben", "C1", 3, 5}, {"T3", "Cara", "C2", 6, 2}};
    return r;
}

struct SelectCase
{
    const char *name;
    DetailRecords::Query query;
    QStringList ids;
    friend void PrintTo(const SelectCase &c, std::ostream *os) { *os << c.name; }
};

class SelectWorkOrdersTest : public ::testing::TestWithParam<SelectCase>
{};

TEST_P(SelectWorkOrdersTest, SelectsByUnitsTypeClassAndStatus)
{
    const DetailRecords r = sample();
    QStringList ids;
    for (const auto *wo : r.selectWorkOrders(GetParam().query))
        ids.append(wo->id);
    EXPECT_EQ(ids, GetParam().ids);
}

INSTANTIATE_TEST_SUITE_P(
    Queries, SelectWorkOrdersTest,
    ::testing::Values(
        SelectCase{"AllOfOneUnit", {{"C1"}, {}, {}, {}}, {"W1", "W2", "W3", "W6"}},
        SelectCase{"TwoUnits", {{"C1", "C2"}, {}, {}, {}}, {"W1", "W2", "W3", "W4", "W5", "W6"}},
        SelectCase{"NoUnitsMatchNothing", {{}, {}, {}, {}}, {}},
        SelectCase{"UnknownUnit", {{"C9"}, {}, {}, {}}, {}},
        SelectCase{"Status", {{"C1", "C2"}, {}, {}, "WOCompleted"}, {"W3", "W4", "W6"}},
        SelectCase{"TypeAndStatus", {{"C1", "C2"}, "INST", {}, "WOCompleted"}, {"W4", "W6"}},
        SelectCase{"ClassOnlyAsPerClassTotals", {{"C1", "C2"}, {}, "BUS", {}}, {"W2", "W5"}},
        SelectCase{"TypeAndClass", {{"C1"}, "INST", "RES", {}}, {"W1", "W6"}},
        SelectCase{"CodesIgnoreLetterCase", {{"C1"}, "inst", "res", "WOOpen"}, {"W1"}},
        SelectCase{"UnknownStatusMatchesNothing", {{"C1"}, {}, {}, "Open"}, {}}),
    [](const ::testing::TestParamInfo<SelectCase> &info) { return std::string(info.param.name); });

TEST(DetailRecords, TechniciansAreSelectedByUnitOnlyAndCountTheirCompletedOrders)
{
    const DetailRecords r = sample();
    DetailRecords::Query q{{"C1"}, "REP", "BUS", "WOLate"};
    const auto techs = r.selectTechnicians(q);
    ASSERT_EQ(techs.size(), 2u);
    EXPECT_EQ(techs[0]->name, "Ana");
    EXPECT_EQ(techs[1]->name, "Ben");
    const auto completed = r.completedByTechnician();
    EXPECT_EQ(completed.value(DetailRecords::technicianKey("C1", "Ana")), 2);
    EXPECT_EQ(completed.value(DetailRecords::technicianKey("C1", "Ben")), 0);
    EXPECT_EQ(completed.value(DetailRecords::technicianKey("C2", "Cara")), 1);
}

TEST(DetailRecords, StatusKeysRoundTripInCounterOrder)
{
    const QStringList keys = {"WOOpen",      "WOWarning",  "WOJeopardy", "WOLate",
                              "WOCompleted", "WOCanceled", "WONotDone"};
    for (int i = 0; i < DetailRecords::StatusCount; ++i) {
        EXPECT_EQ(DetailRecords::statusKey(Status(i)), keys[i]);
        EXPECT_EQ(DetailRecords::statusFromKey(keys[i]), Status(i));
    }
    EXPECT_FALSE(DetailRecords::statusFromKey("wocompleted"));
}

TEST(DetailRecords, TableRoundTripKeepsEveryRecord)
{
    const DetailRecords r = sample();
    const DetailRecords back = DetailRecords::fromTable(QZWebTable::fromXml(r.toTable().toXml()));
    ASSERT_EQ(back.workOrders.size(), r.workOrders.size());
    ASSERT_EQ(back.technicians.size(), r.technicians.size());
    for (std::size_t i = 0; i < r.workOrders.size(); ++i) {
        EXPECT_EQ(back.workOrders[i].id, r.workOrders[i].id);
        EXPECT_EQ(back.workOrders[i].status, r.workOrders[i].status);
        EXPECT_EQ(back.workOrders[i].points, r.workOrders[i].points);
        EXPECT_EQ(back.workOrders[i].due, r.workOrders[i].due);
        EXPECT_EQ(back.workOrders[i].technician, r.workOrders[i].technician);
    }
    EXPECT_DOUBLE_EQ(back.technicians[1].hoursRemaining, 5);
}

struct BadRowCase
{
    const char *name;
    QStringList row;
    const char *mentions;
    friend void PrintTo(const BadRowCase &c, std::ostream *os) { *os << c.name; }
};

class DetailsTableErrorTest : public ::testing::TestWithParam<BadRowCase>
{};

TEST_P(DetailsTableErrorTest, NamesTheRowAndTheValue)
{
    QZWebTable table(QStringLiteral("Details"), DetailRecords::tableColumns());
    table.appendRow(
        {"WORKORDER", "W1", "C1", "INST", "RES", "WOOpen", "5", "Ana", "09:00", "", ""});
    table.appendRow(GetParam().row);
    try {
        (void)DetailRecords::fromTable(table);
        FAIL() << "no error";
    } catch (const DLVError &e) {
        EXPECT_TRUE(e.description().contains(QStringLiteral("row 2")))
            << e.description().toStdString();
        EXPECT_TRUE(e.description().contains(QString::fromUtf8(GetParam().mentions)))
            << e.description().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DetailsTableErrorTest,
    ::testing::Values(
        BadRowCase{"UnknownKind", {"ORDER", "W2", "C1", "", "", "", "", "", "", "", ""}, "ORDER"},
        BadRowCase{"UnknownStatus",
                   {"WORKORDER", "W2", "C1", "INST", "RES", "Done", "5", "", "", "", ""},
                   "Done"},
        BadRowCase{"FractionalPoints",
                   {"WORKORDER", "W2", "C1", "INST", "RES", "WOOpen", "2.5", "", "", "", ""},
                   "2.5"},
        BadRowCase{"BadTime",
                   {"WORKORDER", "W2", "C1", "INST", "RES", "WOOpen", "2", "", "25:99", "", ""},
                   "25:99"},
        BadRowCase{
            "NegativeHours", {"USER", "T1", "C1", "", "", "", "", "Ana", "", "-1", "2"}, "-1"}),
    [](const ::testing::TestParamInfo<BadRowCase> &info) { return std::string(info.param.name); });

TEST(DetailRecords, AMissingColumnIsAnError)
{
    QStringList columns = DetailRecords::tableColumns();
    columns.removeAll(QStringLiteral("DueTime"));
    try {
        (void)DetailRecords::fromTable(QZWebTable(QStringLiteral("Details"), columns));
        FAIL() << "no error";
    } catch (const DLVError &e) {
        EXPECT_TRUE(e.description().contains(QStringLiteral("DueTime")));
    }
}

} // namespace
