// The profile menu: the order of the names, the check mark and the entries of the real menu.
#include "fakeprofilehost.h"
#include "profiles/profilemenu.h"

#include <QAction>
#include <QMenu>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

using Request = ProfileHost::Request;

/// An exchange whose names come from a GetProfileList answer and whose current profile is the
/// first of a GetProfiles answer.
class Menu : public ::testing::Test
{
protected:
    Menu() { host.exchange = &exchange; }

    void start(const QStringList &names, const QString &current)
    {
        host.answerWith[Request::GetProfileList].push_back(HostDocs::webData(0, {}, names));
        QZWebProfiles set;
        HostDocs::addComplete(set, current);
        host.answerWith[Request::GetProfiles].push_back(HostDocs::profileSet(set));
        exchange.GetProfileList();
        host.raised.clear();
    }
    QStringList captions() const
    {
        QStringList out;
        for (const auto &item : exchange.menuItems())
            out.append(item.caption);
        return out;
    }
    int checked() const
    {
        int index = -1;
        for (std::size_t i = 0; i < exchange.menuItems().size(); ++i)
            if (exchange.menuItems()[i].checked) {
                EXPECT_EQ(index, -1) << "more than one check mark";
                index = int(i);
            }
        return index;
    }

    FakeProfileHost host;
    ProfileExchange exchange{host};
};

TEST(ProfileSort, IsCaseInsensitiveAndKeepsTiesInReverseListOrder)
{
    const std::vector<std::pair<QStringList, QStringList>> cases = {
        {{"b", "A", "c"}, {"A", "b", "c"}},
        {{"x", "X"}, {"X", "x"}},
        {{"B", "a", "b", "A"}, {"A", "a", "b", "B"}},
        {{"Shift 10", "Shift 2"}, {"Shift 10", "Shift 2"}},
        {{"", "a"}, {"", "a"}},
    };
    for (const auto &[list, sorted] : cases) {
        SCOPED_TRACE(list.join(u',').toStdString());
        EXPECT_EQ(ProfileExchange::sortNames(list), sorted);
    }
}

TEST_F(Menu, ListsSortedNamesWithTheCurrentOneCheckedInItsExactCase)
{
    start({"Night shift", "Default", "alpha", "NIGHT SHIFT2"}, "Night shift");
    EXPECT_EQ(exchange.SortProfiles(),
              (QStringList{"alpha", "Default", "Night shift", "NIGHT SHIFT2"}));
    exchange.ConfigureProfileMenu();
    EXPECT_EQ(captions(), (QStringList{"alpha", "Default", "Night shift", "NIGHT SHIFT2"}));
    EXPECT_EQ(checked(), 2);
    for (const auto &item : exchange.menuItems())
        EXPECT_TRUE(item.visible);

    start({"Default", "night shift"}, "Night shift");
    exchange.ConfigureProfileMenu();
    EXPECT_EQ(checked(), -1);
}

TEST_F(Menu, NoNamesLeavesTheFirstEntryAsItWas)
{
    start({"A", "B"}, "A");
    exchange.ConfigureProfileMenu();
    exchange.ReceiveProfileResponse(HostDocs::webData(0, {}, QStringList{"A", "B"}),
                                    QStringLiteral("RemoveProfiles"));
    exchange.ConfigureProfileMenu();
    ASSERT_EQ(exchange.menuItems().size(), 1u);
    EXPECT_EQ(exchange.menuItems()[0].caption, QStringLiteral("A"));
    EXPECT_TRUE(exchange.menuItems()[0].visible);
}

TEST_F(Menu, ClickingAnotherProfileMovesTheCheckAndAsksForIt)
{
    start({"A", "B", "C"}, "A");
    exchange.ConfigureProfileMenu();
    host.silent.push_back(Request::GetProfiles);
    exchange.mnuProfile_Click(2);
    EXPECT_EQ(checked(), 2);
    ASSERT_EQ(host.requests(), std::vector{Request::GetProfiles});
    EXPECT_EQ(host.raised[0].params.ProfileName, QStringLiteral("C"));

    // The current one again: reloaded from the host, the check mark stays where it was.
    host.raised.clear();
    exchange.mnuProfile_Click(0);
    EXPECT_EQ(checked(), 2);
    EXPECT_EQ(host.raised.at(0).params.ProfileName, QStringLiteral("A"));
}

TEST_F(Menu, RealMenuFollowsTheModel)
{
    QMenu section;
    QMenu *use = section.addMenu(QStringLiteral("Use Profile"));
    QAction *first = use->addAction(QString());
    first->setObjectName(QStringLiteral("mnuProfile0"));
    first->setVisible(false);
    QAction *save = section.addAction(QStringLiteral("Save"));
    QAction *saveAs = section.addAction(QStringLiteral("Save As"));
    QAction *manage = section.addAction(QStringLiteral("Manage"));
    ProfileMenu menu(exchange, &section, use, first, save, saveAs, manage);

    start({"R&D", "Default", "Night shift"}, "Default");
    Q_EMIT section.aboutToShow();
    ASSERT_EQ(menu.count(), 3);
    EXPECT_EQ(menu.action(0), first);
    EXPECT_EQ(use->findChild<QAction *>(QStringLiteral("mnuProfile2")), menu.action(2));
    EXPECT_EQ(first->text(), QStringLiteral("Default"));
    EXPECT_EQ(menu.action(2)->text(), QStringLiteral("R&&D")); // shown as "R&D", not a mnemonic
    EXPECT_TRUE(first->isChecked());
    EXPECT_FALSE(menu.action(1)->isChecked());
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(menu.action(i)->isVisible());

    // A user's click on the current profile toggles the action; the model puts it back.
    host.silent.push_back(Request::GetProfiles);
    first->trigger();
    EXPECT_TRUE(first->isChecked());
    menu.action(1)->trigger();
    EXPECT_TRUE(menu.action(1)->isChecked());
    EXPECT_FALSE(first->isChecked());
    EXPECT_EQ(host.raised.back().params.ProfileName, QStringLiteral("Night shift"));

    // Fewer names: the extra entries go, element 0 stays.
    QPointer<QAction> third = menu.action(2);
    exchange.ReceiveProfileResponse(HostDocs::webData(0, {}, QStringList{"R&D", "Night shift"}),
                                    QStringLiteral("RemoveProfiles"));
    Q_EMIT section.aboutToShow();
    EXPECT_EQ(menu.count(), 1);
    EXPECT_TRUE(third.isNull());
    EXPECT_EQ(first->text(), QStringLiteral("Default"));

    // The commands reach the exchange.
    host.raised.clear();
    save->trigger();
    EXPECT_EQ(host.requests(), std::vector{Request::PutProfiles});
    manage->trigger();
    EXPECT_EQ(host.dialogHost.callsOf(RecordingDialogHost::Kind::ManageProfiles).size(), 1u);
    saveAs->trigger();
    EXPECT_EQ(host.dialogHost.callsOf(RecordingDialogHost::Kind::NewProfile).size(), 1u);
}

} // namespace
