#pragma once

#include "common/ordereddict.h"

#include <QString>
#include <QStringList>

class CaptionCatalogue;
class DialogHost;
class DLVParams;
class ErrorReporter;
class QWidget;
class ViewChoice;

/// What the profile subsystem needs from the control that embeds it: the host's request signals,
/// the view choice a profile stores (unit selection, the two options), the collapsed grid nodes,
/// the current-profile labels, and the control's dialogs, captions and error report.
///
/// The control implements it; tests implement it with a scripted host. Every call is synchronous.
/// raiseProfileRequest() may come back into ProfileExchange::ReceiveProfileResponse() before it
/// returns (a host answering inside its slot) or the answer may arrive later; both are supported.
class ProfileHost
{
public:
    /// The profile requests, one per signal of the control.
    enum class Request
    {
        GetProfileList,
        GetProfiles,
        PutProfiles,
        AddProfiles,
        RemoveProfiles,
        SaveProfileAs,
    };

    /// The request's name as the host writes it back in FunctionName ("GetProfiles", ...).
    [[nodiscard]] static QString requestName(Request request);

    virtual ~ProfileHost() = default;

    // --- host link
    /// Emits the request's signal with params (the host may fill it, and may answer inside).
    virtual void raiseProfileRequest(Request request, DLVParams &params) = 0;
    /// The hourglass pointer on the control (true) or the default pointer (false).
    virtual void setHourglass(bool busy) = 0;
    /// Posts "ClientReady": the control has its profile and may now be sent data.
    virtual void ClientReady() = 0;

    // --- view settings kept in a profile
    /// The user's choice (units of the unit list, summary and display options), which a profile
    /// stores and restores; the control's widgets follow what is set there.
    [[nodiscard]] virtual ViewChoice &viewChoice() = 0;

    // --- collapsed grid nodes (grid 0 summary, 1 work-order hierarchy, 2 points hierarchy)
    /// Whether the hierarchy grids have been filled at least once.
    [[nodiscard]] virtual bool hierarchyGridsFilled() const = 0;
    /// The row keys of the grid's collapsed nodes, top to bottom ("TOTAL" first when present).
    [[nodiscard]] virtual StringSet collapsedList(int gridIndex) = 0;
    /// Expands every node of the grid.
    virtual void expandAll(int gridIndex) = 0;
    /// Collapses the nodes named by keys; keys without a row are ignored.
    virtual void collapse(int gridIndex, const StringSet &keys) = 0;

    // --- the rest of the control
    /// Shows name in lblCurrentProfile and makes it and its title lblProfile visible.
    virtual void showCurrentProfile(const QString &name) = 0;
    /// Re-runs the View command (cmdView_Click) so the view follows the saved settings.
    virtual void rerunView() = 0;
    /// Another profile became current: clear ProfileSettingsLoaded, so that the next summary fill
    /// applies it, and have the data controller rebuild its business-unit lists.
    virtual void profileReplaced() = 0;

    /// The caption lookup; nothing before the control is initialised (English texts are used).
    [[nodiscard]] virtual const CaptionCatalogue *captions() const = 0;
    [[nodiscard]] virtual DialogHost &dialogs() = 0;
    /// The control's main frame fraDLV, owner of every modal dialog.
    [[nodiscard]] virtual QWidget *ownerFrame() const = 0;
    [[nodiscard]] virtual ErrorReporter &errorReporter() = 0;
};
