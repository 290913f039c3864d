#pragma once

#include <QString>
#include <memory>

class QTranslator;

/// The reference host's own texts (menus, status bar, details window, trend chart, message
/// boxes) in the user's language, for as long as the object lives. The translations are built
/// from src/host/translations/*.ts at build time and embedded, so the host needs no files beside
/// it; Qt's own texts (standard buttons, file dialogs) come from the system's Qt translations
/// when they are installed. The control's captions do not come from here: the control looks them
/// up in its own catalogue by the language the host hands it.
///
/// Construct it after the application object and before the first window, since widgets take
/// their texts when they are made. English needs no translation.
class HostTranslator final
{
public:
    /// Installs the translations for a host language code ("EN", "PO" or "SP", as --lang takes
    /// it) on the application. Unknown codes and "EN" install nothing.
    explicit HostTranslator(const QString &languageCode);
    /// Removes what it installed.
    ~HostTranslator();
    HostTranslator(const HostTranslator &) = delete;
    HostTranslator &operator=(const HostTranslator &) = delete;

    /// The locale whose translations serve a language code: "pt_BR" for "PO", "es" for "SP",
    /// empty for English and unknown codes.
    [[nodiscard]] static QString localeName(const QString &languageCode);

    /// True when the host's own translations are in use.
    [[nodiscard]] bool hostTextsTranslated() const { return m_host != nullptr; }
    /// True when Qt's own texts are translated too (the system has Qt's translations).
    [[nodiscard]] bool qtTextsTranslated() const { return m_qt != nullptr; }

private:
    std::unique_ptr<QTranslator> m_host;
    std::unique_ptr<QTranslator> m_qt;
};
