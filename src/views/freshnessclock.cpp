#include "views/freshnessclock.h"

#include <algorithm>

void FreshnessClock::refreshed(const QDateTime &last, const QDateTime &next)
{
    m_last = last;
    m_next = next;
    m_stopped = false;
}

qint64 FreshnessClock::intervalSeconds() const
{
    if (!m_last.isValid() || !m_next.isValid())
        return 0;
    return std::max<qint64>(0, m_last.secsTo(m_next));
}

qint64 FreshnessClock::ageSeconds(const QDateTime &now) const
{
    return m_last.isValid() ? std::max<qint64>(0, m_last.secsTo(now)) : 0;
}

qint64 FreshnessClock::secondsToNext(const QDateTime &now) const
{
    return intervalSeconds() > 0 ? now.secsTo(m_next) : 0;
}

FreshnessClock::State FreshnessClock::state(const QDateTime &now) const
{
    if (!hasData())
        return State::NoData;
    if (m_stopped)
        return State::Stopped;
    return isOverdue(now) ? State::Overdue : State::Fresh;
}

bool FreshnessClock::isOverdue(const QDateTime &now) const
{
    const qint64 interval = intervalSeconds();
    return hasData() && interval > 0 && -secondsToNext(now) > interval;
}

QString FreshnessClock::duration(qint64 seconds)
{
    seconds = std::max<qint64>(0, seconds);
    const qint64 h = seconds / 3600;
    const qint64 m = (seconds / 60) % 60;
    const qint64 s = seconds % 60;
    const QChar zero(u'0');
    if (h > 0)
        return QStringLiteral("%1:%2:%3").arg(h).arg(m, 2, 10, zero).arg(s, 2, 10, zero);
    return QStringLiteral("%1:%2").arg(m).arg(s, 2, 10, zero);
}

QString FreshnessClock::text(const QDateTime &now, const CaptionLookup &caption) const
{
    const State st = state(now);
    if (st == State::NoData)
        return {};
    QString line = caption(QStringLiteral("FreshnessAge")).arg(duration(ageSeconds(now)));
    const qint64 left = secondsToNext(now);
    switch (st) {
    case State::Stopped:
        line += QStringLiteral(" \u00B7 ") + caption(QStringLiteral("FreshnessStopped"));
        break;
    case State::Overdue:
        line += QStringLiteral(" \u00B7 ") +
                caption(QStringLiteral("FreshnessOverdue")).arg(duration(-left));
        break;
    case State::Fresh:
        if (intervalSeconds() > 0)
            line += QStringLiteral(" \u00B7 ") +
                    (left > 0 ? caption(QStringLiteral("FreshnessNext")).arg(duration(left))
                              : caption(QStringLiteral("FreshnessDue")));
        break;
    case State::NoData:
        break;
    }
    return line;
}
