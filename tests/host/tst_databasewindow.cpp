// The host on a work-order database with the real control: a user's double-click on a figure
// opens the list of the database's records behind it, as many as the figure says.
#include "control/dlvgrid.h"
#include "control/dlviewer.h"
#include "host/databasefeed.h"
#include "host/detailswindow.h"
#include "host/mainwindow.h"
#include "host/profilestore.h"
#include "host/workorderdatabase.h"
#include "host/workordergenerator.h"
#include "support/qtprinters.h"
#include "views/outlinegridview.h"

#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

class DatabaseWindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        QString error;
        {
            auto db = WorkOrderDatabase::open(dir.filePath("day.db"),
                                              WorkOrderDatabase::Mode::Create, &error);
            ASSERT_TRUE(db) << error.toStdString();
            ASSERT_EQ(day.write(*db), QString());
        }
        auto feed = DatabaseFeed::open(dir.filePath("day.db"), &error);
        ASSERT_TRUE(feed) << error.toStdString();
        auto store =
            std::make_unique<ProfileStore>(dir.filePath("p.sqlite"), "tester", "DashlonViewer");
        ASSERT_TRUE(store->open());
        MainWindow::Settings settings;
        settings.sessionUnits = feed->unitIds();
        settings.timedRefresh = false;
        window = std::make_unique<MainWindow>(std::move(feed), std::move(store), settings);
        window->resize(1280, 800);
        window->start();
        window->show();
        for (int i = 0; i < 50 && window->dataMessagesSent() == 0; ++i)
            QApplication::processEvents();
        ASSERT_EQ(window->dataMessagesSent(), 1);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    // Chooses one unit, as a user would, and shows the data again.
    void choose(const QString &id)
    {
        auto *list = window->viewer()->findChild<QTreeWidget *>(QStringLiteral("lvBU"));
        ASSERT_TRUE(list);
        list->clearSelection();
        for (QTreeWidgetItemIterator it(list); *it; ++it)
            if ((*it)->data(0, Qt::UserRole).toString() == u'_' + id)
                (*it)->setSelected(true);
        window->viewer()->findChild<QPushButton *>(QStringLiteral("cmdView"))->click();
        window->resendLast();
    }

    // A user's double-click on a cell of grid `index`; returns the details window it opened.
    DetailsWindow *doubleClick(int index, int row, int col)
    {
        window->viewer()
            ->findChild<QTabBar *>(QStringLiteral("Tabs"))
            ->setCurrentIndex(index == 0 ? 0 : 1);
        auto *view =
            window->viewer()->findChild<OutlineGridView *>(QStringLiteral("vsFlex%1").arg(index));
        if (!view)
            return nullptr;
        QApplication::processEvents();
        view->scrollTo(view->model()->index(0, 0));
        const QPoint at = view->cellRect(row, col).center();
        const auto before = window->findChildren<DetailsWindow *>().size();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
        const auto windows = window->findChildren<DetailsWindow *>();
        return windows.size() > before ? windows.back() : nullptr;
    }

    const WorkOrderGenerator day{21, QTime(12, 0), QDate(2026, 3, 17)};
    QTemporaryDir dir;
    std::unique_ptr<MainWindow> window;
};

// How many generated work orders of the units whose id starts with `prefix` have `status`.
int ordersOf(const WorkOrderGenerator &day, const QString &prefix, DetailRecords::Status status)
{
    int n = 0;
    for (const auto &o : day.workOrders())
        n += o.buid.startsWith(prefix) && o.status == status ? 1 : 0;
    return n;
}

TEST_F(DatabaseWindowTest, ADoubleClickListsTheRecordsBehindTheFigure)
{
    // A crew's open work orders, from the summary's grand total.
    choose(QStringLiteral("LKS-CLE-1"));
    const DLVGrid summary = window->viewer()->Grid(DLVGrid::Summary);
    const int total = summary.FixedRows(); // the grand total comes first
    ASSERT_TRUE(summary.RowData(total).isEmpty());
    const int open = ordersOf(day, QStringLiteral("LKS-CLE-1"), DetailRecords::Status::Open);
    ASSERT_GT(open, 0);
    EXPECT_EQ(summary.TextMatrix(total, DLVGrid::SummaryWOOpen), QString::number(open));
    DetailsWindow *orders = doubleClick(0, total, DLVGrid::SummaryWOOpen);
    ASSERT_TRUE(orders);
    EXPECT_EQ(orders->visibleRowCount(), open);

    // A region's row in the hierarchy covers its districts and crews: the control sends them
    // all, and the lists hold the records of every one.
    choose(QStringLiteral("LKS"));
    const DLVGrid hierarchy = window->viewer()->Grid(DLVGrid::HierarchyWorkOrders);
    const int region = hierarchy.FindRow(QStringLiteral("LKS"));
    ASSERT_GE(region, 0);
    const int late = ordersOf(day, QStringLiteral("LKS-"), DetailRecords::Status::Late);
    EXPECT_EQ(hierarchy.TextMatrix(region, DLVGrid::HierarchyLate), QString::number(late));
    DetailsWindow *lateOrders = doubleClick(1, region, DLVGrid::HierarchyLate);
    ASSERT_TRUE(lateOrders);
    EXPECT_EQ(lateOrders->visibleRowCount(), late);

    int onDuty = 0;
    for (const auto &t : day.technicians())
        onDuty += t.buid.startsWith(QStringLiteral("LKS-")) && t.onDuty ? 1 : 0;
    EXPECT_EQ(hierarchy.TextMatrix(region, DLVGrid::HierarchyTechCount), QString::number(onDuty));
    DetailsWindow *people = doubleClick(1, region, DLVGrid::HierarchyTechCount);
    ASSERT_TRUE(people);
    EXPECT_EQ(people->visibleRowCount(), onDuty);
#ifdef DLV_SCREENSHOT_DIR
    lateOrders->resize(1000, 500);
    lateOrders->grab().save(QStringLiteral(DLV_SCREENSHOT_DIR "/db-details.png"));
#endif
}

} // namespace
