// Recorded data documents: a file or a folder in file-name order, checked when opened.
#include "host/demofeed.h"
#include "host/documentfeed.h"
#include "support/qtprinters.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ostream>

namespace {

const QString kHostDataDir = QStringLiteral(DLV_HOST_DATA_DIR);

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

TEST(DocumentFeed, ReadsADocumentWithItsDetailsAndKeepsThemFromTheControl)
{
    QString error;
    auto feed = DocumentFeed::open(kHostDataDir + QStringLiteral("/two-crews.xml"), &error);
    ASSERT_TRUE(feed) << error.toStdString();
    EXPECT_EQ(feed->unitIds(), (QStringList{"R1", "C1", "C2"}));
    const DataFeed::Frame frame = feed->next();
    ASSERT_TRUE(frame.message);
    EXPECT_EQ(frame.message->name(), "DLVData");
    EXPECT_FALSE(frame.message->data(1)->hasTable(u"Details"));
    EXPECT_TRUE(frame.message->data(1)->hasTable(u"BUDetailsInfo"));
    ASSERT_TRUE(frame.details);
    EXPECT_EQ(frame.details->workOrders.size(), 47u);
    EXPECT_EQ(frame.details->technicians.size(), 15u);
    // One document is sent again on every refresh.
    EXPECT_EQ(feed->next().message, frame.message);
}

TEST(DocumentFeed, SendsAFolderInNumericFileNameOrderAndStaysOnTheLast)
{
    QString error;
    auto feed = DocumentFeed::open(kHostDataDir + QStringLiteral("/sequence"), &error);
    ASSERT_TRUE(feed) << error.toStdString();
    ASSERT_EQ(feed->documentCount(), 2);
    EXPECT_TRUE(feed->fileNames()[0].endsWith(QStringLiteral("2-morning.xml")));
    EXPECT_TRUE(feed->fileNames()[1].endsWith(QStringLiteral("10-noon.xml")));
    auto hoursOfC1 = [](const DataFeed::Frame &f) {
        return f.message->data(1)->table(u"BUGeneralInfo").field(2, u"HoursWorked");
    };
    EXPECT_EQ(hoursOfC1(feed->next()), "40");
    EXPECT_TRUE(feed->position().contains(QStringLiteral("document 1 of 2")));
    EXPECT_EQ(hoursOfC1(feed->next()), "50");
    EXPECT_EQ(hoursOfC1(feed->next()), "50");
    EXPECT_TRUE(feed->position().contains(QStringLiteral("document 2 of 2")));
}

TEST(DocumentFeed, AcceptsTheDemoDataWrittenAsADocument)
{
    DemoFeed demo(5);
    auto message = demo.message();
    message->data(1)->addTable(demo.details().toTable());
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("demo.xml"));
    ASSERT_TRUE(writeFile(path, message->toXml().toUtf8()));
    QString error;
    auto feed = DocumentFeed::open(path, &error);
    ASSERT_TRUE(feed) << error.toStdString();
    const DataFeed::Frame frame = feed->next();
    EXPECT_EQ(frame.details->workOrders.size(), demo.details().workOrders.size());
    EXPECT_EQ(feed->unitIds(), demo.unitIds());
}

TEST(DocumentFeed, ServerStoppedDocumentsArePartOfARecording)
{
    QTemporaryDir dir;
    ASSERT_TRUE(QFile::copy(kHostDataDir + QStringLiteral("/two-crews.xml"),
                            dir.filePath(QStringLiteral("01.xml"))));
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("02.xml")),
                          "<WebMessage name=\"DLVServerStopped\"/>"));
    QString error;
    auto feed = DocumentFeed::open(dir.path(), &error);
    ASSERT_TRUE(feed) << error.toStdString();
    EXPECT_EQ(feed->next().message->name(), "DLVData");
    const DataFeed::Frame stopped = feed->next();
    EXPECT_EQ(stopped.message->name(), "DLVServerStopped");
    EXPECT_TRUE(stopped.details->isEmpty());
}

struct BadDocumentCase
{
    const char *name;
    const char *from; // text of two-crews.xml to replace ...
    const char *to;   // ... by this
    const char *mentions;
    friend void PrintTo(const BadDocumentCase &c, std::ostream *os) { *os << c.name; }
};

class BadDocumentTest : public ::testing::TestWithParam<BadDocumentCase>
{};

TEST_P(BadDocumentTest, IsRefusedWithAReasonNamingTheFileAndTheFault)
{
    const BadDocumentCase &c = GetParam();
    QByteArray text = readFile(kHostDataDir + QStringLiteral("/two-crews.xml"));
    ASSERT_TRUE(text.contains(c.from)) << c.from;
    text.replace(c.from, c.to);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bad.xml"));
    ASSERT_TRUE(writeFile(path, text));
    QString error;
    EXPECT_FALSE(DocumentFeed::open(path, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("bad.xml"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QString::fromUtf8(c.mentions))) << error.toStdString();
    EXPECT_FALSE(error.contains(u'\n')) << "one line";
}

INSTANTIATE_TEST_SUITE_P(
    Documents, BadDocumentTest,
    ::testing::Values(
        BadDocumentCase{"Truncated", "</WebMessage>", "", "not a data message document"},
        BadDocumentCase{"NotWellFormed", "<Row><V>R1</V>", "<Row><V>R1<V>", "not a data message"},
        BadDocumentCase{"OtherMessage", "name=\"DLVData\"", "name=\"Hello\"", "Hello"},
        BadDocumentCase{"MissingTable", "<Table name=\"JobClasses\">", "<Table name=\"Classes\">",
                        "JobClasses"},
        BadDocumentCase{"MissingColumn", "<Column name=\"WOLate\"/>", "<Column name=\"WOLater\"/>",
                        "WOLate"},
        BadDocumentCase{"RepeatedUnit", "<V>C2</V><V>Beta Crew</V><V>R1</V>",
                        "<V>C1</V><V>Beta Crew</V><V>R1</V>", "C1"},
        BadDocumentCase{"RepeatedLanguage", "<V>SP</V><V>hh:nn</V>", "<V>EN</V><V>hh:nn</V>",
                        "languageCode"},
        BadDocumentCase{"CounterOutOfRange", "<V>C2</V><V>INST</V><V>RES</V><V>3</V>",
                        "<V>C2</V><V>INST</V><V>RES</V><V>99999999999</V>", "99999999999"},
        BadDocumentCase{"BadDetailsStatus", "<V>WOJeopardy</V>", "<V>Jeopardy</V>",
                        "\"Jeopardy\" is not"}),
    [](const ::testing::TestParamInfo<BadDocumentCase> &info) {
        return std::string(info.param.name);
    });

TEST(DocumentFeed, RefusesMissingPathsEmptyFoldersAndFoldersWithABadDocument)
{
    QString error;
    EXPECT_FALSE(DocumentFeed::open(kHostDataDir + QStringLiteral("/no-such-file.xml"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no such file")));

    QTemporaryDir dir;
    EXPECT_FALSE(DocumentFeed::open(dir.path(), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no data documents")));

    ASSERT_TRUE(QFile::copy(kHostDataDir + QStringLiteral("/two-crews.xml"),
                            dir.filePath(QStringLiteral("1.xml"))));
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("2.xml")), "not xml"));
    EXPECT_FALSE(DocumentFeed::open(dir.path(), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("2.xml"))) << error.toStdString();
}

} // namespace
