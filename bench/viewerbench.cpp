#include "viewerbench.h"

#include "benchdialoghost.h"
#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "model/cdlvcontroller.h"
#include "stage.h"
#include "viewertestaccess.h"
#include "views/hierarchygrid.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"
#include "webdata/qzwebtransport.h"
#include "webdata/webvariant.h"

#include <QElapsedTimer>
#include <QItemSelectionModel>
#include <QRadioButton>
#include <QTreeWidget>
#include <algorithm>

ViewerBench::Times ViewerBench::run(const std::shared_ptr<QZWebMessage> &message, int runs)
{
    Times times;
    DLViewer viewer;
    viewer.resize(1280, 800);
    DLViewerPrivate &d = DLViewerTestAccess::d(viewer);
    d.setDialogHost(std::make_unique<BenchDialogHost>(times.errors));
    viewer.Initialize(std::make_shared<QZWebTransport>(QStringLiteral("EN")));
    QString language = QStringLiteral("EN");
    viewer.SetRegionalFormatInfo(language);

    QVariant data = chooseEverything(viewer, message);

    times.refresh =
        Stage::bestOf(runs, [&] { viewer.ReceiveMessage(data, QVariant(0), QVariant()); });
    BusinessUnits &model = d.mDLV->BUs();
    times.units = model.Count();
    times.hierarchyFill = Stage::bestOf(runs, [&] {
        OutlineGrid::RedrawSuspender suspendWorkOrders(d.grids[1]);
        OutlineGrid::RedrawSuspender suspendPoints(d.grids[2]);
        d.SaveCollapsedList(1, *d.collapsedLists[1]);
        d.SaveCollapsedList(2, *d.collapsedLists[2]);
        HierarchyGrid::Fill(d.grids[1], d.grids[2], *d.mDLV, model, d.currentSelection);
        d.RestoreCollapsedList(1, *d.collapsedLists[1]);
        d.RestoreCollapsedList(2, *d.collapsedLists[2]);
    });
    times.unitList = Stage::bestOf(runs, [&] { d.LoadBUListView(); });
    times.summaryFill = Stage::bestOf(runs, [&] { d.ShowBUs(model); });

    times.hierarchyRows = d.grids[1].rowCount();
    times.listItems = d.lvBU->topLevelItemCount();
    times.selected = int(d.lvBU->selectionModel()->selectedRows().size());
    times.summaryRows = d.grids[0].rowCount();
    return times;
}

QStringList ViewerBench::sessionUnits(const QZWebMessage &message)
{
    QStringList session;
    const QZWebTable &units = message.data(1)->table(u"BusinessUnits");
    const int idColumn = units.requireColumn(u"BUID");
    session.reserve(units.rowCount());
    for (int r = 1; r <= units.rowCount(); ++r) {
        const QString id = units.value(r, idColumn).toString();
        if (id != QStringLiteral("#")) // the root is no unit a session sees
            session << id;
    }
    return session;
}

QVariant ViewerBench::chooseEverything(DLViewer &viewer,
                                       const std::shared_ptr<QZWebMessage> &message)
{
    DLViewerPrivate &d = DLViewerTestAccess::d(viewer);
    QStringList session = sessionUnits(*message);
    viewer.SetSessionBUIDList(session);
    QVariant data = WebVariant::wrap(message);
    viewer.ReceiveMessage(data, QVariant(0), QVariant());
    d.lvBU->selectAll();
    d.choice.setSingleUnits(false);
    d.cmdView_Click();
    return data;
}
