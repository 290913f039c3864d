// The control's live options over its figures: wiring of LiveCues and the host's switches.

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "control/livecues.h"

#include <QLabel>
#include <algorithm>

void DLViewerPrivate::createLiveCues()
{
    LiveCues::Widgets w;
    for (int i = 0; i < 3; ++i) {
        w.views[i] = vsFlex[i];
        w.grids[i] = &grids[i];
    }
    w.figures = panelFigures();
    w.refreshTimes = {lblLastRefreshTime, lblNextRefreshTime};
    w.freshness = lblFreshness;
    w.relayoutTopRow = [this] { relayoutTopRow(); };
    w.selectionContext = [this] { return selectionContext(); };
    liveCues = std::make_unique<LiveCues>(w, [this](const QString &key) { return caption(key); });
    // Queued: the point is added while a data message is still being handled, and a host that
    // answers the signal with the next message must not re-enter that handling (a host that
    // always does would otherwise recurse without end).
    QObject::connect(liveCues.get(), &LiveCues::trendChanged, q, &DLViewer::PanelTrendChanged,
                     Qt::QueuedConnection);
}

QString DLViewerPrivate::selectionContext() const
{
    // The chosen units (in any order: the list follows the tree) and the mode, not the units
    // they sum up to: a unit that moves in the tree changes an aggregate's figures as truly as
    // new data do.
    std::vector<QString> ids = currentSelection.keys();
    std::sort(ids.begin(), ids.end());
    QString context = lastFillSingleMode ? QStringLiteral("single:") : QStringLiteral("aggregate:");
    for (const QString &id : ids)
        context += id + u'|';
    return context;
}

void DLViewer::SetFreshnessShown(bool on)
{
    d->liveCues->setFreshnessShown(on);
}

bool DLViewer::FreshnessShown() const
{
    return d->liveCues->freshnessShown();
}

void DLViewer::SetChangeCuesShown(bool on)
{
    d->liveCues->setChangeCuesShown(on);
}

bool DLViewer::ChangeCuesShown() const
{
    return d->liveCues->changeCuesShown();
}

void DLViewer::SetExceptionsShown(bool on)
{
    d->liveCues->setExceptionsShown(on);
}

bool DLViewer::ExceptionsShown() const
{
    return d->liveCues->exceptionsShown();
}

QList<PanelTrendPoint> DLViewer::PanelTrend() const
{
    return d->liveCues->trend().points();
}
