#include "common/dlverror.h"

namespace {
QString withDetail(const char *base, const QString &detail)
{
    QString text = QString::fromLatin1(base);
    if (!detail.isEmpty())
        text += QLatin1String(": ") + detail;
    return text;
}
} // namespace

DLVError::DLVError(qint32 number, QString description)
    : m_number(number), m_description(std::move(description)),
      m_utf8(QByteArray::number(m_number) + ' ' + m_description.toUtf8())
{
}

DLVError DLVError::invalidCall(const QString &detail)
{
    return {InvalidCall, withDetail("Invalid procedure call or argument", detail)};
}

DLVError DLVError::overflow()
{
    return {Overflow, QStringLiteral("Overflow")};
}

DLVError DLVError::subscriptOutOfRange(const QString &detail)
{
    return {SubscriptOutOfRange, withDetail("Subscript out of range", detail)};
}

DLVError DLVError::typeMismatch(const QString &detail)
{
    return {TypeMismatch, withDetail("Type mismatch", detail)};
}

DLVError DLVError::duplicateKey(const QString &key)
{
    QString text = QStringLiteral("This key is already associated with an element of this collection");
    if (!key.isEmpty())
        text += QStringLiteral(" (\"%1\")").arg(key);
    return {DuplicateKey, text};
}
