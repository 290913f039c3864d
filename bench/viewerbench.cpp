#include "viewerbench.h"

#include "benchdialoghost.h"
#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "model/cdlvcontroller.h"
#include "physicalfloor.h"
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
#include <array>

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
    BusinessUnits &model = d.controller()->BUs();
    times.units = model.Count();
    times.hierarchyFill = Stage::bestOf(runs, [&] { d.fills().fillHierarchyGrids(model); });
    times.unitList = Stage::bestOf(runs, [&] { d.fills().LoadBUListView(); });
    times.summaryFill = Stage::bestOf(runs, [&] { d.fills().ShowBUs(model); });
    const auto evict = [] { PhysicalFloor::evictCaches(); };
    times.hierarchyFillCold =
        Stage::bestOf(runs, evict, [&] { d.fills().fillHierarchyGrids(model); });
    times.unitListCold = Stage::bestOf(runs, evict, [&] { d.fills().LoadBUListView(); });
    times.summaryFillCold = Stage::bestOf(runs, evict, [&] { d.fills().ShowBUs(model); });

    times.hierarchyRows = d.views().grid(1).rowCount();
    times.listItems = d.unitListWidget()->topLevelItemCount();
    times.selected = int(d.unitListWidget()->selectionModel()->selectedRows().size());
    times.summaryRows = d.views().grid(0).rowCount();
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
    d.unitListWidget()->selectAll();
    d.choice().setSingleUnits(false);
    d.fills().cmdView_Click();
    return data;
}
