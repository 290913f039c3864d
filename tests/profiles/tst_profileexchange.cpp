// The exchange with the host: start-up, choosing, saving, save-as, the manage dialog's events and
// host errors. Every scenario runs twice: with a host that answers inside the request and with
// one that answers after the request returned.
#include "fakeprofilehost.h"
#include "webdata/qzwebprofile.h"

#include <gtest/gtest.h>

namespace {

using Request = ProfileHost::Request;
using Kind = RecordingDialogHost::Kind;
using MessageResult = DialogHost::MessageResult;

const QString kLocation = QStringLiteral("DLViewer.ReceiveProfileResponse");

class Exchange : public ::testing::TestWithParam<AnswerMode>
{
protected:
    Exchange() { host.exchange = &exchange; }

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

    FakeProfileHost host{GetParam()};
    ProfileExchange exchange{host};
};

TEST_P(Exchange, StartUpAsksForListThenDefaultAndPostsClientReadyOnce)
{
    storeTwo();
    start();

    ASSERT_EQ(host.requests(), (std::vector{Request::GetProfileList, Request::GetProfiles}));
    EXPECT_EQ(host.raised[1].params.ProfileName, QStringLiteral("Default"));
    EXPECT_EQ(host.raised[1].params, [] {
        DLVParams p;
        p.ProfileName = QStringLiteral("Default");
        return p;
    }()); // nothing else is filled in: the host supplies user and application
    for (const auto &r : host.raised)
        EXPECT_TRUE(r.hourglass);
    EXPECT_FALSE(host.hourglass);
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_EQ(host.currentAtClientReady, QStringLiteral("Default"));
    EXPECT_TRUE(exchange.profilesLoaded());
    EXPECT_EQ(host.shownNames, QStringList{QStringLiteral("Default")});
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Default"), QStringLiteral("Night shift")}));
    EXPECT_EQ(exchange.document().profiles().count(), 2);
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_P(Exchange, HostWithoutProfilesGetsDefaultBackOnceWithoutHourglass)
{
    start();

    ASSERT_EQ(host.requests(),
              (std::vector{Request::GetProfileList, Request::GetProfiles, Request::PutProfiles}));
    const auto put = host.raisedOf(Request::PutProfiles).front();
    EXPECT_FALSE(put.hourglass);
    const QZWebProfiles sent = QZWebProfiles::fromXml(put.params.ProfilesXML);
    ASSERT_EQ(sent.count(), 1);
    EXPECT_EQ(sent.item(1).name(), QStringLiteral("Default"));
    const QZWebTable *select = sent.item(1).section(u"DLVSelect");
    const QZWebTable *nodes = sent.item(1).section(u"CollapsedNodes");
    ASSERT_TRUE(select && nodes);
    EXPECT_EQ(select->fieldList(), QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
    EXPECT_EQ(select->rowCount(), 1);
    EXPECT_EQ(nodes->fieldList(), QStringLiteral("ID,List"));
    EXPECT_EQ(nodes->rowCount(), 3);
    // Structure only: the settings were not written.
    EXPECT_EQ(select->field(1, u"SummaryOption"), QString());

    EXPECT_EQ(names(), QStringList{QStringLiteral("Default")});
    EXPECT_EQ(host.clientReady, 1);
    // The view is re-run only for an answer that arrives once the profiles are loaded.
    EXPECT_EQ(host.rerunViews, GetParam() == AnswerMode::Inside ? 0 : 1);
    EXPECT_TRUE(host.store.nameExists(u"Default"));
    EXPECT_FALSE(host.hourglass);
}

TEST_P(Exchange, HostErrorInListAnswerStillAsksForDefault)
{
    storeTwo();
    host.failWith[Request::GetProfileList].push_back({1012, QStringLiteral("list locked")});
    start();

    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].number, 1012);
    EXPECT_EQ(host.reporter.reports[0].description, QStringLiteral("list locked"));
    EXPECT_EQ(host.reporter.reports[0].location, kLocation);
    EXPECT_TRUE(names().isEmpty());
    EXPECT_EQ(host.raisedOf(Request::GetProfiles).size(), 1u);
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Default"));
}

TEST_P(Exchange, InvalidListAnswerIsIgnoredAndDefaultAsked)
{
    storeTwo();
    host.answerWith[Request::GetProfileList].push_back(
        QStringLiteral("<WebData>") + HostDocs::errorTable(0, {}) +
        QStringLiteral("<ProfileID>x</ProfileID></WebData>")); // no list tags
    start();
    EXPECT_TRUE(host.reporter.reports.empty());
    EXPECT_TRUE(names().isEmpty());
    EXPECT_EQ(host.raisedOf(Request::GetProfiles).size(), 1u);
}

TEST_P(Exchange, HostErrorInFirstProfilesAnswerStillStartsWithDefault)
{
    storeTwo();
    host.failWith[Request::GetProfiles].push_back({77, QStringLiteral("store offline")});
    start();

    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].number, 77);
    EXPECT_EQ(exchange.document().profiles().count(), 1);
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Default"));
    // The name list now holds only the created profile.
    EXPECT_EQ(names(), QStringList{QStringLiteral("Default")});
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_TRUE(exchange.profilesLoaded());
}

