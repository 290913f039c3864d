// The demo organisation: its tree, counts that agree with the individual records, figures that
// move as a working day does, and the same figures for the same seed.
#include "common/conversions.h"
#include "host/demofeed.h"
#include "support/qtprinters.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QHash>
#include <QSet>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <map>

namespace {

const QZWebTable &tableOf(const QZWebMessage &m, const char16_t *name)
{
    return m.data(1)->table(name);
}

// Company-wide sums of the data message.
struct Totals
{
    std::array<qint64, 14> counters{};
    double worked = 0;
    double remaining = 0;
    int techs = 0;
};

Totals totalsOf(const QZWebMessage &m)
{
    Totals t;
    const QZWebTable &detail = tableOf(m, u"BUDetailsInfo");
    for (int row = 1; row <= detail.rowCount(); ++row)
        for (int c = 0; c < 14; ++c)
            t.counters[std::size_t(c)] += detail.value(row, 3 + c).toInt();
    const QZWebTable &general = tableOf(m, u"BUGeneralInfo");
    for (int row = 1; row <= general.rowCount(); ++row) {
        t.techs += general.field(row, u"TechCount").toInt();
        t.worked += general.field(row, u"HoursWorked").toDouble();
        t.remaining += general.field(row, u"HoursRemaining").toDouble();
    }
    return t;
}

TEST(DemoFeed, HasARootThreeLevelsAndUniqueIds)
{
    DemoFeed feed;
    const auto message = feed.message();
    EXPECT_EQ(message->name(), "DLVData");
    const QZWebTable &units = tableOf(*message, u"BusinessUnits");
    ASSERT_GE(units.rowCount(), 50);
    ASSERT_LE(units.rowCount(), 80);

    QHash<QString, QString> parent;
    for (int row = 1; row <= units.rowCount(); ++row) {
        const QString id = units.field(row, u"BUID");
        EXPECT_FALSE(parent.contains(id)) << "repeated " << id.toStdString();
        EXPECT_FALSE(id.contains(u'|') || id.contains(u',')) << id.toStdString();
        EXPECT_FALSE(units.field(row, u"BUDesc").isEmpty());
        parent.insert(id, units.field(row, u"ParentBUID"));
    }
    EXPECT_EQ(units.field(1, u"BUID"), "#");
    EXPECT_EQ(parent.value("#"), "#");
    EXPECT_EQ(units.field(1, u"BUDesc"), DemoFeed::rootDescription());

    std::map<int, int> perLevel;
    for (auto it = parent.cbegin(); it != parent.cend(); ++it) {
        if (it.key() == u"#")
            continue;
        int level = 0;
        QString at = it.key();
        while (at != u"#" && level < 10) {
            ASSERT_TRUE(parent.contains(parent.value(at))) << "orphan " << at.toStdString();
            at = parent.value(at);
            ++level;
        }
        ++perLevel[level];
    }
    EXPECT_EQ(perLevel.size(), 3u);
    EXPECT_EQ(perLevel[1], 4);
    EXPECT_EQ(perLevel[2], 12);
    EXPECT_EQ(perLevel[3], 48);
    EXPECT_EQ(feed.unitIds().size(), units.rowCount() - 1); // every unit but the root

    EXPECT_EQ(tableOf(*message, u"JobTypes").rowCount(), 10);
    EXPECT_EQ(tableOf(*message, u"JobClasses").rowCount(), 6);
    const QZWebTable &formats = tableOf(*message, u"RegionalFormats");
    QStringList languages;
    for (int row = 1; row <= formats.rowCount(); ++row)
        languages.append(formats.field(row, u"languageCode"));
    EXPECT_EQ(languages, (QStringList{"EN", "PO", "SP"}));
    EXPECT_EQ(message->property(u"tqJeopardyThreshold"), "30");
}

TEST(DemoFeed, RefreshIntervalPropertyMatchesTheHostsTimer)
{
    EXPECT_EQ(DemoFeed(1, 30).message()->property(u"tqDBRefreshInterval"), "0.5");
    EXPECT_EQ(DemoFeed(1, 120).message()->property(u"tqDBRefreshInterval"), "2");
    EXPECT_EQ(DemoFeed(1, 90).message()->property(u"tqDBRefreshInterval"), "1.5");
}

// The counts sent must be exactly those of the records that a detail request lists.
void expectCountsMatchRecords(const DemoFeed &feed)
{
    const auto message = feed.message();
    const DetailRecords records = feed.details();

    using Key = std::tuple<QString, QString, QString>;
    std::map<Key, std::array<int, 14>> fromRecords;
    for (const auto &wo : records.workOrders) {
        auto &c = fromRecords[{wo.buid, wo.jobType, wo.jobClass}];
        c[std::size_t(wo.status)] += 1;
        c[std::size_t(wo.status) + 7] += wo.points;
    }
    std::map<Key, std::array<int, 14>> sent;
    const QZWebTable &detail = tableOf(*message, u"BUDetailsInfo");
    for (int row = 1; row <= detail.rowCount(); ++row) {
        Key key{detail.field(row, u"BUID"), detail.field(row, u"JobType"),
                detail.field(row, u"JobClass")};
        ASSERT_FALSE(sent.count(key)) << "a unit, type and class are sent twice";
        auto &c = sent[key];
        for (int i = 0; i < 14; ++i) {
            bool ok = false;
            c[std::size_t(i)] = detail.value(row, 3 + i).toInt(&ok);
            ASSERT_TRUE(ok) << "counters are whole numbers";
        }
    }
    EXPECT_EQ(sent, fromRecords);

    QHash<QString, int> techs;
    QHash<QString, double> worked;
    QHash<QString, double> remaining;
    for (const auto &t : records.technicians) {
        ++techs[t.buid];
        worked[t.buid] += t.hoursWorked;
        remaining[t.buid] += t.hoursRemaining;
    }
    const QZWebTable &general = tableOf(*message, u"BUGeneralInfo");
    for (int row = 1; row <= general.rowCount(); ++row) {
        const QString id = general.field(row, u"BUID");
        EXPECT_EQ(general.field(row, u"TechCount").toInt(), techs.value(id)) << id.toStdString();
        EXPECT_NEAR(general.field(row, u"HoursWorked").toDouble(), worked.value(id), 0.006);
        EXPECT_NEAR(general.field(row, u"HoursRemaining").toDouble(), remaining.value(id), 0.006);
    }
    // Technicians and orders belong to units of the data.
    const QStringList ids = feed.unitIds();
    const QSet<QString> units(ids.begin(), ids.end());
    for (const auto &wo : records.workOrders)
        EXPECT_TRUE(units.contains(wo.buid));
}

TEST(DemoFeed, CountsAgreeWithTheRecordsAtEveryRefresh)
{
    DemoFeed feed(7);
    for (int i = 0; i < 60; ++i) { // through the evening into the next day
        SCOPED_TRACE(feed.position().toStdString());
        expectCountsMatchRecords(feed);
        feed.advance();
    }
}

TEST(DemoFeed, CrewsHaveARosterOfTwentyFiveAndMostOnDuty)
{
    DemoFeed feed;
    const auto message = feed.message(); // the table below lives in it
    const QZWebTable &general = tableOf(*message, u"BUGeneralInfo");
    int crews = 0;
    for (int row = 1; row <= general.rowCount(); ++row) {
        const int techs = general.field(row, u"TechCount").toInt();
        EXPECT_LE(techs, 25);
        if (techs > 0) {
            ++crews;
            EXPECT_GE(techs, 18);
        }
    }
    EXPECT_EQ(crews, 48);
}

TEST(DemoFeed, FiguresMoveAsTheDayGoesOn)
{
    DemoFeed feed(3);
    Totals before = totalsOf(*feed.message());
    bool sawLate = false;
    bool sawJeopardy = false;
    bool openFell = false;
    int day = feed.day();
    for (int i = 0; i < 40 && feed.day() == day; ++i) {
        feed.advance();
        if (feed.day() != day)
            break;
        const Totals now = totalsOf(*feed.message());
        // Finished work only grows; hours worked rise and remaining hours fall.
        EXPECT_GE(now.counters[4], before.counters[4]);
        EXPECT_GE(now.counters[6], before.counters[6]);
        EXPECT_GE(now.worked, before.worked);
        EXPECT_LE(now.remaining, before.remaining);
        EXPECT_EQ(now.techs, before.techs);
        const qint64 openNow = now.counters[0] + now.counters[1] + now.counters[2];
        const qint64 openBefore = before.counters[0] + before.counters[1] + before.counters[2];
        openFell = openFell || openNow < openBefore;
        sawLate = sawLate || now.counters[3] > 0;
        sawJeopardy = sawJeopardy || now.counters[2] > 0;
        before = now;
    }
    EXPECT_TRUE(openFell);
    EXPECT_TRUE(sawLate);
    EXPECT_TRUE(sawJeopardy);
    EXPECT_GT(before.counters[4], 0);
}

TEST(DemoFeed, TheFirstRefreshShowsADayInProgress)
{
    DemoFeed feed;
    EXPECT_EQ(feed.clock(), QTime(10, 30));
    const Totals t = totalsOf(*feed.message());
    EXPECT_GT(t.counters[4], 0);                  // some work done
    EXPECT_GT(t.counters[0], t.counters[4] / 10); // much still open
    EXPECT_GT(t.worked, 0);
    EXPECT_GT(t.remaining, t.worked);
}

TEST(DemoFeed, NextGivesTheFirstStateThenAdvances)
{
    DemoFeed feed;
    const QTime start = feed.clock();
    const DataFeed::Frame first = feed.next();
    EXPECT_EQ(feed.clock(), start);
    ASSERT_TRUE(first.details);
    EXPECT_FALSE(first.details->workOrders.empty());
    (void)feed.next();
    EXPECT_EQ(feed.clock(), start.addSecs(DemoFeed::StepMinutes * 60));
}

TEST(DemoFeed, ANewDayStartsAfterTheEvening)
{
    DemoFeed feed;
    for (int i = 0; i < 100 && feed.day() == 1; ++i)
        feed.advance();
    EXPECT_EQ(feed.day(), 2);
    EXPECT_EQ(feed.clock(), QTime(7, 0));
    const Totals t = totalsOf(*feed.message());
    EXPECT_EQ(t.counters[4], 0); // nothing done yet
    EXPECT_DOUBLE_EQ(t.worked, 0);
}

TEST(DemoFeed, TheSameSeedGivesTheSameDataAndAnotherSeedOtherData)
{
    DemoFeed a(42);
    DemoFeed b(42);
    DemoFeed c(43);
    for (int i = 0; i < 5; ++i) {
        a.advance();
        b.advance();
        c.advance();
    }
    EXPECT_EQ(a.message()->toXml(), b.message()->toXml());
    EXPECT_EQ(a.details().toTable(), b.details().toTable());
    EXPECT_NE(a.message()->toXml(), c.message()->toXml());
}

} // namespace
