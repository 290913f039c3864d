#include "control/livecues.h"

#include "views/cuepalette.h"
#include "views/exceptionrules.h"
#include "views/outlinegridmodel.h"
#include "views/outlinegridview.h"

#include <QLabel>

namespace {

constexpr int kFadeTickMs = 200;
constexpr int kClockTickMs = 1000;
const QString kServerDown = QStringLiteral("msg-DLVServerDown");

QString panelKey(int figure)
{
    return QStringLiteral("panel%1").arg(figure);
}

// Colours a label, or gives it back its own when both are invalid.
void paintLabel(QLabel *label, const QColor &text, const QColor &back)
{
    if (!text.isValid() && !back.isValid()) {
        if (label->autoFillBackground() || label->testAttribute(Qt::WA_SetPalette)) {
            label->setPalette(QPalette());
            label->setAutoFillBackground(false);
        }
        return;
    }
    QPalette pal = label->parentWidget() ? label->parentWidget()->palette() : QPalette();
    if (text.isValid())
        pal.setColor(QPalette::WindowText, text);
    if (back.isValid())
        pal.setColor(QPalette::Window, back);
    label->setPalette(pal);
    label->setAutoFillBackground(back.isValid());
}

// The glyph beside a panel figure: a small child label at its left edge, made on first use.
void showMarker(QLabel *figure, const QString &marker)
{
    const QString name = figure->objectName() + QStringLiteral("Cue");
    auto *cue = figure->findChild<QLabel *>(name, Qt::FindDirectChildrenOnly);
    if (!cue) {
        if (marker.isEmpty())
            return;
        cue = new QLabel(figure);
        cue->setObjectName(name);
        cue->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    cue->setText(marker);
    cue->adjustSize();
    cue->move(3, (figure->height() - cue->height()) / 2);
    cue->setVisible(!marker.isEmpty());
}

} // namespace

LiveCues::LiveCues(const Widgets &widgets, CaptionLookup caption, QObject *parent)
    : QObject(parent), m_w(widgets), m_caption(std::move(caption))
{
    for (int i = 0; i < 3; ++i) {
        m_stylers[i] = std::make_unique<GridCellStyler>(
            *m_w.grids[i],
            i == 0 ? ExceptionRules::GridKind::Summary : ExceptionRules::GridKind::Hierarchy,
            [this] { return nowMs(); });
    }
    connect(&m_timer, &QTimer::timeout, this, &LiveCues::tick);
}

LiveCues::~LiveCues()
{
    // The grid models outlive this object inside the widget tree: detach the stylers first.
    for (OutlineGridView *view : m_w.views)
        if (view && view->gridModel())
            view->gridModel()->setDecorator(nullptr);
}

void LiveCues::setFreshnessShown(bool on)
{
    m_freshnessOn = on;
    applyDecorators();
    paintPanel();
    paintFreshness();
    updateTimer();
}

void LiveCues::setChangeCuesShown(bool on)
{
    if (on == m_cuesOn)
        return;
    m_cuesOn = on;
    for (ChangeCues &cues : m_gridCues)
        cues.clear();
    m_panelCues.clear();
    if (on && m_filled)
        capture(false); // what is on screen now is what the next refresh is compared with
    applyDecorators();
    paintPanel();
    updateTimer();
}

void LiveCues::setExceptionsShown(bool on)
{
    m_exceptionsOn = on;
    applyDecorators();
    paintPanel();
}

void LiveCues::applyDecorators()
{
    const bool stopped = m_freshnessOn && m_freshness.serverStopped();
    for (int i = 0; i < 3; ++i) {
        GridCellStyler &styler = *m_stylers[i];
        styler.setExceptionsShown(m_exceptionsOn);
        styler.setChangeCues(m_cuesOn ? &m_gridCues[i] : nullptr);
        styler.setServerStopped(stopped);
        OutlineGridView *view = m_w.views[i];
        if (!view || !view->gridModel())
            continue;
        const bool any = m_exceptionsOn || m_cuesOn || stopped;
        view->gridModel()->setDecorator(any ? &styler : nullptr);
        view->viewport()->update();
    }
}

void LiveCues::panelWritten(const PanelValues &panel)
{
    m_panel = panel;
    paintPanel();
}

void LiveCues::capture(bool afterRefresh)
{
    const qint64 ms = nowMs();
    const QString context = m_w.selectionContext ? m_w.selectionContext() : QString();
    for (int i = 0; i < 3; ++i)
        m_gridCues[i].capture(*m_w.grids[i], context, afterRefresh, ms);
    QList<std::pair<QString, QString>> values;
    values.reserve(PanelValues::FigureCount);
    for (int i = 0; i < PanelValues::FigureCount; ++i)
        values.append({panelKey(i), m_panel.text(i)});
    m_panelCues.captureValues(values, context, afterRefresh, ms);
}

void LiveCues::fillsEnded()
{
    m_filled = true;
    if (m_cuesOn) {
        capture(m_inRefresh);
        for (OutlineGridView *view : m_w.views)
            if (view)
                view->viewport()->update();
        paintPanel();
        updateTimer();
    }
    m_inRefresh = false;
}

void LiveCues::refreshTimesWritten(const QDateTime &last, const QDateTime &next)
{
    const bool wasStopped = m_freshness.serverStopped();
    m_freshness.refreshed(last, next);
    if (wasStopped) {
        applyDecorators();
        paintPanel();
    }
    PanelTrendPoint point;
    point.time = last;
    point.techCount = m_panel.techCount;
    point.hoursWorked = m_panel.hoursWorked;
    point.hoursRemaining = m_panel.hoursRemaining;
    point.woDone = m_panel.woDone;
    point.woOpen = m_panel.woOpen;
    point.ptsDone = m_panel.ptsDone;
    point.ptsOpen = m_panel.ptsOpen;
    point.wosPerHrToday = m_panel.wosPerHrToday;
    point.wosPerHrReq = m_panel.wosPerHrReq;
    point.ptsPerHrToday = m_panel.ptsPerHrToday;
    point.ptsPerHrReq = m_panel.ptsPerHrReq;
    m_trend.add(point);
    paintFreshness();
    updateTimer();
    Q_EMIT trendChanged();
}

void LiveCues::statusShown(const QString &key)
{
    if (key != kServerDown || !m_freshness.hasData())
        return;
    m_freshness.setServerStopped(true);
    applyDecorators();
    paintPanel();
    paintFreshness();
}

void LiveCues::paintPanel()
{
    const bool stopped = m_freshnessOn && m_freshness.serverStopped();
    const qint64 ms = nowMs();
    const double strength = m_cuesOn ? m_panelCues.strength(ms) : 0.0;
    for (int i = 0; i < PanelValues::FigureCount; ++i) {
        QLabel *label = m_w.figures[i];
        if (!label)
            continue;
        QColor text;
        QColor back;
        QString marker;
        if (m_exceptionsOn && ExceptionRules::panelKind(m_panel, i) != ExceptionRules::Kind::None) {
            text = CuePalette::belowRate().text;
            back = CuePalette::belowRate().back;
        }
        if (stopped)
            text = CuePalette::stopped().text;
        const ChangeCues::Direction dir = m_panelCues.direction(panelKey(i));
        if (strength > 0 && dir != ChangeCues::Direction::None) {
            const CuePalette::Pair cue =
                dir == ChangeCues::Direction::Up ? CuePalette::risen() : CuePalette::fallen();
            const QColor base =
                back.isValid() ? back : label->parentWidget()->palette().color(QPalette::Window);
            back = CuePalette::mix(cue.back, base, strength);
            text = cue.text;
            marker = ChangeCues::marker(dir);
        }
        paintLabel(label, text, back);
        showMarker(label, marker);
    }
}

void LiveCues::paintFreshness()
{
    QLabel *line = m_w.freshness;
    const QString text = m_freshnessOn ? m_freshness.text(now(), m_caption) : QString();
    const bool overdue = m_freshnessOn && m_freshness.isOverdue(now());
    const bool stopped = m_freshnessOn && m_freshness.serverStopped();
    for (QLabel *label : m_w.refreshTimes)
        if (label)
            paintLabel(label, overdue ? CuePalette::overdue().text : QColor(),
                       overdue ? CuePalette::overdue().back : QColor());
    if (!line)
        return;
    if (overdue)
        paintLabel(line, CuePalette::overdue().text, CuePalette::overdue().back);
    else
        paintLabel(line, stopped ? CuePalette::stopped().text : QColor(), QColor());
    const bool changed = line->text() != text || line->isHidden() == !text.isEmpty();
    line->setText(text);
    line->setVisible(!text.isEmpty());
    if (changed && m_w.relayoutTopRow)
        m_w.relayoutTopRow();
}

bool LiveCues::cuesActive() const
{
    if (!m_cuesOn)
        return false;
    const qint64 ms = nowMs();
    for (const ChangeCues &cues : m_gridCues)
        if (cues.active(ms))
            return true;
    return m_panelCues.active(ms);
}

void LiveCues::updateTimer()
{
    const bool fading = cuesActive();
    m_cuesWereActive = m_cuesWereActive || fading;
    const bool counting = m_freshnessOn && m_freshness.hasData();
    if (!fading && !counting) {
        m_timer.stop();
        return;
    }
    const int interval = fading ? kFadeTickMs : kClockTickMs;
    if (!m_timer.isActive() || m_timer.interval() != interval)
        m_timer.start(interval);
}

void LiveCues::tick()
{
    paintFreshness();
    if (m_cuesWereActive) {
        // Repaint through the end of the fade, once more after it to show the plain figures.
        for (OutlineGridView *view : m_w.views)
            if (view)
                view->viewport()->update();
        paintPanel();
        m_cuesWereActive = cuesActive();
    }
    updateTimer();
}
