// The business-unit model: counters, "TOTAL" classes, grand totals, rates and their errors.
#include "common/dlverror.h"
#include "model/controllerfixture.h"

#include <array>
#include <gtest/gtest.h>

namespace {

class TotalsTest : public ControllerFixture
{};

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

    const JobClass *a = total.Classes().Item(u"A");
    ASSERT_NE(a, nullptr);
    for (int s = 0; s < 14; ++s)
        EXPECT_EQ(a->GetJobDetails(s), 11 * (s + 1)) << "counter " << s;
    EXPECT_EQ(total.Classes().Item(u"B")->GetJobDetails(0), 100);
    EXPECT_EQ(total.Classes().Item(u"C")->GetJobDetails(0), 1000);
    EXPECT_EQ(bu.GetGrandTotal(0), 1 + 100 + 10 + 1000);
    EXPECT_EQ(bu.GetGrandTotal(13), 14 + 140);
    EXPECT_EQ(bu.JobTypes().Count(), 2); // "TOTAL" is not among the real job types
    EXPECT_EQ(bu.JobTypes().Item(u"TOTAL"), nullptr);
}

struct RateCase
{
    const char *name;
    const char *completed;
    const char *open;
    const char *hoursWorked;
    const char *hoursRemaining;
    float perHour;
    float perHourRequired;
};

class RateTest : public ControllerFixture, public ::testing::WithParamInterface<RateCase>
{};

TEST_P(RateTest, RatesFollowTheRoundingRule)
{
    const RateCase &c = GetParam();
    // Completed work orders at index 4, open at 0; the same figures as points at 11 and 7.
    QStringList counters(14, QStringLiteral("0"));
    counters[4] = counters[11] = c.completed;
    counters[0] = counters[7] = c.open;
    load(DLVDataBuilder()
             .general("B1", "Unit", "1", c.hoursWorked, c.hoursRemaining)
             .detail("B1", "WO", "A", counters));

    ASSERT_TRUE(reporter.reports.empty());
    const BusinessUnit &bu = unit(u"B1");
    EXPECT_FLOAT_EQ(bu.WOsPerHour(), c.perHour);
    EXPECT_FLOAT_EQ(bu.PtsPerHour(), c.perHour);
    EXPECT_FLOAT_EQ(bu.WOsPerHrReq(), c.perHourRequired);
    EXPECT_FLOAT_EQ(bu.PtsPerHrReq(), c.perHourRequired);
}

INSTANTIATE_TEST_SUITE_P(
    Rates, RateTest,
    ::testing::Values(RateCase{"SevenOverThree", "7", "7", "3", "3", 2.33f, 2.33f},
                      RateCase{"OneOverEightRoundsHalfToEven", "1", "1", "8", "8", 0.12f, 0.12f},
                      RateCase{"ZeroHoursWorkedGivesZero", "50", "9", "0", "4", 0.0f, 2.25f},
                      RateCase{"ZeroHoursRemainingGivesZero", "9", "50", "4", "0", 2.25f, 0.0f},
                      RateCase{"HoursRoundedBeforeDividing", "5", "5", "2.5", "3.5", 2.5f, 1.25f},
                      RateCase{"NegativeHours", "3", "3", "-2", "-4", -1.5f, -0.75f}),
    [](const auto &info) { return std::string(info.param.name); });

struct NumberCase
{
    const char *name;
    const char *text;
    qint32 expected;
};

class TechCountTest : public ControllerFixture, public ::testing::WithParamInterface<NumberCase>
{};

