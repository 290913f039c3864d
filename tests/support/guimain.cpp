#include "support/testenv.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    prepareTestEnvironment();
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

// Without fonts every glyph renders as a box and nothing warns; screenshots would be useless.
TEST(Environment, HasUsableFont)
{
    EXPECT_FALSE(QFontInfo(QApplication::font()).family().isEmpty());
}
