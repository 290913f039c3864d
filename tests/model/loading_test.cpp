// Loading the code lookups and the model from the message's tables, and the load's error paths.
#include "model/controllerfixture.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

class LoadingTest : public ControllerFixture
{};

std::vector<QString> unitIds(const BusinessUnits &bus)
{
    std::vector<QString> ids;
    for (const BusinessUnit &bu : bus)
        ids.push_back(bu.BUID());
    return ids;
}

TEST_F(LoadingTest, DuplicateGeneralRowsKeepTheFirstAndLeaveAGapInBUIndex)
{
    load(DLVDataBuilder()
             .general("B1", "First", "3", "1", "1")
             .general("b1", "Duplicate", "9", "9", "9")
             .general("B2", "Second", "4", "1", "1"));

    EXPECT_TRUE(reporter.reports.empty());
    const BusinessUnits &bus = controller.BUs();
    EXPECT_EQ(unitIds(bus), (std::vector<QString>{"B1", "B2"}));
    EXPECT_EQ(unit(u"B1").BUDesc(), "First");
    EXPECT_EQ(unit(u"B1").TechCount(), 3);
    EXPECT_EQ(unit(u"B2").BUIndex(), 3);
    EXPECT_EQ(bus.BUItem(1), &unit(u"B1"));
    EXPECT_EQ(bus.BUItem(2), nullptr);
    EXPECT_EQ(bus.BUItem(3), &unit(u"B2"));
}

TEST_F(LoadingTest, DetailRowsBuildTypesAndClassesInFirstAppearanceOrder)
{
    load(DLVDataBuilder()
             .unit("B1", "Known", "B1")
             .unit("B9", "Not in general info", "B1")
             .general("B1", "Unit", "1", "1", "1")
             .general("B2", "Missing from BusinessUnits", "1", "1", "1")
             .detail("B1", "PM", "X", {"1"})
             .detail("B1", "WO", "A", {"2"})
             .detail("B1", "PM", "Y", {"3"})
             .detail("B1", "PM", "X", {"500"}) // duplicate: ignored
             .detail("B9", "WO", "A", {"700"}) // unit not in general info: skipped silently
             .detail("ZZ", "WO", "A", {"800"})
             .detail("B2", "WO", "A", {"4"}));

    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_EQ(unitIds(controller.BUs()), (std::vector<QString>{"B1", "B2"}));
    const BusinessUnit &b1 = unit(u"B1");
    std::vector<QString> order;
    for (const JobType &jt : b1.JobTypes())
        for (const JobClass &jc : jt.Classes())
            order.push_back(jt.Code() + "|" + jc.Code());
    EXPECT_EQ(order, (std::vector<QString>{"PM|X", "PM|Y", "WO|A"}));
    EXPECT_EQ(b1.JobTypes().Item(u"PM")->Classes().Item(u"X")->GetJobDetails(0), 1);
    EXPECT_EQ(b1.GetGrandTotal(0), 6);
    // A unit missing from "BusinessUnits" is loaded, without description or parent entry.
    EXPECT_EQ(unit(u"B2").GetGrandTotal(0), 4);
    EXPECT_FALSE(controller.BUDescriptions().contains(u"B2"));
    EXPECT_FALSE(controller.ParentBUIDs().contains(u"B2"));
}

TEST_F(LoadingTest, LongTypeAndClassListsStillMatchWithoutRegardToCase)
{
    // Past a few members the per-type lists switch to a hash index; both paths must agree.
    DLVDataBuilder builder;
    builder.general("B1", "Unit", "1", "1", "1");
    for (int t = 0; t < 20; ++t)
        for (int c = 0; c < 20; ++c)
            builder.detail("B1", QStringLiteral("Type%1").arg(t), QStringLiteral("Class%1").arg(c),
                           {"1"});
    for (int t = 0; t < 20; ++t)
        builder.detail("B1", QStringLiteral("TYPE%1").arg(t), QStringLiteral("class%1").arg(t),
                       {"100"});
    load(builder);
    EXPECT_TRUE(reporter.reports.empty());
    const BusinessUnit &bu = unit(u"B1");
    EXPECT_EQ(bu.JobTypes().Count(), 20);
    EXPECT_EQ(bu.JobTypes().Item(u"type19")->Classes().Count(), 20);
    EXPECT_EQ(bu.JobTypes().Item(u"type19")->Classes().Item(u"CLASS19")->Code(), "Class19");
    EXPECT_EQ(bu.TotalJobType().Classes().Count(), 20);
    EXPECT_EQ(bu.TotalJobType().Classes().Item(u"class7")->GetJobDetails(0), 20);
    EXPECT_EQ(bu.GetGrandTotal(0), 400);
}