TEST_P(Exchange, UnreadableFirstProfilesAnswerIsReportedOnceAndStartUpCompletes)
{
    storeTwo();
    host.answerWith[Request::GetProfiles].push_back(QStringLiteral("<WebProfiles><WebProfile>"));
    start();

    EXPECT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Default"));
    EXPECT_EQ(host.clientReady, 1);
}

TEST_P(Exchange, FirstProfileOfTheAnswerBecomesCurrent)
{
    storeTwo();
    QZWebProfiles answer;
    HostDocs::addComplete(answer, QStringLiteral("Night shift"));
    HostDocs::addComplete(answer, QStringLiteral("Default"));
    host.answerWith[Request::GetProfiles].push_back(HostDocs::profileSet(answer));
    start();
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Night shift"));
    EXPECT_EQ(host.shownNames, QStringList{QStringLiteral("Night shift")});
}

TEST_P(Exchange, ChoosingAProfileReplacesTheSetAndAsksForANewFill)
{
    startWithTwo();
    act([&] { exchange.ChooseNewProfile(QStringLiteral("Night shift")); });

    ASSERT_EQ(host.requests(), std::vector{Request::GetProfiles});
    EXPECT_TRUE(host.raised[0].hourglass);
    EXPECT_EQ(host.raised[0].params.ProfileName, QStringLiteral("Night shift"));
    EXPECT_EQ(exchange.requestedProfileName(), QStringLiteral("Night shift"));
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Night shift"));
    EXPECT_EQ(host.shownNames.last(), QStringLiteral("Night shift"));
    EXPECT_EQ(host.profileReplacements, 1);
    EXPECT_EQ(host.clientReady, 1); // only the first answer posts it
    EXPECT_FALSE(host.hourglass);
}

struct LaterProfilesCase
{
    const char *name;
    std::function<QString()> answer;
    size_t reports;
};

