// The host's windows with the real control: the start-up order, data after "ClientReady", the
// server switch, detail requests, and the details window's search and export.
#include "common/dlvparams.h"
#include "control/dlviewer.h"
#include "host/detailswindow.h"
#include "host/detailtablemodel.h"
#include "host/documentfeed.h"
#include "host/mainwindow.h"
#include "host/profilestore.h"
#include "host/trendchart.h"
#include "support/qtprinters.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

const QString kTwoCrews = QStringLiteral(DLV_HOST_DATA_DIR "/two-crews.xml");

std::shared_ptr<const DetailRecords> records()
{
    using Status = DetailRecords::Status;
    auto r = std::make_shared<DetailRecords>();
    r->workOrders = {
        {"W1", "C1", "INST", "RES", Status::Open, 5, "Ana Silva", QTime(9, 30)},
        {"W2", "C1", "REP", "BUS", Status::Late, 1, "Ben, Jr.", QTime(8, 0)},
        {"W3", "C1", "INST", "RES", Status::Completed, 5, "Ana Silva", QTime(13, 5)},
        {"W4", "C1", "INST", "RES", Status::Completed, 5, "Cara", QTime(11, 0)},
    };
    return r;
}

TEST(DetailsWindow, SearchFiltersAllColumnsAndExportWritesTheRowsAsShown)
{
    auto *model = new DetailTableModel(DetailTableModel::Kind::WorkOrders, records(),
                                       {{"C1"}, {}, {}, {}}, {});
    QPointer<DetailsWindow> window = new DetailsWindow(model, "Work orders", {}, nullptr);
    window->show();
    EXPECT_EQ(window->visibleRowCount(), 4);
    // Sorted by due time at first.
    EXPECT_EQ(window->view()->model()->index(0, 0).data().toString(), "W2");

    window->searchBox()->setText(QStringLiteral("ben, jr"));
    EXPECT_EQ(window->visibleRowCount(), 1);
    window->searchBox()->setText(QStringLiteral("completed"));
    EXPECT_EQ(window->visibleRowCount(), 2);
    auto *count = window->findChild<QLabel *>(QStringLiteral("count"));
    ASSERT_TRUE(count);
    EXPECT_EQ(count->text(), "2 of 4 work orders");

    window->searchBox()->clear();
    window->view()->sortByColumn(5, Qt::DescendingOrder); // points
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("details.csv"));
    QString error;
    ASSERT_TRUE(window->exportCsv(path, &error)) << error.toStdString();
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = f.readAll().split('\n');
    ASSERT_EQ(lines.size(), 6); // header, four rows, the empty piece after the last line end
    EXPECT_EQ(lines[0],
              "\xEF\xBB\xBFWork order,Unit,Job type,Job class,Status,Points,Technician,Due\r");
    EXPECT_TRUE(lines[4].startsWith("W2,C1,REP,BUS,Late,1,\"Ben, Jr.\",08:00")) << lines[4].data();

    QApplication::setActiveWindow(window); // shortcuts act in the active window
    QTest::keyClick(window->view(), Qt::Key_Escape);
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull()) << "Escape closes the window, which deletes itself";
}

class MainWindowTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    std::unique_ptr<MainWindow> makeWindow()
    {
        QString error;
        auto feed = DocumentFeed::open(kTwoCrews, &error);
        EXPECT_TRUE(feed) << error.toStdString();
        auto store =
            std::make_unique<ProfileStore>(dir.filePath("p.sqlite"), "tester", "DashlonViewer");
        EXPECT_TRUE(store->open());
        MainWindow::Settings settings;
        settings.sessionUnits = feed->unitIds();
        settings.timedRefresh = false;
        return std::make_unique<MainWindow>(std::move(feed), std::move(store), settings);
    }

    // "ClientReady" schedules the first refresh on the event loop.
    static void startAndWaitForData(MainWindow &window)
    {
        window.resize(1100, 700);
        window.start();
        window.show();
        for (int i = 0; i < 50 && window.dataMessagesSent() == 0; ++i)
            QApplication::processEvents();
        ASSERT_EQ(window.dataMessagesSent(), 1);
    }

    template <typename T> static T *child(MainWindow &w, const char *name)
    {
        return w.viewer()->findChild<T *>(QString::fromLatin1(name));
    }

    QTemporaryDir dir;
};

TEST_F(MainWindowTest, StartsTheControlAndSendsDataAfterClientReady)
{
    auto window = makeWindow();
    startAndWaitForData(*window);
    auto *list = child<QTreeWidget>(*window, "lvBU");
    ASSERT_TRUE(list);
    QStringList keys;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        keys.append(list->topLevelItem(i)->data(0, Qt::UserRole).toString());
    keys.sort();
    EXPECT_EQ(keys, (QStringList{"_C1", "_C2", "_R1"}));
}

