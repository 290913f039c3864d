// The exchange with the host: start-up, choosing, saving, save-as, the manage dialog's events and
// host errors. Every scenario runs twice: with a host that answers inside the request and with
// one that answers after the request returned.
#include "fakeprofilehost.h"
#include "webdata/qzwebprofile.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using Request = ProfileHost::Request;
using Kind = RecordingDialogHost::Kind;
using MessageResult = DialogHost::MessageResult;
using Requests = std::vector<Request>;

const QString kLocation = QStringLiteral("DLViewer.ReceiveProfileResponse");

/// A host and an exchange wired together; one per test or per row of a case table.
struct Rig
{
    explicit Rig(AnswerMode mode) : host(mode) { host.exchange = &exchange; }

    /// A host that stores "Default" and "Night shift", both complete.
    void storeTwo()
    {
        HostDocs::addComplete(host.store, QStringLiteral("Default"), QStringLiteral("10"),
                              QStringLiteral("True"), QStringLiteral("True"));
        HostDocs::addComplete(host.store, QStringLiteral("Night shift"), QStringLiteral("11|12"),
                              QStringLiteral("False"), QStringLiteral("False"));
    }
    /// The host sets the session units: the control asks for the profile list.
    void start()
    {
        exchange.GetProfileList();
        host.settle();
    }
    void startWithTwo()
    {
        storeTwo();
        start();
        host.raised.clear();
    }
    QStringList names() const
    {
        QStringList out;
        for (const auto &e : exchange.profileNames())
            out.append(e.key);
        return out;
    }
    void act(const std::function<void()> &f)
    {
        f();
        host.settle();
    }

    FakeProfileHost host;
    ProfileExchange exchange{host};
};

class Exchange : public ::testing::TestWithParam<AnswerMode>, public Rig
{
protected:
    Exchange() : Rig(GetParam()) {}
};

