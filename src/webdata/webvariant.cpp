#include "webdata/webvariant.h"

namespace {

// The host objects' own type names; a null pointer is the platform's "Nothing".
template <typename T> bool nameOf(const QVariant &value, const char *name, QString &out)
{
    if (value.metaType() != QMetaType::fromType<std::shared_ptr<T>>())
        return false;
    out = value.value<std::shared_ptr<T>>() ? QString::fromLatin1(name) : QStringLiteral("Nothing");
    return true;
}

} // namespace

namespace WebVariant {

void registerMetaTypes()
{
    qRegisterMetaType<std::shared_ptr<QZWebMessage>>("std::shared_ptr<QZWebMessage>");
    qRegisterMetaType<std::shared_ptr<QZWebData>>("std::shared_ptr<QZWebData>");
    qRegisterMetaType<std::shared_ptr<QZWebTable>>("std::shared_ptr<QZWebTable>");
    qRegisterMetaType<std::shared_ptr<QZWebProfiles>>("std::shared_ptr<QZWebProfiles>");
    qRegisterMetaType<std::shared_ptr<QZWebProfile>>("std::shared_ptr<QZWebProfile>");
}

QString typeName(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("Empty");
    if (value.metaType() == QMetaType::fromType<QString>())
        return QStringLiteral("String");
    QString name;
    if (nameOf<QZWebMessage>(value, "QZWebMessage", name) ||
        nameOf<QZWebData>(value, "QZWebData", name) ||
        nameOf<QZWebTable>(value, "QZWebTable", name) ||
        nameOf<QZWebProfiles>(value, "QZWebProfiles", name) ||
        nameOf<QZWebProfile>(value, "QZWebProfile", name))
        return name;
    return QString::fromLatin1(value.metaType().name());
}

} // namespace WebVariant

namespace {
// Hosts may pass the objects through queued connections before touching this file's functions.
void registerOnLoad()
{
    WebVariant::registerMetaTypes();
}
} // namespace
Q_CONSTRUCTOR_FUNCTION(registerOnLoad)
