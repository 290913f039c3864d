// DLViewerPrivate: the profile side of the control (requests, answers, menu) and the collapsed-
// node memory of its grids. Kept apart from the shell so each subsystem's wiring reads alone.

#include "control/dlviewer_p.h"
#include "control/profilehostadapter.h"
#include "model/errortrap.h"
#include "profiles/profileexchange.h"
#include "profiles/profilemenu.h"
#include "views/collapsednodes.h"

#include <QAction>
#include <QMenu>

void DLViewerPrivate::createProfiles()
{
    profileHost = std::make_unique<ProfileHostAdapter>(*this);
    profileExchange = std::make_unique<ProfileExchange>(*profileHost);
    profileMenu = new ProfileMenu(*profileExchange, mnuProfileSection, mnuUse, mnuProfile.front(),
                                  mnuSaveProfile, mnuSaveProfileAs, mnuManage, q);
    // The menu is rebuilt from the current name list each time it drops down, whether by the
    // button itself or by its arrow.
    QObject::connect(mnuProfileSection, &QMenu::aboutToShow, profileMenu, &ProfileMenu::configure);
}

void DLViewerPrivate::requestProfileList()
{
    if (!profileExchange)
        return;
    profileExchange->clearProfilesLoaded();
    profileExchange->GetProfileList();
}

void DLViewerPrivate::receiveProfileResponse(QString &resultXML, QString &functionName)
{
    if (profileExchange)
        profileExchange->ReceiveProfileResponse(resultXML, functionName);
}

void DLViewerPrivate::LoadProfileSettings()
{
    if (profileExchange)
        profileExchange->document().LoadProfileSettings();
}

void DLViewerPrivate::RestoreNodes(const QString &id, int index)
{
    if (profileExchange)
        profileExchange->document().RestoreNodes(id, index);
}

// --- collapsed-node memory: the rules live in CollapsedNodes (views), shared by the fills and the
// profile side; here each procedure traps its own errors under its own name.

void DLViewerPrivate::SaveCollapsedList(int index, StringSet &list) const
{
    // Reporting a failure is the one effect a save may have on the control.
    ErrorTrap::run(
        const_cast<DLViewerPrivate *>(this), QStringLiteral("DLViewer.SaveCollapsedList"),
        [&] { CollapsedNodes::SaveCollapsedList(grids.at(std::size_t(index)), index, list); });
}

void DLViewerPrivate::RestoreCollapsedList(int index, const StringSet &list)
{
    ErrorTrap::run(this, QStringLiteral("DLViewer.RestoreCollapsedList"), [&] {
        CollapsedNodes::RestoreCollapsedList(grids.at(std::size_t(index)), index, list);
    });
}

void DLViewerPrivate::ExpandNodes(int index)
{
    ErrorTrap::run(this, QStringLiteral("DLViewer.ExpandNodes"),
                   [&] { CollapsedNodes::ExpandNodes(grids.at(std::size_t(index)), index); });
}
