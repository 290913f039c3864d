#pragma once

#include <QDialog>
#include <QString>

class CaptionCatalogue;
class DialogHost;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;

/// The new-profile dialog: asks for one profile name and refuses, with "EnterValidProfile", a
/// name that is blank or holds one of the characters / \ : * ? < > " | & ' , (hosts keep
/// profile names in places where those characters break things). The name is trimmed; inner
/// blanks are fine and there is no length limit.
///
/// Enter is OK (while the box is not empty), Escape is Cancel. The owner frame is disabled while
/// the dialog is shown. Its message boxes go through the given DialogHost.
class frmNewProfile final : public QDialog
{
    Q_OBJECT

public:
    /// captions may be null (English texts); dialogs must outlive the dialog.
    frmNewProfile(const CaptionCatalogue *captions, DialogHost &dialogs, QWidget *parent = nullptr);
    ~frmNewProfile() override;
    Q_DISABLE_COPY_MOVE(frmNewProfile)

    /// Shows the dialog modally with the prompt and title looked up by key. Returns true when
    /// the user confirmed a valid name, which is then in name (trimmed); false when cancelled
    /// (name untouched). owner (the control's main frame) may be null.
    static bool GetNewProfile(QString &name, const CaptionCatalogue *captions,
                              const QString &promptKey, const QString &titleKey, QWidget *owner,
                              DialogHost &dialogs);

    /// The twelve characters a profile name must not hold.
    [[nodiscard]] static const QString &forbiddenCharacters();
    /// Whether text (untrimmed) is an acceptable name: not blank and no forbidden character.
    [[nodiscard]] static bool isValidName(const QString &text);

    /// Sets the title, the prompt and the button texts from the caption keys; empties the box.
    void setTexts(const QString &promptKey, const QString &titleKey);
    [[nodiscard]] bool accepted() const { return m_accepted; }
    /// The trimmed name once accepted.
    [[nodiscard]] QString name() const;

    /// Enables OK while the box is not empty (run by Timer1 and on every edit).
    void Timer1_Timer();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void cmdOK_Click();
    void cmdCancel_Click();
    [[nodiscard]] QString caption(const QString &key) const;

    const CaptionCatalogue *m_captions;
    DialogHost &m_dialogs;
    bool m_accepted = false;
    QLabel *lblIntro = nullptr;
    QLineEdit *txtName = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;
    QTimer *Timer1 = nullptr;
};