TEST_P(Exchange, StartUpAsksForListThenDefaultAndPostsClientReadyOnce)
{
    storeTwo();
    start();
    ASSERT_EQ(host.requests(), (Requests{Request::GetProfileList, Request::GetProfiles}));
    DLVParams expected;
    expected.ProfileName = QStringLiteral("Default"); // the host supplies user and application
    EXPECT_EQ(host.raised[1].params, expected);
    EXPECT_TRUE(host.raised[0].hourglass && host.raised[1].hourglass);
    EXPECT_FALSE(host.hourglass);
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_EQ(host.currentAtClientReady, QStringLiteral("Default"));
    EXPECT_EQ(host.shownNames, QStringList{QStringLiteral("Default")});
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Default"), QStringLiteral("Night shift")}));
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_P(Exchange, HostWithoutProfilesGetsDefaultBackOnceWithoutHourglass)
{
    start();
    ASSERT_EQ(host.requests(),
              (Requests{Request::GetProfileList, Request::GetProfiles, Request::PutProfiles}));
    const auto put = host.raisedOf(Request::PutProfiles).front();
    EXPECT_FALSE(put.hourglass);
    const QZWebProfiles sent = QZWebProfiles::fromXml(put.params.ProfilesXML);
    ASSERT_EQ(sent.count(), 1);
    const QZWebTable *select = sent.item(1).section(u"DLVSelect");
    const QZWebTable *nodes = sent.item(1).section(u"CollapsedNodes");
    ASSERT_TRUE(select && nodes);
    EXPECT_EQ(select->fieldList(), QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
    EXPECT_EQ(nodes->rowCount(), 3);
    EXPECT_EQ(select->field(1, u"SummaryOption"), QString()); // structure only
    EXPECT_EQ(names(), QStringList{QStringLiteral("Default")});
    EXPECT_EQ(host.clientReady, 1);
    // The view is re-run only for an answer that arrives once the profiles are loaded.
    EXPECT_EQ(host.rerunViews, GetParam() == AnswerMode::Inside ? 0 : 1);
}

TEST_P(Exchange, FaultyStartUpAnswersStillStartWithDefault)
{
    const struct
    {
        const char *name;
        Request request;
        std::optional<std::pair<int, QString>> failure;
        QString answer; // used when no failure is given
        std::size_t reports;
        QStringList names;
    } rows[] = {
        {"list host error",
         Request::GetProfileList,
         std::pair{1012, QStringLiteral("locked")},
         {},
         1,
         {}},
        {"list without list tags",
         Request::GetProfileList,
         std::nullopt,
         "<WebData>" + HostDocs::errorTable(0, {}) + "<ProfileID>x</ProfileID></WebData>",
         0,
         {}},
        {"profiles host error",
         Request::GetProfiles,
         std::pair{77, QStringLiteral("offline")},
         {},
         1,
         {QStringLiteral("Default")}},
        {"unreadable profiles",
         Request::GetProfiles,
         std::nullopt,
         QStringLiteral("<WebProfiles><WebProfile>"),
         1,
         {QStringLiteral("Default")}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        Rig rig(GetParam());
        rig.storeTwo();
        if (r.failure)
            rig.host.failWith[r.request].push_back(*r.failure);
        else
            rig.host.answerWith[r.request].push_back(r.answer);
        rig.start();
        ASSERT_EQ(rig.host.reporter.reports.size(), r.reports);
        if (r.failure) {
            EXPECT_EQ(rig.host.reporter.reports[0].number, r.failure->first);
            EXPECT_EQ(rig.host.reporter.reports[0].description, r.failure->second);
            EXPECT_EQ(rig.host.reporter.reports[0].location, kLocation);
        }
        EXPECT_EQ(rig.host.raisedOf(Request::GetProfiles).size(), 1u);
        if (r.request == Request::GetProfiles) // the name list holds only the created profile
            EXPECT_EQ(rig.names(), r.names);
        else
            EXPECT_TRUE(rig.names().isEmpty());
        EXPECT_EQ(rig.exchange.document().currentName(), QStringLiteral("Default"));
        EXPECT_EQ(rig.host.clientReady, 1);
    }
}

TEST_P(Exchange, AProfileSetAnsweredToTheFirstStoreDoesNotStartTwice)
{
    // A host without profiles gets "Default" stored at once; this one answers the store with a
    // profile set, inside the request, while the first profile is still being made current.
    QZWebProfiles other;
    HostDocs::addComplete(other, QStringLiteral("Other"));
    host.answerAs[Request::PutProfiles] = Request::GetProfiles;
    host.answerWith[Request::PutProfiles].push_back(HostDocs::profileSet(other));
    start();
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Default"));
}

TEST_P(Exchange, ChoosingAProfileReplacesTheSetAndTheFirstOfTheAnswerBecomesCurrent)
{
    startWithTwo();
    act([&] { exchange.ChooseNewProfile(QStringLiteral("NIGHT SHIFT")); }); // any letter case
    ASSERT_EQ(host.requests(), Requests{Request::GetProfiles});
    EXPECT_TRUE(host.raised[0].hourglass);
    EXPECT_EQ(exchange.requestedProfileName(), QStringLiteral("NIGHT SHIFT"));
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Night shift"));
    EXPECT_EQ(host.shownNames.last(), QStringLiteral("Night shift"));
    EXPECT_EQ(host.profileReplacements, 1);
    EXPECT_EQ(host.clientReady, 1); // only the first answer posts it
    EXPECT_FALSE(host.hourglass);

    Rig rig(GetParam());
    rig.storeTwo();
    QZWebProfiles answer;
    HostDocs::addComplete(answer, QStringLiteral("Night shift"));
    HostDocs::addComplete(answer, QStringLiteral("Default"));
    rig.host.answerWith[Request::GetProfiles].push_back(HostDocs::profileSet(answer));
    rig.start();
    EXPECT_EQ(rig.exchange.document().currentName(), QStringLiteral("Night shift"));
}

TEST_P(Exchange, LaterProfilesAnswersThatChangeNothing)
{
    QZWebProfiles other;
    HostDocs::addComplete(other, QStringLiteral("Other"));
    const std::pair<QString, std::size_t> rows[] = {
        {HostDocs::profileSet({}, 9001, QStringLiteral("denied")), 1},
        {QStringLiteral("  \n "), 0},
        {HostDocs::profileSet(other), 0}, // the requested name is missing
        {HostDocs::webData(0, {}), 1},    // not a profile set
        {QStringLiteral("<WebProfiles><oops"), 1},
    };
    for (const auto &[answer, reports] : rows) {
        SCOPED_TRACE(answer.toStdString());
        Rig rig(GetParam());
        rig.startWithTwo();
        QZWebProfile *before = rig.exchange.document().currentProfile();
        rig.host.answerWith[Request::GetProfiles].push_back(answer);
        rig.act([&] { rig.exchange.ChooseNewProfile(QStringLiteral("Night shift")); });
        EXPECT_EQ(rig.exchange.document().currentProfile(), before);
        EXPECT_EQ(rig.exchange.document().profiles().count(), 2);
        EXPECT_EQ(rig.host.profileReplacements, 0);
        EXPECT_EQ(rig.host.reporter.reports.size(), reports);
        EXPECT_FALSE(rig.host.hourglass);
    }
}

TEST_P(Exchange, SaveWritesTheViewSendsTheSetAndRerunsTheViewUnlessTheHostFails)
{
    startWithTwo();
    host.selectedIds = {QStringLiteral("12"), QStringLiteral("40"), QStringLiteral("7")};
    host.summary = false;
    host.collapsed[0] = {QStringLiteral("TOTAL"), QStringLiteral("INST")};
    host.collapsed[1] = {QStringLiteral("10"), QStringLiteral("11")};
    act([&] { exchange.mnuSaveProfile_Click(); });
    ASSERT_EQ(host.requests(), Requests{Request::PutProfiles});
    EXPECT_TRUE(host.raised[0].hourglass);
    const QZWebProfiles sent = QZWebProfiles::fromXml(host.raised[0].params.ProfilesXML);
    ASSERT_EQ(sent.count(), 2); // the whole set, not only the current profile
    const QZWebTable &select = *sent.item(1).section(u"DLVSelect");
    EXPECT_EQ(select.field(1, u"BUList"), QStringLiteral("12|40|7"));
    EXPECT_EQ(select.field(1, u"SummaryOption"), QStringLiteral("False"));
    EXPECT_EQ(select.field(1, u"DisplayByWorkOrders"), QStringLiteral("True"));
    const QZWebTable &nodes = *sent.item(1).section(u"CollapsedNodes");
    EXPECT_EQ(nodes.field(1, u"List"), QStringLiteral("TOTAL|INST"));
    EXPECT_EQ(nodes.field(2, u"List"), QStringLiteral("10|11"));
    EXPECT_EQ(host.rerunViews, 1);
    EXPECT_FALSE(host.hourglass);

    host.failWith[Request::PutProfiles].push_back({5, QStringLiteral("disk full")});
    act([&] { exchange.mnuSaveProfile_Click(); });
    EXPECT_EQ(host.rerunViews, 1);
    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].description, QStringLiteral("disk full"));
}

TEST_P(Exchange, SaveAsANewNameSendsOneProfileAndFetchesIt)
{
    startWithTwo();
    host.selectedIds = {QStringLiteral("40")};
    host.dialogHost.newProfileAnswers.push_back(QStringLiteral("Evening"));
    act([&] { exchange.mnuSaveProfileAs_Click(); });
    const auto prompts = host.dialogHost.callsOf(Kind::NewProfile);
    ASSERT_EQ(prompts.size(), 1u);
    EXPECT_EQ(prompts[0].promptKey, QStringLiteral("EnterProfileNameSaveAs"));
    EXPECT_EQ(prompts[0].titleKey, QStringLiteral("SaveCurrentProfileAs"));
    EXPECT_TRUE(host.dialogHost.callsOf(Kind::Message).empty());
    ASSERT_EQ(host.requests(), (Requests{Request::SaveProfileAs, Request::GetProfiles}));
    const QZWebProfiles sent = QZWebProfiles::fromXml(host.raised[0].params.ProfilesXML);
    ASSERT_EQ(sent.count(), 1);
    EXPECT_EQ(sent.item(1).name(), QStringLiteral("Evening"));
    EXPECT_EQ(sent.item(1).section(u"DLVSelect")->field(1, u"BUList"), QStringLiteral("40"));
    EXPECT_EQ(sent.item(1).section(u"CollapsedNodes")->rowCount(), 3);
    EXPECT_EQ(host.raised[1].params.ProfileName, QStringLiteral("Evening"));
    EXPECT_TRUE(exchange.profileNames().contains(u"Evening"));
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Evening"));
}

TEST_P(Exchange, SaveAsAnExistingNameAsksFirst)
{
    const struct
    {
        const char *entered; // nullptr: the prompt is cancelled
        MessageResult answer;
        Requests expected;
    } rows[] = {
        {"night SHIFT", MessageResult::Yes, {Request::SaveProfileAs, Request::GetProfiles}},
        {"night SHIFT", MessageResult::No, {}},
        {"Default", MessageResult::Yes, {Request::PutProfiles}}, // the current one: saved in place
        {"DEFAULT", MessageResult::Yes, {Request::SaveProfileAs, Request::GetProfiles}},
        {nullptr, MessageResult::Yes, {}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.entered ? r.entered : "cancelled");
        Rig rig(GetParam());
        rig.startWithTwo();
        const QString entered = QString::fromUtf8(r.entered);
        if (r.entered)
            rig.host.dialogHost.newProfileAnswers.push_back(entered);
        rig.host.dialogHost.messageAnswers.push_back(r.answer);
        rig.act([&] { rig.exchange.mnuSaveProfileAs_Click(); });
        EXPECT_EQ(rig.host.requests(), r.expected);
        const auto messages = rig.host.dialogHost.callsOf(Kind::Message);
        ASSERT_EQ(messages.size(), r.entered ? 1u : 0u);
        if (!r.entered)
            continue;
        EXPECT_EQ(messages[0].messageKind, DialogHost::MessageKind::Question);
        EXPECT_EQ(messages[0].text,
                  rig.host.captionCatalogue.caption(QStringLiteral("ProfileOverwrite")));
        EXPECT_EQ(messages[0].title, QStringLiteral("Profile : ") + entered);
        // Saved under the name as entered.
        if (!r.expected.empty() && r.expected[0] == Request::SaveProfileAs) {
            EXPECT_EQ(QZWebProfiles::fromXml(rig.host.raised[0].params.ProfilesXML).item(1).name(),
                      entered);
        }
    }
}

TEST_P(Exchange, SaveAsAnswersWithoutTheExactNameFetchNothing)
{
    for (const QString &answer :
         {HostDocs::webData(0, {}, QStringList{QStringLiteral("EVENING")}),
          HostDocs::webData(0, {}), // no list
          HostDocs::webData(3, QStringLiteral("quota"), QStringList{QStringLiteral("Evening")})}) {
        SCOPED_TRACE(answer.toStdString());
        Rig rig(GetParam());
        rig.startWithTwo();
        rig.host.answerWith[Request::SaveProfileAs].push_back(answer);
        rig.act([&] { rig.exchange.SaveProfileAs(QStringLiteral("Evening")); });
        EXPECT_EQ(rig.host.requests(), Requests{Request::SaveProfileAs});
        EXPECT_FALSE(rig.exchange.profileNames().contains(u"Evening"));
        EXPECT_EQ(rig.exchange.document().currentName(), QStringLiteral("Default"));
    }
}

TEST_P(Exchange, ManageDialogGetsTheNamesAndItsEventsBecomeRequests)
{
    startWithTwo();
    host.failWith[Request::AddProfiles].push_back({1, QStringLiteral("no")});
    act([&] { exchange.frmProf_AddProfile(QStringLiteral("Failed")); });
    EXPECT_EQ(host.reporter.reports.size(), 1u);
    host.raised.clear();

    const std::pair<std::function<void(const ProfileDialogEvents &)>, Request> steps[] = {
        {[](const ProfileDialogEvents &e) { e.addProfile(QStringLiteral("Morning")); },
         Request::AddProfiles},
        {[](const ProfileDialogEvents &e) { e.removeProfile(QStringLiteral("night shift")); },
         Request::RemoveProfiles},
        {[](const ProfileDialogEvents &e) { e.chooseProfile(QStringLiteral("Morning")); },
         Request::GetProfiles},
    };
    for (const auto &[script, request] : steps) {
        host.raised.clear();
        host.dialogHost.manageScripts.push_back(script);
        act([&] { exchange.mnuManage_Click(); });
        ASSERT_EQ(host.requests(), Requests{request});
        EXPECT_TRUE(host.raised[0].hourglass);
    }
    const auto shown = host.dialogHost.callsOf(Kind::ManageProfiles);
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[0].names,
              (QStringList{QStringLiteral("Default"), QStringLiteral("Night shift")}));
    EXPECT_EQ(shown[0].currentName, QStringLiteral("Default"));
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Default"), QStringLiteral("Morning")}));
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Morning"));
    EXPECT_FALSE(host.hourglass);
}

