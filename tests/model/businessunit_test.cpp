// The business-unit model: counters, "TOTAL" classes, grand totals, rates and their errors.
#include "model/controllerfixture.h"
#include "support/expecterror.h"

#include <gtest/gtest.h>

namespace {

using TotalsTest = ControllerFixture;

TEST_F(TotalsTest, TotalJobTypeSumsSameNamedClassesAcrossJobTypes)
{
    load(DLVDataBuilder()
             .general("B1", "Unit", "1", "8", "4")
             .detail("B1", "WO", "A",
                     {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13", "14"})
             .detail("B1", "WO", "B", {"100"})
             .detail("B1", "PM", "A",
                     {"10", "20", "30", "40", "50", "60", "70", "80", "90", "100", "110", "120",
                      "130", "140"})
             .detail("B1", "PM", "C", {"1000"}));
    ASSERT_TRUE(reporter.reports.empty());
    const BusinessUnit &bu = unit(u"B1");
    const JobType &total = bu.TotalJobType();
    EXPECT_EQ(total.Code(), "TOTAL");
    std::vector<QString> codes;
    for (const JobClass &jc : total.Classes())
        codes.push_back(jc.Code());
    EXPECT_EQ(codes, (std::vector<QString>{"A", "B", "C"})); // first appearance order
    for (int s = 0; s < 14; ++s)
        EXPECT_EQ(total.Classes().Item(u"a")->GetJobDetails(s), 11 * (s + 1)) << "counter " << s;
    EXPECT_EQ(bu.GetGrandTotal(0), 1 + 100 + 10 + 1000);
    EXPECT_EQ(bu.GetGrandTotal(13), 14 + 140);
    EXPECT_EQ(bu.JobTypes().Item(u"TOTAL"), nullptr); // not among the real job types
    for (const int index : {-1, 14}) {
        expectError([&] { (void)bu.GetGrandTotal(index); }, DLVError::SubscriptOutOfRange);
        expectError([&] { (void)total.Classes().At(0).GetJobDetails(index); },
                    DLVError::SubscriptOutOfRange);
    }
}

TEST(BusinessUnitRates, FollowTheRoundingRule)
{
    const struct
    {
        const char *completed, *open, *hoursWorked, *hoursRemaining;
        float perHour, perHourRequired;
    } rows[] = {{"7", "7", "3", "3", 2.33f, 2.33f},
                {"1", "1", "8", "8", 0.12f, 0.12f},
                {"50", "9", "0", "4", 0.0f, 2.25f},
                {"5", "5", "2.5", "3.5", 2.5f, 1.25f}}; // hours rounded before dividing
    for (const auto &r : rows) {
        SCOPED_TRACE(testing::Message() << r.completed << " / " << r.hoursWorked);
        ControllerRig rig;
        // Completed work orders at index 4, open at 0; the same figures as points at 11 and 7.
        QStringList counters(14, QStringLiteral("0"));
        counters[4] = counters[11] = r.completed;
        counters[0] = counters[7] = r.open;
        rig.load(DLVDataBuilder()
                     .general("B1", "Unit", "1", r.hoursWorked, r.hoursRemaining)
                     .detail("B1", "WO", "A", counters));
        ASSERT_TRUE(rig.reporter.reports.empty());
        const BusinessUnit &bu = rig.unit(u"B1");
        EXPECT_FLOAT_EQ(bu.WOsPerHour(), r.perHour);
        EXPECT_FLOAT_EQ(bu.PtsPerHour(), r.perHour);
        EXPECT_FLOAT_EQ(bu.WOsPerHrReq(), r.perHourRequired);
        EXPECT_FLOAT_EQ(bu.PtsPerHrReq(), r.perHourRequired);
    }
}

TEST_F(TotalsTest, TechCountIsTheRoundedLeadingNumber)
{
    const std::pair<const char *, qint32> rows[] = {{"12.5", 12}, {"13.5", 14}, {"abc", 0},
                                                    {"1,5", 1},   {"1 2", 12},  {"-1.5", -2}};
    const auto id = [](std::size_t i) { return QStringLiteral("T%1").arg(i); };
    DLVDataBuilder builder;
    for (std::size_t i = 0; i < std::size(rows); ++i)
        builder.general(id(i), "Unit", rows[i].first, "0", "0");
    load(builder);
    ASSERT_TRUE(reporter.reports.empty());
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(unit(id(i)).TechCount(), rows[i].second) << rows[i].first;
}

TEST_F(TotalsTest, CodesDifferingOnlyInCaseAreReportedByCalcTotalAndTheLoadGoesOn)
{
    load(DLVDataBuilder()
             .general("B1", "First")
             .general("B2", "Second", "1", "2", "1")
             .detail("B1", "WO", "a", {"5"})
             .detail("B1", "PM", "A", {"7"})
             .detail("B2", "WO", "x", {"0", "0", "0", "0", "6"}));
    EXPECT_EQ(reportTexts(), Reports{"BusinessUnit.CalcTotal 9"});
    const BusinessUnit &b1 = unit(u"B1");
    ASSERT_EQ(b1.TotalJobType().Classes().Count(), 1);
    // The walk stopped at the first counter of the "A" class: "a" was summed, totals not copied.
    EXPECT_EQ(b1.GetGrandTotal(0), 5);
    EXPECT_EQ(b1.TotalJobType().Classes().At(0).GetJobDetails(0), 0);
    EXPECT_EQ(b1.WOsPerHour(), 0.0f);
    EXPECT_FLOAT_EQ(unit(u"B2").WOsPerHour(), 3.0f); // the next unit is still totalled
}

} // namespace
