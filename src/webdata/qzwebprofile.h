#pragma once

#include "common/ordereddict.h"
#include "webdata/qzwebtable.h"

#include <memory>
#include <optional>

/// One named profile: a keyed collection of sections (case-insensitive names, insertion order).
/// A section is a QZWebTable: its name, its field list and 1-based rows of string values (the
/// empty string means "not set"). A profile document received from the host may also carry the
/// result's "Error" table.
class QZWebProfile
{
public:
    explicit QZWebProfile(QString name = {}) : m_name(std::move(name)) {}
    QZWebProfile(const QZWebProfile &other);
    QZWebProfile &operator=(const QZWebProfile &other);
    QZWebProfile(QZWebProfile &&) noexcept = default;
    QZWebProfile &operator=(QZWebProfile &&) noexcept = default;
    ~QZWebProfile() = default;

    [[nodiscard]] const QString &name() const { return m_name; }
    void setName(QString name) { m_name = std::move(name); }

    [[nodiscard]] int sectionCount() const { return int(m_sections.count()); }
    [[nodiscard]] bool sectionExists(QStringView name) const { return m_sections.contains(name); }
    /// The named section, or nullptr.
    [[nodiscard]] QZWebTable *section(QStringView name);
    [[nodiscard]] const QZWebTable *section(QStringView name) const;
    /// Section by 0-based position.
    [[nodiscard]] const QZWebTable &sectionAt(int index) const;
    /// Adds a section; fieldList is the field names joined by ",". Throws DLVError(457) when a
    /// section of that name exists.
    QZWebTable &addSection(const QString &name, const QString &fieldList);

    /// The "Error" table of a result document, if it carried one.
    [[nodiscard]] const QZWebTable *errorTable() const { return m_error ? &*m_error : nullptr; }
    void setErrorTable(QZWebTable table) { m_error = std::move(table); }

    /// "<WebProfile>" document (the name is a child element) (format: docs/host-protocol.md).
    [[nodiscard]] QString toXml() const;
    void loadXml(QStringView xml); ///< throws DLVError(5) on malformed text, leaves *this unchanged
    [[nodiscard]] static QZWebProfile fromXml(QStringView xml);
    /// The same from UTF-8 bytes (files).
    void loadXmlUtf8(QByteArrayView xml);
    [[nodiscard]] static QZWebProfile fromXmlUtf8(QByteArrayView xml);

    friend bool operator==(const QZWebProfile &a, const QZWebProfile &b);

private:
    friend class QZWebProfilePrivate;
    QString m_name;
    OrderedDict<std::unique_ptr<QZWebTable>> m_sections{KeyCompare::CaseInsensitive};
    std::optional<QZWebTable> m_error;
};
