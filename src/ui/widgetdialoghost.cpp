#include "ui/widgetdialoghost.h"

#include "ui/captioncatalogue.h"
#include "ui/frmerror.h"
#include "ui/frmgenabout.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPointer>

WidgetDialogHost::~WidgetDialogHost() = default;

void WidgetDialogHost::showError(qint32 number, const QString &description, const QString &location,
                                 const CaptionCatalogue *captions, QWidget *owner)
{
    frmError::ShowError(number, description, location, captions, owner);
}

void WidgetDialogHost::showAbout(const QString &title, const QString &productName,
                                 const QString &description, const QString &comments,
                                 const QString &rights, const QString &version,
                                 const QString &versionLabel, QWidget *owner)
{
    frmGenAbout::ShowAbout(title, productName, description, comments, rights, version, versionLabel,
                           owner);
}

DialogHost::MessageResult WidgetDialogHost::messageBox(MessageKind kind, const QString &text,
                                                       const QString &title,
                                                       const CaptionCatalogue *captions,
                                                       QWidget *owner)
{
    // The owner may be a frame that an open dialog has disabled; its window is the right parent.
    QWidget *parent = owner ? owner->window() : nullptr;
    QPointer<QMessageBox> box = new QMessageBox(parent);
    box->setObjectName(QStringLiteral("msgBox"));
    box->setWindowTitle(title);
    box->setText(text);
    box->setTextFormat(Qt::PlainText);

    const auto label = [captions](QAbstractButton *button, const char *key) {
        if (captions && button)
            button->setText(captions->caption(QString::fromLatin1(key)));
    };
    switch (kind) {
    case MessageKind::Question:
        box->setIcon(QMessageBox::Question);
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box->setDefaultButton(QMessageBox::No);
        box->setEscapeButton(QMessageBox::No);
        label(box->button(QMessageBox::Yes), "Yes");
        label(box->button(QMessageBox::No), "No");
        break;
    case MessageKind::Information:
    case MessageKind::Warning:
        box->setIcon(kind == MessageKind::Information ? QMessageBox::Information
                                                      : QMessageBox::Warning);
        box->setStandardButtons(QMessageBox::Ok);
        box->setDefaultButton(QMessageBox::Ok);
        box->setEscapeButton(QMessageBox::Ok);
        label(box->button(QMessageBox::Ok), "OK");
        break;
    }

    const int answer = box->exec();
    delete box.data();
    if (kind != MessageKind::Question)
        return MessageResult::Ok;
    return answer == QMessageBox::Yes ? MessageResult::Yes : MessageResult::No;
}