TEST_P(Exchange, LaterProfilesAnswersThatChangeNothing)
{
    const std::vector<LaterProfilesCase> cases = {
        {"host error", [] { return HostDocs::profileSet({}, 9001, QStringLiteral("denied")); }, 1},
        {"empty answer", [] { return QString(); }, 0},
        {"blank answer", [] { return QStringLiteral("  \n "); }, 0},
        {"requested name missing",
         [] {
             QZWebProfiles set;
             HostDocs::addComplete(set, QStringLiteral("Other"));
             return HostDocs::profileSet(set);
         },
         0},
        {"not a profile set", [] { return HostDocs::webData(0, {}); }, 1},
        {"malformed", [] { return QStringLiteral("<WebProfiles><oops"); }, 1},
    };
    for (const LaterProfilesCase &c : cases) {
        SCOPED_TRACE(c.name);
        FakeProfileHost h(GetParam());
        ProfileExchange x(h);
        h.exchange = &x;
        HostDocs::addComplete(h.store, QStringLiteral("Default"));
        HostDocs::addComplete(h.store, QStringLiteral("Night shift"));
        x.GetProfileList();
        h.settle();
        QZWebProfile *before = x.document().currentProfile();

        h.answerWith[Request::GetProfiles].push_back(c.answer());
        x.ChooseNewProfile(QStringLiteral("Night shift"));
        h.settle();

        EXPECT_EQ(x.document().currentProfile(), before);
        EXPECT_EQ(x.document().currentName(), QStringLiteral("Default"));
        EXPECT_EQ(x.document().profiles().count(), 2);
        EXPECT_EQ(h.profileReplacements, 0);
        EXPECT_EQ(h.reporter.reports.size(), c.reports);
        for (const auto &r : h.reporter.reports)
            EXPECT_EQ(r.location, kLocation);
        EXPECT_FALSE(h.hourglass);
    }
}

TEST_P(Exchange, RequestedNameIsFoundInAnyLetterCase)
{
    startWithTwo();
    act([&] { exchange.ChooseNewProfile(QStringLiteral("NIGHT SHIFT")); });
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Night shift"));
}

TEST_P(Exchange, SaveWritesTheViewSendsTheSetAndRerunsTheView)
{
    startWithTwo();
    host.selectedIds = {QStringLiteral("12"), QStringLiteral("40"), QStringLiteral("7")};
    host.summary = false;
    host.display = true;
    host.collapsed[0] = {QStringLiteral("TOTAL"), QStringLiteral("INST")};
    host.collapsed[1] = {QStringLiteral("10"), QStringLiteral("11")};
    act([&] { exchange.mnuSaveProfile_Click(); });

    ASSERT_EQ(host.requests(), std::vector{Request::PutProfiles});
    EXPECT_TRUE(host.raised[0].hourglass);
    const QZWebProfiles sent = QZWebProfiles::fromXml(host.raised[0].params.ProfilesXML);
    ASSERT_EQ(sent.count(), 2); // the whole set, not only the current profile
    const QZWebProfile &saved = sent.item(1);
    EXPECT_EQ(saved.name(), QStringLiteral("Default"));
    EXPECT_EQ(saved.section(u"DLVSelect")->field(1, u"BUList"), QStringLiteral("12|40|7"));
    EXPECT_EQ(saved.section(u"DLVSelect")->field(1, u"SummaryOption"), QStringLiteral("False"));
    EXPECT_EQ(saved.section(u"DLVSelect")->field(1, u"DisplayByWorkOrders"),
              QStringLiteral("True"));
    const QZWebTable &nodes = *saved.section(u"CollapsedNodes");
    EXPECT_EQ(nodes.field(1, u"List"), QStringLiteral("TOTAL|INST"));
    EXPECT_EQ(nodes.field(2, u"List"), QStringLiteral("10|11"));
    EXPECT_EQ(nodes.field(3, u"List"), QString());
    EXPECT_EQ(host.rerunViews, 1);
    EXPECT_FALSE(host.hourglass);
}

TEST_P(Exchange, HostErrorInSaveAnswerDoesNotRerunTheView)
{
    startWithTwo();
    host.failWith[Request::PutProfiles].push_back({5, QStringLiteral("disk full")});
    act([&] { exchange.mnuSaveProfile_Click(); });
    EXPECT_EQ(host.rerunViews, 0);
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

    ASSERT_EQ(host.requests(), (std::vector{Request::SaveProfileAs, Request::GetProfiles}));
    EXPECT_TRUE(host.raised[0].hourglass);
    const QZWebProfiles sent = QZWebProfiles::fromXml(host.raised[0].params.ProfilesXML);
    ASSERT_EQ(sent.count(), 1);
    EXPECT_EQ(sent.item(1).name(), QStringLiteral("Evening"));
    EXPECT_EQ(sent.item(1).section(u"DLVSelect")->field(1, u"BUList"), QStringLiteral("40"));
    EXPECT_EQ(sent.item(1).section(u"CollapsedNodes")->rowCount(), 3);
    EXPECT_EQ(sent.item(1).section(u"CollapsedNodes")->field(3, u"ID"), QStringLiteral("BUPoints"));
    EXPECT_EQ(exchange.pendingSaveAsName(), QStringLiteral("Evening"));
    EXPECT_EQ(host.raised[1].params.ProfileName, QStringLiteral("Evening"));
    EXPECT_TRUE(exchange.profileNames().contains(u"Evening"));
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Evening"));
}