TEST_F(MainWindowTest, StoppingTheServerShowsItAndRestartingResumesData)
{
    auto window = makeWindow();
    startAndWaitForData(*window);
    auto *status = child<QLabel>(*window, "lblStatus");
    ASSERT_TRUE(status);
    window->stopServer();
    EXPECT_FALSE(window->isServerRunning());
    EXPECT_TRUE(status->isVisible());
    EXPECT_FALSE(status->text().isEmpty());
    window->refresh(); // nothing is sent while the server is stopped
    EXPECT_EQ(window->dataMessagesSent(), 1);
    window->restartServer();
    EXPECT_TRUE(window->isServerRunning());
    EXPECT_EQ(window->dataMessagesSent(), 2);
    EXPECT_FALSE(status->isVisible());
    // Closing stops the control and the feed.
    window->close();
    window->refresh();
    window->restartServer();
    EXPECT_EQ(window->dataMessagesSent(), 2);
}

TEST_F(MainWindowTest, ADetailRequestOpensAWindowWithTheRecordsBehindTheFigure)
{
    auto window = makeWindow();
    startAndWaitForData(*window);
    DLVParams params;
    params.BUID = QStringLiteral("C1|C2");
    params.Info = QStringLiteral("WORKORDER");
    params.JobStatus = QStringLiteral("WOCompleted");
    Q_EMIT window->viewer()->GetDetails(params);
    DLVParams techs;
    techs.BUID = QStringLiteral("C2");
    techs.Info = QStringLiteral("USER");
    Q_EMIT window->viewer()->GetDetails(techs);

    const auto windows = window->findChildren<DetailsWindow *>();
    ASSERT_EQ(windows.size(), 2);
    EXPECT_EQ(windows[0]->visibleRowCount(), 30); // the document's completed work orders
    EXPECT_EQ(windows[1]->visibleRowCount(), 5);  // Beta Crew's technicians
    EXPECT_TRUE(windows[0]->isVisible());
}

} // namespace

namespace {

TEST_F(MainWindowTest, ViewMenuSwitchesTheControlsOptionsAndTheTrendFollowsEveryRefresh)
{
    auto window = makeWindow();
    EXPECT_FALSE(window->viewer()->ChangeCuesShown()); // off unless asked for
    startAndWaitForData(*window);
    for (const char *name : {"actionFreshness", "actionChangeCues", "actionExceptions"}) {
        auto *action = window->findChild<QAction *>(QString::fromLatin1(name));
        ASSERT_TRUE(action) << name;
        EXPECT_FALSE(action->isChecked());
        action->trigger();
    }
    EXPECT_TRUE(window->viewer()->FreshnessShown());
    EXPECT_TRUE(window->viewer()->ChangeCuesShown());
    EXPECT_TRUE(window->viewer()->ExceptionsShown());

    EXPECT_FALSE(window->trendDock()->isVisible());
    window->findChild<QAction *>(QStringLiteral("actionTrend"))->trigger();
    EXPECT_TRUE(window->trendDock()->isVisible());
    window->refresh();
    QCoreApplication::processEvents(); // the control tells of new points from the event loop
    EXPECT_EQ(window->trendChart()->pointCount(), window->dataMessagesSent());
    EXPECT_EQ(window->trendChart()->pointCount(), window->viewer()->PanelTrend().size());
}

TEST(TrendChart, ExportsAPictureSafelyAndShowsADay)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    TrendChart chart;
    chart.resize(1280, 800);
    QList<PanelTrendPoint> day;
    const QDateTime start(QDate(2026, 3, 2), QTime(7, 0));
    for (int i = 0; i <= 40; ++i) { // every quarter hour from 7:00 to 17:00
        PanelTrendPoint p;
        p.time = start.addSecs(i * 15 * 60);
        p.wosPerHrToday = float(0.4 + 0.01 * i);
        p.wosPerHrReq = float(0.9 - 0.008 * i);
        p.ptsPerHrToday = float(1.2 + 0.03 * i);
        p.ptsPerHrReq = float(2.4 - 0.02 * i);
        day.append(p);
    }
    chart.setPoints(day);
    EXPECT_EQ(chart.pointCount(), 41);

    const QString file = dir.filePath(QStringLiteral("trend.png"));
    ASSERT_TRUE(chart.exportPng(file)) << chart.errorString().toStdString();
    const QImage picture(file);
    EXPECT_FALSE(picture.isNull());
    EXPECT_GT(picture.width(), 400);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"trend.png"}); // no leftovers

    // A folder that does not exist: a clear reason, nothing written.
    EXPECT_FALSE(chart.exportPng(dir.filePath(QStringLiteral("missing/trend.png"))));
    EXPECT_FALSE(chart.errorString().isEmpty());
#ifdef DLV_SCREENSHOT_DIR
    chart.exportPng(QStringLiteral(DLV_SCREENSHOT_DIR "/trend-chart.png"));
#endif
}

} // namespace
