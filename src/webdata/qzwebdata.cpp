#include "webdata/qzwebdata.h"

#include "common/dlverror.h"
#include "webdata/qzwebdata_p.h"
#include "webdata/qzwebtable_p.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmlstreamreader_p.h"
#include "webdata/webxmltext_p.h"
#include "webdata/webxmlwriter_p.h"

QZWebData::QZWebData(const QZWebData &other)
{
    m_tables.reserve(other.m_tables.count());
    for (const auto &entry : other.m_tables)
        m_tables.add(entry.key, std::make_unique<QZWebTable>(*entry.value));
}

QZWebData &QZWebData::operator=(const QZWebData &other)
{
    if (this != &other) {
        QZWebData copy(other);
        *this = std::move(copy);
    }
    return *this;
}

const QZWebTable &QZWebData::table(QStringView name) const
{
    if (const auto *table = m_tables.find(name))
        return **table;
    throw DLVError(DLVError::SubscriptOutOfRange,
                   QStringLiteral("The data holds no table '%1'").arg(name));
}

QZWebTable &QZWebData::table(QStringView name)
{
    return const_cast<QZWebTable &>(std::as_const(*this).table(name));
}

const QZWebTable &QZWebData::tableAt(int index) const
{
    if (index < 0 || index >= tableCount())
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("The data has no table number %1 (it holds %2 tables)")
                           .arg(index)
                           .arg(tableCount()));
    return *m_tables.at(index).value;
}

QZWebTable &QZWebData::addTable(QZWebTable table)
{
    const QString name = table.name();
    return *m_tables.add(name, std::make_unique<QZWebTable>(std::move(table)));
}

QString QZWebData::toXml() const
{
    WebXmlWriter writer(QZWebDataPrivate::estimatedXmlSize(*this));
    QZWebDataPrivate::write(writer, *this);
    return writer.take();
}

void QZWebData::loadXml(QStringView xml)
{
    *this = WebXmlStreamReader::readData(xml);
}

QZWebData QZWebData::fromXml(QStringView xml)
{
    QZWebData data;
    data.loadXml(xml);
    return data;
}

void QZWebData::loadXmlUtf8(QByteArrayView xml)
{
    *this = WebXmlStreamReader::readData(xml);
}

QZWebData QZWebData::fromXmlUtf8(QByteArrayView xml)
{
    QZWebData data;
    data.loadXmlUtf8(xml);
    return data;
}

QZWebData QZWebDataPrivate::read(pugi::xml_node element)
{
    QZWebData data;
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        if (WebXmlText::isNamed(child, "Table")) {
            QZWebTable table = QZWebTablePrivate::read(child, "table");
            if (data.hasTable(table.name()))
                throw DLVError(
                    DLVError::DuplicateKey,
                    QStringLiteral("the data holds two tables named '%1'").arg(table.name()));
            data.addTable(std::move(table));
        } else if (child.type() == pugi::node_element) {
            // Answers may carry further pieces beside their tables (a profile-ID list).
            qCDebug(lcWebData) << "ignoring element" << child.name() << "in WebData";
        }
    }
    return data;
}

qsizetype QZWebDataPrivate::estimatedXmlSize(const QZWebData &data)
{
    qsizetype size = 32;
    for (const auto &entry : data.m_tables)
        size += QZWebTablePrivate::estimatedXmlSize(*entry.value);
    return size;
}

void QZWebDataPrivate::write(WebXmlWriter &writer, const QZWebData &data)
{
    // No attributes on the root: result documents are told apart by the literal "<WebData>".
    writer.raw(QLatin1StringView("<WebData>\n"));
    for (const auto &entry : data.m_tables)
        QZWebTablePrivate::write(writer, *entry.value, QLatin1StringView("Table"));
    writer.raw(QLatin1StringView("</WebData>\n"));
}
