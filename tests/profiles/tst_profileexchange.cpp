// The exchange with the host and the profile menu. Exchange scenarios run with a host that
// answers inside the request and with one that answers after it returned.
#include "fakeprofilehost.h"
#include "webdata/qzwebprofile.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using Request = ProfileHost::Request;
using MessageResult = DialogHost::MessageResult;
using Requests = std::vector<Request>;

struct Rig
{
    explicit Rig(AnswerMode mode) : host(mode) { host.exchange = &exchange; }

    void start()
    {
        exchange.GetProfileList();
        host.settle();
    }
    /// Starts with "Default" and "Night shift" stored; forgets the start-up requests.
    void startWithTwo()
    {
        HostDocs::addComplete(host.store, QStringLiteral("Default"));
        HostDocs::addComplete(host.store, QStringLiteral("Night shift"));
        start();
        host.raised.clear();
    }
    void act(const std::function<void()> &f)
    {
        f();
        host.settle();
    }
    QString current() { return exchange.document().currentName(); }

    FakeProfileHost host;
    ProfileExchange exchange{host};
};

class Exchange : public ::testing::TestWithParam<AnswerMode>, public Rig
{
protected:
    Exchange() : Rig(GetParam()) {}
};

TEST_P(Exchange, StartUpAsksForTheListThenDefault)
{
    HostDocs::addComplete(host.store, QStringLiteral("Night shift"));
    HostDocs::addComplete(host.store, QStringLiteral("Default"));
    start();
    ASSERT_EQ(host.requests(), (Requests{Request::GetProfileList, Request::GetProfiles}));
    EXPECT_EQ(host.raised[1].params.ProfileName, QStringLiteral("Default"));
    EXPECT_TRUE(host.raised[0].hourglass && host.raised[1].hourglass);
    EXPECT_FALSE(host.hourglass);
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_EQ(current(), QStringLiteral("Default"));
    EXPECT_EQ(exchange.profileNames().count(), 2);
}

TEST_P(Exchange, HostWithoutProfilesGetsDefaultBackOnceWithoutHourglass)
{
    start();
    ASSERT_EQ(host.requests(),
              (Requests{Request::GetProfileList, Request::GetProfiles, Request::PutProfiles}));
    EXPECT_FALSE(host.raised[2].hourglass);
    const QZWebProfiles sent = QZWebProfiles::fromXml(host.raised[2].params.ProfilesXML);
    ASSERT_EQ(sent.count(), 1);
    EXPECT_EQ(sent.item(1).name(), QStringLiteral("Default"));
    EXPECT_EQ(host.clientReady, 1);
}

TEST_P(Exchange, AProfileSetAnsweredToTheFirstStoreDoesNotStartTwice)
{
    QZWebProfiles other;
    HostDocs::addComplete(other, QStringLiteral("Other"));
    host.answerAs[Request::PutProfiles] = Request::GetProfiles;
    host.answerWith[Request::PutProfiles].push_back(HostDocs::profileSet(other));
    start();
    EXPECT_EQ(host.clientReady, 1);
    EXPECT_EQ(current(), QStringLiteral("Default"));
}

TEST_P(Exchange, SaveAsAnExistingNameAsksFirst)
{
    const struct
    {
        const char *entered;
        MessageResult answer;
        Requests expected;
    } rows[] = {
        {"night SHIFT", MessageResult::Yes, {Request::SaveProfileAs, Request::GetProfiles}},
        {"night SHIFT", MessageResult::No, {}},
        {"Default", MessageResult::Yes, {Request::PutProfiles}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.entered);
        Rig rig(GetParam());
        rig.startWithTwo();
        rig.host.dialogHost.newProfileAnswers.push_back(QString::fromUtf8(r.entered));
        rig.host.dialogHost.messageAnswers.push_back(r.answer);
        rig.act([&] { rig.exchange.mnuSaveProfileAs_Click(); });
        EXPECT_EQ(rig.host.requests(), r.expected);
        const auto asked = rig.host.dialogHost.callsOf(RecordingDialogHost::Kind::Message);
        ASSERT_EQ(asked.size(), 1u);
        EXPECT_EQ(asked[0].text,
                  rig.host.captionCatalogue.caption(QStringLiteral("ProfileOverwrite")));
        if (r.expected.size() == 2) {
            EXPECT_EQ(QZWebProfiles::fromXml(rig.host.raised[0].params.ProfilesXML).item(1).name(),
                      QString::fromUtf8(r.entered));
        }
    }
}

