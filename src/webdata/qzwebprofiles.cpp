#include "webdata/qzwebprofiles.h"

#include "common/dlverror.h"
#include "webdata/qzwebprofile_p.h"
#include "webdata/qzwebtable_p.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmltext_p.h"
#include "webdata/webxmlwriter_p.h"

#include <algorithm>

/// The XML binding of QZWebProfiles.
class QZWebProfilesPrivate
{
public:
    [[nodiscard]] static QZWebProfiles read(pugi::xml_node element);
};

QZWebProfiles::QZWebProfiles(const QZWebProfiles &other) : m_error(other.m_error)
{
    m_profiles.reserve(other.m_profiles.size());
    for (const auto &profile : other.m_profiles)
        m_profiles.push_back(std::make_unique<QZWebProfile>(*profile));
}

QZWebProfiles &QZWebProfiles::operator=(const QZWebProfiles &other)
{
    if (this != &other) {
        QZWebProfiles copy(other);
        *this = std::move(copy);
    }
    return *this;
}

QZWebProfile &QZWebProfiles::item(int index)
{
    return const_cast<QZWebProfile &>(std::as_const(*this).item(index));
}

const QZWebProfile &QZWebProfiles::item(int index) const
{
    if (index < 1 || index > count())
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("The profile set has no profile %1 (it has %2)")
                           .arg(index)
                           .arg(count()));
    return *m_profiles[std::size_t(index - 1)];
}

QZWebProfile *QZWebProfiles::find(QStringView name)
{
    return const_cast<QZWebProfile *>(std::as_const(*this).find(name));
}

const QZWebProfile *QZWebProfiles::find(QStringView name) const
{
    for (const auto &profile : m_profiles) {
        if (QStringView(profile->name()).compare(name, Qt::CaseInsensitive) == 0)
            return profile.get();
    }
    return nullptr;
}

QZWebProfile &QZWebProfiles::add(const QString &name)
{
    if (nameExists(name))
        throw DLVError::duplicateKey(name);
    m_profiles.push_back(std::make_unique<QZWebProfile>(name));
    return *m_profiles.back();
}

bool QZWebProfiles::remove(QStringView name)
{
    const auto it = std::find_if(m_profiles.begin(), m_profiles.end(), [&](const auto &profile) {
        return QStringView(profile->name()).compare(name, Qt::CaseInsensitive) == 0;
    });
    if (it == m_profiles.end())
        return false;
    m_profiles.erase(it);
    return true;
}

void QZWebProfiles::clear()
{
    m_profiles.clear();
}

bool operator==(const QZWebProfiles &a, const QZWebProfiles &b)
{
    if (a.m_error != b.m_error || a.m_profiles.size() != b.m_profiles.size())
        return false;
    for (std::size_t i = 0; i < a.m_profiles.size(); ++i) {
        if (*a.m_profiles[i] != *b.m_profiles[i])
            return false;
    }
    return true;
}

QString QZWebProfiles::toXml() const
{
    WebXmlWriter writer(256 + qsizetype(m_profiles.size()) * 512);
    // No attributes on the root: result documents are told apart by the literal "<WebProfiles>".
    writer.raw(QLatin1StringView("<WebProfiles>\n"));
    if (m_error)
        QZWebTablePrivate::write(writer, *m_error, QLatin1StringView("Table"));
    for (const auto &profile : m_profiles)
        QZWebProfilePrivate::write(writer, *profile);
    writer.raw(QLatin1StringView("</WebProfiles>\n"));
    return writer.take();
}

void QZWebProfiles::loadXml(QStringView xml)
{
    const WebXmlDocument doc(xml, WebXmlKinds::Profiles);
    *this = doc.build([](pugi::xml_node root) { return QZWebProfilesPrivate::read(root); });
}

QZWebProfiles QZWebProfiles::fromXml(QStringView xml)
{
    QZWebProfiles profiles;
    profiles.loadXml(xml);
    return profiles;
}

void QZWebProfiles::loadXmlUtf8(QByteArrayView xml)
{
    const WebXmlDocument doc(xml, WebXmlKinds::Profiles);
    *this = doc.build([](pugi::xml_node root) { return QZWebProfilesPrivate::read(root); });
}

QZWebProfiles QZWebProfiles::fromXmlUtf8(QByteArrayView xml)
{
    QZWebProfiles profiles;
    profiles.loadXmlUtf8(xml);
    return profiles;
}

QZWebProfiles QZWebProfilesPrivate::read(pugi::xml_node element)
{
    using namespace WebXmlText;
    QZWebProfiles profiles;
    // Hashed names for the duplicate test, so that a set of many profiles loads in linear time.
    OrderedDict<int> names(KeyCompare::CaseInsensitive);
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        if (isNamed(child, "WebProfile")) {
            auto profile = std::make_unique<QZWebProfile>(QZWebProfilePrivate::read(child));
            if (!names.addIfAbsent(profile->name(), 0))
                throw DLVError(
                    DLVError::DuplicateKey,
                    QStringLiteral("the set holds two profiles named '%1'").arg(profile->name()));
            profiles.m_profiles.push_back(std::move(profile));
        } else if (isNamed(child, "Table")) {
            if (profiles.m_error)
                throw DLVError(DLVError::InvalidCall,
                               QStringLiteral("the set has more than one error table"));
            profiles.m_error = QZWebTablePrivate::read(child, "table");
        } else if (child.type() == pugi::node_element) {
            qCDebug(lcWebData) << "ignoring element" << child.name() << "in WebProfiles";
        }
    }
    return profiles;
}
