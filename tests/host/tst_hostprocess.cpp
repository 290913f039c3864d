// dlv-host as a program: batch runs on small data documents, checked by what they print and
// write, and the exit status and message for bad arguments and bad documents.
#include "host/profilestore.h"
#include "host/workordergenerator.h"
#include "support/fullfilesystem.h"
#include "support/qtprinters.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"
#include "webdata/qzwebtable.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

const QString kProcessDataDir = QStringLiteral(DLV_HOST_DATA_DIR);
const QString kTwoCrews = kProcessDataDir + QStringLiteral("/two-crews.xml");

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

class HostProcessTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    QString file(const QString &name) const { return dir.filePath(name); }
    QString profiles() const { return file(QStringLiteral("profiles.sqlite")); }

    Result run(const QStringList &args)
    {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        // Nothing of a test run lands in the real user's folders.
        env.insert(QStringLiteral("XDG_DATA_HOME"), file(QStringLiteral("data-home")));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), file(QStringLiteral("config-home")));
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(DLV_HOST_EXE),
                      QStringList{QStringLiteral("--user"), QStringLiteral("tester"),
                                  QStringLiteral("--profiles"), profiles()} +
                          args);
        Result r;
        // The time limit is a safety net against a hung child, not a measurement.
        if (process.waitForFinished(180'000) && process.exitStatus() == QProcess::NormalExit)
            r.status = process.exitCode();
        else
            process.kill();
        r.out = QString::fromUtf8(process.readAllStandardOutput());
        r.err = QString::fromUtf8(process.readAllStandardError());
        return r;
    }

    QTemporaryDir dir;
};

QString panel(std::initializer_list<const char *> values)
{
    static const char *names[] = {"lblTechCount",     "lblHrsWorked",     "lblHrsRemaining",
                                  "lblWODone",        "lblWOOpen",        "lblPtsDone",
                                  "lblPtsOpen",       "lblWOsPerHrToday", "lblWOsPerHrReq",
                                  "lblPtsPerHrToday", "lblPtsPerHrReq"};
    QString text;
    int i = 0;
    for (const char *v : values)
        text += QString::fromLatin1(names[i++]) + u'=' + QString::fromLatin1(v) + u'\n';
    return text;
}

// Both crews of two-crews.xml: 10 + 5 technicians, 40 + 20 hours worked, 20 + 20 remaining,
// 30 orders done and 10 open, 102 points done and 38 open.
const QString kBothCrews =
    panel({"15", "60", "40", "30", "10", "102", "38", "0.5", "0.25", "1.7", "0.95"});
const QString kAlphaCrew =
    panel({"10", "40", "20", "22", "7", "62", "23", "0.55", "0.35", "1.55", "1.15"});

