// The two profile dialogs, driven as a user would: keys, clicks, double-clicks, Enter, Escape.
// Their message boxes and the nested new-profile prompt are answered by a recording host,
// except in the end-to-end test, which opens the real nested dialog.
#include "profiles/frmnewprofile.h"
#include "profiles/frmprofiles.h"
#include "profiles/profiledialoghost.h"
#include "support/modaldriver.h"
#include "support/qtprinters.h"
#include "support/recordingdialoghost.h"
#include "ui/captioncatalogue.h"

#include <QApplication>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using Kind = RecordingDialogHost::Kind;
using MessageKind = DialogHost::MessageKind;
using MessageResult = DialogHost::MessageResult;

template <typename T> T *child(QWidget *parent, const char *name)
{
    T *w = parent->findChild<T *>(QLatin1String(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}

/// Types text as key presses; letters beyond ASCII travel as the event's text.
void typeText(QWidget *widget, const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x80) {
            QTest::keyClick(widget, char(c.unicode()));
        } else {
            QTest::sendKeyEvent(QTest::Press, widget, Qt::Key_unknown, QString(c), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, widget, Qt::Key_unknown, QString(c),
                                Qt::NoModifier);
        }
    }
}

/// A host window with the control's main frame in it, the owner of the dialogs.
struct Owner
{
    Owner()
    {
        frame = new QWidget(&window);
        frame->setObjectName(QStringLiteral("fraDLV"));
        window.resize(640, 480);
        window.show();
    }
    QWidget window;
    QWidget *frame = nullptr;
};

// ------------------------------------------------------------------------------ frmNewProfile

struct NameCase
{
    const char *name;
    QString typed;
    std::optional<QString> accepted; // nothing: refused with "EnterValidProfile"
};

std::vector<NameCase> nameCases()
{
    std::vector<NameCase> cases = {
        {"plain", QStringLiteral("Evening"), QStringLiteral("Evening")},
        {"blanksAround", QStringLiteral("   Night shift  "), QStringLiteral("Night shift")},
        {"innerBlanksKept", QStringLiteral("A  B"), QStringLiteral("A  B")},
        {"longName", QString(300, u'x'), QString(300, u'x')},
        {"otherLetters", QStringLiteral("Équipe nuit ñ"), QStringLiteral("Équipe nuit ñ")},
        {"otherPunctuation", QStringLiteral("Shift #2 (east) - v1.0; 50%"),
         QStringLiteral("Shift #2 (east) - v1.0; 50%")},
        {"blanksOnly", QStringLiteral("    "), std::nullopt},
    };
    for (const QChar c : frmNewProfile::forbiddenCharacters())
        cases.push_back(
            {"forbidden", QStringLiteral("Shift") + c + QStringLiteral("2"), std::nullopt});
    cases.push_back({"forbiddenAtTheEnd", QStringLiteral("Shift,"), std::nullopt});
    cases.push_back({"forbiddenInTheBlanks", QStringLiteral("Shift  & "), std::nullopt});
    return cases;
}

TEST(NewProfileDialog, AcceptsTrimmedNamesAndRefusesInvalidOnes)
{
    const CaptionCatalogue captions;
    for (const NameCase &c : nameCases()) {
        SCOPED_TRACE(std::string(c.name) + ": " + c.typed.toStdString());
        Owner owner;
        RecordingDialogHost messages;
        bool ownerDisabledWhileShown = false;
        bool stillOpenAfterEnter = false;
        QString title;
        onNextModal([&](QWidget *dialog) {
            ownerDisabledWhileShown = !owner.frame->isEnabled();
            title = dialog->windowTitle();
            auto *txtName = child<QLineEdit>(dialog, "txtName");
            typeText(txtName, c.typed);
            QTest::keyClick(txtName, Qt::Key_Return);
            stillOpenAfterEnter = dialog->isVisible();
            if (stillOpenAfterEnter)
                QTest::keyClick(dialog, Qt::Key_Escape);
        });
        QString name = QStringLiteral("untouched");
        const bool ok = frmNewProfile::GetNewProfile(
            name, &captions, QStringLiteral("EnterProfileNameSaveAs"),
            QStringLiteral("SaveCurrentProfileAs"), owner.frame, messages);
        EXPECT_TRUE(ownerDisabledWhileShown);
        EXPECT_TRUE(owner.frame->isEnabled());
        EXPECT_EQ(title, captions.caption(QStringLiteral("SaveCurrentProfileAs")));
        if (c.accepted) {
            EXPECT_TRUE(ok);
            EXPECT_EQ(name, *c.accepted);
            EXPECT_FALSE(stillOpenAfterEnter);
            EXPECT_TRUE(messages.calls.empty());
        } else {
            EXPECT_FALSE(ok);
            EXPECT_EQ(name, QStringLiteral("untouched"));
            EXPECT_TRUE(stillOpenAfterEnter);
            ASSERT_EQ(messages.calls.size(), 1u);
            EXPECT_EQ(messages.calls[0].kind, Kind::Message);
            EXPECT_EQ(messages.calls[0].text,
                      captions.caption(QStringLiteral("EnterValidProfile")));
            EXPECT_EQ(messages.calls[0].title, title);
        }
    }
}