struct SaveAsConfirmCase
{
    const char *name;
    const char *entered;
    MessageResult answer;
    std::vector<Request> expected;
};

TEST_P(Exchange, SaveAsAnExistingNameAsksFirst)
{
    const std::vector<SaveAsConfirmCase> cases = {
        {"other case, yes",
         "night SHIFT",
         MessageResult::Yes,
         {Request::SaveProfileAs, Request::GetProfiles}},
        {"other case, no", "night SHIFT", MessageResult::No, {}},
        {"current name, yes: saved in place",
         "Default",
         MessageResult::Yes,
         {Request::PutProfiles}},
        {"current name in other case, yes: a new profile",
         "DEFAULT",
         MessageResult::Yes,
         {Request::SaveProfileAs, Request::GetProfiles}},
        {"current name, no", "Default", MessageResult::No, {}},
    };
    for (const SaveAsConfirmCase &c : cases) {
        SCOPED_TRACE(c.name);
        FakeProfileHost h(GetParam());
        ProfileExchange x(h);
        h.exchange = &x;
        HostDocs::addComplete(h.store, QStringLiteral("Default"));
        HostDocs::addComplete(h.store, QStringLiteral("Night shift"));
        x.GetProfileList();
        h.settle();
        h.raised.clear();

        const QString entered = QString::fromUtf8(c.entered);
        h.dialogHost.newProfileAnswers.push_back(entered);
        h.dialogHost.messageAnswers.push_back(c.answer);
        x.mnuSaveProfileAs_Click();
        h.settle();

        const auto messages = h.dialogHost.callsOf(Kind::Message);
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].messageKind, DialogHost::MessageKind::Question);
        EXPECT_EQ(messages[0].text, h.captionCatalogue.caption(QStringLiteral("ProfileOverwrite")));
        EXPECT_EQ(messages[0].title, QStringLiteral("Profile : ") + entered);
        EXPECT_EQ(h.requests(), c.expected);
        if (!c.expected.empty() && c.expected[0] == Request::SaveProfileAs) {
            // Sent under the name as entered.
            const QZWebProfiles sent = QZWebProfiles::fromXml(h.raised[0].params.ProfilesXML);
            EXPECT_EQ(sent.item(1).name(), entered);
        }
    }
}

TEST_P(Exchange, CancelledSaveAsDoesNothing)
{
    startWithTwo();
    act([&] { exchange.mnuSaveProfileAs_Click(); }); // no scripted answer: cancelled
    EXPECT_TRUE(host.raised.empty());
    EXPECT_TRUE(host.dialogHost.callsOf(Kind::Message).empty());
}

TEST_P(Exchange, SaveAsAnswersWithoutTheExactNameFetchNothing)
{
    const std::vector<std::pair<const char *, QString>> answers = {
        {"other case", HostDocs::webData(0, {}, QStringList{QStringLiteral("EVENING")})},
        {"other name", HostDocs::webData(0, {}, QStringList{QStringLiteral("Default")})},
        {"no list", HostDocs::webData(0, {})},
        {"host error with the name",
         HostDocs::webData(3, QStringLiteral("quota"), QStringList{QStringLiteral("Evening")})},
    };
    for (const auto &[name, answer] : answers) {
        SCOPED_TRACE(name);
        FakeProfileHost h(GetParam());
        ProfileExchange x(h);
        h.exchange = &x;
        HostDocs::addComplete(h.store, QStringLiteral("Default"));
        x.GetProfileList();
        h.settle();
        h.raised.clear();

        h.answerWith[Request::SaveProfileAs].push_back(answer);
        x.SaveProfileAs(QStringLiteral("Evening"));
        h.settle();
        EXPECT_EQ(h.requests(), std::vector{Request::SaveProfileAs});
        EXPECT_FALSE(x.profileNames().contains(u"Evening"));
        EXPECT_EQ(x.document().currentName(), QStringLiteral("Default"));
    }
}

