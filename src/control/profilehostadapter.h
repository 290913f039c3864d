#pragma once

#include "profiles/profilehost.h"

class DLViewerPrivate;

/// The control as the profile subsystem sees it: request signals, the view settings a profile
/// keeps, the collapsed grid nodes, the current-profile labels, dialogs and the error report.
/// A separate object (not DLViewerPrivate itself) so the two interfaces' names cannot clash.
class ProfileHostAdapter final : public ProfileHost
{
public:
    explicit ProfileHostAdapter(DLViewerPrivate &control) : d(control) {}

    void raiseProfileRequest(Request request, DLVParams &params) override;
    void setHourglass(bool busy) override;
    void ClientReady() override;

    [[nodiscard]] ViewChoice &viewChoice() override;

    [[nodiscard]] bool hierarchyGridsFilled() const override;
    [[nodiscard]] StringSet collapsedList(int gridIndex) override;
    void expandAll(int gridIndex) override;
    void collapse(int gridIndex, const StringSet &keys) override;

    void showCurrentProfile(const QString &name) override;
    void rerunView() override;
    void profileReplaced() override;

    [[nodiscard]] const CaptionCatalogue *captions() const override;
    [[nodiscard]] DialogHost &dialogs() override;
    [[nodiscard]] QWidget *ownerFrame() const override;
    [[nodiscard]] ErrorReporter &errorReporter() override;

private:
    DLViewerPrivate &d;
};
