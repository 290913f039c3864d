// Message dispatch, busy flags, status signals and refresh times of the data controller.
#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/controllerfixture.h"
#include "webdata/webvariant.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

class ControllerTest : public ControllerFixture
{
protected:
    DLVDataBuilder withFormats()
    {
        return DLVDataBuilder()
            .format("EN", "hh:nn")
            .format("PO", "hh.nn")
            .general("B1", "Unit", "1", "1", "1");
    }
};

struct IgnoredCase
{
    const char *name;
    std::function<QVariant()> data;
};

class IgnoredMessageTest : public ControllerFixture,
                           public ::testing::WithParamInterface<IgnoredCase>
{};

TEST_P(IgnoredMessageTest, DoesNothing)
{
    QSignalSpy shows(&controller, &cDLVController::ShowStatus);
    QSignalSpy hides(&controller, &cDLVController::HideStatus);
    FillCounter fills(&controller, &cDLVController::FillBUHierarchyGrid);
    controller.ReceiveMessage(GetParam().data(), 0, QString());
    EXPECT_EQ(shows.count() + hides.count() + fills.count(), 0);
    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_FALSE(controller.SingleBUGridBusy || controller.HierarchyGridBusy);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, IgnoredMessageTest,
    ::testing::Values(
        IgnoredCase{"EmptyVariant", [] { return QVariant(); }},
        IgnoredCase{"Text", [] { return QVariant(QStringLiteral("DLVData")); }},
        IgnoredCase{"NullMessage",
                    [] { return WebVariant::wrap(std::shared_ptr<QZWebMessage>()); }},
        IgnoredCase{"DataInsteadOfMessage",
                    [] { return WebVariant::wrap(std::make_shared<QZWebData>()); }},
        IgnoredCase{"OtherName", [] { return DLVDataBuilder().named("Hello").variant(); }},
        IgnoredCase{"NameInOtherCase", [] { return DLVDataBuilder().named("dlvdata").variant(); }}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ControllerTest, DataMessageRaisesHierarchyFillThenWritesTimesThenHidesStatus)
{
    std::vector<std::string> events;
    QObject::connect(
        &controller, &cDLVController::FillBUHierarchyGrid, &controller, [&](BusinessUnits &bus) {
            events.push_back("fill " + std::to_string(bus.Count()) +
                             (surface.captions.isEmpty() ? " before times" : " after times"));
            EXPECT_TRUE(controller.HierarchyGridBusy);
            EXPECT_TRUE(controller.SingleBUGridBusy);
        });
    QObject::connect(&controller, &cDLVController::HideStatus, &controller,
                     [&] { events.push_back("hide"); });
    QObject::connect(&controller, &cDLVController::FillSingleBUGrid, &controller,
                     [&] { events.push_back("summary"); });
    controller.ReceiveMessage(withFormats().property("tqJeopardyThreshold", "45").variant(), 7,
                              "tag");

    EXPECT_EQ(events, (std::vector<std::string>{"fill 1 before times", "hide"}));
    EXPECT_EQ(controller.JeopardyThreshold(), "45");
    EXPECT_TRUE(reporter.reports.empty());
    for (const char *label :
         {"lblLastTime", "lblLastRefreshTime", "lblNextTime", "lblNextRefreshTime"})
        EXPECT_TRUE(surface.visibility.value(label)) << label;
}

struct BusyCase
{
    const char *name;
    bool singleBusy;
    bool hierarchyBusy;
    bool accepted;
};

class BusyFlagTest : public ControllerFixture, public ::testing::WithParamInterface<BusyCase>
{};

TEST_P(BusyFlagTest, DataMessageIsDroppedWhileAGridFillIsInProgress)
{
    load(DLVDataBuilder().general("OLD", "Old", "1", "1", "1"));
    controller.SingleBUGridBusy = GetParam().singleBusy;
    controller.HierarchyGridBusy = GetParam().hierarchyBusy;
    FillCounter fills(&controller, &cDLVController::FillBUHierarchyGrid);
    QSignalSpy hides(&controller, &cDLVController::HideStatus);
    controller.ReceiveMessage(DLVDataBuilder().general("NEW", "New", "1", "1", "1").variant(), 0,
                              {});

    EXPECT_EQ(fills.count(), GetParam().accepted ? 1 : 0);
    EXPECT_EQ(hides.count(), GetParam().accepted ? 1 : 0);
    EXPECT_EQ(controller.BUs().Item(u"NEW") != nullptr, GetParam().accepted);
    EXPECT_EQ(controller.SingleBUGridBusy, GetParam().accepted || GetParam().singleBusy);
    EXPECT_EQ(controller.HierarchyGridBusy, GetParam().accepted || GetParam().hierarchyBusy);
}

INSTANTIATE_TEST_SUITE_P(Flags, BusyFlagTest,
                         ::testing::Values(BusyCase{"BothFree", false, false, true},
                                           BusyCase{"SummaryBusy", true, false, false},
                                           BusyCase{"HierarchyBusy", false, true, false},
                                           BusyCase{"BothBusy", true, true, false}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(ControllerTest, MessagesAreAcceptedAgainOnceBothFillsHaveRun)
{
    // A control's fills: the hierarchy fill clears its flag and hands over to the summary fill,
    // which sets and clears its own.
    int summaryFills = 0;
    QObject::connect(&controller, &cDLVController::FillBUHierarchyGrid, &controller,
                     [&](BusinessUnits &) {
                         controller.HierarchyGridBusy = false;
                         controller.FillSingleBU();
                     });
    QObject::connect(&controller, &cDLVController::FillSingleBUGrid, &controller,
                     [&](BusinessUnits &) {
                         controller.SingleBUGridBusy = true;
                         ++summaryFills;
                         controller.SingleBUGridBusy = false;
                     });
    controller.ReceiveMessage(DLVDataBuilder().general("A", "A", "1", "1", "1").variant(), 0, {});
    controller.ReceiveMessage(DLVDataBuilder().general("B", "B", "1", "1", "1").variant(), 0, {});
    EXPECT_EQ(summaryFills, 2);
    EXPECT_NE(controller.BUs().Item(u"B"), nullptr);
}

TEST_F(ControllerTest, ServerStoppedShowsRedStatusAndLeavesEverythingElse)
{
    load(withFormats());
    surface.captions.clear();
    QSignalSpy shows(&controller, &cDLVController::ShowStatus);
    QSignalSpy hides(&controller, &cDLVController::HideStatus);
    controller.ReceiveMessage(DLVDataBuilder().named("DLVServerStopped").variant(), 0, {});
    ASSERT_EQ(shows.count(), 1);
    EXPECT_EQ(shows.at(0).at(0).toString(), "msg-DLVServerDown");
    EXPECT_TRUE(shows.at(0).at(1).toBool());
    EXPECT_EQ(hides.count(), 0);
    EXPECT_TRUE(surface.captions.isEmpty());
    EXPECT_NE(controller.BUs().Item(u"B1"), nullptr);
}

struct TimeCase
{
    const char *name;
    const char *language;
    const char *interval;
    const char *last;
    const char *next;
};

class RefreshTimeTest : public ControllerFixture, public ::testing::WithParamInterface<TimeCase>
{};

TEST_P(RefreshTimeTest, LabelsShowNowAndNowPlusTheInterval)
{
    controller.SetLanguageID(GetParam().language);
    load(DLVDataBuilder()
             .format("EN", "hh:nn")
             .format("PO", "hh.nn")
             .format("SP", "hh:nn:ss")
             .property("tqDBRefreshInterval", GetParam().interval));
    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_EQ(surface.captions.value("lblLastRefreshTime"), GetParam().last);
    EXPECT_EQ(surface.captions.value("lblNextRefreshTime"), GetParam().next);
}

INSTANTIATE_TEST_SUITE_P(
    Times, RefreshTimeTest,
    ::testing::Values(TimeCase{"FifteenMinutes", "EN", "15", "10:50", "11:05"},
                      TimeCase{"OwnLanguage", "PO", "15", "10.50", "11.05"},
                      TimeCase{"UnknownLanguageFallsBackToEN", "XX", "15", "10:50", "11:05"},
                      TimeCase{"FractionOfAMinute", "SP", "1.5", "10:50:00", "10:51:30"},
                      TimeCase{"NotANumberIsZero", "EN", "soon", "10:50", "10:50"},
                      TimeCase{"AcrossTheHour", "EN", "80", "10:50", "12:10"},
                      TimeCase{"WrapsTheDay", "EN", "1440", "10:50", "10:50"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ControllerTest, WithoutENTheDefaultTimeFormatApplies)
{
    controller.SetLanguageID("XX");
    load(DLVDataBuilder().format("PO", "hh.nn"));
    EXPECT_EQ(surface.captions.value("lblLastRefreshTime"), Conv::formatTime(QTime(10, 50), u""));
    EXPECT_EQ(surface.captions.value("lblNextRefreshTime"), Conv::formatTime(QTime(11, 5), u""));
}

struct HostErrorCase
{
    const char *name;
    QStringList properties; // key, value, key, value ...
    qint32 number;
    const char *description;
};

class ReceiveMessageErrorTest : public ControllerFixture,
                                public ::testing::WithParamInterface<HostErrorCase>
{};

TEST_P(ReceiveMessageErrorTest, ReportsTheMessagesOwnErrorFields)
{
    // A status handler that fails is the one failure that reaches the dispatch itself.
    QObject::connect(
        &controller, &cDLVController::ShowStatus, &controller,
        [](const QString &, bool) { throw DLVError(13, QStringLiteral("handler failed")); });
    DLVDataBuilder builder;
    builder.named("DLVServerStopped");
    for (int i = 0; i + 1 < GetParam().properties.size(); i += 2)
        builder.property(GetParam().properties[i], GetParam().properties[i + 1]);
    controller.ReceiveMessage(builder.variant(), 0, {});

    ASSERT_EQ(reporter.reports.size(), 1u);
    EXPECT_EQ(reporter.reports[0].location, "cDLVController.ReceiveMessage");
    EXPECT_EQ(reporter.reports[0].number, GetParam().number);
    EXPECT_EQ(reporter.reports[0].description, GetParam().description);
}

INSTANTIATE_TEST_SUITE_P(
    Errors, ReceiveMessageErrorTest,
    ::testing::Values(
        HostErrorCase{
            "HostFields", {"Number", "42", "Description", "host failure"}, 42, "host failure"},
        HostErrorCase{"NoHostFieldsUsesTheLocalError", {}, 13, "handler failed"},
        HostErrorCase{"OnlyHostNumber", {"Number", "7"}, 7, "handler failed"},
        HostErrorCase{
            "HostNumberBeyond32Bits", {"Number", "1e12", "Description", "big"}, 13, "big"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ControllerTest, LoadWithoutSurfaceReportsAfterTheFill)
{
    cDLVController bare(&reporter);
    FillCounter fills(&bare, &cDLVController::FillBUHierarchyGrid);
    bare.ReceiveMessage(DLVDataBuilder().general("B1", "Unit", "1", "1", "1").variant(), 0, {});
    EXPECT_EQ(fills.count(), 1);
    EXPECT_EQ(reportTexts(), (std::vector<std::string>{"cDLVController.LoadData 5"}));
    EXPECT_NE(bare.BUs().Item(u"B1"), nullptr);
}

TEST_F(ControllerTest, ReleaseEmptiesModelAndLookups)
{
    load(withFormats().unit("B1", "Unit", "B1"));
    FillCounter summary(&controller, &cDLVController::FillSingleBUGrid);
    controller.Release();
    EXPECT_EQ(controller.BUs().Count(), 0);
    EXPECT_TRUE(controller.BUDescriptions().isEmpty());
    EXPECT_TRUE(controller.ParentBUIDs().isEmpty());
    EXPECT_EQ(controller.TimeFormats(), nullptr);
    EXPECT_EQ(controller.GetBUIDList("B1").count(), 1);
    controller.FillSingleBU();
    EXPECT_EQ(summary.count(), 1);
}

} // namespace
