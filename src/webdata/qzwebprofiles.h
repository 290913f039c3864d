#pragma once

#include "webdata/qzwebprofile.h"

#include <memory>
#include <optional>
#include <vector>

/// A profile set: profiles in order (1-based), names compared without regard to letter case.
/// Profiles are held by pointer, so a reference to one stays valid until it is removed or the
/// set is reloaded. A set received from the host may carry the result's "Error" table.
class QZWebProfiles
{
public:
    QZWebProfiles() = default;
    QZWebProfiles(const QZWebProfiles &other);
    QZWebProfiles &operator=(const QZWebProfiles &other);
    QZWebProfiles(QZWebProfiles &&) noexcept = default;
    QZWebProfiles &operator=(QZWebProfiles &&) noexcept = default;
    ~QZWebProfiles() = default;

    [[nodiscard]] int count() const { return int(m_profiles.size()); }
    /// Profile by 1-based index; throws DLVError(9) when out of range.
    [[nodiscard]] QZWebProfile &item(int index);
    [[nodiscard]] const QZWebProfile &item(int index) const;
    [[nodiscard]] bool nameExists(QStringView name) const { return find(name) != nullptr; }
    [[nodiscard]] QZWebProfile *find(QStringView name);
    [[nodiscard]] const QZWebProfile *find(QStringView name) const;
    /// Adds an empty profile and returns it; throws DLVError(457) when the name exists.
    QZWebProfile &add(const QString &name);
    bool remove(QStringView name);
    void clear();

    [[nodiscard]] const QZWebTable *errorTable() const { return m_error ? &*m_error : nullptr; }
    void setErrorTable(QZWebTable table) { m_error = std::move(table); }

    /// "<WebProfiles>" document with every profile (format: docs/host-protocol.md).
    [[nodiscard]] QString toXml() const;
    /// Replaces the whole set by the document; throws DLVError(5) on malformed text and leaves
    /// the set unchanged then.
    void loadXml(QStringView xml);
    [[nodiscard]] static QZWebProfiles fromXml(QStringView xml);
    /// The same from UTF-8 bytes (files).
    void loadXmlUtf8(QByteArrayView xml);
    [[nodiscard]] static QZWebProfiles fromXmlUtf8(QByteArrayView xml);

    friend bool operator==(const QZWebProfiles &a, const QZWebProfiles &b);

private:
    friend class QZWebProfilesPrivate;
    std::vector<std::unique_ptr<QZWebProfile>> m_profiles;
    std::optional<QZWebTable> m_error;
};