TEST_P(Exchange, AnswersThatChangeNothing)
{
    QZWebProfiles other;
    HostDocs::addComplete(other, QStringLiteral("Other"));
    const struct
    {
        const char *name;
        Request request;
        QString answer;
    } rows[] = {
        {"save-as in another case", Request::SaveProfileAs,
         HostDocs::webData(0, {}, QStringList{QStringLiteral("NIGHT")})},
        {"save-as without list", Request::SaveProfileAs, HostDocs::webData(0, {})},
        {"profiles without the name", Request::GetProfiles, HostDocs::profileSet(other)},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        Rig rig(GetParam());
        rig.startWithTwo();
        rig.host.answerWith[r.request].push_back(r.answer);
        rig.act([&] {
            if (r.request == Request::SaveProfileAs)
                rig.exchange.SaveProfileAs(QStringLiteral("Night"));
            else
                rig.exchange.ChooseNewProfile(QStringLiteral("Night shift"));
        });
        EXPECT_EQ(rig.host.requests(), Requests{r.request});
        EXPECT_EQ(rig.current(), QStringLiteral("Default"));
        EXPECT_EQ(rig.exchange.document().profiles().count(), 2);
        EXPECT_TRUE(rig.host.reporter.reports.empty());
    }
}

TEST_P(Exchange, HostErrorsAreReported)
{
    const std::pair<Request, std::function<void(ProfileExchange &)>> rows[] = {
        {Request::GetProfileList, {}},
        {Request::GetProfiles, {}},
        {Request::PutProfiles, [](ProfileExchange &e) { e.mnuSaveProfile_Click(); }},
        {Request::SaveProfileAs,
         [](ProfileExchange &e) { e.SaveProfileAs(QStringLiteral("Evening")); }},
        {Request::GetProfiles,
         [](ProfileExchange &e) { e.ChooseNewProfile(QStringLiteral("Night shift")); }},
    };
    for (const auto &[request, action] : rows) {
        SCOPED_TRACE(ProfileHost::requestName(request).toStdString());
        Rig rig(GetParam());
        if (action) {
            rig.startWithTwo();
            rig.host.failWith[request] = {77, QStringLiteral("offline")};
            rig.act([&] { action(rig.exchange); });
        } else {
            rig.host.failWith[request] = {77, QStringLiteral("offline")};
            rig.start();
            EXPECT_EQ(rig.current(), QStringLiteral("Default"));
        }
        ASSERT_EQ(rig.host.reporter.reports.size(), 1u);
        EXPECT_EQ(rig.host.reporter.reports[0].number, 77);
        EXPECT_EQ(rig.host.reporter.reports[0].description, QStringLiteral("offline"));
        EXPECT_EQ(rig.host.reporter.reports[0].location,
                  QStringLiteral("DLViewer.ReceiveProfileResponse"));
        EXPECT_FALSE(rig.host.hourglass);
    }
}

INSTANTIATE_TEST_SUITE_P(Answers, Exchange,
                         ::testing::Values(AnswerMode::Inside, AnswerMode::Later),
                         [](const auto &info) {
                             return info.param == AnswerMode::Inside ? "InsideTheRequest"
                                                                     : "AfterTheRequest";
                         });

TEST(ProfileSort, IsCaseInsensitiveAndKeepsTiesInReverseListOrder)
{
    const std::pair<QStringList, QStringList> rows[] = {
        {{"b", "A", "c"}, {"A", "b", "c"}},
        {{"x", "X"}, {"X", "x"}},
        {{"B", "a", "b", "A"}, {"A", "a", "b", "B"}},
    };
    for (const auto &[list, sorted] : rows)
        EXPECT_EQ(ProfileExchange::sortNames(list), sorted) << list.join(u',').toStdString();
}

TEST(ProfileMenu, ListsSortedNamesWithTheCurrentOneCheckedInItsExactCase)
{
    const struct
    {
        QStringList names;
        QString current;
        QStringList captions;
        int checked;
    } rows[] = {
        {{"Night shift", "Default", "alpha"},
         "Night shift",
         {"alpha", "Default", "Night shift"},
         2},
        {{"Default", "night shift"}, "Night shift", {"Default", "night shift"}, -1},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.current.toStdString());
        Rig rig(AnswerMode::Inside);
        rig.host.answerWith[Request::GetProfileList].push_back(HostDocs::webData(0, {}, r.names));
        QZWebProfiles set;
        HostDocs::addComplete(set, r.current);
        rig.host.answerWith[Request::GetProfiles].push_back(HostDocs::profileSet(set));
        rig.start();
        rig.exchange.ConfigureProfileMenu();
        QStringList captions;
        int checked = -1;
        for (const auto &item : rig.exchange.menuItems()) {
            if (item.checked)
                checked = int(captions.size());
            captions.append(item.caption);
        }
        EXPECT_EQ(captions, r.captions);
        EXPECT_EQ(checked, r.checked);
    }
}

} // namespace
