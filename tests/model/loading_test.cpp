// Loading the code lookups and the model from the message's tables, and the load's error paths.
#include "model/controllerfixture.h"

#include <QSignalSpy>
#include <functional>
#include <gtest/gtest.h>

namespace {

using LoadingTest = ControllerFixture;
using Ids = std::vector<QString>;

Ids unitIds(const BusinessUnits &bus)
{
    Ids ids;
    for (const BusinessUnit &bu : bus)
        ids.push_back(bu.BUID());
    return ids;
}

TEST_F(LoadingTest, DuplicateGeneralRowsKeepTheFirstAndLeaveAGapInBUIndex)
{
    load(DLVDataBuilder().general("B0", "Old"));
    load(DLVDataBuilder()
             .general("B1", "First", "3", "1", "1")
             .general("b1", "Duplicate", "9", "9", "9")
             .general("B2", "Second", "4", "1", "1"));
    EXPECT_TRUE(reporter.reports.empty());
    const BusinessUnits &bus = controller.BUs();
    EXPECT_EQ(unitIds(bus), (Ids{"B1", "B2"})); // each load replaces the model whole
    EXPECT_EQ(unit(u"B1").BUDesc(), "First");
    EXPECT_EQ(unit(u"B2").BUIndex(), 3);
    EXPECT_EQ(bus.BUItem(2), nullptr);
    EXPECT_EQ(bus.BUItem(3), &unit(u"B2"));
}

TEST_F(LoadingTest, DetailRowsBuildTypesAndClassesInFirstAppearanceOrder)
{
    load(DLVDataBuilder()
             .unit("B1", "Known", "B1")
             .unit("b1", "Lower", "")
             .unit("B9", "Not in general info", "B1")
             .jobType("WO", "Work order")
             .general("B1")
             .general("B2", "Missing from BusinessUnits")
             .detail("B1", "PM", "X", {"1"})
             .detail("B1", "WO", "A", {"2"})
             .detail("B1", "PM", "Y", {"3"})
             .detail("B1", "PM", "X", {"500"}) // duplicate: ignored
             .detail("B9", "WO", "A", {"700"}) // unit not in general info: skipped silently
             .detail("ZZ", "WO", "A", {"800"})
             .detail("B2", "WO", "A", {"4"}));
    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_EQ(unitIds(controller.BUs()), (Ids{"B1", "B2"}));
    std::vector<QString> order;
    for (const JobType &jt : unit(u"B1").JobTypes())
        for (const JobClass &jc : jt.Classes())
            order.push_back(jt.Code() + "|" + jc.Code());
    EXPECT_EQ(order, (Ids{"PM|X", "PM|Y", "WO|A"}));
    EXPECT_EQ(unit(u"B1").GetGrandTotal(0), 6);
    EXPECT_EQ(unit(u"B2").GetGrandTotal(0), 4);
    // Lookups keep exact keys in host order; B2 has no description or parent entry.
    EXPECT_EQ(controller.BUDescriptions().keys(), (Ids{"B1", "b1", "B9"}));
    EXPECT_FALSE(controller.ParentBUIDs().contains(u"B2"));
    EXPECT_EQ(controller.JobTypeDescriptions().find(u"wo"), nullptr);
}

TEST_F(LoadingTest, LongTypeAndClassListsStillMatchWithoutRegardToCase)
{
    // Past a few members the per-type lists switch to a hash index; both paths must agree.
    DLVDataBuilder builder;
    builder.general("B1");
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
    EXPECT_EQ(bu.JobTypes().Item(u"type19")->Classes().Item(u"CLASS19")->Code(), "Class19");
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
    EXPECT_EQ(bu.TotalJobType().Classes().Count(), 0);
    EXPECT_EQ(bu.GetGrandTotal(13), 0);
    EXPECT_EQ(bu.WOsPerHour() + bu.WOsPerHrReq() + bu.PtsPerHour() + bu.PtsPerHrReq(), 0.0f);
}

TEST_F(LoadingTest, DuplicateCodesAbortTheLoadAndFreeTheFlags)
{
    load(DLVDataBuilder()
             .unit("OLD", "Old unit", "OLD")
             .jobClass("OLDJC", "Old class")
             .general("OLD", "Old unit"));
    FillCounter fills(&controller, &cDLVController::FillBUHierarchyGrid);
    load(DLVDataBuilder()
             .unit("NEW", "New unit", "NEW")
             .jobType("WO", "Work order")
             .jobType("WO", "Again")
             .jobClass("NEWJC", "New class")
             .general("NEW", "New unit"));
    EXPECT_EQ(reportTexts(), Reports{"cDLVController.LoadData 457"});
    EXPECT_EQ(fills.count(), 0);
    EXPECT_EQ(unitIds(controller.BUs()), (Ids{"OLD"})); // LoadBUData never ran
    EXPECT_EQ(controller.BUDescriptions().keys(), (Ids{"NEW"}));
    EXPECT_EQ(controller.JobClassDescriptions().keys(), (Ids{"OLDJC"}));
    EXPECT_FALSE(controller.Busy().any());

    reporter.reports.clear();
    load(DLVDataBuilder()
             .format("PO", "hh:nn")
             .format("SP", "h:nn")
             .format("PO", "hh.nn")
             .format("EN", "h:nn AMPM"));
    EXPECT_EQ(reportTexts(), Reports{"cDLVController.LoadData 457"});
    EXPECT_EQ(controller.TimeFormats()->keys(), (Ids{"PO", "SP"}));
}

TEST_F(LoadingTest, UnitTableFollowsEachLoadAndLookupsOfDifferentLoadsAreNotAligned)
{
    load(DLVDataBuilder()
             .unit("#", "All", "")
             .unit("B1", "One", "#")
             .unit("b2", "Two", "B1")
             .general("B1")
             .general("B2"));
    {
        const UnitLookups lookups = controller.Lookups();
        EXPECT_TRUE(lookups.aligned);
        ASSERT_EQ(lookups.units.size(), 3u);
        EXPECT_EQ(lookups.units[0], nullptr); // "#" is no unit of the model
        EXPECT_EQ(lookups.units[1], &unit(u"B1"));
        EXPECT_EQ(lookups.units[2], &unit(u"B2")); // units match without regard to case
    }

    // The descriptions come from the new message, the parents' column is missing: the parent
    // lookup is left empty and the two no longer list the same ids.
    load(DLVDataBuilder()
             .unit("#", "All", "")
             .unit("B3", "Three", "#")
             .general("B3")
             .withoutColumn("BusinessUnits", "ParentBUID"));
    EXPECT_EQ(reportTexts(), Reports{"cDLVController.LoadData 9"});
    EXPECT_FALSE(controller.Lookups().aligned);
    EXPECT_EQ(controller.Lookups().units.size(), 0u);

    reporter.reports.clear();
    load(DLVDataBuilder().unit("B4", "Four", "#").general("B4"));
    const UnitLookups lookups = controller.Lookups();
    EXPECT_TRUE(lookups.aligned);
    ASSERT_EQ(lookups.units.size(), 1u);
    EXPECT_EQ(lookups.units[0], &unit(u"B4"));
}

// A message that lists the units of the last one keeps the lookups (and their epoch, which every
// kept position in the views goes by); any change of an id, description, parent or order, and any
// failed fill, makes new ones, equal to what a first load of the message would make.
TEST_F(LoadingTest, UnitLookupsStayExactlyWhileTheUnitTableStaysTheSame)
{
    const auto units = [](const char *descriptionOfB, const char *parentOfC) {
        return DLVDataBuilder()
            .unit("#", "All", "")
            .unit("A", "a", "#")
            .unit("B", descriptionOfB, "A")
            .unit("C", "c", parentOfC)
            .general("A")
            .general("B");
    };
    using Pairs = std::vector<std::pair<QString, QString>>;
    const auto pairs = [](const StringSet &set) {
        Pairs out;
        for (const auto &entry : set)
            out.emplace_back(entry.key, entry.value);
        return out;
    };
    const struct
    {
        const char *name;
        DLVDataBuilder message;
        bool kept;
        Reports reports;
    } steps[] = {
        {"first", units("b", "A"), false, {}},
        {"the same again", units("b", "A"), true, {}},
        {"other figures", units("b", "A").general("C").detail("A", "WO", "X", {"3"}), true, {}},
        {"a description", units("b2", "A"), false, {}},
        {"a parent", units("b2", "B"), false, {}},
        {"one unit more", units("b2", "B").unit("D", "d", "C"), false, {}},
        {"another order",
         DLVDataBuilder()
             .unit("A", "a", "#")
             .unit("#", "All", "")
             .unit("B", "b2", "A")
             .unit("C", "c", "B"),
         false,
         {}},
        {"a repeated id",
         units("b", "A").unit("A", "again", "#"),
         false,
         {"cDLVController.LoadData 457"}},
        {"the first again after a failure", units("b", "A"), false, {}},
        {"no parent column",
         units("b", "A").withoutColumn("BusinessUnits", "ParentBUID"),
         false,
         {"cDLVController.LoadData 9"}},
        {"the first once more", units("b", "A"), false, {}},
        {"and again", units("b", "A"), true, {}},
    };
    quint64 epoch = controller.Lookups().epoch;
    for (const auto &step : steps) {
        SCOPED_TRACE(step.name);
        reporter.reports.clear();
        load(step.message);
        EXPECT_EQ(reportTexts(), step.reports);
        const UnitLookups lookups = controller.Lookups();
        EXPECT_EQ(lookups.epoch == epoch, step.kept);
        epoch = lookups.epoch;
        if (!step.reports.empty())
            continue;
        ControllerRig fresh;
        fresh.load(step.message);
        const UnitLookups first = fresh.controller.Lookups();
        EXPECT_EQ(pairs(lookups.descriptions), pairs(first.descriptions));
        EXPECT_EQ(pairs(lookups.parents), pairs(first.parents));
        EXPECT_TRUE(lookups.aligned);
        ASSERT_EQ(lookups.units.size(), first.units.size());
        for (std::size_t u = 0; u < first.units.size(); ++u) { // the units of this load's model
            EXPECT_EQ(lookups.units[u] ? lookups.units[u]->BUID() : QString(),
                      first.units[u] ? first.units[u]->BUID() : QString());
            EXPECT_TRUE(!lookups.units[u] ||
                        lookups.units[u] == controller.BUs().Item(lookups.units[u]->BUID()));
        }
        std::vector<QString> children;
        for (const int child : lookups.hierarchy.children(u"A"))
            children.push_back(lookups.hierarchy.id(child));
        std::vector<QString> firstChildren;
        for (const int child : first.hierarchy.children(u"A"))
            firstChildren.push_back(first.hierarchy.id(child));
        EXPECT_EQ(children, firstChildren);
    }
}

DLVDataBuilder fullLoad()
{
    return DLVDataBuilder()
        .unit("B1", "Unit one", "B1")
        .jobType("WO", "Work order")
        .format("EN", "hh:nn")
        .general("B1", "Unit one")
        .general("B2", "Unit two")
        .detail("B1", "WO", "A", {"1"});
}

TEST(LoadFailure, IsReportedAndTheNextMessageIsAccepted)
{
    const struct
    {
        std::function<void(DLVDataBuilder &)> spoil;
        const char *expected; // "location number"
        bool fillRaised;
    } rows[] = {
        {[](DLVDataBuilder &b) { b.withoutTable("JobTypes"); }, "cDLVController.LoadData 9", false},
        {[](DLVDataBuilder &b) { b.withoutColumn("BusinessUnits", "ParentBUID"); },
         "cDLVController.LoadData 9", false},
        {[](DLVDataBuilder &b) { b.withoutColumn("BUDetailsInfo", "PtsNotDone"); },
         "cDLVController.LoadBUData 9", true},
        {[](DLVDataBuilder &b) { b.general("B3", "Big", "1", "-2147483649", "1"); },
         "cDLVController.LoadBUData 6", true},
        {[](DLVDataBuilder &b) { b.property("tqDBRefreshInterval", "1e300"); },
         "cDLVController.LoadData 6", true},
        {[](DLVDataBuilder &b) { b.detail("B1", "PM", "A", {"2147483647"}); },
         "BusinessUnit.CalcTotal 6", true}, // checked addition in the "TOTAL" sums
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.expected);
        ControllerRig rig;
        DLVDataBuilder bad = fullLoad();
        r.spoil(bad);
        FillCounter fills(&rig.controller, &cDLVController::FillBUHierarchyGrid);
        QSignalSpy hides(&rig.controller, &cDLVController::HideStatus);
        rig.controller.ReceiveMessage(bad.variant(), 0, QString());
        EXPECT_EQ(rig.reportTexts(), Reports{r.expected});
        EXPECT_EQ(fills.count(), r.fillRaised ? 1 : 0);
        EXPECT_EQ(hides.count(), 1);
        rig.reporter.reports.clear();
        rig.load(fullLoad()); // the fill would have cleared the flags it set
        EXPECT_TRUE(rig.reporter.reports.empty());
        EXPECT_EQ(rig.unit(u"B1").GetGrandTotal(0), 1);
    }
}

TEST_F(LoadingTest, FailedRowLeavesTheUnitsBuiltBeforeIt)
{
    load(DLVDataBuilder()
             .general("B1")
             .general("B2")
             .detail("B1", "WO", "A", {"1"})
             .detail("B2", "PM", "A", QStringList(13, "0") << "99999999999")
             .detail("B1", "WO", "C", {"1"}));
    EXPECT_EQ(reportTexts(), Reports{"cDLVController.LoadBUData 6"});
    // The failing row's job type exists, its class does not; no unit was totalled.
    EXPECT_EQ(unit(u"B2").JobTypes().Item(u"PM")->Classes().Count(), 0);
    EXPECT_EQ(unit(u"B1").JobTypes().Item(u"WO")->Classes().Count(), 1);
    EXPECT_EQ(unit(u"B1").TotalJobType().Classes().Count(), 0);
}

} // namespace
