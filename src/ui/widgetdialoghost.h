#pragma once

#include "ui/dialoghost.h"

/// The DialogHost that opens real windows: frmError, frmGenAbout, QMessageBox, QFileDialog and
/// QPrintDialog.
///
/// The two profile dialogs (frmNewProfile, frmProfiles) belong to the profiles subsystem, which
/// completes this host by overriding getNewProfile() and manageProfiles() in a subclass next to
/// those dialogs; the control holds that complete host. This class therefore stays abstract.
class WidgetDialogHost : public DialogHost
{
public:
    WidgetDialogHost() = default;
    ~WidgetDialogHost() override;
    Q_DISABLE_COPY_MOVE(WidgetDialogHost)

    void showError(qint32 number, const QString &description, const QString &location,
                   const CaptionCatalogue *captions, QWidget *owner) override;
    void showAbout(const QString &title, const QString &productName, const QString &description,
                   const QString &comments, const QString &rights, const QString &version,
                   const QString &versionLabel, QWidget *owner) override;
    MessageResult messageBox(MessageKind kind, const QString &text, const QString &title,
                             const CaptionCatalogue *captions, QWidget *owner) override;
    QString getSaveFileName(const QString &title, const QString &initialFolder,
                            const QString &filter, const QString &defaultSuffix,
                            QWidget *owner) override;
    bool selectPrinter(QPrinter &printer, QWidget *owner) override;
};
