#include "profiles/profiledialoghost.h"

#include "profiles/frmnewprofile.h"
#include "profiles/frmprofiles.h"
#include "ui/ownerframelock.h"

#include <QPointer>

ProfileDialogHost::~ProfileDialogHost() = default;

std::optional<QString> ProfileDialogHost::getNewProfile(const CaptionCatalogue *captions,
                                                        const QString &promptKey,
                                                        const QString &titleKey, QWidget *owner)
{
    QString name;
    if (!frmNewProfile::GetNewProfile(name, captions, promptKey, titleKey, owner, *this))
        return std::nullopt;
    return name;
}

void ProfileDialogHost::manageProfiles(const QStringList &names, const QString &currentName,
                                       const CaptionCatalogue *captions, QWidget *owner,
                                       const ProfileDialogEvents &events)
{
    // Watched: an event handler may run long enough for the window behind it to go away.
    QPointer<frmProfiles> dialog =
        new frmProfiles(captions, *this, OwnerFrameLock::dialogParent(owner));
    // The events are copied into the connections: the dialog may outlive the caller's record.
    if (events.addProfile)
        QObject::connect(dialog, &frmProfiles::AddProfile, dialog, events.addProfile);
    if (events.removeProfile)
        QObject::connect(dialog, &frmProfiles::RemoveProfile, dialog, events.removeProfile);
    if (events.chooseProfile)
        QObject::connect(dialog, &frmProfiles::ChooseProfile, dialog, events.chooseProfile);
    dialog->GetProfile(names, currentName, owner);
    delete dialog.data();
}