TEST_P(TechCountTest, ReadAsRoundedLeadingNumber)
{
    load(DLVDataBuilder().general("B1", "Unit", GetParam().text, "0", "0"));
    ASSERT_TRUE(reporter.reports.empty());
    EXPECT_EQ(unit(u"B1").TechCount(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, TechCountTest,
    ::testing::Values(NumberCase{"HalfDown", "12.5", 12}, NumberCase{"HalfUp", "13.5", 14},
                      NumberCase{"NotANumber", "abc", 0}, NumberCase{"Empty", "", 0},
                      NumberCase{"StopsAtComma", "1,5", 1}, NumberCase{"BlanksSkipped", "1 2", 12},
                      NumberCase{"Negative", "-1.5", -2},
                      NumberCase{"Largest", "2147483647", 2147483647}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(TotalsTest, CodesDifferingOnlyInCaseAreReportedByCalcTotalAndTheLoadGoesOn)
{
    load(DLVDataBuilder()
             .general("B1", "First", "1", "1", "1")
             .general("B2", "Second", "1", "2", "1")
             .detail("B1", "WO", "a", {"5"})
             .detail("B1", "PM", "A", {"7"})
             .detail("B2", "WO", "x", {"0", "0", "0", "0", "6"}));

    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"BusinessUnit.CalcTotal 9"}));
    const BusinessUnit &b1 = unit(u"B1");
    ASSERT_EQ(b1.TotalJobType().Classes().Count(), 1);
    EXPECT_EQ(b1.TotalJobType().Classes().At(0).Code(), "a");
    // The walk stopped at the first counter of the "A" class: "a" was summed, totals not copied.
    EXPECT_EQ(b1.GetGrandTotal(0), 5);
    EXPECT_EQ(b1.TotalJobType().Classes().At(0).GetJobDetails(0), 0);
    EXPECT_EQ(b1.WOsPerHour(), 0.0f);
    // The next unit is still totalled.
    EXPECT_FLOAT_EQ(unit(u"B2").WOsPerHour(), 3.0f);
}

TEST_F(TotalsTest, CheckedAdditionOverflowIsReportedByCalcTotal)
{
    load(DLVDataBuilder()
             .general("B1", "Unit", "1", "1", "1")
             .detail("B1", "WO", "A", {"2147483647"})
             .detail("B1", "PM", "A", {"1"}));
    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"BusinessUnit.CalcTotal 6"}));
}

TEST_F(TotalsTest, CounterIndexOutsideRangeIsSubscriptError)
{
    load(DLVDataBuilder().general("B1", "Unit", "1", "1", "1").detail("B1", "WO", "A", {"3"}));
    const BusinessUnit &bu = unit(u"B1");
    const JobClass &jc = *bu.JobTypes().Item(u"wo")->Classes().Item(u"a");
    for (const int index : {-1, 14, 1000}) {
        SCOPED_TRACE(index);
        try {
            (void)jc.GetJobDetails(index);
            ADD_FAILURE() << "GetJobDetails accepted the index";
        } catch (const DLVError &e) {
            EXPECT_EQ(e.number(), 9);
        }
        try {
            (void)bu.GetGrandTotal(index);
            ADD_FAILURE() << "GetGrandTotal accepted the index";
        } catch (const DLVError &e) {
            EXPECT_EQ(e.number(), 9);
        }
        JobClass copy = jc;
        EXPECT_THROW(copy.SetJobDetails(1, index), DLVError);
    }
    EXPECT_EQ(jc.GetJobDetails(0), 3);
    EXPECT_EQ(bu.GetGrandTotal(13), 0);
}

TEST_F(TotalsTest, CollectionsFindKeysWithoutRegardToCaseAndGiveNothingForMissingOnes)
{
    load(DLVDataBuilder().general("Bu1", "Unit", "1", "1", "1").detail("Bu1", "Wo", "Inst", {"3"}));
    const BusinessUnits &bus = controller.BUs();
    ASSERT_NE(bus.Item(u"BU1"), nullptr);
    EXPECT_EQ(bus.Item(u"BU1")->BUID(), "Bu1");
    EXPECT_EQ(bus.Item(u"BU2"), nullptr);
    const JobTypes &types = bus.Item(u"bu1")->JobTypes();
    ASSERT_NE(types.Item(u"WO"), nullptr);
    EXPECT_EQ(types.Item(u"WO")->Classes().Item(u"INST")->Code(), "Inst");
    EXPECT_EQ(types.Item(u"WO")->Classes().Item(u"INSTX"), nullptr);
    EXPECT_EQ(types.Item(u"PM"), nullptr);
}

TEST_F(TotalsTest, TerminateEmptiesTheUnits)
{
    load(DLVDataBuilder().general("B1", "Unit", "1", "1", "1").detail("B1", "WO", "A", {"3"}));
    BusinessUnits &bus = controller.BUs();
    bus.Terminate();
    EXPECT_EQ(bus.Item(u"B1")->JobTypes().Count(), 0);
    EXPECT_EQ(bus.Item(u"B1")->TotalJobType().Classes().Count(), 0);
}

} // namespace
