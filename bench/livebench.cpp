#include "livebench.h"

#include "benchdialoghost.h"
#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "model/cdlvcontroller.h"
#include "stage.h"
#include "viewerbench.h"
#include "viewertestaccess.h"
#include "views/drilldown.h"
#include "views/outlinegridmodel.h"
#include "views/outlinegridview.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"
#include "webdata/qzwebtransport.h"
#include "webdata/webvariant.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRadioButton>
#include <QTabBar>
#include <QTreeWidget>
#include <algorithm>
#include <malloc.h>

namespace {

// A field of /proc/self/status in kB, or -1.
long statusKb(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    const QByteArray name(field);
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith(name))
            return line.mid(name.size()).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

// Starts a new peak: the kernel sets VmHWM back to the current resident size. Freed heap is
// handed back first, so that the peak counts what the measured work really needs.
long resetPeakKb()
{
    malloc_trim(0);
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
    return statusKb("VmRSS:");
}

// Until the control has painted: pending events (deferred layouts, timers due now, and the paint
// they ask for), then the paint that a deferred layout asked for on the way. Painting once more
// regardless would count a second paint no user waits for.
void settle(QWidget &)
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
}

} // namespace

double LiveBench::Times::slowestInteraction() const
{
    return std::max({tabSwitch, displaySwitch, collapse, expand, viewButton, drillDown, resize});
}

