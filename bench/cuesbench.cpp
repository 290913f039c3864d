#include "cuesbench.h"

#include "benchdialoghost.h"
#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "model/cdlvcontroller.h"
#include "viewerbench.h"
#include "viewertestaccess.h"
#include "views/changecues.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"
#include "webdata/qzwebtransport.h"
#include "webdata/webvariant.h"

#include <QElapsedTimer>
#include <QRadioButton>
#include <QTreeWidget>
#include <algorithm>
#include <array>

CuesBench::Times CuesBench::run(const std::shared_ptr<QZWebMessage> &first,
                                const std::shared_ptr<QZWebMessage> &second, int runs)
{
    Times times;
    DLViewer viewer;
    viewer.resize(1280, 800);
    DLViewerPrivate &d = DLViewerTestAccess::d(viewer);
    d.setDialogHost(std::make_unique<BenchDialogHost>(times.errors));
    viewer.Initialize(std::make_shared<QZWebTransport>(QStringLiteral("EN")));
    QString language = QStringLiteral("EN");
    viewer.SetRegionalFormatInfo(language);

    QStringList session = ViewerBench::sessionUnits(*first);
    viewer.SetSessionBUIDList(session);

    QVariant messages[2] = {WebVariant::wrap(first), WebVariant::wrap(second)};
    int next = 0;
    const auto refresh = [&] {
        QElapsedTimer timer;
        timer.start();
        viewer.ReceiveMessage(messages[next], QVariant(0), QVariant());
        next = 1 - next;
        return double(timer.nsecsElapsed()) / 1e6;
    };
    refresh();
    d.unitListWidget()->selectAll();
    d.options().summaryOption(1)->setChecked(true);
    d.fills().cmdView_Click();
    refresh();

    times.refreshOff = times.refreshOn = 1e300;
    for (int i = 0; i < std::max(runs, 1); ++i) {
        viewer.SetChangeCuesShown(false);
        viewer.SetExceptionsShown(false);
        viewer.SetFreshnessShown(false);
        times.refreshOff = std::min(times.refreshOff, refresh());
        // Switching the cues on takes the figures on screen as what the next refresh changes.
        viewer.SetChangeCuesShown(true);
        viewer.SetExceptionsShown(true);
        viewer.SetFreshnessShown(true);
        times.refreshOn = std::min(times.refreshOn, refresh());
    }
    // The cues' work alone: the grids of one refresh compared with those of the other.
    viewer.SetChangeCuesShown(false);
    std::array<ChangeCues, 3> probes;
    int cued = 0;
    times.cueWork = 1e300;
    for (int i = 0; i < std::max(runs, 1); ++i) {
        for (int g = 0; g < 3; ++g)
            probes[g].capture(d.views().grid(g), QStringLiteral("bench"), true, 0);
        refresh();
        QElapsedTimer timer;
        timer.start();
        // Every refresh with cues on names the chosen units, then compares the grids.
        const QString context = d.fills().selectionContext();
        for (int g = 0; g < 3; ++g)
            probes[g].capture(d.views().grid(g), QStringLiteral("bench"), true, 1);
        cued += int(context.size() > 0);
        times.cueWork = std::min(times.cueWork, double(timer.nsecsElapsed()) / 1e6);
    }
    times.cuedCells = cued > 0 ? 0 : -1; // -1: no units were chosen
    for (int g = 0; g < 3; ++g)
        times.cuedCells += probes[g].cued();
    times.units = d.controller()->BUs().Count();
    return times;
}