TEST(NewProfileDialog, EmptyBoxDisablesOkAndEnterDoesNothing)
{
    Owner owner;
    RecordingDialogHost messages;
    bool okEnabledEmpty = true;
    bool okEnabledBlank = false;
    bool openAfterEnter = false;
    onNextModal([&](QWidget *dialog) {
        auto *txtName = child<QLineEdit>(dialog, "txtName");
        auto *cmdOK = child<QPushButton>(dialog, "cmdOK");
        okEnabledEmpty = cmdOK->isEnabled();
        QTest::keyClick(txtName, Qt::Key_Return);
        openAfterEnter = dialog->isVisible();
        QTest::keyClick(txtName, Qt::Key_Space);
        okEnabledBlank = cmdOK->isEnabled(); // not empty: OK decides, and refuses
        QTest::mouseClick(child<QPushButton>(dialog, "cmdCancel"), Qt::LeftButton);
    });
    QString name;
    EXPECT_FALSE(frmNewProfile::GetNewProfile(name, nullptr, QStringLiteral("EnterProfileName"),
                                              QStringLiteral("NewProfile"), owner.frame, messages));
    EXPECT_FALSE(okEnabledEmpty);
    EXPECT_TRUE(openAfterEnter);
    EXPECT_TRUE(okEnabledBlank);
    EXPECT_TRUE(messages.calls.empty());
    EXPECT_TRUE(name.isEmpty());
}

TEST(NewProfileDialog, TextsComeFromTheCaptionsAndFocusSelectsTheName)
{
    const CaptionCatalogue captions;
    RecordingDialogHost messages;
    frmNewProfile dialog(&captions, messages);
    dialog.setTexts(QStringLiteral("EnterProfileName"), QStringLiteral("NewProfile"));
    EXPECT_EQ(dialog.windowTitle(), captions.caption(QStringLiteral("NewProfile")));
    EXPECT_EQ(child<QLabel>(&dialog, "lblIntro")->text(),
              captions.caption(QStringLiteral("EnterProfileName")));
    EXPECT_EQ(child<QPushButton>(&dialog, "cmdOK")->text(), captions.caption(QStringLiteral("OK")));
    EXPECT_EQ(child<QPushButton>(&dialog, "cmdCancel")->text(),
              captions.caption(QStringLiteral("Cancel")));

    auto *txtName = child<QLineEdit>(&dialog, "txtName");
    txtName->setText(QStringLiteral("Night shift"));
    txtName->deselect();
    QFocusEvent focusIn(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(txtName, &focusIn);
    EXPECT_EQ(txtName->selectedText(), QStringLiteral("Night shift"));
    EXPECT_EQ(txtName->selectionStart(), 0);
}

// ------------------------------------------------------------------------------ frmProfiles

const QStringList kNames{QStringLiteral("Default"), QStringLiteral("Night shift"),
                         QStringLiteral("Evening")};

class ManageDialog : public ::testing::Test
{
protected:
    ManageDialog() : dialog(&captions, messages) {}

    QListWidget *list() { return child<QListWidget>(&dialog, "lstProfiles"); }
    QPushButton *button(const char *name) { return child<QPushButton>(&dialog, name); }
    void selectName(const QString &name)
    {
        const auto found = list()->findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive);
        ASSERT_EQ(found.size(), 1);
        list()->setCurrentItem(found.front());
    }

    const CaptionCatalogue captions;
    RecordingDialogHost messages;
    frmProfiles dialog;
};

