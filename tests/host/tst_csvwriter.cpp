// Comma-separated text: which fields are quoted and how; files are UTF-8 with CRLF line ends.
#include "host/csvwriter.h"
#include "support/qtprinters.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

TEST(CsvWriter, QuotesOnlyWhatNeedsQuotingAndGuardsFormulas)
{
    const std::pair<QString, QString> cases[] = {
        {"Alpha Crew", "Alpha Crew"},
        {"", ""},
        {"Business, large", "\"Business, large\""},
        {"Repair \"urgent\"", "\"Repair \"\"urgent\"\"\""},
        {"a\nb", "\"a\nb\""},
        {"a\rb", "\"a\rb\""},
        {"  x  ", "  x  "},
        {"a;b", "a;b"},
        // The details export guards formulas as the grid export does.
        {"=HYPERLINK(\"x\")", "\"'=HYPERLINK(\"\"x\"\")\""},
        {"\t+1+1", "'\t+1+1"},
        {"-12", "-12"},
    };
    for (const auto &[text, written] : cases)
        EXPECT_EQ(CsvWriter::field(text), written) << text.toStdString();
}

TEST(CsvWriter, WritesUtf8RowsWithCrlfAndReplacesTheFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("out.csv"));
    {
        QFile old(path);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old content that is longer than the new one\n");
    }
    QString error;
    ASSERT_TRUE(CsvWriter::writeFile(path, {{"Unit", "Hours"}, {"São Paulo, Centro", "7"}}, &error))
        << error.toStdString();
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(),
              QByteArray("\xEF\xBB\xBFUnit,Hours\r\n\"S\xC3\xA3o Paulo, Centro\",7\r\n"));
    EXPECT_FALSE(CsvWriter::writeFile(dir.filePath("missing/out.csv"), {{"x"}}, &error));
    EXPECT_FALSE(error.isEmpty());
}

} // namespace
