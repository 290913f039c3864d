#include "webdata/webvariant.h"

#include <QDate>
#include <QStringList>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

struct TypeNameCase
{
    const char *name;
    std::function<QVariant()> make;
    const char *expected;
};

inline void PrintTo(const TypeNameCase &c, std::ostream *os)
{
    *os << c.name;
}

class WebVariantTypeName : public ::testing::TestWithParam<TypeNameCase>
{};

TEST_P(WebVariantTypeName, NamesTheRunTimeType)
{
    EXPECT_EQ(WebVariant::typeName(GetParam().make()), QLatin1String(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WebVariantTypeName,
    ::testing::Values(
        TypeNameCase{"Message", [] { return WebVariant::wrap(std::make_shared<QZWebMessage>()); },
                     "QZWebMessage"},
        TypeNameCase{"Data", [] { return WebVariant::wrap(std::make_shared<QZWebData>()); },
                     "QZWebData"},
        TypeNameCase{"Table", [] { return WebVariant::wrap(std::make_shared<QZWebTable>()); },
                     "QZWebTable"},
        TypeNameCase{"ProfileSet",
                     [] { return WebVariant::wrap(std::make_shared<QZWebProfiles>()); },
                     "QZWebProfiles"},
        TypeNameCase{"Profile", [] { return WebVariant::wrap(std::make_shared<QZWebProfile>()); },
                     "QZWebProfile"},
        TypeNameCase{"NullMessage",
                     [] { return WebVariant::wrap(std::shared_ptr<QZWebMessage>()); }, "Nothing"},
        TypeNameCase{"NullTable", [] { return WebVariant::wrap(std::shared_ptr<QZWebTable>()); },
                     "Nothing"},
        TypeNameCase{"String", [] { return QVariant(QStringLiteral("<WebData>")); }, "String"},
        TypeNameCase{"EmptyString", [] { return QVariant(QString()); }, "String"},
        TypeNameCase{"Invalid", [] { return QVariant(); }, "Empty"},
        TypeNameCase{"Int", [] { return QVariant(42); }, "int"},
        TypeNameCase{"Bool", [] { return QVariant(true); }, "bool"},
        TypeNameCase{"StringList", [] { return QVariant(QStringList()); }, "QStringList"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(WebVariant, UnwrapGivesTheObjectOnlyForItsOwnType)
{
    auto table = std::make_shared<QZWebTable>(QStringLiteral("Error"));
    const QVariant v = WebVariant::wrap(table);
    EXPECT_EQ(WebVariant::unwrap<QZWebTable>(v), table);
    EXPECT_EQ(WebVariant::unwrap<QZWebData>(v), nullptr);
    EXPECT_EQ(WebVariant::unwrap<QZWebTable>(QVariant(QStringLiteral("x"))), nullptr);
}

TEST(WebVariant, SharedPointerTypesAreRegisteredByName)
{
    WebVariant::registerMetaTypes();
    for (const char *name : {"std::shared_ptr<QZWebMessage>", "std::shared_ptr<QZWebData>",
                             "std::shared_ptr<QZWebTable>", "std::shared_ptr<QZWebProfiles>",
                             "std::shared_ptr<QZWebProfile>"})
        EXPECT_TRUE(QMetaType::fromName(name).isValid()) << name;
}