TEST_F(ManageDialog, SelectsTheCurrentNameInItsExactCaseElseTheFirst)
{
    const std::vector<std::pair<QString, int>> cases = {
        {QStringLiteral("Night shift"), 1}, {QStringLiteral("Evening"), 2},
        {QStringLiteral("night shift"), 0}, {QString(), 0},
        {QStringLiteral("Gone"), 0},
    };
    for (const auto &[current, row] : cases) {
        SCOPED_TRACE(current.toStdString());
        dialog.load(kNames, current);
        EXPECT_EQ(list()->count(), 3);
        EXPECT_EQ(list()->currentRow(), row);
        EXPECT_TRUE(button("cmdChoose")->isEnabled());
        EXPECT_TRUE(button("cmdRemove")->isEnabled());
    }
    EXPECT_TRUE(messages.calls.empty());
    EXPECT_EQ(dialog.windowTitle(), captions.caption(QStringLiteral("Profiles")));
    EXPECT_EQ(button("cmdChoose")->text(), captions.caption(QStringLiteral("Choose")));
    EXPECT_EQ(button("cmdClose")->text(), captions.caption(QStringLiteral("Close")));
}

TEST_F(ManageDialog, EmptyListSaysCreateOneAndDisablesChooseAndRemove)
{
    dialog.load({}, QStringLiteral("Default"));
    ASSERT_EQ(messages.calls.size(), 1u);
    EXPECT_EQ(messages.calls[0].messageKind, MessageKind::Information);
    EXPECT_EQ(messages.calls[0].text, captions.caption(QStringLiteral("CreateOneProfile")));
    EXPECT_EQ(messages.calls[0].title, captions.caption(QStringLiteral("Profiles")));
    EXPECT_EQ(list()->count(), 0);
    EXPECT_FALSE(button("cmdChoose")->isEnabled());
    EXPECT_FALSE(button("cmdRemove")->isEnabled());
    EXPECT_TRUE(button("cmdNew")->isEnabled());

    QSignalSpy chosen(&dialog, &frmProfiles::ChooseProfile);
    QSignalSpy removed(&dialog, &frmProfiles::RemoveProfile);
    button("cmdChoose")->click();
    button("cmdRemove")->click();
    EXPECT_EQ(chosen.count(), 0);
    EXPECT_EQ(removed.count(), 0);
}

TEST_F(ManageDialog, WithoutASelectionChooseAndRemoveAreOff)
{
    dialog.load(kNames, QString());
    list()->clearSelection();
    dialog.Timer1_Timer();
    EXPECT_FALSE(button("cmdChoose")->isEnabled());
    EXPECT_FALSE(button("cmdRemove")->isEnabled());
    selectName(QStringLiteral("Evening"));
    dialog.Timer1_Timer();
    EXPECT_TRUE(button("cmdChoose")->isEnabled());
}

struct RemoveCase
{
    const char *name;
    QStringList names;
    QString current;
    QString selected;
    MessageResult answer;
    bool refused; // "CannotRemoveProfile"
    bool removed;
};

