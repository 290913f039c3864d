#include "model/trendlog.h"
#include "views/changecues.h"
#include "views/cuepalette.h"
#include "views/exceptionrules.h"
#include "views/freshnessclock.h"
#include "views/gridcellstyler.h"
#include "views/hierarchygrid.h"
#include "views/outlinegrid.h"
#include "views/outlinegridmodel.h"
#include "views/panelvalues.h"
#include "views/summarygrid.h"

#include <gtest/gtest.h>

namespace {

using Kind = ExceptionRules::Kind;
using Dir = ChangeCues::Direction;

// A grid of `cols` columns with two header rows and one data row per entry: row data, then cells
// from column 0.
void fillGrid(OutlineGrid &grid, int cols, const QList<QStringList> &rows)
{
    grid.setRowCount(0);
    grid.setColCount(cols);
    grid.setRowCount(2);
    grid.setFixedRows(2);
    for (const QStringList &r : rows) {
        const int row = grid.addRow();
        grid.setRowData(row, r.value(0));
        for (int c = 1; c < r.size(); ++c)
            grid.setText(row, c - 1, r[c]);
    }
}

TEST(CuePalette, EveryTextStaysReadableOnEveryBackItCanMeet)
{
    EXPECT_NEAR(CuePalette::contrastRatio(Qt::black, Qt::white), 21.0, 1e-9);
    EXPECT_NEAR(CuePalette::contrastRatio(Qt::white, Qt::white), 1.0, 1e-9);
    EXPECT_NEAR(CuePalette::contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);

    for (const CuePalette::Pair &p : CuePalette::all()) {
        SCOPED_TRACE(p.name.toStdString());
        EXPECT_GE(CuePalette::contrastRatio(p.text, p.back), 4.5);
    }
    // Grey text of a stopped server lands on trouble colours and on the grids' own backs.
    const QList<QColor> gridBacks{Qt::white,
                                  OutlineGrid::fromBgr(SummaryGrid::GroupBgr),
                                  OutlineGrid::fromBgr(HierarchyGrid::UnreachedBgr),
                                  OutlineGrid::fromBgr(HierarchyGrid::HeaderBgr),
                                  CuePalette::jeopardy().back,
                                  CuePalette::late().back,
                                  CuePalette::belowRate().back};
    for (const QColor &back : gridBacks) {
        SCOPED_TRACE(back.name().toStdString());
        EXPECT_GE(CuePalette::contrastRatio(CuePalette::stopped().text, back), 4.5);
        // A fading change cue mixes its back into the one below it, with its text on top.
        for (const CuePalette::Pair &cue : {CuePalette::risen(), CuePalette::fallen()})
            for (double w = 0; w <= 1.0; w += 0.125)
                EXPECT_GE(CuePalette::contrastRatio(cue.text, CuePalette::mix(cue.back, back, w)),
                          4.5)
                    << cue.name.toStdString() << " at " << w;
    }
}

TEST(ExceptionRules, TroubleCellsOfBothGridsAndThePanel)
{
    OutlineGrid summary;
    // Columns: margin, job type, class, WO Open..NotDone (3..9), Pts Open..NotDone (10..16).
    fillGrid(summary, 17,
             {{"", "", "Total", "", "5", "0", "2", "1", "4", "0", "0", "9", "0", "0", "3"},
              {"WO|A", "", "WO", "A", "1", "0", "0", "", "1", "0", "0", "2", "0", "x", "-1"}});
    OutlineGrid tree;
    // Columns: unit, techs, hours remaining, hours worked, Open..NotDone (4..10), productivity.
    fillGrid(tree, 12,
             {{"N", "North", "3", "4", "4", "8", "0", "1", "0", "6", "0", "0", "1.5"},
              {"S", "South", "2", "0", "2", "8", "0", "0", "2", "4", "0", "0", "2"},
              {"E", "East", "", "", "", "", "", "3", "3", "", "", "", ""},
              {"W", "West", "1", "4", "2", "8", "0", "0", "0", "4", "0", "0", "2"}});
    const struct
    {
        const OutlineGrid *grid;
        ExceptionRules::GridKind kind;
        int row, col;
        Kind expected;
    } cases[] = {
        {&summary, ExceptionRules::GridKind::Summary, 2, 5, Kind::Jeopardy},
        {&summary, ExceptionRules::GridKind::Summary, 2, 6, Kind::Late},
        {&summary, ExceptionRules::GridKind::Summary, 2, 12, Kind::None}, // 0 points in jeopardy
        {&summary, ExceptionRules::GridKind::Summary, 2, 13, Kind::Late},
        {&summary, ExceptionRules::GridKind::Summary, 2, 3, Kind::None},  // open is no trouble
        {&summary, ExceptionRules::GridKind::Summary, 3, 5, Kind::None},  // "" reads 0
        {&summary, ExceptionRules::GridKind::Summary, 3, 12, Kind::None}, // not a number
        {&summary, ExceptionRules::GridKind::Summary, 3, 13, Kind::None}, // negative
        {&summary, ExceptionRules::GridKind::Summary, 1, 5, Kind::None},  // header row
        {&summary, ExceptionRules::GridKind::Summary, 9, 5, Kind::None},  // past the grid
        // 8 open in 4 remaining hours needs 2 an hour; North does 1.5.
        {&tree, ExceptionRules::GridKind::Hierarchy, 2, 0, Kind::BelowRate},
        {&tree, ExceptionRules::GridKind::Hierarchy, 2, 11, Kind::BelowRate},
        {&tree, ExceptionRules::GridKind::Hierarchy, 2, 3, Kind::None},
        {&tree, ExceptionRules::GridKind::Hierarchy, 2, 6, Kind::Jeopardy},
        {&tree, ExceptionRules::GridKind::Hierarchy, 3, 7, Kind::Late},
        // No hours remaining: no rate is required.
        {&tree, ExceptionRules::GridKind::Hierarchy, 3, 0, Kind::None},
        // A unit no chosen unit reached has no figures to judge.
        {&tree, ExceptionRules::GridKind::Hierarchy, 4, 6, Kind::None},
        {&tree, ExceptionRules::GridKind::Hierarchy, 4, 7, Kind::None},
        // Exactly the required rate is not below it.
        {&tree, ExceptionRules::GridKind::Hierarchy, 5, 11, Kind::None},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.row << "," << c.col);
        EXPECT_EQ(ExceptionRules::cellKind(*c.grid, c.kind, c.row, c.col), c.expected);
    }