TEST_F(LoadingTest, EmptyDetailTableGivesUnitsWithoutFigures)
{
    load(DLVDataBuilder()
             .general("B1", "Unit", "2", "8", "8")
             .withoutColumn("BUDetailsInfo", "WOLate"));
    EXPECT_TRUE(reporter.reports.empty()); // an empty table is never asked for its columns
    const BusinessUnit &bu = unit(u"B1");
    EXPECT_EQ(bu.JobTypes().Count(), 0);
    EXPECT_EQ(bu.TotalJobType().Code(), "TOTAL");
    EXPECT_EQ(bu.TotalJobType().Classes().Count(), 0);
    for (int s = 0; s < 14; ++s)
        EXPECT_EQ(bu.GetGrandTotal(s), 0);
    EXPECT_EQ(bu.WOsPerHour() + bu.WOsPerHrReq() + bu.PtsPerHour() + bu.PtsPerHrReq(), 0.0f);
}

TEST_F(LoadingTest, LookupsKeepExactKeysAndHostOrder)
{
    load(DLVDataBuilder()
             .unit("#", "All units", "#")
             .unit("b", "Lower", "#")
             .unit("B", "Upper", "")
             .jobType("WO", "Work order")
             .jobClass("INST", "Install"));
    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_EQ(controller.BUDescriptions().keys(), (std::vector<QString>{"#", "b", "B"}));
    EXPECT_EQ(*controller.ParentBUIDs().find(u"B"), "");
    EXPECT_EQ(*controller.JobTypeDescriptions().find(u"WO"), "Work order");
    EXPECT_EQ(controller.JobTypeDescriptions().find(u"wo"), nullptr);
    EXPECT_EQ(*controller.JobClassDescriptions().find(u"INST"), "Install");
}

TEST_F(LoadingTest, EachLoadReplacesTheModelWhole)
{
    load(
        DLVDataBuilder().general("B1", "Unit", "1", "1", "1").general("B2", "Unit", "1", "1", "1"));
    load(DLVDataBuilder().general("B3", "Unit", "1", "1", "1"));
    EXPECT_EQ(unitIds(controller.BUs()), (std::vector<QString>{"B3"}));
    load(DLVDataBuilder());
    EXPECT_EQ(controller.BUs().Count(), 0);
}

// A good first load, so that failures can be checked against what a previous load left.
DLVDataBuilder previousLoad()
{
    return DLVDataBuilder()
        .unit("OLD", "Old unit", "OLD")
        .jobType("OLDJT", "Old type")
        .jobClass("OLDJC", "Old class")
        .format("EN", "hh:nn")
        .general("OLD", "Old unit", "1", "1", "1");
}

TEST_F(LoadingTest, DuplicateJobTypeAbortsBeforeTheFiguresAreLoaded)
{
    load(previousLoad());
    FillCounter fills(&controller, &cDLVController::FillBUHierarchyGrid);
    load(DLVDataBuilder()
             .unit("NEW", "New unit", "NEW")
             .jobType("WO", "Work order")
             .jobType("WO", "Again")
             .jobClass("NEWJC", "New class")
             .general("NEW", "New unit", "1", "1", "1"));

    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"cDLVController.LoadData 457"}));
    EXPECT_EQ(fills.count(), 0);
    EXPECT_EQ(unitIds(controller.BUs()), (std::vector<QString>{"OLD"})); // LoadBUData never ran
    EXPECT_EQ(controller.BUDescriptions().keys(), (std::vector<QString>{"NEW"}));
    EXPECT_EQ(controller.JobTypeDescriptions().keys(), (std::vector<QString>{"WO"}));
    EXPECT_EQ(controller.JobClassDescriptions().keys(), (std::vector<QString>{"OLDJC"}));
    // The flags are free again: the next message is accepted.
    EXPECT_FALSE(controller.SingleBUGridBusy);
    EXPECT_FALSE(controller.HierarchyGridBusy);
}

TEST_F(LoadingTest, DuplicateLanguageCodeAbortsAfterAPartialTimeFormatTable)
{
    load(previousLoad());
    load(DLVDataBuilder()
             .format("PO", "hh:nn")
             .format("SP", "h:nn")
             .format("PO", "hh.nn")
             .format("EN", "h:nn AMPM")
             .unit("NEW", "New unit", "NEW"));
    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"cDLVController.LoadData 457"}));
    EXPECT_EQ(controller.TimeFormats()->keys(), (std::vector<QString>{"PO", "SP"}));
    EXPECT_EQ(controller.BUDescriptions().keys(), (std::vector<QString>{"OLD"}));
}

struct FailureCase
{
    const char *name;
    std::function<void(DLVDataBuilder &)> spoil;
    const char *expected; // "location number"
    bool fillRaised;
};

