#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

class QZWebTransport;

/// The control's caption lookup: turns a fixed English key ("SaveGrid", "msg-WaitingforDLVData",
/// "fraError-Label1", ...) into the text to show in the user's language.
///
/// The language is the attached transport's language code ("EN", "PO" or "SP", any letter case);
/// an unknown code or no transport means English. A lookup tries, in order: the host's override
/// for the key, the language's built-in table, the English table, and finally the key itself, so
/// a caller always gets something to show. The built-in tables are compiled-in resources.
class CaptionCatalogue final
{
public:
    CaptionCatalogue() = default;

    /// Hands over the host's transport. Its language code and overrides are read at each lookup,
    /// so a host may change them after attaching.
    void attach(std::shared_ptr<QZWebTransport> transport);
    [[nodiscard]] const std::shared_ptr<QZWebTransport> &transport() const { return m_transport; }

    /// The text for key. extra is accepted for the host platform's calling convention (callers
    /// pass an empty text and never read it back); it is neither read nor written.
    [[nodiscard]] QString caption(const QString &key, QString &extra) const;
    [[nodiscard]] QString caption(const QString &key) const;

    /// The language the lookups use: "EN", "PO" or "SP".
    [[nodiscard]] QString languageCode() const;

    /// Every key the control looks up, in a stable order.
    [[nodiscard]] static const QStringList &knownKeys();
    /// The codes of the built-in tables: "EN", "PO", "SP".
    [[nodiscard]] static const QStringList &languages();
    /// A built-in table's entry, without overrides or fallback; nothing when the table lacks the
    /// key or the language has no table.
    [[nodiscard]] static std::optional<QString> builtInText(const QString &language,
                                                            const QString &key);
    /// All keys of one built-in table (for checking the tables against knownKeys()).
    [[nodiscard]] static QStringList builtInKeys(const QString &language);

    /// Maps a host language code to a built-in table's code; unknown codes give "EN".
    [[nodiscard]] static QString normalizedLanguage(const QString &code);

private:
    std::shared_ptr<QZWebTransport> m_transport;
};