TEST_F(HostProcessTest, PrintsThePanelFiguresOfTheChosenUnits)
{
    const std::pair<QStringList, const QString *> cases[] = {
        {{"--select", "C1,C2"}, &kBothCrews},
        {{"--select", "C1", "--tab", "hierarchy", "--display", "points"}, &kAlphaCrew},
        {{"--select", "R1", "--aggregate", "--lang", "PO"}, &kBothCrews},
    };
    for (const auto &[args, expected] : cases) {
        QFile::remove(profiles()); // each run starts as a new user
        const Result r = run(QStringList{"--data", kTwoCrews, "--panel"} + args);
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        EXPECT_EQ(r.out, *expected) << args.join(u' ').toStdString();
        EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    }
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

TEST_F(HostProcessTest, WritesTheGridInViewAsExpected)
{
    const std::pair<QStringList, const char *> cases[] = {
        {{"--select", "C1,C2"}, "summary-both-crews.csv"},
        {{"--select", "R1,C1,C2", "--tab", "hierarchy"}, "hierarchy-work-orders.csv"},
        {{"--select", "R1,C1,C2", "--tab", "hierarchy", "--display", "points"},
         "hierarchy-points.csv"},
    };
    for (const auto &[args, expectedFile] : cases) {
        const QString csv = file(QStringLiteral("grid.csv"));
        QFile::remove(profiles());
        const Result r = run(QStringList{"--data", kTwoCrews, "--export-csv", csv} + args);
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        const QByteArray expected =
            readAll(kProcessDataDir + "/expected/" + QString::fromLatin1(expectedFile));
        ASSERT_FALSE(expected.isEmpty());
        EXPECT_EQ(readAll(csv), expected) << expectedFile;
    }
}

TEST_F(HostProcessTest, PrintsToPdfAndTakesAPictureOfTheWindow)
{
    const QString pdf = file(QStringLiteral("grid.pdf"));
    const QString png = file(QStringLiteral("window.png"));
    const Result r =
        run({"--data", kTwoCrews, "--select", "C1", "--print-pdf", pdf, "--screenshot", png});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(readAll(pdf).startsWith("%PDF-"));
    const QByteArray picture = readAll(png);
    ASSERT_GE(picture.size(), 24);
    EXPECT_TRUE(picture.startsWith("\x89PNG\r\n\x1a\n"));
    // The IHDR chunk: width and height, big-endian, after the signature and the chunk header.
    EXPECT_EQ(qFromBigEndian<quint32>(picture.constData() + 16), 1280u);
    EXPECT_EQ(qFromBigEndian<quint32>(picture.constData() + 20), 800u);
}

// A generated work-order database read by SQL: the panel's figures are those of the generated
// records, the grid is written, and a second generation does not overwrite the first.
TEST_F(HostProcessTest, GeneratesAWorkOrderDatabaseAndShowsItsFigures)
{
    const QString db = file(QStringLiteral("day.sqlite"));
    const QStringList generate = {"--db-generate", db, "--seed", "5", "--db-clock", "11:00"};
    const Result made = run(generate);
    ASSERT_EQ(made.status, 0) << made.err.toStdString();
    EXPECT_TRUE(made.out.contains(QStringLiteral("39 units"))) << made.out.toStdString();
    const Result again = run(generate);
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(again.err.contains(QStringLiteral("already")) && again.err.count(u'\n') == 1)
        << again.err.toStdString();

    const WorkOrderGenerator day(5, QTime(11, 0));
    int onDuty = 0;
    for (const auto &t : day.technicians())
        onDuty += t.onDuty ? 1 : 0;
    int completed = 0;
    for (const auto &o : day.workOrders())
        completed += o.status == DetailRecords::Status::Completed ? 1 : 0;
    const QString csv = file(QStringLiteral("grid.csv"));
    const Result r = run({"--db", QStringLiteral("sqlite:") + db, "--select", "LKS,PLN,PAC",
                          "--aggregate", "--panel", "--export-csv", csv});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.startsWith(QStringLiteral("lblTechCount=%1\n").arg(onDuty)))
        << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("\nlblWODone=%1\n").arg(completed)))
        << r.out.toStdString();
    const QByteArray grid = readAll(csv);
    EXPECT_TRUE(grid.contains("Installation") && grid.contains("Residential"))
        << grid.left(400).toStdString();
}

// On a full disk every output fails with status 1 and the user's earlier file stays as it was.
TEST_F(HostProcessTest, AFullDiskFailsTheRunAndKeepsTheEarlierFile)
{
    FullFileSystem disk;
    if (!disk.ok())
        GTEST_SKIP() << disk.reason();
    const QByteArray earlier("the report of yesterday\n");
    for (const auto &[option, name] :
         {std::pair{"--export-csv", "out.csv"}, std::pair{"--print-pdf", "out.pdf"},
          std::pair{"--screenshot", "out.png"}}) {
        SCOPED_TRACE(option);
        const QString target = disk.filePath(QString::fromLatin1(name));
        {
            QFile f(target);
            ASSERT_TRUE(f.open(QIODevice::WriteOnly));
            f.write(earlier);
        }
        // Whatever room is left goes to another file.
        QFile filler(disk.filePath(QStringLiteral("filler")));
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(512, 'f')) > 0) {
        }
        const Result r = run({"--data", kTwoCrews, "--select", "C1,C2", option, target});
        EXPECT_EQ(r.status, 1) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("dlv-host: "))) << r.err.toStdString();
        EXPECT_EQ(readAll(target), earlier);
        EXPECT_EQ(QDir(disk.path()).entryList(QDir::Files | QDir::Hidden),
                  (QStringList{"filler", QString::fromLatin1(name)}));
        filler.remove();
        QFile::remove(target);
    }
}

