#include "webdata/webvariant.h"

#include <QStringList>
#include <gtest/gtest.h>

TEST(WebVariant, NamesTheRunTimeType)
{
    const struct
    {
        QVariant value;
        const char *expected;
    } rows[] = {
        {WebVariant::wrap(std::make_shared<QZWebMessage>()), "QZWebMessage"},
        {WebVariant::wrap(std::make_shared<QZWebData>()), "QZWebData"},
        {WebVariant::wrap(std::make_shared<QZWebTable>()), "QZWebTable"},
        {WebVariant::wrap(std::make_shared<QZWebProfiles>()), "QZWebProfiles"},
        {WebVariant::wrap(std::make_shared<QZWebProfile>()), "QZWebProfile"},
        {WebVariant::wrap(std::shared_ptr<QZWebTable>()), "Nothing"},
        {QVariant(QString()), "String"},
        {QVariant(), "Empty"},
        {QVariant(42), "int"},
        {QVariant(QStringList()), "QStringList"},
    };
    for (const auto &r : rows)
        EXPECT_EQ(WebVariant::typeName(r.value), QLatin1String(r.expected)) << r.expected;
}

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
