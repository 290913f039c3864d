#include "control/livecues.h"
#include "controlfixture.h"
#include "model/cdlvcontroller.h"
#include "views/cuepalette.h"
#include "views/outlinegridmodel.h"

#include <QLabel>

namespace {

const QDateTime kTen(QDate(2026, 3, 2), QTime(10, 0));

/// The sample data with North's completed work orders and its jeopardy count given, and a
/// 15-minute refresh interval.
DLVDataBuilder refreshData(const QString &northDone, const QString &northJeopardy = "0")
{
    DLVDataBuilder b;
    b.unit("#", "All units", "#").unit("N", "North", "#").unit("E", "East", "N");
    b.unit("S", "South", "#").unit("W", "West", "S").format("EN", "hh:mm");
    b.general("N", "N", "10", "8", "4").general("E", "E", "1", "1", "1");
    b.general("S", "S", "5", "4", "2").general("W", "W", "2", "2", "2");
    b.detail("N", "INS", "A", {"3", "1", northJeopardy, "0", northDone});
    b.detail("E", "INS", "A", {"1", "1"});
    b.detail("S", "REP", "B", {"2", "0", "1"}).detail("W", "REP", "B", {"2", "0", "1"});
    b.property("tqJeopardyThreshold", "45").property("tqDBRefreshInterval", "15");
    return b;
}

class DLViewerLiveCues : public ControlFixture
{
protected:
    /// North and South chosen; the data came at 10:00 and the cues' clock reads `now`.
    void startAtTen()
    {
        d().controller()->setClock([] { return kTen; });
        d().liveCues().setClock([this] { return now; });
        start(refreshData("7"), {"N", "E", "S"});
        select({"_N", "_S"});
        d().fills().cmdView_Click();
        send(refreshData("7"));
        viewer->show();
    }

    QVariant cell(int grid, const QString &rowData, int col, int role)
    {
        const int row = d().views().grid(grid).findRow(rowData);
        return d().views().view(grid)->gridModel()->indexForRow(row, col).data(role);
    }
    QColor textColour(const char *label)
    {
        return child<QLabel>(label)->palette().windowText().color();
    }
    QColor backColour(const char *label)
    {
        return child<QLabel>(label)->palette().window().color();
    }
    QLabel *marker(const char *label)
    {
        return child<QLabel>(label)->findChild<QLabel *>(QString::fromLatin1(label) + "Cue");
    }

