#pragma once

#include "common/ordereddict.h"
#include "webdata/qzwebdata.h"

#include <memory>
#include <vector>

/// A host message: a name ("DLVData", "DLVServerStopped", ...), string properties by key (exact
/// keys, insertion order) and 1-based data items.
class QZWebMessage
{
public:
    explicit QZWebMessage(QString name = {}) : m_name(std::move(name)) {}

    [[nodiscard]] const QString &name() const { return m_name; }
    void setName(QString name) { m_name = std::move(name); }

    [[nodiscard]] bool hasProperty(QStringView key) const { return m_properties.contains(key); }
    /// The property's value; the empty string when the message has no such property.
    [[nodiscard]] QString property(QStringView key) const;
    /// Sets a property, adding it at the end when absent.
    void setProperty(const QString &key, const QString &value);
    [[nodiscard]] const OrderedDict<QString> &properties() const { return m_properties; }

    [[nodiscard]] int dataCount() const { return int(m_data.size()); }
    /// Data item by 1-based number; throws DLVError(9) when out of range.
    [[nodiscard]] std::shared_ptr<QZWebData> data(int item) const;
    void addData(std::shared_ptr<QZWebData> data);

    /// "<WebMessage name=..>" document (format: docs/host-protocol.md).
    [[nodiscard]] QString toXml() const;
    void loadXml(QStringView xml); ///< throws DLVError(5) on malformed text, leaves *this unchanged
    [[nodiscard]] static QZWebMessage fromXml(QStringView xml);
    /// The same from UTF-8 bytes (files), without a UTF-16 copy of the whole document.
    [[nodiscard]] static QZWebMessage fromXmlUtf8(QByteArrayView xml);
    void loadXmlUtf8(QByteArrayView xml);

private:
    friend class QZWebMessagePrivate;
    friend class WebXmlStreamReader;
    QString m_name;
    OrderedDict<QString> m_properties{KeyCompare::Exact};
    std::vector<std::shared_ptr<QZWebData>> m_data;
};
