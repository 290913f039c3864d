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
    EXPECT_EQ(tableOf(*message, u"RegionalFormats").rowCount(), 3);
    EXPECT_EQ(message->property(u"tqJeopardyThreshold"), "30");
}

TEST(DemoFeed, RefreshIntervalPropertyMatchesTheHostsTimer)
{
    const std::pair<int, const char *> cases[] = {{30, "0.5"}, {120, "2"}, {90, "1.5"}};
    for (const auto &[seconds, minutes] : cases)
        EXPECT_EQ(DemoFeed(1, seconds).message()->property(u"tqDBRefreshInterval"), minutes);
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

TEST(DemoFeed, FiguresMoveAsTheDayGoesOn)
{
    DemoFeed feed(3);
    Totals before = totalsOf(*feed.message());
    bool openFell = false, sawLate = false;
    for (const int day = feed.day(); feed.advance(), feed.day() == day;) {
        const Totals now = totalsOf(*feed.message());
        // Finished work only grows; hours worked rise and remaining hours fall.
        EXPECT_GE(now.counters[4], before.counters[4]);
        EXPECT_GE(now.worked, before.worked);
        EXPECT_LE(now.remaining, before.remaining);
        const auto open = [](const Totals &t) {
            return t.counters[0] + t.counters[1] + t.counters[2];
        };
        openFell = openFell || open(now) < open(before);
        sawLate = sawLate || now.counters[3] > 0;
        before = now;
    }
    EXPECT_TRUE(openFell);
    EXPECT_TRUE(sawLate);
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
