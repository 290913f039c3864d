#include "ui/widgetdialoghost.h"

#include "ui/captioncatalogue.h"
#include "ui/frmerror.h"
#include "ui/frmgenabout.h"
#include "ui/ownerframelock.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPrintDialog>

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

QString WidgetDialogHost::getSaveFileName(const QString &title, const QString &initialFolder,
                                          const QString &filter, const QString &defaultSuffix,
                                          QWidget *owner)
{
    QWidget *parent = owner ? owner->window() : nullptr;
    const OwnerFrameLock lock(owner);
    QPointer<QFileDialog> dialog = new QFileDialog(parent, title, initialFolder, filter);
    dialog->setObjectName(QStringLiteral("dlgSaveFile"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    // Confirming before replacing a file is the dialog's default for saving; stated so it stays.
    dialog->setOption(QFileDialog::DontConfirmOverwrite, false);
    dialog->setDefaultSuffix(defaultSuffix);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    const QString chosen = accepted && dialog && !dialog->selectedFiles().isEmpty()
                               ? dialog->selectedFiles().front()
                               : QString();
    delete dialog.data();
    return chosen;
}

bool WidgetDialogHost::selectPrinter(QPrinter &printer, QWidget *owner)
{
    QWidget *parent = owner ? owner->window() : nullptr;
    const OwnerFrameLock lock(owner);
    QPointer<QPrintDialog> dialog = new QPrintDialog(&printer, parent);
    dialog->setObjectName(QStringLiteral("dlgPrint"));
    // One grid prints as a whole: page ranges and selection do not apply.
    dialog->setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog->setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog->setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    delete dialog.data();
    return accepted;
}