TEST_F(ManageDialog, RemoveRefusesDefaultAndCurrentElseAsks)
{
    const std::vector<RemoveCase> cases = {
        {"Default", kNames, "Night shift", "Default", MessageResult::Yes, true, false},
        {"default", {"default", "B"}, "B", "default", MessageResult::Yes, true, false},
        {"DEFAULT", {"DEFAULT", "B"}, "B", "DEFAULT", MessageResult::Yes, true, false},
        {"current", kNames, "Evening", "Evening", MessageResult::Yes, true, false},
        {"current in other case is removable", kNames, "evening", "Evening", MessageResult::Yes,
         false, true},
        {"answered no", kNames, "Default", "Evening", MessageResult::No, false, false},
        {"answered yes", kNames, "Default", "Night shift", MessageResult::Yes, false, true},
        {"default as part of a name",
         {"Default", "Defaults"},
         "Default",
         "Defaults",
         MessageResult::Yes,
         false,
         true},
    };
    for (const RemoveCase &c : cases) {
        SCOPED_TRACE(c.name);
        RecordingDialogHost host;
        host.messageAnswers.push_back(c.answer);
        frmProfiles d(&captions, host);
        QSignalSpy removed(&d, &frmProfiles::RemoveProfile);
        d.load(c.names, c.current);
        auto *l = child<QListWidget>(&d, "lstProfiles");
        l->setCurrentItem(
            l->findItems(c.selected, Qt::MatchExactly | Qt::MatchCaseSensitive).at(0));
        QTest::mouseClick(child<QPushButton>(&d, "cmdRemove"), Qt::LeftButton);

        ASSERT_EQ(host.calls.size(), 1u);
        if (c.refused) {
            EXPECT_EQ(host.calls[0].text, captions.caption(QStringLiteral("CannotRemoveProfile")));
            EXPECT_EQ(host.calls[0].title, captions.caption(QStringLiteral("Profiles")));
        } else {
            EXPECT_EQ(host.calls[0].messageKind, MessageKind::Question);
            EXPECT_EQ(host.calls[0].text, captions.caption(QStringLiteral("CheckRemoveProfile")));
            EXPECT_EQ(host.calls[0].title, QStringLiteral("Profile : ") + c.selected);
        }
        ASSERT_EQ(removed.count(), c.removed ? 1 : 0);
        if (c.removed) {
            EXPECT_EQ(removed.at(0).at(0).toString(), c.selected);
        }
        EXPECT_EQ(d.result(), c.removed ? QDialog::Accepted : QDialog::Rejected);
    }
}

TEST_F(ManageDialog, NewAsksForANameAndRefusesOneThatExistsInAnyCase)
{
    const std::vector<std::tuple<const char *, std::optional<QString>, bool>> cases = {
        {"cancelled", std::nullopt, false},
        {"exists in other case", QStringLiteral("NIGHT SHIFT"), false},
        {"new", QStringLiteral("Morning"), true},
    };
    for (const auto &[name, answer, added] : cases) {
        SCOPED_TRACE(name);
        RecordingDialogHost host;
        host.newProfileAnswers.push_back(answer);
        frmProfiles d(&captions, host);
        QSignalSpy addedSpy(&d, &frmProfiles::AddProfile);
        d.load(kNames, QStringLiteral("Default"));
        QTest::mouseClick(child<QPushButton>(&d, "cmdNew"), Qt::LeftButton);

        const auto prompts = host.callsOf(Kind::NewProfile);
        ASSERT_EQ(prompts.size(), 1u);
        EXPECT_EQ(prompts[0].promptKey, QStringLiteral("EnterProfileName"));
        EXPECT_EQ(prompts[0].titleKey, QStringLiteral("NewProfile"));
        EXPECT_EQ(prompts[0].owner.data(), &d);
        const auto shown = host.callsOf(Kind::Message);
        const bool exists = answer && !added;
        ASSERT_EQ(shown.size(), exists ? 1u : 0u);
        if (exists) {
            EXPECT_EQ(shown[0].text, captions.caption(QStringLiteral("ProfileExists")));
        }
        ASSERT_EQ(addedSpy.count(), added ? 1 : 0);
        if (added) {
            EXPECT_EQ(addedSpy.at(0).at(0).toString(), QStringLiteral("Morning"));
        }
    }
}

