#include "host/hosttranslator.h"

#include "host/hostlog.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace {

struct HostTranslation
{
    const char *code;   // the host's --lang code
    const char *locale; // the locale of Qt's own translation files
    const char *file;   // the host's embedded translation
};
constexpr HostTranslation kHostTranslations[] = {
    {"PO", "pt_BR", ":/i18n/dlvhost_pt.qm"},
    {"SP", "es", ":/i18n/dlvhost_es.qm"},
};

const HostTranslation *translationFor(const QString &languageCode)
{
    for (const HostTranslation &t : kHostTranslations)
        if (languageCode == QLatin1String(t.code))
            return &t;
    return nullptr;
}

std::unique_ptr<QTranslator> loadAndInstall(const QString &file, const QString &folder = {})
{
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(file, folder) || !QCoreApplication::installTranslator(translator.get()))
        return nullptr;
    return translator;
}

} // namespace

HostTranslator::HostTranslator(const QString &languageCode)
{
    const HostTranslation *t = translationFor(languageCode);
    if (!t)
        return;
    m_host = loadAndInstall(QString::fromLatin1(t->file));
    // The host's texts are built in, so this is a broken build rather than a user's problem.
    if (!m_host)
        qCWarning(lcHost) << "the host's translation" << t->file << "could not be loaded";
    // Optional: without the system's Qt translations the standard buttons stay English.
    m_qt = loadAndInstall(QStringLiteral("qtbase_") + QLatin1String(t->locale),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    if (!m_qt)
        qCInfo(lcHost) << "Qt's own translation for" << t->locale << "is not installed";
}

// Each QTranslator takes itself off the application when it is destroyed.
HostTranslator::~HostTranslator() = default;

QString HostTranslator::localeName(const QString &languageCode)
{
    const HostTranslation *t = translationFor(languageCode);
    return t ? QString::fromLatin1(t->locale) : QString();
}