TEST_F(HostProcessTest, TheControlsDefaultProfileIsStoredForTheUser)
{
    const Result r = run({"--data", kTwoCrews, "--panel"});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    ProfileStore store(profiles(), QStringLiteral("tester"), QStringLiteral("DashlonViewer"));
    ASSERT_TRUE(store.open()) << store.lastError().toStdString();
    EXPECT_EQ(store.profileNames(), QStringList{"Default"});
    const auto profile = store.profile(QStringLiteral("Default"));
    ASSERT_TRUE(profile);
    EXPECT_TRUE(profile->sectionExists(u"DLVSelect"));
    EXPECT_TRUE(profile->sectionExists(u"CollapsedNodes"));
}

TEST_F(HostProcessTest, AChosenProfileDecidesTheUnitsShown)
{
    {
        ProfileStore store(profiles(), QStringLiteral("tester"), QStringLiteral("DashlonViewer"));
        ASSERT_TRUE(store.open());
        QZWebProfiles set;
        QZWebProfile &p = set.add(QStringLiteral("Alpha only"));
        p.addSection(QStringLiteral("DLVSelect"),
                     QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"))
            .appendRow({"C1", "False", "True"});
        set.add(QStringLiteral("Default"));
        ASSERT_TRUE(store.answerPutProfiles(set.toXml()).contains(QStringLiteral("<V>0</V>")));
    }
    const Result r = run({"--data", kTwoCrews, "--profile", "Alpha only", "--panel"});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, kAlphaCrew);
}

TEST_F(HostProcessTest, FailuresEndWithTheirStatusAndOneLineOnStandardError)
{
    const struct
    {
        QStringList args;
        int status;
        const char *mentions;
    } cases[] = {
        {{"--colour"}, 2, "colour"},
        {{"--data", "$DATA/two-crews.xml", "--session-units", "C1,ZZ", "--panel"}, 2, "ZZ"},
        {{"--data", "$DATA/two-crews.xml", "--profile", "Nope"}, 2, "Nope"},
        {{"--data", "$TMP/missing.xml", "--panel"}, 3, "missing.xml"},
        {{"--data", "$DATA/../webdata/profile-single.xml", "--screenshot", "$TMP/never.png"},
         3,
         "profile-single.xml"},
        {{"--db", "$TMP/missing.sqlite", "--panel"}, 3, "missing.sqlite"},
        {{"--db", "$DATA/two-crews.xml", "--screenshot", "$TMP/never.png"}, 3, "two-crews.xml"},
        {{"--db", "mysql://host/orders", "--panel"}, 3, "mysql"},
        {{"--db", "$TMP/a.sqlite", "--data", "$DATA/two-crews.xml"}, 2, "--db"},
        {{"--db-generate", "$TMP/b.sqlite", "--panel"}, 2, "--db-generate"},
        {{"--db-generate", "$TMP/b.sqlite", "--db-clock", "25:00"}, 2, "25:00"},
        {{"--db-simulate", "--panel"}, 2, "--db-simulate"},
    };
    for (const auto &c : cases) {
        QStringList args = c.args;
        args.replaceInStrings(QStringLiteral("$DATA"), kProcessDataDir);
        args.replaceInStrings(QStringLiteral("$TMP"), dir.path());
        const Result r = run(args);
        EXPECT_EQ(r.status, c.status) << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << r.out.toStdString();
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("dlv-host: ")) && r.err.count(u'\n') == 1 &&
                    r.err.contains(QString::fromUtf8(c.mentions)))
            << r.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(file(QStringLiteral("never.png")))) << "nothing was shown";
}

} // namespace
