#include "common/dlverror.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

struct ErrorCase
{
    const char *name;
    std::function<DLVError()> make;
    qint32 number;
    QString description;
};

class DLVErrorTest : public ::testing::TestWithParam<ErrorCase>
{};

TEST_P(DLVErrorTest, CarriesNumberDescriptionAndWhat)
{
    const ErrorCase &c = GetParam();
    const DLVError e = c.make();
    EXPECT_EQ(e.number(), c.number);
    EXPECT_EQ(e.description(), c.description);
    EXPECT_EQ(QString::fromUtf8(e.what()), QString::number(c.number) + u' ' + c.description);
}

INSTANTIATE_TEST_SUITE_P(
    Factories, DLVErrorTest,
    ::testing::Values(
        ErrorCase{"InvalidCallPlain", [] { return DLVError::invalidCall(); }, 5,
                  QStringLiteral("Invalid procedure call or argument")},
        ErrorCase{"InvalidCallDetail", [] { return DLVError::invalidCall(QStringLiteral("x")); }, 5,
                  QStringLiteral("Invalid procedure call or argument: x")},
        ErrorCase{"Overflow", [] { return DLVError::overflow(); }, 6, QStringLiteral("Overflow")},
        ErrorCase{"Subscript", [] { return DLVError::subscriptOutOfRange(); }, 9,
                  QStringLiteral("Subscript out of range")},
        ErrorCase{"TypeMismatchDetail",
                  [] { return DLVError::typeMismatch(QStringLiteral("\"abc\"")); }, 13,
                  QStringLiteral("Type mismatch: \"abc\"")},
        ErrorCase{
            "DuplicateKeyPlain", [] { return DLVError::duplicateKey(); }, 457,
            QStringLiteral("This key is already associated with an element of this collection")},
        ErrorCase{"DuplicateKeyWithPercentInKey",
                  [] { return DLVError::duplicateKey(QStringLiteral("a%1b")); }, 457,
                  QStringLiteral("This key is already associated with an element of this "
                                 "collection (\"a%1b\")")},
        ErrorCase{"CustomNonAscii",
                  [] { return DLVError(1004, QStringLiteral("Conexão recusada")); }, 1004,
                  QStringLiteral("Conexão recusada")}),
    [](const ::testing::TestParamInfo<ErrorCase> &info) { return std::string(info.param.name); });

TEST(DLVError, IsCaughtAsStdExceptionAndSurvivesCopy)
{
    try {
        throw DLVError::overflow();
    } catch (const std::exception &e) {
        EXPECT_STREQ(e.what(), "6 Overflow");
    }
    const DLVError original(13, QStringLiteral("Type mismatch"));
    DLVError copy = original;
    EXPECT_EQ(copy.number(), 13);
    EXPECT_STREQ(copy.what(), "13 Type mismatch");
}

} // namespace
