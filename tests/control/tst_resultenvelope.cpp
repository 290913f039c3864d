#include "control/resultenvelope.h"
#include "support/recordingreporter.h"
#include "webdata/webvariant.h"

#include <QVariant>

#include <gtest/gtest.h>

#include <functional>

namespace {

QZWebTable errorTable(const QString &number, const QString &description = QStringLiteral("Boom"))
{
    QZWebTable t(QStringLiteral("Error"), {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    t.appendRow({number, description});
    return t;
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

const Verdict kVerdicts[] = {
    {"0", 0}, {"", 0}, {"  0  ", 0}, {"abc", 0}, {"17", 17}, {"12abc", 12}, {"-3", -3}, {"&H10", 16},
};

} // namespace

TEST(ResultEnvelope, EveryFormAndVerdict)
{
    for (const Form &form : forms()) {
        for (const Verdict &v : kVerdicts) {
            SCOPED_TRACE(std::string(form.name) + " / ErrorNumber=\"" + v.number + "\"");
            RecordingReporter reporter;
            ResultEnvelope envelope(&reporter);
            bool recognised = false;
            envelope.ParseResult(form.make(errorTable(QString::fromLatin1(v.number))),
                                 QStringLiteral("DLViewer.Test"), recognised);
            EXPECT_TRUE(recognised);
            EXPECT_EQ(envelope.LastErrorNumber(), v.expectedNumber);
            if (v.expectedNumber == 0) {
                EXPECT_TRUE(envelope.LastErrorDescription().isEmpty());
                EXPECT_TRUE(reporter.reports.empty());
            } else {
                EXPECT_EQ(envelope.LastErrorDescription(), QStringLiteral("Boom"));
                ASSERT_EQ(reporter.reports.size(), 1u);
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

TEST(ResultEnvelope, ResultsWithoutErrorTable)
{
    QZWebTable other(QStringLiteral("Profiles"), {QStringLiteral("ErrorNumber")});
    other.appendRow({QStringLiteral("5")});
    QZWebData dataWithout;
    dataWithout.addTable(other);

    const std::vector<std::pair<const char *, QVariant>> cases = {
        {"table text named otherwise", other.toXml()},
        {"table object named otherwise", WebVariant::wrap(std::make_shared<QZWebTable>(other))},
        {"data text without Error", dataWithout.toXml()},
        {"profile set without Error", QZWebProfiles().toXml()},
        {"an integer", QVariant(42)},
        {"empty variant", QVariant()},
        {"empty text", QVariant(QString())},
        {"blank text", QVariant(QStringLiteral("  \n "))},
        {"a message object", WebVariant::wrap(std::make_shared<QZWebMessage>(QStringLiteral("X")))},
    };
    for (const auto &[name, value] : cases) {
        SCOPED_TRACE(name);
        RecordingReporter reporter;
        ResultEnvelope envelope(&reporter);
        bool recognised = false;
        envelope.ParseResult(value, QStringLiteral("L"), recognised);
        EXPECT_FALSE(recognised);
        EXPECT_EQ(envelope.LastErrorNumber(), 0);
        EXPECT_TRUE(reporter.reports.empty());
    }
}

TEST(ResultEnvelope, UnreadableDocumentIsReportedAndNotRecognised)
{
    const QString texts[] = {QStringLiteral("<WebData><Table name=\"Error\">"),
                             QStringLiteral("<WebProfiles><WebProfile>"), QStringLiteral("not xml")};
    for (const QString &text : texts) {
        SCOPED_TRACE(text.toStdString());
        RecordingReporter reporter;
        ResultEnvelope envelope(&reporter);
        bool recognised = false;
        envelope.ParseResult(text, QStringLiteral("DLViewer.ReceiveProfileResponse"), recognised);
        EXPECT_FALSE(recognised);
        ASSERT_EQ(reporter.reports.size(), 1u);
        EXPECT_EQ(reporter.reports[0].location, QStringLiteral("DLViewer.ReceiveProfileResponse"));
    }
}

TEST(ResultEnvelope, LastErrorIsClearedByTheNextResult)
{
    RecordingReporter reporter;
    ResultEnvelope envelope(&reporter);
    bool recognised = false;
    envelope.ParseResult(errorTable(QStringLiteral("8")).toXml(), QStringLiteral("L"), recognised);
    EXPECT_EQ(envelope.LastErrorNumber(), 8);
    envelope.ParseResult(errorTable(QStringLiteral("0")).toXml(), QStringLiteral("L"), recognised);
    EXPECT_EQ(envelope.LastErrorNumber(), 0);
    EXPECT_TRUE(envelope.LastErrorDescription().isEmpty());
}
