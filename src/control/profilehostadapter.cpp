#include "control/profilehostadapter.h"

#include "common/displaytext.h"
#include "control/dlviewer_p.h"
#include "control/unitlistpane.h"
#include "model/cdlvcontroller.h"
#include "ui/captioncatalogue.h"

#include <QFrame>
#include <QLabel>

void ProfileHostAdapter::raiseProfileRequest(Request request, DLVParams &params)
{
    DLViewer *q = d.q;
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
    return d.choice;
}

bool ProfileHostAdapter::hierarchyGridsFilled() const
{
    return d.hierarchyFilled();
}

StringSet ProfileHostAdapter::collapsedList(int gridIndex)
{
    StringSet list;
    d.SaveCollapsedList(gridIndex, list);
    return list;
}

void ProfileHostAdapter::expandAll(int gridIndex)
{
    d.ExpandNodes(gridIndex);
}

void ProfileHostAdapter::collapse(int gridIndex, const StringSet &keys)
{
    d.RestoreCollapsedList(gridIndex, keys);
}

void ProfileHostAdapter::showCurrentProfile(const QString &name)
{
    d.lblCurrentProfile->setText(DisplayText::shown(name));
    d.lblCurrentProfile->setToolTip(DisplayText::toolTip(name));
    d.lblCurrentProfile->setVisible(true);
    d.lblProfile->setVisible(true);
    d.q->ResizeControls(); // the top row is laid out from the labels' widths
}

void ProfileHostAdapter::rerunView()
{
    d.cmdView_Click();
}

void ProfileHostAdapter::profileReplaced()
{
    d.ProfileSettingsLoaded = false;
    // Apply the new profile now rather than at the next data refresh, when there are data.
    if (d.mDLV && d.hierarchyFilled())
        d.mDLV->FillSingleBU();
}

const CaptionCatalogue *ProfileHostAdapter::captions() const
{
    return d.captions.get();
}

DialogHost &ProfileHostAdapter::dialogs()
{
    return d.dialogs();
}

QWidget *ProfileHostAdapter::ownerFrame() const
{
    return d.fraDLV;
}

ErrorReporter &ProfileHostAdapter::errorReporter()
{
    return d;
}
