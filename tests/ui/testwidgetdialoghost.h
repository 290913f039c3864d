#pragma once

#include "ui/widgetdialoghost.h"

/// The widget host completed with inert profile dialogs, the way the profiles subsystem completes
/// it with real ones; lets these tests drive the windows this subsystem owns.
class TestWidgetDialogHost final : public WidgetDialogHost
{
public:
    std::optional<QString> getNewProfile(const CaptionCatalogue *, const QString &, const QString &,
                                         QWidget *) override
    {
        return std::nullopt;
    }
    void manageProfiles(const QStringList &, const QString &, const CaptionCatalogue *, QWidget *,
                        const ProfileDialogEvents &) override
    {}
};
