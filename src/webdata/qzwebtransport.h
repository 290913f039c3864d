#pragma once

#include <QHash>
#include <QString>

/// The host's transport object, handed to the control by Initialize. The control reads only the
/// user's language code ("EN", "PO", "SP") and optional caption overrides (key -> text) that a
/// host may supply to change single texts without rebuilding the control.
class QZWebTransport
{
public:
    QZWebTransport() = default;
    explicit QZWebTransport(QString languageCode) : m_languageCode(std::move(languageCode)) {}

    [[nodiscard]] const QString &languageCode() const { return m_languageCode; }
    void setLanguageCode(QString code) { m_languageCode = std::move(code); }

    [[nodiscard]] const QHash<QString, QString> &captionOverrides() const { return m_overrides; }
    void setCaptionOverride(const QString &key, const QString &text)
    {
        m_overrides.insert(key, text);
    }

private:
    QString m_languageCode = QStringLiteral("EN");
    QHash<QString, QString> m_overrides;
};