LiveBench::Times LiveBench::run(const std::shared_ptr<QZWebMessage> &message,
                                const QByteArray &utf8, int runs)
{
    Times times;
    // The control sits in a host window, as in a host: its own size changes at once (a top-level
    // window's size would go through the platform).
    QWidget window;
    window.resize(2000, 1100);
    auto &viewer = *new DLViewer(&window); // owned by the window
    viewer.resize(1280, 800);
    DLViewerPrivate &d = DLViewerTestAccess::d(viewer);
    d.setDialogHost(std::make_unique<BenchDialogHost>(times.errors));
    QObject::connect(&viewer, &DLViewer::GetDetails, &viewer,
                     [&times](DLVParams &) { ++times.detailRequests; });
    viewer.Initialize(std::make_shared<QZWebTransport>(QStringLiteral("EN")));
    QString language = QStringLiteral("EN");
    viewer.SetRegionalFormatInfo(language);
    window.show();
    settle(viewer);

    QVariant data = ViewerBench::chooseEverything(viewer, message);
    settle(viewer);

    times.refresh = Stage::bestOf(runs, [&] {
        viewer.ReceiveMessage(data, QVariant(0), QVariant());
        settle(viewer);
    });
    times.units = d.controller()->BUs().Count();

    // A step and its way back, alternating (a repeated step would change nothing): the slower of
    // the two directions' best times.
    const auto slower = [&](auto &&there, auto &&back) {
        double a = 1e300;
        double b = 1e300;
        for (int i = 0; i < std::max(runs, 1); ++i) {
            a = std::min(a, Stage::bestOf(1, [&] {
                             there();
                             settle(viewer);
                         }));
            b = std::min(b, Stage::bestOf(1, [&] {
                             back();
                             settle(viewer);
                         }));
        }
        return std::max(a, b);
    };
    // Each pair is timed as alternating single steps: the best of each direction counts.
    double toHierarchy = 1e300;
    double toSummary = 1e300;
    double toPoints = 1e300;
    double toWorkOrders = 1e300;
    for (int i = 0; i < std::max(runs, 1); ++i) {
        toHierarchy = std::min(toHierarchy, Stage::bestOf(1, [&] {
                                   d.options().tabs()->setCurrentIndex(1);
                                   settle(viewer);
                               }));
        toPoints = std::min(toPoints, Stage::bestOf(1, [&] {
                                d.options().displayOption(1)->setChecked(true);
                                settle(viewer);
                            }));
        toWorkOrders = std::min(toWorkOrders, Stage::bestOf(1, [&] {
                                    d.options().displayOption(0)->setChecked(true);
                                    settle(viewer);
                                }));
        if (i + 1 < std::max(runs, 1))
            toSummary = std::min(toSummary, Stage::bestOf(1, [&] {
                                     d.options().tabs()->setCurrentIndex(0);
                                     settle(viewer);
                                 }));
    }
    times.displaySwitch = std::max(toPoints, toWorkOrders);

    // The top node of the work-order hierarchy (the root, with every unit below it), collapsed
    // and expanded through the view as a click on its branch would.
    OutlineGridView *view = d.views().view(1);
    const OutlineGrid &tree = d.views().grid(1);
    const auto *model = static_cast<const OutlineGridModel *>(view->model());
    const int top = tree.fixedRows();
    if (top < tree.rowCount() && tree.isNode(top)) {
        const QModelIndex node = model->indexForRow(top, 0);
        double collapse = 1e300;
        double expand = 1e300;
        for (int i = 0; i < std::max(runs, 1); ++i) {
            collapse = std::min(collapse, Stage::bestOf(1, [&] {
                                    view->collapse(node);
                                    settle(viewer);
                                }));
            expand = std::min(expand, Stage::bestOf(1, [&] {
                                  view->expand(node);
                                  settle(viewer);
                              }));
        }
        times.collapse = collapse;
        times.expand = expand;
        // A double-click on the open work orders of the unit row with the most units below it
        // (the root shows no figures): the costliest request, for every unit below it. The
        // first row instead would measure whatever subtree the random tree hung there.
        d.options().tabs()->setCurrentIndex(1);
        settle(viewer);
        int unitRow = top;
        for (int row = top + 1; row < tree.rowCount(); row = tree.subtreeEnd(row) + 1) {
            if (!tree.isEmpty(row, 1) &&
                (unitRow == top || tree.subtreeEnd(row) - row > tree.subtreeEnd(unitRow) - unitRow))
                unitRow = row;
        }
        times.drillDown = Stage::bestOf(runs, [&] {
            d.views().grid(1).setCurrentCell(unitRow, 4); // the press before the double-click
            d.details().vsFlex_MouseDown(1, DrillDown::LeftButton);
            d.details().vsFlex_DblClick(1, unitRow, 4);
            settle(viewer);
        });
    }
    toSummary = std::min(toSummary, Stage::bestOf(1, [&] {
                             d.options().tabs()->setCurrentIndex(0);
                             settle(viewer);
                         }));
    times.tabSwitch = std::max(toHierarchy, toSummary);

    // View after the choice changed (one unit fewer, then all again): the summary refills.
    QTreeWidgetItem *first =
        d.unitListWidget()->topLevelItemCount() > 0 ? d.unitListWidget()->topLevelItem(0) : nullptr;
    double viewButton = 1e300;
    for (int i = 0; i < 2 * std::max(runs, 1) && first; ++i) {
        first->setSelected(i % 2 != 0);
        viewButton = std::min(viewButton, Stage::bestOf(1, [&] {
                                  d.fills().cmdView_Click();
                                  settle(viewer);
                              }));
    }
    times.viewButton = first ? viewButton : 0;

    // Wider and narrower by 300 pixels (both above the width the panel starts to scroll at), on
    // either tab: the slowest counts.
    for (int tab : {1, 0}) {
        d.options().tabs()->setCurrentIndex(tab);
        settle(viewer);
        times.resize = std::max(times.resize, slower([&] { viewer.resize(1900, 1000); },
                                                     [&] { viewer.resize(1600, 1000); }));
    }

    // Memory: the message arrives as text, the host parses it and hands it over; the peak above
    // the resident size before counts everything that one message costs besides its text.
    {
        times.baseKb = resetPeakKb();
        QElapsedTimer timer;
        timer.start();
        auto fresh = std::make_shared<QZWebMessage>();
        fresh->loadXmlUtf8(utf8);
        times.hostParse = double(timer.nsecsElapsed()) / 1e6;
        QVariant freshData = WebVariant::wrap(fresh);
        viewer.ReceiveMessage(freshData, QVariant(0), QVariant());
        settle(viewer);
        times.peakKb = statusKb("VmHWM:");
    }
    // The control's own share: the message is parsed and held already.
    const long before = resetPeakKb();
    viewer.ReceiveMessage(data, QVariant(0), QVariant());
    settle(viewer);
    times.refreshPeakKb = statusKb("VmHWM:") - before;
    return times;
}
