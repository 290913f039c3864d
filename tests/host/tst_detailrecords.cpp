// The records behind the figures: which records a detail request selects, and the "Details" table.
#include "common/dlverror.h"
#include "host/detailrecords.h"
#include "support/qtprinters.h"
#include "webdata/qzwebtable.h"

#include <gtest/gtest.h>

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

TEST(DetailRecords, SelectsWorkOrdersByUnitsTypeClassAndStatus)
{
    const struct
    {
        DetailRecords::Query query;
        QStringList ids;
    } cases[] = {
        {{{"C1"}, {}, {}, {}}, {"W1", "W2", "W3", "W6"}},
        {{{}, {}, {}, {}}, {}},
        {{{"C1", "C2"}, {}, {}, "WOCompleted"}, {"W3", "W4", "W6"}},
        {{{"C1", "C2"}, "INST", {}, "WOCompleted"}, {"W4", "W6"}},
        {{{"C1", "C2"}, {}, "BUS", {}}, {"W2", "W5"}},
        {{{"C1"}, "inst", "res", "WOOpen"}, {"W1"}}, // codes ignore letter case
        {{{"C1"}, {}, {}, "Open"}, {}},
    };
    const DetailRecords r = sample();
    for (const auto &c : cases) {
        QStringList ids;
        for (const auto *wo : r.selectWorkOrders(c.query))
            ids.append(wo->id);
        EXPECT_EQ(ids, c.ids);
    }
}

TEST(DetailRecords, TechniciansAreSelectedByUnitOnlyAndCountTheirCompletedOrders)
{
    const DetailRecords r = sample();
    const auto techs = r.selectTechnicians({{"C1"}, "REP", "BUS", "WOLate"});
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

TEST(DetailRecords, ABadRowOrAMissingColumnIsNamedInTheError)
{
    const std::pair<QStringList, const char *> rows[] = {
        {{"ORDER", "W2", "C1", "", "", "", "", "", "", "", ""}, "ORDER"},
        {{"WORKORDER", "W2", "C1", "INST", "RES", "Done", "5", "", "", "", ""}, "Done"},
        {{"WORKORDER", "W2", "C1", "INST", "RES", "WOOpen", "2.5", "", "", "", ""}, "2.5"},
        {{"WORKORDER", "W2", "C1", "INST", "RES", "WOOpen", "2", "", "25:99", "", ""}, "25:99"},
        {{"USER", "T1", "C1", "", "", "", "", "Ana", "", "-1", "2"}, "-1"},
    };
    const auto errorOf = [](const QZWebTable &table) {
        try {
            (void)DetailRecords::fromTable(table);
        } catch (const DLVError &e) {
            return e.description();
        }
        return QStringLiteral("no error");
    };
    for (const auto &[row, mentions] : rows) {
        QZWebTable table(QStringLiteral("Details"), DetailRecords::tableColumns());
        table.appendRow(
            {"WORKORDER", "W1", "C1", "INST", "RES", "WOOpen", "5", "Ana", "09:00", "", ""});
        table.appendRow(row);
        const QString error = errorOf(table);
        EXPECT_TRUE(error.contains("row 2") && error.contains(QString::fromUtf8(mentions)))
            << error.toStdString();
    }
    QStringList columns = DetailRecords::tableColumns();
    columns.removeAll(QStringLiteral("DueTime"));
    EXPECT_TRUE(errorOf(QZWebTable(QStringLiteral("Details"), columns)).contains("DueTime"));
}

} // namespace
