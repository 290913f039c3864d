#pragma once

#include "common/ordereddict.h"

#include <QDialog>
#include <QString>
#include <QStringList>
#include <optional>

class CaptionCatalogue;
class DialogHost;
class QListWidget;
class QPushButton;
class QTimer;

/// The manage-profiles dialog: lists the profile names and lets the user choose one, create one
/// (through the new-profile dialog) or remove one. It never talks to the host; it raises
/// ChooseProfile, AddProfile or RemoveProfile and closes, and the control turns that into a
/// request. The default profile ("Default" in any letter case) and the current profile cannot
/// be removed.
///
/// Keyboard: Enter or a double-click chooses, Escape closes. The owner frame is disabled while
/// the dialog is shown. Its message boxes and the new-profile prompt go through the DialogHost.
class frmProfiles final : public QDialog
{
    Q_OBJECT

public:
    /// captions may be null (English texts); dialogs must outlive the dialog.
    frmProfiles(const CaptionCatalogue *captions, DialogHost &dialogs, QWidget *parent = nullptr);
    ~frmProfiles() override;
    Q_DISABLE_COPY_MOVE(frmProfiles)

    /// Fills the dialog (as GetProfile does, without showing it): texts, names, the selection of
    /// currentName (exact case) or else of the first entry. With no names it first tells the
    /// user to create one.
    void load(const QStringList &names, const QString &currentName);
    /// load(), then shows the dialog modally over owner (may be null) until it closes.
    void GetProfile(const QStringList &names, const QString &currentName, QWidget *owner);

    /// Enables Choose and Remove only while an entry is selected (run by Timer1 and on every
    /// selection change).
    void Timer1_Timer();

Q_SIGNALS:
    void AddProfile(const QString &name);
    void RemoveProfile(const QString &name);
    void ChooseProfile(const QString &name);

private:
    void cmdChoose_Click();
    void cmdNew_Click();
    void cmdRemove_Click();
    void cmdClose_Click();
    /// The selected entry's name if it is one of the dialog's names.
    [[nodiscard]] std::optional<QString> selectedName() const;
    [[nodiscard]] QString caption(const QString &key) const;

    const CaptionCatalogue *m_captions;
    DialogHost &m_dialogs;
    StringSet m_names{KeyCompare::CaseInsensitive};
    QString m_currentName;
    QListWidget *lstProfiles = nullptr;
    QPushButton *cmdChoose = nullptr;
    QPushButton *cmdNew = nullptr;
    QPushButton *cmdRemove = nullptr;
    QPushButton *cmdClose = nullptr;
    QTimer *Timer1 = nullptr;
};
