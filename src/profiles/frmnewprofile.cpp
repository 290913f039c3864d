#include "profiles/frmnewprofile.h"

#include "ui/captioncatalogue.h"
#include "ui/dialoghost.h"
#include "ui/ownerframelock.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

frmNewProfile::frmNewProfile(const CaptionCatalogue *captions, DialogHost &dialogs, QWidget *parent)
    : QDialog(parent), m_captions(captions), m_dialogs(dialogs)
{
    setObjectName(QStringLiteral("frmNewProfile"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setModal(true);

    lblIntro = new QLabel(this);
    lblIntro->setObjectName(QStringLiteral("lblIntro"));
    lblIntro->setWordWrap(true);
    txtName = new QLineEdit(this);
    txtName->setObjectName(QStringLiteral("txtName"));
    lblIntro->setBuddy(txtName);
    txtName->installEventFilter(this);

    auto *buttons = new QDialogButtonBox(this);
    cmdOK = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = buttons->addButton(QString(), QDialogButtonBox::RejectRole);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    // The buttons decide themselves; the box's accepted/rejected would close without checking.
    connect(cmdOK, &QPushButton::clicked, this, &frmNewProfile::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmNewProfile::cmdCancel_Click);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblIntro);
    layout->addWidget(txtName);
    layout->addSpacing(6);
    layout->addWidget(buttons);
    setMinimumWidth(380);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(200);
    connect(Timer1, &QTimer::timeout, this, &frmNewProfile::Timer1_Timer);
    connect(txtName, &QLineEdit::textChanged, this, &frmNewProfile::Timer1_Timer);
    Timer1->start();
    Timer1_Timer();
}

frmNewProfile::~frmNewProfile() = default;

const QString &frmNewProfile::forbiddenCharacters()
{
    static const QString characters = QStringLiteral("/\\:*?<>\"|&',");
    return characters;
}

bool frmNewProfile::isValidName(const QString &text)
{
    if (text.trimmed().isEmpty())
        return false;
    for (const QChar c : text)
        if (forbiddenCharacters().contains(c))
            return false;
    return true;
}

QString frmNewProfile::caption(const QString &key) const
{
    return m_captions ? m_captions->caption(key) : CaptionCatalogue().caption(key);
}

void frmNewProfile::setTexts(const QString &promptKey, const QString &titleKey)
{
    setWindowTitle(caption(titleKey));
    lblIntro->setText(caption(promptKey));
    cmdOK->setText(caption(QStringLiteral("OK")));
    cmdCancel->setText(caption(QStringLiteral("Cancel")));
    txtName->clear();
}

QString frmNewProfile::name() const
{
    return txtName->text().trimmed();
}

void frmNewProfile::Timer1_Timer()
{
    cmdOK->setEnabled(!txtName->text().isEmpty());
}

bool frmNewProfile::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == txtName && event->type() == QEvent::FocusIn)
        txtName->selectAll();
    return QDialog::eventFilter(watched, event);
}

void frmNewProfile::cmdOK_Click()
{
    if (!isValidName(txtName->text())) {
        m_dialogs.messageBox(DialogHost::MessageKind::Warning,
                             caption(QStringLiteral("EnterValidProfile")), windowTitle(),
                             m_captions, this);
        txtName->setFocus();
        txtName->selectAll();
        return;
    }
    m_accepted = true;
    accept();
}

void frmNewProfile::cmdCancel_Click()
{
    m_accepted = false;
    reject();
}

bool frmNewProfile::GetNewProfile(QString &name, const CaptionCatalogue *captions,
                                  const QString &promptKey, const QString &titleKey, QWidget *owner,
                                  DialogHost &dialogs)
{
    bool accepted = false;
    QString result;
    {
        const OwnerFrameLock lock(owner);
        // On the heap and watched: the parent could go away while the dialog runs its loop.
        QPointer<frmNewProfile> dialog =
            new frmNewProfile(captions, dialogs, OwnerFrameLock::dialogParent(owner));
        dialog->setTexts(promptKey, titleKey);
        dialog->exec();
        if (dialog) {
            accepted = dialog->accepted();
            result = dialog->name();
            delete dialog.data();
        }
    }
    if (accepted && !result.isEmpty())
        name = result;
    return accepted;
}
