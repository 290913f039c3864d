// Replacing a file: a failure anywhere leaves the old file byte for byte and nothing else behind.
#include "common/atomicfile.h"
#include "support/fullfilesystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

void writeRaw(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// Each way of writing, given the bytes it should produce.
struct Writer
{
    const char *name;
    std::function<bool(const QString &, const QByteArray &, QString *)> write;
};

const Writer kWriters[] = {
    {"bytes",
     [](const QString &p, const QByteArray &b, QString *e) { return AtomicFile::write(p, b, e); }},
    // An encoder that writes in small pieces and never checks what the device says: the flush
    // before the rename must still notice the full disk.
    {"careless stream",
     [](const QString &p, const QByteArray &b, QString *e) {
         return AtomicFile::write(
             p,
             [&](QIODevice &d) {
                 for (qsizetype i = 0; i < b.size(); i += 1000)
                     (void)d.write(b.mid(i, 1000));
                 return true;
             },
             e);
     }},
    // A writer by name that does not notice the full disk either; the completeness check does.
    {"by name",
     [](const QString &p, const QByteArray &b, QString *e) {
         return AtomicFile::writeByName(
             p,
             [&](const QString &temporary) {
                 QFile f(temporary);
                 if (!f.open(QIODevice::WriteOnly))
                     return false;
                 (void)f.write(b);
                 return true;
             },
             [&](const QString &temporary) { return QFileInfo(temporary).size() == b.size(); }, e);
     }},
};

TEST(AtomicFile, ReplacesTheFileWhenComplete)
{
    QTemporaryDir dir;
    for (const Writer &w : kWriters) {
        SCOPED_TRACE(w.name);
        const QString path = dir.filePath(QStringLiteral("out.csv"));
        writeRaw(path, "an old file that is longer than the new content\n");
        QString error;
        ASSERT_TRUE(w.write(path, "new", &error)) << error.toStdString();
        EXPECT_EQ(contentOf(path), QByteArray("new"));
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
}

TEST(AtomicFile, FailureLeavesTheOldFileAndNoLitter)
{
    FullFileSystem disk;
    if (!disk.ok())
        GTEST_SKIP() << disk.reason();
    const QByteArray old("the user's file, which must survive\n");
    const QByteArray large(200 * 1024, 'x'); // larger than the whole file system
    for (const Writer &w : kWriters) {
        SCOPED_TRACE(w.name);
        const QString path = disk.filePath(QStringLiteral("report.pdf"));
        writeRaw(path, old);
        QString error;
        EXPECT_FALSE(w.write(path, large, &error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_EQ(contentOf(path), old);
        EXPECT_EQ(QDir(disk.path()).entryList(QDir::Files | QDir::Hidden),
                  QStringList{QStringLiteral("report.pdf")});
        // A folder that does not exist fails the same way, without touching anything.
        EXPECT_FALSE(w.write(disk.filePath(QStringLiteral("gone/x.csv")), "x", &error));
    }
}

} // namespace