    QDateTime now = kTen;
};

TEST_F(DLViewerLiveCues, OffAtCreationSoTheControlShowsWhatItAlwaysShowed)
{
    startAtTen();
    EXPECT_FALSE(viewer->FreshnessShown());
    EXPECT_FALSE(viewer->ChangeCuesShown());
    EXPECT_FALSE(viewer->ExceptionsShown());
    send(refreshData("9", "2"));
    for (int g = 0; g < GridViews::kCount; ++g)
        EXPECT_EQ(d().views().view(g)->gridModel()->decorator(), nullptr) << g;
    EXPECT_TRUE(d().topRow().freshnessLabel()->isHidden());
    for (const char *name : {"lblWODone", "lblWOsPerHrToday", "lblNextRefreshTime"})
        EXPECT_FALSE(child<QLabel>(name)->testAttribute(Qt::WA_SetPalette)) << name;
    EXPECT_EQ(marker("lblWODone"), nullptr);
    // The trend is kept regardless: one point per refresh.
    ASSERT_EQ(viewer->PanelTrend().size(), 3);
    EXPECT_EQ(viewer->PanelTrend().back().woDone, 9);
    EXPECT_EQ(viewer->PanelTrend().back().time, kTen);
}

TEST_F(DLViewerLiveCues, ChangeCuesMarkWhatARefreshChangedButNotANewChoiceOfUnits)
{
    startAtTen();
    viewer->SetChangeCuesShown(true);
    QCoreApplication::processEvents(); // what the start told of
    int trendPoints = 0;
    QObject::connect(viewer.get(), &DLViewer::PanelTrendChanged, [&] { ++trendPoints; });
    send(refreshData("9"));    // North completed two more
    EXPECT_EQ(trendPoints, 0); // told from the event loop, once the message is handled
    QCoreApplication::processEvents();
    EXPECT_EQ(trendPoints, 1);

    const QString done = cell(0, "INS|A", 7, Qt::DisplayRole).toString();
    EXPECT_EQ(done, QStringLiteral("\u25B2 9"));
    EXPECT_EQ(cell(0, "INS|A", 7, Qt::BackgroundRole).value<QColor>(), CuePalette::risen().back);
    EXPECT_EQ(cell(0, "INS|A", 3, Qt::DisplayRole).toString(), QStringLiteral("3")); // unchanged
    EXPECT_EQ(cell(1, "N", 8, Qt::DisplayRole).toString(), QStringLiteral("\u25B2 9"));
    EXPECT_EQ(cell(2, "N", 8, Qt::DisplayRole).toString(), QStringLiteral("0")); // no points
    ASSERT_NE(marker("lblWODone"), nullptr);
    EXPECT_TRUE(marker("lblWODone")->isVisibleTo(viewer.get()));
    EXPECT_EQ(marker("lblWODone")->text(), QStringLiteral("\u25B2"));
    EXPECT_EQ(child<QLabel>("lblWODone")->text(), QStringLiteral("9")); // the figure stays plain
    EXPECT_EQ(backColour("lblWODone"), CuePalette::risen().back);

    now = kTen.addSecs(60); // the cues have faded
    d().liveCues().tick();
    EXPECT_EQ(cell(0, "INS|A", 7, Qt::DisplayRole).toString(), QStringLiteral("9"));
    EXPECT_FALSE(marker("lblWODone")->isVisibleTo(viewer.get()));
    EXPECT_FALSE(child<QLabel>("lblWODone")->autoFillBackground());

    // North alone: every figure changes, but because of the choice, not the data.
    select({"_N"});
    d().fills().cmdView_Click();
    send(refreshData("8"));
    EXPECT_EQ(cell(0, "INS|A", 7, Qt::DisplayRole).toString(), QStringLiteral("\u25BC 8"));
    EXPECT_EQ(cell(0, "INS|A", 3, Qt::DisplayRole).toString(), QStringLiteral("3"));
    EXPECT_EQ(marker("lblTechCount"), nullptr);
}

TEST_F(DLViewerLiveCues, FreshnessCountsDownTurnsAmberWhenLateAndGreysAStoppedServer)
{
    startAtTen();
    viewer->SetFreshnessShown(true);
    now = kTen.addSecs(5 * 60);
    d().liveCues().tick();
    EXPECT_TRUE(d().topRow().freshnessLabel()->isVisibleTo(viewer.get()));
    EXPECT_EQ(d().topRow().freshnessLabel()->text(),
              QStringLiteral("Data 5:00 old \u00B7 next in 10:00"));
    EXPECT_NE(textColour("lblNextRefreshTime"), CuePalette::overdue().text);

    now = kTen.addSecs(31 * 60); // the 10:15 refresh is more than 15 minutes late
    d().liveCues().tick();
    EXPECT_EQ(d().topRow().freshnessLabel()->text(),
              QStringLiteral("Data 31:00 old \u00B7 refresh overdue by 16:00"));
    for (const char *name : {"lblLastRefreshTime", "lblNextRefreshTime"}) {
        EXPECT_EQ(textColour(name), CuePalette::overdue().text) << name;
        EXPECT_EQ(backColour(name), CuePalette::overdue().back) << name;
    }

    send(DLVDataBuilder().named(QStringLiteral("DLVServerStopped")));
    EXPECT_EQ(textColour("lblTechCount"), CuePalette::stopped().text);
    EXPECT_EQ(backColour("lblNextRefreshTime"), CuePalette::overdue().back); // still late
    EXPECT_EQ(cell(1, "N", 1, Qt::ForegroundRole).value<QColor>(), CuePalette::stopped().text);
    EXPECT_EQ(child<QLabel>("lblTechCount")->text(), QStringLiteral("15")); // figures stay
    EXPECT_TRUE(d().topRow().freshnessLabel()->text().endsWith(
        QStringLiteral("server stopped, figures not updated")));
    // A picture of the stopped server's grey figures under the amber refresh times.
    EXPECT_TRUE(viewer->grab().save(QStringLiteral(DLV_SCREENSHOT_DIR "/dlviewer-stopped.png")));

    send(refreshData("7")); // the server is back
    EXPECT_NE(textColour("lblTechCount"), CuePalette::stopped().text);
    EXPECT_FALSE(cell(1, "N", 1, Qt::ForegroundRole).isValid());
    viewer->SetFreshnessShown(false);
    EXPECT_TRUE(d().topRow().freshnessLabel()->isHidden());
}

TEST_F(DLViewerLiveCues, TroubleColoursJeopardyLateAndRatesBelowTheRequiredRate)
{
    startAtTen();
    viewer->SetExceptionsShown(true);
    // South has one work order in jeopardy.
    EXPECT_EQ(cell(0, "REP|B", 5, Qt::BackgroundRole).value<QColor>(), CuePalette::jeopardy().back);
    EXPECT_EQ(cell(1, "S", 6, Qt::BackgroundRole).value<QColor>(), CuePalette::jeopardy().back);
    EXPECT_FALSE(cell(0, "REP|B", 6, Qt::BackgroundRole).isValid());
    // 7 done in 12 hours (0.58) against 5 open in 6 hours (0.83).
    EXPECT_EQ(backColour("lblWOsPerHrToday"), CuePalette::belowRate().back);
    EXPECT_EQ(textColour("lblWOsPerHrToday"), CuePalette::belowRate().text);
    EXPECT_FALSE(child<QLabel>("lblWOsPerHrReq")->testAttribute(Qt::WA_SetPalette));

    viewer->SetExceptionsShown(false);
    EXPECT_FALSE(cell(0, "REP|B", 5, Qt::BackgroundRole).isValid());
    EXPECT_FALSE(child<QLabel>("lblWOsPerHrToday")->autoFillBackground());
}

} // namespace

// A host may answer each new trend point with the next data message. Each message is handled on
// its own, never inside the handling of the one before, so a host that always answers cannot make
// the control recurse.
TEST_F(DLViewerLiveCues, AHostAnsweringEachTrendPointWithDataNeverReentersTheControl)
{
    startAtTen();
    bool handling = false;
    int answers = 0;
    QObject::connect(viewer.get(), &DLViewer::PanelTrendChanged, [&] {
        EXPECT_FALSE(handling) << "signalled inside the handling of a message";
        if (answers == 50)
            return;
        ++answers;
        handling = true;
        send(refreshData(QString::number(10 + answers)));
        handling = false;
    });
    send(refreshData("9"));
    for (int i = 0; i < 200 && answers < 50; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(answers, 50);
    EXPECT_EQ(viewer->PanelTrend().back().woDone, 60);
}
