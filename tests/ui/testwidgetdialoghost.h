#pragma once

#include "ui/captioncatalogue.h"
#include "ui/widgetdialoghost.h"
#include "webdata/qzwebtransport.h"

#include <QHash>
#include <memory>

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

/// A transport in the given language with the host's caption overrides.
inline std::shared_ptr<QZWebTransport> transport(const QString &language,
                                                 const QHash<QString, QString> &overrides = {})
{
    auto t = std::make_shared<QZWebTransport>(language);
    for (auto it = overrides.cbegin(); it != overrides.cend(); ++it)
        t->setCaptionOverride(it.key(), it.value());
    return t;
}

/// A caption catalogue attached to such a transport.
inline std::unique_ptr<CaptionCatalogue> catalogueFor(const QString &language,
                                                      const QHash<QString, QString> &overrides = {})
{
    auto catalogue = std::make_unique<CaptionCatalogue>();
    catalogue->attach(transport(language, overrides));
    return catalogue;
}
