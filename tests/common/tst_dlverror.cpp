#include "common/dlverror.h"

#include <gtest/gtest.h>

namespace {

TEST(DLVError, FactoriesCarryNumberDescriptionAndWhat)
{
    const struct
    {
        DLVError error;
        qint32 number;
        QString description;
    } rows[] = {
        {DLVError::invalidCall(QStringLiteral("x")), 5,
         QStringLiteral("Invalid procedure call or argument: x")},
        {DLVError::overflow(), 6, QStringLiteral("Overflow")},
        {DLVError::subscriptOutOfRange(), 9, QStringLiteral("Subscript out of range")},
        {DLVError::typeMismatch(QStringLiteral("\"abc\"")), 13,
         QStringLiteral("Type mismatch: \"abc\"")},
        {DLVError::duplicateKey(QStringLiteral("a%1b")), 457,
         QStringLiteral("This key is already associated with an element of this collection "
                        "(\"a%1b\")")},
        {DLVError(1004, QStringLiteral("Conexão recusada")), 1004,
         QStringLiteral("Conexão recusada")},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.number);
        const DLVError copy = r.error;
        EXPECT_EQ(copy.number(), r.number);
        EXPECT_EQ(copy.description(), r.description);
        EXPECT_EQ(QString::fromUtf8(copy.what()), QString::number(r.number) + u' ' + r.description);
    }
}

} // namespace
