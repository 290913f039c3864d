#pragma once

#include "common/ordereddict.h"
#include "webdata/qzwebtable.h"

#include <memory>

/// A host data set: tables by name (case-insensitive), in the order they were added.
class QZWebData
{
public:
    QZWebData() = default;
    QZWebData(const QZWebData &other);
    QZWebData &operator=(const QZWebData &other);
    QZWebData(QZWebData &&) noexcept = default;
    QZWebData &operator=(QZWebData &&) noexcept = default;
    ~QZWebData() = default;

    [[nodiscard]] int tableCount() const { return int(m_tables.count()); }
    [[nodiscard]] bool hasTable(QStringView name) const { return m_tables.contains(name); }
    /// The named table; throws DLVError(9) "The data holds no table 'X'" when absent.
    [[nodiscard]] const QZWebTable &table(QStringView name) const;
    [[nodiscard]] QZWebTable &table(QStringView name);
    /// Table by 0-based position.
    [[nodiscard]] const QZWebTable &tableAt(int index) const;
    /// Adds a table under its own name; throws DLVError(457) when the name is present.
    QZWebTable &addTable(QZWebTable table);
    bool removeTable(QStringView name) { return m_tables.remove(name); }

    /// "<WebData>" document (format: docs/host-protocol.md). Unknown child elements are ignored
    /// on load, so an answer may carry further pieces (a profile-ID list) beside its tables.
    [[nodiscard]] QString toXml() const;
    void loadXml(QStringView xml); ///< throws DLVError(5) on malformed text, leaves *this unchanged
    [[nodiscard]] static QZWebData fromXml(QStringView xml);
    /// The same from UTF-8 bytes (files).
    void loadXmlUtf8(QByteArrayView xml);
    [[nodiscard]] static QZWebData fromXmlUtf8(QByteArrayView xml);

private:
    friend class QZWebDataPrivate;
    friend class WebXmlStreamReader;
    OrderedDict<std::unique_ptr<QZWebTable>> m_tables{KeyCompare::CaseInsensitive};
};
