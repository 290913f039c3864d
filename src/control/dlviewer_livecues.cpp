// The control's live options over its figures: wiring of LiveCues and the host's switches.

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "control/livecues.h"

#include <QHash>
#include <QLabel>

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
    // new data do. Every refresh asks, so the units go in as an order-free fingerprint (two
    // differently seeded hash sums and the count) rather than as a sorted list of thousands of
    // ids; two choices that collide would only cue one refresh that should not have been.
    quint64 sum = 0;
    quint64 mixed = 0;
    for (const auto &entry : currentSelection) {
        sum += quint64(qHash(entry.key, 0x5bd1e995u));
        mixed += quint64(qHash(entry.key, 0x27d4eb2fu)) * 0x9E3779B97F4A7C15ull;
    }
    return QStringLiteral("%1:%2:%3:%4")
        .arg(lastFillSingleMode ? QStringLiteral("single") : QStringLiteral("aggregate"))
        .arg(currentSelection.count())
        .arg(sum, 16, 16, QChar(u'0'))
        .arg(mixed, 16, 16, QChar(u'0'));
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