TEST_P(Exchange, UnknownAnswersNewSessionsAndStop)
{
    startWithTwo();
    host.hourglass = true;
    exchange.ReceiveProfileResponse(HostDocs::webData(5, QStringLiteral("x")),
                                    QStringLiteral("getprofiles")); // names are exact
    EXPECT_FALSE(host.hourglass); // ignored, but the pointer is reset
    EXPECT_TRUE(host.reporter.reports.empty());
    EXPECT_TRUE(host.raised.empty());

    exchange.clearProfilesLoaded(); // new session units start the profiles again
    start();
    EXPECT_EQ(host.clientReady, 2);
    EXPECT_EQ(host.requests(), (Requests{Request::GetProfileList, Request::GetProfiles}));

    host.raised.clear();
    exchange.StopControl();
    EXPECT_EQ(exchange.document().profiles().count(), 0);
    exchange.ReceiveProfileResponse(HostDocs::profileSet(host.store),
                                    QStringLiteral("GetProfiles"));
    exchange.GetProfileList();
    exchange.mnuSaveProfile_Click();
    EXPECT_TRUE(host.raised.empty());
    EXPECT_EQ(exchange.document().currentProfile(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Answers, Exchange,
                         ::testing::Values(AnswerMode::Inside, AnswerMode::Later),
                         [](const auto &info) {
                             return info.param == AnswerMode::Inside ? "InsideTheRequest"
                                                                     : "AfterTheRequest";
                         });

} // namespace
