#include "webdata/qzwebmessage.h"

#include "common/dlverror.h"
#include "webdata/qzwebdata_p.h"
#include "webdata/qzwebmessage_p.h"
#include "webdata/webxmlstreamreader_p.h"
#include "webdata/webxmltext_p.h"
#include "webdata/webxmlwriter_p.h"

QString QZWebMessage::property(QStringView key) const
{
    const QString *value = m_properties.find(key);
    return value ? *value : QString();
}

void QZWebMessage::setProperty(const QString &key, const QString &value)
{
    m_properties.set(key, value);
}

std::shared_ptr<QZWebData> QZWebMessage::data(int item) const
{
    if (item < 1 || item > dataCount())
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("Message '%1' has no data item %2 (it has %3)")
                           .arg(m_name)
                           .arg(item)
                           .arg(dataCount()));
    return m_data[std::size_t(item - 1)];
}

void QZWebMessage::addData(std::shared_ptr<QZWebData> data)
{
    if (!data)
        throw DLVError::invalidCall(QStringLiteral("a message data item must not be null"));
    m_data.push_back(std::move(data));
}

QString QZWebMessage::toXml() const
{
    qsizetype size = 64;
    for (const auto &data : m_data)
        size += QZWebDataPrivate::estimatedXmlSize(*data);
    WebXmlWriter writer(size);
    writer.openTag(QLatin1StringView("WebMessage"));
    writer.attribute(QLatin1StringView("name"), m_name, QLatin1StringView("message name"));
    writer.raw(QLatin1StringView(">\n"));
    for (const auto &entry : m_properties) {
        writer.openTag(QLatin1StringView("Property"));
        writer.attribute(QLatin1StringView("key"), entry.key, QLatin1StringView("property key"));
        writer.raw(QLatin1StringView(">"));
        writer.text(entry.value);
        writer.raw(QLatin1StringView("</Property>\n"));
    }
    for (const auto &data : m_data)
        QZWebDataPrivate::write(writer, *data);
    writer.raw(QLatin1StringView("</WebMessage>\n"));
    return writer.take();
}

void QZWebMessage::loadXml(QStringView xml)
{
    *this = WebXmlStreamReader::readMessage(xml);
}

QZWebMessage QZWebMessage::fromXml(QStringView xml)
{
    QZWebMessage message;
    message.loadXml(xml);
    return message;
}

void QZWebMessage::loadXmlUtf8(QByteArrayView xml)
{
    *this = WebXmlStreamReader::readMessage(xml);
}

QZWebMessage QZWebMessage::fromXmlUtf8(QByteArrayView xml)
{
    QZWebMessage message;
    message.loadXmlUtf8(xml);
    return message;
}

QZWebMessage QZWebMessagePrivate::read(pugi::xml_node element)
{
    using namespace WebXmlText;
    QZWebMessage message(attribute(element, "name"));
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        if (isNamed(child, "Property")) {
            const QString key = attribute(child, "key");
            if (message.hasProperty(key))
                throw DLVError(DLVError::DuplicateKey,
                               QStringLiteral("the message has the property '%1' twice").arg(key));
            message.m_properties.add(key, elementText(child));
        } else if (isNamed(child, "WebData")) {
            message.m_data.push_back(std::make_shared<QZWebData>(QZWebDataPrivate::read(child)));
        } else if (child.type() == pugi::node_element) {
            qCDebug(lcWebData) << "ignoring element" << child.name() << "in WebMessage";
        }
    }
    return message;
}