class LoadFailureTest : public ControllerFixture, public ::testing::WithParamInterface<FailureCase>
{};

DLVDataBuilder fullLoad()
{
    return DLVDataBuilder()
        .unit("B1", "Unit one", "B1")
        .jobType("WO", "Work order")
        .jobClass("A", "Class A")
        .format("EN", "hh:nn")
        .general("B1", "Unit one", "1", "1", "1")
        .general("B2", "Unit two", "1", "1", "1")
        .detail("B1", "WO", "A", {"1"});
}

TEST_P(LoadFailureTest, IsReportedAndTheNextMessageIsAccepted)
{
    DLVDataBuilder bad = fullLoad();
    GetParam().spoil(bad);
    FillCounter fills(&controller, &cDLVController::FillBUHierarchyGrid);
    QSignalSpy hides(&controller, &cDLVController::HideStatus);
    controller.ReceiveMessage(bad.variant(), 0, QString());

    EXPECT_EQ(reportTexts(), (std::vector<std::string>{GetParam().expected}));
    EXPECT_EQ(fills.count(), GetParam().fillRaised ? 1 : 0);
    EXPECT_EQ(hides.count(), 1);
    if (GetParam().fillRaised) {
        // The fill runs and clears its own flag; simulate that, as a control would.
        controller.HierarchyGridBusy = false;
        controller.SingleBUGridBusy = false;
    }
    reporter.reports.clear();
    controller.ReceiveMessage(fullLoad().variant(), 0, QString());
    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_EQ(fills.count(), GetParam().fillRaised ? 2 : 1);
    EXPECT_EQ(controller.BUs().Count(), 2);
    EXPECT_EQ(unit(u"B1").GetGrandTotal(0), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, LoadFailureTest,
    ::testing::Values(
        FailureCase{"MissingJobTypesTable", [](DLVDataBuilder &b) { b.withoutTable("JobTypes"); },
                    "cDLVController.LoadData 9", false},
        FailureCase{"MissingDetailsTable",
                    [](DLVDataBuilder &b) { b.withoutTable("BUDetailsInfo"); },
                    "cDLVController.LoadData 9", false},
        FailureCase{"MissingRegionalFormats",
                    [](DLVDataBuilder &b) { b.withoutTable("RegionalFormats"); },
                    "cDLVController.LoadData 9", false},
        FailureCase{"MissingParentColumn",
                    [](DLVDataBuilder &b) { b.withoutColumn("BusinessUnits", "ParentBUID"); },
                    "cDLVController.LoadData 9", false},
        FailureCase{"MissingTimeFormatColumn",
                    [](DLVDataBuilder &b) { b.withoutColumn("RegionalFormats", "timeformat"); },
                    "cDLVController.LoadData 9", false},
        FailureCase{"MissingGeneralColumn",
                    [](DLVDataBuilder &b) { b.withoutColumn("BUGeneralInfo", "HoursRemaining"); },
                    "cDLVController.LoadBUData 9", true},
        FailureCase{"MissingCounterColumn",
                    [](DLVDataBuilder &b) { b.withoutColumn("BUDetailsInfo", "PtsNotDone"); },
                    "cDLVController.LoadBUData 9", true},
        FailureCase{"CounterBeyond32Bits",
                    [](DLVDataBuilder &b) { b.detailAt("B1", "WO", "B", 3, "3000000000"); },
                    "cDLVController.LoadBUData 6", true},
        FailureCase{"HoursBeyond32Bits",
                    [](DLVDataBuilder &b) { b.general("B3", "Big", "1", "-2147483649", "1"); },
                    "cDLVController.LoadBUData 6", true},
        FailureCase{"RefreshIntervalBeyondTheDateRange",
                    [](DLVDataBuilder &b) { b.property("tqDBRefreshInterval", "1e300"); },
                    "cDLVController.LoadData 6", true}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(LoadingTest, FailedRowLeavesTheUnitsBuiltBeforeIt)
{
    load(DLVDataBuilder()
             .general("B1", "Unit", "1", "1", "1")
             .general("B2", "Unit", "1", "1", "1")
             .detail("B1", "WO", "A", {"1"})
             .detailAt("B2", "PM", "A", 13, "99999999999")
             .detail("B1", "WO", "C", {"1"}));
    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"cDLVController.LoadBUData 6"}));
    EXPECT_EQ(controller.BUs().Count(), 2);
    // The failing row's job type exists, its class does not; no unit was totalled.
    EXPECT_EQ(unit(u"B2").JobTypes().Item(u"PM")->Classes().Count(), 0);
    EXPECT_EQ(unit(u"B1").JobTypes().Item(u"WO")->Classes().Count(), 1);
    EXPECT_EQ(unit(u"B1").TotalJobType().Classes().Count(), 0);
}

} // namespace