TEST(ManageDialogKeys, EnterAndDoubleClickChooseEscapeCloses)
{
    const CaptionCatalogue captions;
    enum class How
    {
        Enter,
        DoubleClick,
        ChooseButton,
        Escape,
        CloseButton
    };
    const std::vector<std::pair<How, QString>> cases = {
        {How::Enter, QStringLiteral("Night shift")},
        {How::DoubleClick, QStringLiteral("Evening")},
        {How::ChooseButton, QStringLiteral("Night shift")},
        {How::Escape, QString()},
        {How::CloseButton, QString()},
    };
    for (const auto &[how, expected] : cases) {
        SCOPED_TRACE(int(how));
        Owner owner;
        RecordingDialogHost host;
        frmProfiles d(&captions, host, &owner.window);
        QSignalSpy chosen(&d, &frmProfiles::ChooseProfile);
        bool ownerDisabled = false;
        onNextModal([&, how = how](QWidget *w) {
            ownerDisabled = !owner.frame->isEnabled();
            auto *l = child<QListWidget>(w, "lstProfiles");
            switch (how) {
            case How::Enter:
                QTest::keyClick(l, Qt::Key_Down);
                QTest::keyClick(l, Qt::Key_Return);
                break;
            case How::DoubleClick: {
                const QPoint at = l->visualItemRect(l->item(2)).center();
                QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, at);
                QTest::mouseDClick(l->viewport(), Qt::LeftButton, {}, at);
                break;
            }
            case How::ChooseButton:
                l->setCurrentRow(1);
                QTest::mouseClick(child<QPushButton>(w, "cmdChoose"), Qt::LeftButton);
                break;
            case How::Escape:
                QTest::keyClick(l, Qt::Key_Escape);
                break;
            case How::CloseButton:
                QTest::mouseClick(child<QPushButton>(w, "cmdClose"), Qt::LeftButton);
                break;
            }
            if (w->isVisible()) {
                ADD_FAILURE() << "dialog still open";
                static_cast<QDialog *>(w)->reject();
            }
        });
        d.GetProfile(kNames, QStringLiteral("Default"), owner.frame);
        EXPECT_TRUE(ownerDisabled);
        EXPECT_TRUE(owner.frame->isEnabled());
        ASSERT_EQ(chosen.count(), expected.isEmpty() ? 0 : 1);
        if (!expected.isEmpty()) {
            EXPECT_EQ(chosen.at(0).at(0).toString(), expected);
        }
    }
}

// ------------------------------------------------------------------ through the real dialog host

TEST(ProfileDialogHost, NewFromTheManageDialogOpensTheRealPromptAndRaisesAdd)
{
    Owner owner;
    ProfileDialogHost host;
    const CaptionCatalogue captions;
    QStringList added;
    ProfileDialogEvents events;
    events.addProfile = [&](const QString &name) { added.append(name); };
    events.chooseProfile = [&](const QString &) { ADD_FAILURE() << "chosen"; };

    bool manageDisabledWhilePrompting = false;
    onNextModal([&](QWidget *manage) {
        EXPECT_EQ(manage->objectName(), QStringLiteral("frmProfiles"));
        EXPECT_TRUE(saveScreenshot(manage, QStringLiteral("frmProfiles")));
        onNextModal(
            [&](QWidget *prompt) {
                EXPECT_EQ(prompt->objectName(), QStringLiteral("frmNewProfile"));
                manageDisabledWhilePrompting = !manage->isEnabled();
                auto *txtName = child<QLineEdit>(prompt, "txtName");
                typeText(txtName, QStringLiteral("  Morning shift "));
                EXPECT_TRUE(saveScreenshot(prompt, QStringLiteral("frmNewProfile")));
                QTest::keyClick(txtName, Qt::Key_Return);
            },
            manage);
        QTest::mouseClick(child<QPushButton>(manage, "cmdNew"), Qt::LeftButton);
    });
    host.manageProfiles(kNames, QStringLiteral("Night shift"), &captions, owner.frame, events);

    EXPECT_TRUE(manageDisabledWhilePrompting);
    EXPECT_EQ(added, QStringList{QStringLiteral("Morning shift")});
    EXPECT_TRUE(owner.frame->isEnabled());
}

TEST(ProfileDialogHost, NewProfilePromptCancelled)
{
    Owner owner;
    ProfileDialogHost host;
    onNextModal([](QWidget *prompt) { QTest::keyClick(prompt, Qt::Key_Escape); });
    EXPECT_EQ(host.getNewProfile(nullptr, QStringLiteral("EnterProfileNameSaveAs"),
                                 QStringLiteral("SaveCurrentProfileAs"), owner.frame),
              std::nullopt);
    EXPECT_TRUE(owner.frame->isEnabled());
}

} // namespace
