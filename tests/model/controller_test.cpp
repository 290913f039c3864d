// Message dispatch, busy flags, status signals and refresh times of the data controller.
#include "common/conversions.h"
#include "model/controllerfixture.h"
#include "webdata/webvariant.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <optional>

namespace {

using ControllerTest = ControllerFixture;

TEST_F(ControllerTest, MessagesThatAreNoDataMessagesAreIgnored)
{
    QSignalSpy shows(&controller, &cDLVController::ShowStatus);
    QSignalSpy hides(&controller, &cDLVController::HideStatus);
    FillCounter fills(&controller, &cDLVController::FillBUHierarchyGrid);
    for (const QVariant &data : {QVariant(), QVariant(QStringLiteral("DLVData")),
                                 WebVariant::wrap(std::shared_ptr<QZWebMessage>()),
                                 WebVariant::wrap(std::make_shared<QZWebData>()),
                                 DLVDataBuilder().named("dlvdata").variant()})
        controller.ReceiveMessage(data, 0, QString());
    EXPECT_EQ(shows.count() + hides.count() + fills.count(), 0);
    EXPECT_TRUE(reporter.reports.empty());
    EXPECT_FALSE(controller.Busy().any());
}

TEST_F(ControllerTest, DataMessageRaisesHierarchyFillThenWritesTimesThenHidesStatus)
{
    std::vector<std::string> events;
    QObject::connect(&controller, &cDLVController::FillBUHierarchyGrid, &controller,
                     [&](BusinessUnits &bus) {
                         events.push_back("fill " + std::to_string(bus.Count()) +
                                          (times.count == 0 ? " before times" : " after times"));
                         EXPECT_TRUE(controller.Busy().isSet(FillBusy::HierarchyFill) &&
                                     controller.Busy().isSet(FillBusy::SummaryFill));
                     });
    QObject::connect(&controller, &cDLVController::HideStatus, &controller,
                     [&] { events.push_back("hide"); });
    controller.ReceiveMessage(
        DLVDataBuilder().general("B1").property("tqJeopardyThreshold", "45").variant(), 7, "tag");
    EXPECT_EQ(events, (std::vector<std::string>{"fill 1 before times", "hide"}));
    EXPECT_EQ(controller.JeopardyThreshold(), "45");
    EXPECT_EQ(times.count, 1);
}

TEST(BusyFlags, DataMessageIsDroppedWhileAGridFillIsInProgress)
{
    for (const auto &[singleBusy, hierarchyBusy] :
         {std::pair{true, false}, std::pair{false, true}}) {
        SCOPED_TRACE(singleBusy ? "summary busy" : "hierarchy busy");
        ControllerRig rig;
        rig.load(DLVDataBuilder().general("OLD", "Old"));
        rig.controller.Busy().clear(); // as the fills of the load would have left them
        std::optional<FillBusy::Scope> summaryFill;
        std::optional<FillBusy::Scope> hierarchyFill;
        if (singleBusy)
            summaryFill.emplace(rig.controller.Busy(), FillBusy::SummaryFill);
        if (hierarchyBusy)
            hierarchyFill.emplace(rig.controller.Busy(), FillBusy::HierarchyFill);
        QSignalSpy hides(&rig.controller, &cDLVController::HideStatus);
        rig.controller.ReceiveMessage(DLVDataBuilder().general("NEW", "New").variant(), 0, {});
        EXPECT_EQ(hides.count(), 0);
        EXPECT_EQ(rig.controller.BUs().Item(u"NEW"), nullptr);
        EXPECT_EQ(rig.controller.Busy().isSet(FillBusy::SummaryFill), singleBusy);
        EXPECT_EQ(rig.controller.Busy().isSet(FillBusy::HierarchyFill), hierarchyBusy);
    }
}

TEST_F(ControllerTest, ServerStoppedShowsRedStatusAndLeavesEverythingElse)
{
    load(DLVDataBuilder().general("B1"));
    times = {};
    QSignalSpy shows(&controller, &cDLVController::ShowStatus);
    QSignalSpy hides(&controller, &cDLVController::HideStatus);
    controller.ReceiveMessage(DLVDataBuilder().named("DLVServerStopped").variant(), 0, {});
    ASSERT_EQ(shows.count(), 1);
    EXPECT_EQ(shows.at(0).at(0).toString(), "msg-DLVServerDown");
    EXPECT_TRUE(shows.at(0).at(1).toBool());
    EXPECT_EQ(hides.count(), 0);
    EXPECT_EQ(times.count, 0);
    EXPECT_NE(controller.BUs().Item(u"B1"), nullptr);
}

TEST(RefreshTimes, LabelsShowNowAndNowPlusTheInterval)
{
    const struct
    {
        const char *language, *interval, *last, *next;
        bool withEN = true;
    } rows[] = {{"EN", "15", "10:50", "11:05"},
                {"PO", "15", "10.50", "11.05"},
                {"XX", "15", "10:50", "11:05"}, // unknown language falls back to EN
                {"SP", "1.5", "10:50:00", "10:51:30"},
                {"EN", "soon", "10:50", "10:50"},
                {"EN", "1440", "10:50", "10:50"},
                {"XX", "15", nullptr, nullptr, false}}; // no EN either: the default format
    for (const auto &r : rows) {
        SCOPED_TRACE(testing::Message() << r.language << " " << r.interval);
        ControllerRig rig;
        rig.controller.SetLanguageID(r.language);
        DLVDataBuilder builder;
        if (r.withEN)
            builder.format("EN", "hh:nn");
        rig.load(builder.format("PO", "hh.nn")
                     .format("SP", "hh:nn:ss")
                     .property("tqDBRefreshInterval", r.interval));
        EXPECT_TRUE(rig.reporter.reports.empty());
        EXPECT_EQ(rig.times.last,
                  r.last ? QString::fromUtf8(r.last) : Conv::formatTime(QTime(10, 50), u""));
        EXPECT_EQ(rig.times.next,
                  r.next ? QString::fromUtf8(r.next) : Conv::formatTime(QTime(11, 5), u""));
    }
}

TEST(ReceiveMessageErrors, ReportTheMessagesOwnErrorFields)
{
    const struct
    {
        QStringList properties; // key, value, key, value ...
        qint32 number;
        const char *description;
    } rows[] = {{{"Number", "42", "Description", "host failure"}, 42, "host failure"},
                {{}, 13, "handler failed"},
                {{"Number", "1e12", "Description", "big"}, 13, "big"}};
    for (const auto &r : rows) {
        SCOPED_TRACE(r.description);
        ControllerRig rig;
        // A status handler that fails is the one failure that reaches the dispatch itself.
        QObject::connect(&rig.controller, &cDLVController::ShowStatus, &rig.controller,
                         [](const QString &, bool) { throw DLVError(13, "handler failed"); });
        DLVDataBuilder builder;
        builder.named("DLVServerStopped");
        for (int i = 0; i + 1 < r.properties.size(); i += 2)
            builder.property(r.properties[i], r.properties[i + 1]);
        rig.controller.ReceiveMessage(builder.variant(), 0, {});
        ASSERT_EQ(rig.reporter.reports.size(), 1u);
        EXPECT_EQ(rig.reporter.reports[0].location, "cDLVController.ReceiveMessage");
        EXPECT_EQ(rig.reporter.reports[0].number, r.number);
        EXPECT_EQ(rig.reporter.reports[0].description, r.description);
    }
}

} // namespace
