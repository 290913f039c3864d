#include "control/profilehostadapter.h"

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "control/gridviews.h"
#include "control/viewscontroller.h"

#include <QFrame>

void ProfileHostAdapter::raiseProfileRequest(Request request, DLVParams &params)
{
    DLViewer *q = d.viewer();
    switch (request) {
    case Request::GetProfileList:
        Q_EMIT q->GetProfileList(params);
        break;
    case Request::GetProfiles:
        Q_EMIT q->GetProfiles(params);
        break;
    case Request::PutProfiles:
        Q_EMIT q->PutProfiles(params);
        break;
    case Request::AddProfiles:
        Q_EMIT q->AddProfiles(params);
        break;
    case Request::RemoveProfiles:
        Q_EMIT q->RemoveProfiles(params);
        break;
    case Request::SaveProfileAs:
        Q_EMIT q->SaveProfileAs(params);
        break;
    }
}

void ProfileHostAdapter::setHourglass(bool busy)
{
    d.setHourglass(busy);
}

void ProfileHostAdapter::ClientReady()
{
    d.ClientReady();
}

ViewChoice &ProfileHostAdapter::viewChoice()
{
    return d.choice();
}

bool ProfileHostAdapter::hierarchyGridsFilled() const
{
    return d.fills().hierarchyFilled();
}

StringSet ProfileHostAdapter::collapsedList(int gridIndex)
{
    StringSet list;
    d.views().SaveCollapsedList(gridIndex, list);
    return list;
}

void ProfileHostAdapter::expandAll(int gridIndex)
{
    d.views().ExpandNodes(gridIndex);
}

void ProfileHostAdapter::collapse(int gridIndex, const StringSet &keys)
{
    d.views().RestoreCollapsedList(gridIndex, keys);
}

void ProfileHostAdapter::showCurrentProfile(const QString &name)
{
    d.showCurrentProfile(name);
}

void ProfileHostAdapter::rerunView()
{
    d.fills().cmdView_Click();
}

void ProfileHostAdapter::profileReplaced()
{
    d.fills().profileReplaced();
}

const CaptionCatalogue *ProfileHostAdapter::captions() const
{
    return d.captions();
}

DialogHost &ProfileHostAdapter::dialogs()
{
    return d.dialogs();
}

QWidget *ProfileHostAdapter::ownerFrame() const
{
    return d.frame();
}

ErrorReporter &ProfileHostAdapter::errorReporter()
{
    return d;
}
