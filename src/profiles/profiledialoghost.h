#pragma once

#include "ui/widgetdialoghost.h"

/// The control's complete DialogHost: the windows of WidgetDialogHost plus the two profile
/// dialogs of this subsystem, frmNewProfile and frmProfiles. The dialogs' own message boxes and
/// the manage dialog's new-profile prompt go back through this host.
class ProfileDialogHost final : public WidgetDialogHost
{
public:
    ProfileDialogHost() = default;
    ~ProfileDialogHost() override;
    Q_DISABLE_COPY_MOVE(ProfileDialogHost)

    std::optional<QString> getNewProfile(const CaptionCatalogue *captions, const QString &promptKey,
                                         const QString &titleKey, QWidget *owner) override;
    void manageProfiles(const QStringList &names, const QString &currentName,
                        const CaptionCatalogue *captions, QWidget *owner,
                        const ProfileDialogEvents &events) override;
};
