// The two profile dialogs, driven as a user would, with a recording host for their messages.
#include "profiles/frmnewprofile.h"
#include "profiles/frmprofiles.h"
#include "support/modaldriver.h"
#include "support/qtprinters.h"
#include "support/recordingdialoghost.h"
#include "ui/captioncatalogue.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using Kind = RecordingDialogHost::Kind;
using MessageResult = DialogHost::MessageResult;

template <typename T> T *child(QWidget *parent, const char *name)
{
    T *w = parent->findChild<T *>(QLatin1String(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}

const QStringList kNames{"Default", "Night shift", "Evening"};

TEST(NewProfileDialog, AcceptsTrimmedNamesAndRefusesInvalidOnes)
{
    const CaptionCatalogue captions;
    std::vector<std::pair<QString, std::optional<QString>>> rows = {
        {"   Night shift  ", "Night shift"},
        {"    ", std::nullopt},
    };
    for (const QChar c : frmNewProfile::forbiddenCharacters())
        rows.push_back({QStringLiteral("Shift") + c + QStringLiteral("2"), std::nullopt});
    for (const auto &[typed, accepted] : rows) {
        SCOPED_TRACE(typed.toStdString());
        QWidget owner;
        RecordingDialogHost messages;
        onNextModal([&, typed = typed](QWidget *dialog) {
            auto *txtName = child<QLineEdit>(dialog, "txtName");
            QTest::keyClicks(txtName, typed);
            QTest::keyClick(txtName, Qt::Key_Return);
            if (dialog->isVisible())
                QTest::keyClick(dialog, Qt::Key_Escape);
        });
        QString name;
        const bool ok =
            frmNewProfile::GetNewProfile(name, &captions, QStringLiteral("EnterProfileName"),
                                         QStringLiteral("NewProfile"), &owner, messages);
        EXPECT_EQ(ok, accepted.has_value());
        EXPECT_EQ(name, accepted.value_or(QString()));
        ASSERT_EQ(messages.calls.size(), accepted ? 0u : 1u);
        if (!accepted) {
            EXPECT_EQ(messages.calls[0].text,
                      captions.caption(QStringLiteral("EnterValidProfile")));
        }
    }
}

TEST(ManageDialog, EmptyListSaysCreateOneAndDisablesChooseAndRemove)
{
    const CaptionCatalogue captions;
    RecordingDialogHost messages;
    frmProfiles dialog(&captions, messages);
    dialog.load({}, QStringLiteral("Default"));
    ASSERT_EQ(messages.calls.size(), 1u);
    EXPECT_EQ(messages.calls[0].text, captions.caption(QStringLiteral("CreateOneProfile")));
    EXPECT_FALSE(child<QPushButton>(&dialog, "cmdChoose")->isEnabled());
    EXPECT_FALSE(child<QPushButton>(&dialog, "cmdRemove")->isEnabled());
}

TEST(ManageDialog, RefusesRemovingDefaultOrCurrentAndAddingAnExistingName)
{
    const CaptionCatalogue captions;
    const struct
    {
        const char *button;
        QStringList names;
        QString current;
        QString selected;
        std::optional<QString> typed;
        const char *message;
        bool emitted;
    } rows[] = {
        {"cmdRemove", {"default", "B"}, "B", "default", {}, "CannotRemoveProfile", false},
        {"cmdRemove", kNames, "Evening", "Evening", {}, "CannotRemoveProfile", false},
        {"cmdRemove", kNames, "Default", "Evening", {}, "CheckRemoveProfile", true},
        {"cmdNew", kNames, "Default", "Default", "NIGHT SHIFT", "ProfileExists", false},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.message);
        RecordingDialogHost host;
        host.messageAnswers.push_back(MessageResult::Yes);
        host.newProfileAnswers.push_back(r.typed);
        frmProfiles d(&captions, host);
        QSignalSpy removed(&d, &frmProfiles::RemoveProfile);
        QSignalSpy added(&d, &frmProfiles::AddProfile);
        d.load(r.names, r.current);
        auto *l = child<QListWidget>(&d, "lstProfiles");
        l->setCurrentItem(l->findItems(r.selected, Qt::MatchExactly).at(0));
        QTest::mouseClick(child<QPushButton>(&d, r.button), Qt::LeftButton);
        const auto shown = host.callsOf(Kind::Message);
        ASSERT_EQ(shown.size(), 1u);
        EXPECT_EQ(shown[0].text, captions.caption(QString::fromUtf8(r.message)));
        EXPECT_EQ(removed.count() + added.count(), r.emitted ? 1 : 0);
    }
}

} // namespace
