#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

/// The project's one error type: a number and a description, thrown by small operations and caught
/// only by the procedures that trap errors (they report it through ErrorReporter and return).
/// Numbers follow the host platform's usual ones so that a host sees familiar codes.
class DLVError : public std::exception
{
public:
    enum Number : qint32 {
        InvalidCall = 5,         ///< invalid procedure call or argument (also: malformed document)
        Overflow = 6,            ///< a value outside the signed 32-bit range
        SubscriptOutOfRange = 9, ///< index, row, table or column that does not exist
        TypeMismatch = 13,       ///< text that does not convert to the wanted type
        DuplicateKey = 457,      ///< adding a key that a dictionary already holds
    };

    DLVError(qint32 number, QString description);

    [[nodiscard]] qint32 number() const noexcept { return m_number; }
    [[nodiscard]] const QString &description() const noexcept { return m_description; }
    [[nodiscard]] const char *what() const noexcept override { return m_utf8.constData(); }

    [[nodiscard]] static DLVError invalidCall(const QString &detail = {});
    [[nodiscard]] static DLVError overflow();
    [[nodiscard]] static DLVError subscriptOutOfRange(const QString &detail = {});
    [[nodiscard]] static DLVError typeMismatch(const QString &detail = {});
    [[nodiscard]] static DLVError duplicateKey(const QString &key = {});

private:
    qint32 m_number;
    QString m_description;
    QByteArray m_utf8;
};
