#include "ui/aboutinfo.h"

#ifndef DLV_VERSION_MAJOR
#error "DLV_VERSION_MAJOR, DLV_VERSION_MINOR and DLV_VERSION_PATCH come from the build"
#endif

namespace {

enum class Language
{
    English,
    Portuguese,
    Spanish,
    Unknown
};

Language languageOf(const QString &code)
{
    const QString upper = code.trimmed().toUpper();
    if (upper == QLatin1String("EN"))
        return Language::English;
    if (upper == QLatin1String("PO"))
        return Language::Portuguese;
    if (upper == QLatin1String("SP"))
        return Language::Spanish;
    return Language::Unknown;
}

} // namespace

QString AboutInfo::productName()
{
    return QStringLiteral("Dashlon Viewer");
}

QString AboutInfo::comments()
{
    return QStringLiteral("Shows the real-time productivity of business units: work orders and "
                          "points by job type and job class, technician hours and hourly rates.");
}

QString AboutInfo::versionText()
{
    return QStringLiteral("%1.%2.%3")
        .arg(DLV_VERSION_MAJOR)
        .arg(DLV_VERSION_MINOR)
        .arg(DLV_VERSION_PATCH);
}

QString AboutInfo::description(const QString &languageCode)
{
    switch (languageOf(languageCode)) {
    case Language::English:
        return QStringLiteral("Real-Time BusinessUnit Productivity");
    case Language::Portuguese:
        return QStringLiteral("Produtividade de Hora Real de Unidades de Negócios");
    case Language::Spanish:
        return QStringLiteral("Productividad de Hora Real de Unidades de Negocios");
    case Language::Unknown:
        break;
    }
    return {};
}

QString AboutInfo::rights(const QString &languageCode)
{
    switch (languageOf(languageCode)) {
    case Language::English:
        return QStringLiteral("© 2026 Dashlon. All rights reserved.");
    case Language::Portuguese:
        return QStringLiteral("© 2026 Dashlon. Todos os direitos reservados.");
    case Language::Spanish:
        return QStringLiteral("© 2026 Dashlon. Todos los derechos reservados.");
    case Language::Unknown:
        break;
    }
    return {};
}