TEST_P(Exchange, ManageDialogGetsTheNamesAndItsEventsBecomeRequests)
{
    startWithTwo();
    host.dialogHost.manageScripts.push_back(
        [](const ProfileDialogEvents &e) { e.addProfile(QStringLiteral("Morning")); });
    act([&] { exchange.mnuManage_Click(); });

    const auto shown = host.dialogHost.callsOf(Kind::ManageProfiles);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].names,
              (QStringList{QStringLiteral("Default"), QStringLiteral("Night shift")}));
    EXPECT_EQ(shown[0].currentName, QStringLiteral("Default"));
    ASSERT_EQ(host.requests(), std::vector{Request::AddProfiles});
    EXPECT_TRUE(host.raised[0].hourglass);
    EXPECT_EQ(host.raised[0].params.ProfileName, QStringLiteral("Morning"));
    EXPECT_TRUE(exchange.profileNames().contains(u"Morning"));

    host.raised.clear();
    host.dialogHost.manageScripts.push_back(
        [](const ProfileDialogEvents &e) { e.removeProfile(QStringLiteral("night shift")); });
    act([&] { exchange.mnuManage_Click(); });
    ASSERT_EQ(host.requests(), std::vector{Request::RemoveProfiles});
    EXPECT_FALSE(exchange.profileNames().contains(u"Night shift"));

    host.raised.clear();
    host.dialogHost.manageScripts.push_back(
        [](const ProfileDialogEvents &e) { e.chooseProfile(QStringLiteral("Morning")); });
    act([&] { exchange.mnuManage_Click(); });
    ASSERT_EQ(host.requests(), std::vector{Request::GetProfiles});
    EXPECT_EQ(exchange.document().currentName(), QStringLiteral("Morning"));
    EXPECT_FALSE(host.hourglass);
}

TEST_P(Exchange, HostErrorsInAddAndRemoveLeaveTheNames)
{
    startWithTwo();
    host.failWith[Request::AddProfiles].push_back({1, QStringLiteral("no")});
    host.failWith[Request::RemoveProfiles].push_back({2, QStringLiteral("no")});
    act([&] { exchange.frmProf_AddProfile(QStringLiteral("Morning")); });
    act([&] { exchange.frmProf_RemoveProfile(QStringLiteral("Night shift")); });
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Default"), QStringLiteral("Night shift")}));
    EXPECT_EQ(host.reporter.reports.size(), 2u);
}

TEST_P(Exchange, UnknownAnswersAreIgnoredButResetThePointer)
{
    startWithTwo();
    host.hourglass = true;
    exchange.ReceiveProfileResponse(HostDocs::webData(5, QStringLiteral("x")),
                                    QStringLiteral("getprofiles"));
    EXPECT_FALSE(host.hourglass);
    EXPECT_TRUE(host.reporter.reports.empty());
    EXPECT_TRUE(host.raised.empty());
}

TEST_P(Exchange, NewSessionUnitsStartTheProfilesAgain)
{
    startWithTwo();
    exchange.clearProfilesLoaded();
    start();
    EXPECT_EQ(host.clientReady, 2);
    EXPECT_EQ(host.requests(), (std::vector{Request::GetProfileList, Request::GetProfiles}));
}

TEST_P(Exchange, AfterStopNothingIsRequestedOrApplied)
{
    startWithTwo();
    exchange.StopControl();
    EXPECT_EQ(exchange.document().currentProfile(), nullptr);
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