    PanelValues panel;
    panel.wosPerHrToday = 1.5f;
    panel.wosPerHrReq = 2.f;
    panel.ptsPerHrToday = 3.f;
    panel.ptsPerHrReq = 3.f;
    EXPECT_EQ(ExceptionRules::panelKind(panel, 7), Kind::BelowRate);
    EXPECT_EQ(ExceptionRules::panelKind(panel, 8), Kind::None);
    EXPECT_EQ(ExceptionRules::panelKind(panel, 9), Kind::None);
    EXPECT_EQ(ExceptionRules::panelKind(panel, 0), Kind::None);
}

TEST(ChangeCues, CellsKeyedByRowDataRiseFallAndOnlyAfterARefreshOfTheSameUnits)
{
    OutlineGrid grid;
    ChangeCues cues;
    fillGrid(grid, 3, {{"", "Total", "10", "4"}, {"A", "a", "5", ""}, {"B", "b", "2", "7"}});
    EXPECT_EQ(cues.capture(grid, "N|S", true, 1000), 0); // the first capture is the baseline

    // B moved above A, C is new, A's figures rose and fell, the total's text changed only.
    fillGrid(grid, 3,
             {{"", "Total ", "10", "4"},
              {"B", "b", "2", "7"},
              {"C", "c", "1", "1"},
              {"A", "a", "6", "0"}});
    EXPECT_EQ(cues.capture(grid, "N|S", true, 2000), 1);
    const struct
    {
        int row, col;
        Dir expected;
    } cases[] = {
        {2, 0, Dir::None}, {2, 1, Dir::None}, {3, 2, Dir::None}, // unchanged, moved
        {4, 1, Dir::None}, {4, 2, Dir::None},                    // new row: nothing to compare
        {5, 1, Dir::Up},   {5, 2, Dir::None},                    // "" and "0" are both zero
        {6, 1, Dir::None},                                       // past the grid
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.row << "," << c.col);
        EXPECT_EQ(cues.direction(grid, c.row, c.col), c.expected);
    }
    EXPECT_DOUBLE_EQ(cues.strength(2000), 1.0);
    EXPECT_DOUBLE_EQ(cues.strength(2000 + ChangeCues::DefaultDurationMs / 2), 0.5);
    EXPECT_FALSE(cues.active(2000 + ChangeCues::DefaultDurationMs));
    EXPECT_FALSE(cues.active(1999)); // a clock that went back shows nothing

    grid.setText(5, 1, QStringLiteral("0"));
    EXPECT_EQ(cues.capture(grid, "N|S", true, 3000), 1);
    EXPECT_EQ(cues.direction(grid, 5, 1), Dir::Down);

    // Other units chosen, or a fill that is no refresh: a new baseline, no cues.
    grid.setText(5, 1, QStringLiteral("9"));
    EXPECT_EQ(cues.capture(grid, "N", true, 4000), 0);
    EXPECT_EQ(cues.direction(grid, 5, 1), Dir::None);
    grid.setText(5, 1, QStringLiteral("1"));
    EXPECT_EQ(cues.capture(grid, "N", false, 5000), 0);
    grid.setText(5, 1, QStringLiteral("2"));
    EXPECT_EQ(cues.capture(grid, "N", true, 6000), 1);

    // Named values (the panel) follow the same rules.
    ChangeCues panel;
    panel.captureValues({{"tech", "10"}, {"rate", "1.5"}}, "x", true, 0);
    EXPECT_EQ(panel.captureValues({{"tech", "10"}, {"rate", "1.25"}}, "x", true, 10), 1);
    EXPECT_EQ(panel.direction(QStringLiteral("rate")), Dir::Down);
    EXPECT_EQ(panel.direction(QStringLiteral("tech")), Dir::None);
    // Values read the way the cells are written: exponents, signs, decimals, text.
    ChangeCues values;
    const QList<std::tuple<QString, QString, Dir>> reads{
        {"1e3", "999", Dir::Down},  {"-2", "-1", Dir::Up},
        {"0.5", "0.50", Dir::None}, {"x", "1", Dir::None},
        {"1,5", "2", Dir::None},    {"12345678901234567", "1", Dir::Down},
        {"", "-0.25", Dir::Down},   {"North", "South", Dir::None}};
    QList<std::pair<QString, QString>> before, after;
    for (const auto &[from, to, dir] : reads) {
        before.append({from + u'>' + to, from});
        after.append({from + u'>' + to, to});
    }
    values.captureValues(before, "x", true, 0);
    values.captureValues(after, "x", true, 10);
    for (const auto &[from, to, dir] : reads)
        EXPECT_EQ(values.direction(from + u'>' + to), dir) << from.toStdString();

    EXPECT_NE(ChangeCues::marker(Dir::Up), ChangeCues::marker(Dir::Down));
    EXPECT_TRUE(ChangeCues::marker(Dir::None).isEmpty());
}

