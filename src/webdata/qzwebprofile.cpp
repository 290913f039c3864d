#include "webdata/qzwebprofile.h"

#include "common/dlverror.h"
#include "webdata/qzwebprofile_p.h"
#include "webdata/qzwebtable_p.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmltext_p.h"
#include "webdata/webxmlwriter_p.h"

QZWebProfile::QZWebProfile(const QZWebProfile &other) : m_name(other.m_name), m_error(other.m_error)
{
    m_sections.reserve(other.m_sections.count());
    for (const auto &entry : other.m_sections)
        m_sections.add(entry.key, std::make_unique<QZWebTable>(*entry.value));
}

QZWebProfile &QZWebProfile::operator=(const QZWebProfile &other)
{
    if (this != &other) {
        QZWebProfile copy(other);
        *this = std::move(copy);
    }
    return *this;
}

QZWebTable *QZWebProfile::section(QStringView name)
{
    auto *section = m_sections.find(name);
    return section ? section->get() : nullptr;
}

const QZWebTable *QZWebProfile::section(QStringView name) const
{
    const auto *section = m_sections.find(name);
    return section ? section->get() : nullptr;
}

const QZWebTable &QZWebProfile::sectionAt(int index) const
{
    if (index < 0 || index >= sectionCount())
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("Profile '%1' has no section number %2 (it has %3)")
                           .arg(m_name)
                           .arg(index)
                           .arg(sectionCount()));
    return *m_sections.at(index).value;
}

QZWebTable &QZWebProfile::addSection(const QString &name, const QString &fieldList)
{
    if (m_sections.contains(name))
        throw DLVError::duplicateKey(name);
    // The empty field list means no fields, not one field with an empty name.
    const QStringList fields =
        fieldList.isEmpty() ? QStringList() : fieldList.split(u',', Qt::KeepEmptyParts);
    auto section = std::make_unique<QZWebTable>(name, fields);
    return *m_sections.add(name, std::move(section));
}

bool operator==(const QZWebProfile &a, const QZWebProfile &b)
{
    if (a.m_name != b.m_name || a.m_error != b.m_error ||
        a.m_sections.count() != b.m_sections.count())
        return false;
    for (qsizetype i = 0; i < a.m_sections.count(); ++i) {
        if (*a.m_sections.at(i).value != *b.m_sections.at(i).value)
            return false;
    }
    return true;
}

QString QZWebProfile::toXml() const
{
    WebXmlWriter writer(256);
    QZWebProfilePrivate::write(writer, *this);
    return writer.take();
}

void QZWebProfile::loadXml(QStringView xml)
{
    const WebXmlDocument doc(xml, WebXmlKinds::Profile);
    *this = doc.build([](pugi::xml_node root) { return QZWebProfilePrivate::read(root); });
}

QZWebProfile QZWebProfile::fromXml(QStringView xml)
{
    QZWebProfile profile;
    profile.loadXml(xml);
    return profile;
}

void QZWebProfile::loadXmlUtf8(QByteArrayView xml)
{
    const WebXmlDocument doc(xml, WebXmlKinds::Profile);
    *this = doc.build([](pugi::xml_node root) { return QZWebProfilePrivate::read(root); });
}

QZWebProfile QZWebProfile::fromXmlUtf8(QByteArrayView xml)
{
    QZWebProfile profile;
    profile.loadXmlUtf8(xml);
    return profile;
}

QZWebProfile QZWebProfilePrivate::read(pugi::xml_node element)
{
    using namespace WebXmlText;
    QZWebProfile profile;
    bool named = false;
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        if (isNamed(child, "Section")) {
            QZWebTable section = QZWebTablePrivate::read(child, "section");
            const QString name = section.name();
            if (profile.m_sections.contains(name))
                throw DLVError(DLVError::DuplicateKey,
                               QStringLiteral("profile '%1' has two sections named '%2'")
                                   .arg(profile.m_name, name));
            profile.m_sections.add(name, std::make_unique<QZWebTable>(std::move(section)));
        } else if (isNamed(child, "Name")) {
            if (named)
                throw DLVError(
                    DLVError::InvalidCall,
                    QStringLiteral("profile '%1' has a second <Name>").arg(profile.m_name));
            profile.m_name = elementText(child);
            named = true;
        } else if (isNamed(child, "Table")) {
            if (profile.m_error)
                throw DLVError(DLVError::InvalidCall,
                               QStringLiteral("profile '%1' has more than one error table")
                                   .arg(profile.m_name));
            profile.m_error = QZWebTablePrivate::read(child, "table");
        } else if (child.type() == pugi::node_element) {
            qCDebug(lcWebData) << "ignoring element" << child.name() << "in WebProfile";
        }
    }
    return profile;
}

void QZWebProfilePrivate::write(WebXmlWriter &writer, const QZWebProfile &profile)
{
    // No attributes on the root: result documents are told apart by the literal "<WebProfile>".
    writer.raw(QLatin1StringView("<WebProfile>\n"));
    writer.raw(QLatin1StringView("<Name>"));
    writer.text(profile.m_name);
    writer.raw(QLatin1StringView("</Name>\n"));
    for (const auto &entry : profile.m_sections)
        QZWebTablePrivate::write(writer, *entry.value, QLatin1StringView("Section"));
    if (profile.m_error)
        QZWebTablePrivate::write(writer, *profile.m_error, QLatin1StringView("Table"));
    writer.raw(QLatin1StringView("</WebProfile>\n"));
}
