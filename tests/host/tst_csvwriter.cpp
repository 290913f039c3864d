// Comma-separated text: which fields are quoted and how; files are UTF-8 with CRLF line ends.
#include "host/csvwriter.h"
#include "support/qtprinters.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ostream>

namespace {

struct FieldCase
{
    const char *name;
    QString text;
    QString written;
    friend void PrintTo(const FieldCase &c, std::ostream *os) { *os << c.name; }
};

class CsvFieldTest : public ::testing::TestWithParam<FieldCase>
{};

TEST_P(CsvFieldTest, QuotesOnlyWhatNeedsQuoting)
{
    EXPECT_EQ(CsvWriter::field(GetParam().text), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, CsvFieldTest,
    ::testing::Values(
        FieldCase{"Plain", QStringLiteral("Alpha Crew"), QStringLiteral("Alpha Crew")},
        FieldCase{"Empty", QString(), QString()},
        FieldCase{"Comma", QStringLiteral("Business, large"),
                  QStringLiteral("\"Business, large\"")},
        FieldCase{"Quote", QStringLiteral("Repair \"urgent\""),
                  QStringLiteral("\"Repair \"\"urgent\"\"\"")},
        FieldCase{"LineFeed", QStringLiteral("a\nb"), QStringLiteral("\"a\nb\"")},
        FieldCase{"CarriageReturn", QStringLiteral("a\rb"), QStringLiteral("\"a\rb\"")},
        FieldCase{"BlanksKept", QStringLiteral("  x  "), QStringLiteral("  x  ")},
        FieldCase{"Semicolon", QStringLiteral("a;b"), QStringLiteral("a;b")}),
    [](const ::testing::TestParamInfo<FieldCase> &info) { return std::string(info.param.name); });

TEST(CsvWriter, WritesUtf8RowsWithCrlfAndReplacesTheFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("out.csv"));
    {
        QFile old(path);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old content that is longer than the new one\n");
    }
    QString error;
    ASSERT_TRUE(CsvWriter::writeFile(path,
                                     {{QStringLiteral("Unit"), QStringLiteral("Hours")},
                                      {QStringLiteral("São Paulo, Centro"), QStringLiteral("7")}},
                                     &error))
        << error.toStdString();
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(),
              QByteArray("\xEF\xBB\xBFUnit,Hours\r\n\"S\xC3\xA3o Paulo, Centro\",7\r\n"));

    error.clear();
    EXPECT_FALSE(CsvWriter::writeFile(dir.filePath(QStringLiteral("missing/out.csv")),
                                      {{QStringLiteral("x")}}, &error));
    EXPECT_FALSE(error.isEmpty()) << "a folder that does not exist is reported";
}

} // namespace