TEST(FreshnessClock, AgeCountdownOverdueAndStopped)
{
    const QDateTime last(QDate(2026, 3, 2), QTime(10, 0));
    const auto caption = [](const QString &key) {
        return QHash<QString, QString>{{"FreshnessAge", "age %1"},
                                       {"FreshnessNext", "next %1"},
                                       {"FreshnessDue", "due"},
                                       {"FreshnessOverdue", "late %1"},
                                       {"FreshnessStopped", "stopped"}}
            .value(key);
    };
    const struct
    {
        int intervalMinutes;
        QTime now;
        bool stopped;
        FreshnessClock::State state;
        const char *text;
    } cases[] = {
        {15, QTime(10, 5), false, FreshnessClock::State::Fresh, "age 5:00 \u00B7 next 10:00"},
        {15, QTime(10, 20), false, FreshnessClock::State::Fresh, "age 20:00 \u00B7 due"},
        {15, QTime(10, 30), false, FreshnessClock::State::Fresh, "age 30:00 \u00B7 due"},
        {15, QTime(10, 30, 1), false, FreshnessClock::State::Overdue,
         "age 30:01 \u00B7 late 15:01"},
        {90, QTime(13, 0, 5), false, FreshnessClock::State::Overdue,
         "age 3:00:05 \u00B7 late 1:30:05"},
        {0, QTime(23, 0), false, FreshnessClock::State::Fresh, "age 13:00:00"}, // no interval
        {15, QTime(10, 5), true, FreshnessClock::State::Stopped, "age 5:00 \u00B7 stopped"},
        {15, QTime(9, 0), false, FreshnessClock::State::Fresh, "age 0:00 \u00B7 next 1:15:00"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        FreshnessClock clock;
        EXPECT_EQ(clock.state(last), FreshnessClock::State::NoData);
        EXPECT_TRUE(clock.text(last, caption).isEmpty());
        clock.refreshed(last, last.addSecs(c.intervalMinutes * 60));
        clock.setServerStopped(c.stopped);
        const QDateTime now(last.date(), c.now);
        EXPECT_EQ(clock.state(now), c.state);
        EXPECT_EQ(clock.isOverdue(now), c.state == FreshnessClock::State::Overdue);
        EXPECT_EQ(clock.text(now, caption), QString::fromUtf8(c.text));
        clock.refreshed(now, now); // a new refresh ends the stopped state
        EXPECT_FALSE(clock.serverStopped());
    }
}

TEST(GridCellStyler, ChangeCueOverTroubleOverStoppedGreyAndTheModelShowsIt)
{
    OutlineGrid grid;
    fillGrid(grid, 17, {{"WO|A", "", "WO", "A", "1", "0", "2"}, {"WO|B", "", "WO", "B", "1"}});
    qint64 now = 0;
    GridCellStyler styler(grid, ExceptionRules::GridKind::Summary, [&now] { return now; });
    ChangeCues cues;
    cues.capture(grid, "u", true, 0);
    grid.setText(2, 5, QStringLiteral("3")); // jeopardy rose
    cues.capture(grid, "u", true, 100);

    OutlineGridModel model(&grid);
    const QModelIndex jeopardy = model.indexForRow(2, 5);
    const QModelIndex plain = model.indexForRow(3, 5);
    EXPECT_EQ(jeopardy.data(Qt::DisplayRole).toString(), QStringLiteral("3"));
    EXPECT_FALSE(jeopardy.data(Qt::BackgroundRole).isValid()); // nothing drawn without options
    model.setDecorator(&styler);
    EXPECT_FALSE(jeopardy.data(Qt::BackgroundRole).isValid()); // every part still off

    styler.setExceptionsShown(true);
    EXPECT_EQ(jeopardy.data(Qt::BackgroundRole).value<QColor>(), CuePalette::jeopardy().back);
    EXPECT_EQ(jeopardy.data(Qt::ForegroundRole).value<QColor>(), CuePalette::jeopardy().text);
    EXPECT_FALSE(plain.data(Qt::BackgroundRole).isValid());

    styler.setChangeCues(&cues);
    now = 100;
    EXPECT_EQ(jeopardy.data(Qt::DisplayRole).toString(), QStringLiteral("\u25B2 3"));
    EXPECT_EQ(jeopardy.data(Qt::BackgroundRole).value<QColor>(), CuePalette::risen().back);
    now = 100 + ChangeCues::DefaultDurationMs / 2; // halfway faded into the trouble colour
    EXPECT_EQ(jeopardy.data(Qt::BackgroundRole).value<QColor>(),
              CuePalette::mix(CuePalette::risen().back, CuePalette::jeopardy().back, 0.5));
    now = 100 + ChangeCues::DefaultDurationMs;
    EXPECT_EQ(jeopardy.data(Qt::DisplayRole).toString(), QStringLiteral("3"));
    EXPECT_EQ(jeopardy.data(Qt::BackgroundRole).value<QColor>(), CuePalette::jeopardy().back);

    styler.setServerStopped(true);
    EXPECT_EQ(jeopardy.data(Qt::ForegroundRole).value<QColor>(), CuePalette::stopped().text);
    EXPECT_EQ(plain.data(Qt::ForegroundRole).value<QColor>(), CuePalette::stopped().text);
    EXPECT_EQ(grid.text(2, 5), QStringLiteral("3")); // the data stay as filled
}

TEST(TrendLog, KeepsTheDayInOrderBoundedAndStartsAfreshOnANewDay)
{
    TrendLog log(3);
    const QDateTime morning(QDate(2026, 3, 2), QTime(8, 0));
    for (int i = 0; i < 4; ++i) {
        PanelTrendPoint p;
        p.time = morning.addSecs(i * 60);
        p.woDone = i;
        EXPECT_FALSE(log.add(p));
    }
    ASSERT_EQ(log.points().size(), 3);
    EXPECT_EQ(log.points().front().woDone, 1); // the oldest went
    EXPECT_EQ(log.points().back().woDone, 3);

    PanelTrendPoint nextDay;
    nextDay.time = QDateTime(QDate(2026, 3, 3), QTime(0, 0, 5));
    EXPECT_TRUE(log.add(nextDay));
    ASSERT_EQ(log.points().size(), 1);
    EXPECT_EQ(log.points().front().time, nextDay.time);
}

} // namespace
