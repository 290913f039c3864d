#include "scriptedhost.h"
#include "support/recordingreporter.h"
#include "webdata/resultenvelope.h"
#include "webdata/webvariant.h"

#include <QVariant>
#include <functional>
#include <gtest/gtest.h>

namespace {

QZWebTable errorTable(const QString &number)
{
    return ScriptedHost::errorTable(number, QStringLiteral("Boom"));
}

// Every form a host may answer in, carrying the given error table.
struct Form
{
    const char *name;
    std::function<QVariant(const QZWebTable &)> make;
};

const std::vector<Form> &forms()
{
    static const std::vector<Form> all = {
        {"profile set text",
         [](const QZWebTable &e) {
             QZWebProfiles s;
             s.add(QStringLiteral("Default"));
             s.setErrorTable(e);
             return QVariant(s.toXml());
         }},
        {"single profile text",
         [](const QZWebTable &e) {
             QZWebProfile p(QStringLiteral("Default"));
             p.setErrorTable(e);
             return QVariant(p.toXml());
         }},
        {"data text",
         [](const QZWebTable &e) {
             QZWebData d;
             d.addTable(e);
             return QVariant(d.toXml());
         }},
        {"table text", [](const QZWebTable &e) { return QVariant(e.toXml()); }},
        {"table object",
         [](const QZWebTable &e) { return WebVariant::wrap(std::make_shared<QZWebTable>(e)); }},
        {"data object",
         [](const QZWebTable &e) {
             auto d = std::make_shared<QZWebData>();
             d->addTable(e);
             return WebVariant::wrap(d);
         }},
        {"profile set object",
         [](const QZWebTable &e) {
             auto s = std::make_shared<QZWebProfiles>();
             s->setErrorTable(e);
             return WebVariant::wrap(s);
         }},
        {"profile object",
         [](const QZWebTable &e) {
             auto p = std::make_shared<QZWebProfile>(QStringLiteral("X"));
             p->setErrorTable(e);
             return WebVariant::wrap(p);
         }},
    };
    return all;
}

struct Verdict
{
    const char *number;
    qint32 expectedNumber; // 0: success, nothing shown
};

// Each failure is followed by a success, which must clear the last error.
const Verdict kVerdicts[] = {
    {"0", 0},     {"17", 17}, {"", 0},    {"12abc", 12},
    {"  0  ", 0}, {"-3", -3}, {"abc", 0}, {"&H10", 16},
};

} // namespace

TEST(ResultEnvelope, EveryFormAndVerdict)
{
    for (const Form &form : forms()) {
        RecordingReporter reporter;
        ResultEnvelope envelope(&reporter); // one per form: each result replaces the last error
        for (const Verdict &v : kVerdicts) {
            SCOPED_TRACE(std::string(form.name) + " / ErrorNumber=\"" + v.number + "\"");
            reporter.reports.clear();
            bool recognised = false;
            envelope.ParseResult(form.make(errorTable(QString::fromLatin1(v.number))),
                                 QStringLiteral("DLViewer.Test"), recognised);
            EXPECT_TRUE(recognised);
            EXPECT_EQ(envelope.LastErrorNumber(), v.expectedNumber);
            EXPECT_EQ(envelope.LastErrorDescription(), v.expectedNumber ? "Boom" : "");
            ASSERT_EQ(reporter.reports.size(), v.expectedNumber ? 1u : 0u);
            if (v.expectedNumber) {
                EXPECT_EQ(reporter.reports[0].number, v.expectedNumber);
                EXPECT_EQ(reporter.reports[0].description, QStringLiteral("Boom"));
                EXPECT_EQ(reporter.reports[0].location, QStringLiteral("DLViewer.Test"));
            }
        }
    }
}

TEST(ResultEnvelope, ProfileSetIsNeverReadAsSingleProfile)
{
    // The set says success; one of its profiles carries a failing error table of its own. Read as
    // a single profile the document would report that inner error.
    QZWebProfiles set;
    QZWebProfile &p = set.add(QStringLiteral("Default"));
    p.setErrorTable(errorTable(QStringLiteral("99")));
    set.setErrorTable(errorTable(QStringLiteral("0")));
    RecordingReporter reporter;
    ResultEnvelope envelope(&reporter);
    bool recognised = false;
    envelope.ParseResult(set.toXml(), QStringLiteral("L"), recognised);
    EXPECT_TRUE(recognised);
    EXPECT_EQ(envelope.LastErrorNumber(), 0);
    EXPECT_TRUE(reporter.reports.empty());
}

TEST(ResultEnvelope, ResultsWithoutErrorTableOrUnreadableAreNotRecognised)
{
    QZWebTable other(QStringLiteral("Profiles"), {QStringLiteral("ErrorNumber")});
    other.appendRow({QStringLiteral("5")});
    QZWebData dataWithout;
    dataWithout.addTable(other);

    const struct
    {
        const char *name;
        QVariant value;
        bool reported; // unreadable documents are reported at the caller's location
    } cases[] = {
        {"table text named otherwise", other.toXml(), false},
        {"table object named otherwise", WebVariant::wrap(std::make_shared<QZWebTable>(other)),
         false},
        {"data text without Error", dataWithout.toXml(), false},
        {"profile set without Error", QZWebProfiles().toXml(), false},
        {"an integer", QVariant(42), false},
        {"empty variant", QVariant(), false},
        {"empty text", QVariant(QString()), false},
        {"blank text", QVariant(QStringLiteral("  \n ")), false},
        {"a message object", WebVariant::wrap(std::make_shared<QZWebMessage>(QStringLiteral("X"))),
         false},
        {"cut data", QStringLiteral("<WebData><Table name=\"Error\">"), true},
        {"cut profiles", QStringLiteral("<WebProfiles><WebProfile>"), true},
        {"not xml", QStringLiteral("not xml"), true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        RecordingReporter reporter;
        ResultEnvelope envelope(&reporter);
        bool recognised = false;
        envelope.ParseResult(c.value, QStringLiteral("DLViewer.ReceiveProfileResponse"),
                             recognised);
        EXPECT_FALSE(recognised);
        EXPECT_EQ(envelope.LastErrorNumber(), 0);
        ASSERT_EQ(reporter.reports.size(), c.reported ? 1u : 0u);
        if (c.reported) {
            EXPECT_EQ(reporter.reports[0].location, "DLViewer.ReceiveProfileResponse");
        }
    }
}
