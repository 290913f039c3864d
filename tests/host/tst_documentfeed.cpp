// Recorded data documents: a file or a folder in file-name order, checked when opened.
#include "host/documentfeed.h"
#include "support/qtprinters.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

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

TEST(DocumentFeed, ABadDocumentIsRefusedWithAReasonNamingTheFileAndTheFault)
{
    const struct
    {
        const char *from, *to, *mentions; // text of two-crews.xml replaced
    } cases[] = {
        {"</WebMessage>", "", "not a data message document"},
        {"name=\"DLVData\"", "name=\"Hello\"", "Hello"},
        {"<Table name=\"JobClasses\">", "<Table name=\"Classes\">", "JobClasses"},
        {"<Column name=\"WOLate\"/>", "<Column name=\"WOLater\"/>", "WOLate"},
        {"<V>C2</V><V>Beta Crew</V><V>R1</V>", "<V>C1</V><V>Beta Crew</V><V>R1</V>", "C1"},
        {"<V>SP</V><V>hh:nn</V>", "<V>EN</V><V>hh:nn</V>", "languageCode"},
        {"<V>C2</V><V>INST</V><V>RES</V><V>3</V>",
         "<V>C2</V><V>INST</V><V>RES</V><V>99999999999</V>", "99999999999"},
        {"<V>WOJeopardy</V>", "<V>Jeopardy</V>", "\"Jeopardy\" is not"},
        // Unit ids the control cannot represent.
        {"<V>C2</V><V>Beta Crew</V><V>R1</V>", "<V>C,2</V><V>Beta Crew</V><V>R1</V>", "\"C,2\""},
        {"<V>C2</V><V>Beta Crew</V><V>R1</V>", "<V>C|2</V><V>Beta Crew</V><V>R1</V>", "\"C|2\""},
        {"<V>C2</V><V>Beta Crew</V><V>R1</V>", "<V>c1</V><V>Beta Crew</V><V>R1</V>",
         "\"C1\" and \"c1\""},
        {"<V>Beta Crew</V>", "<V>Beta &#0;Crew</V>", "U+0000"},
    };
    for (const auto &c : cases) {
        QByteArray text = readFile(kHostDataDir + QStringLiteral("/two-crews.xml"));
        ASSERT_TRUE(text.contains(c.from)) << c.from;
        text.replace(c.from, c.to);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("bad.xml"));
        ASSERT_TRUE(writeFile(path, text));
        QString error;
        EXPECT_FALSE(DocumentFeed::open(path, &error));
        EXPECT_TRUE(error.contains(QStringLiteral("bad.xml")) &&
                    error.contains(QString::fromUtf8(c.mentions)) && !error.contains(u'\n'))
            << error.toStdString();
    }
}

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

    // Past the size limit nothing more is read: an endless device is refused, not read on.
    for (const QString &path :
         {QStringLiteral("/dev/zero"), kHostDataDir + QStringLiteral("/two-crews.xml")}) {
        EXPECT_FALSE(DocumentFeed::open(path, &error, 1024));
        EXPECT_TRUE(error.contains(QStringLiteral("larger than the limit"))) << error.toStdString();
    }
}

} // namespace
