#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

/// How old the figures on screen are and when the next refresh is due, from the times of the last
/// refresh and of the one it announced (last + the server's refresh interval). The caller supplies
/// the current time; nothing here reads the clock.
class FreshnessClock
{
public:
    enum class State
    {
        NoData,  ///< no refresh yet
        Fresh,   ///< before the next refresh is due, or less than one interval past it
        Overdue, ///< the next refresh is late by more than one interval
        Stopped  ///< the server said it stopped; the figures are the last ones it sent
    };
    using CaptionLookup = std::function<QString(const QString &key)>;

    void refreshed(const QDateTime &last, const QDateTime &next);
    void setServerStopped(bool stopped) { m_stopped = stopped; }
    [[nodiscard]] bool serverStopped() const { return m_stopped; }
    [[nodiscard]] bool hasData() const { return m_last.isValid(); }

    [[nodiscard]] State state(const QDateTime &now) const;
    /// The announced refresh is late by more than one interval (whether or not the server said
    /// it stopped).
    [[nodiscard]] bool isOverdue(const QDateTime &now) const;
    /// Seconds since the last refresh (0 without data or for a clock that went back).
    [[nodiscard]] qint64 ageSeconds(const QDateTime &now) const;
    /// Seconds until the announced refresh; negative once it is due. 0 without an interval.
    [[nodiscard]] qint64 secondsToNext(const QDateTime &now) const;
    /// The announced interval in seconds (0: the server gave none).
    [[nodiscard]] qint64 intervalSeconds() const;

    /// The line shown beside the refresh times, built from the captions "FreshnessAge" (%1 the
    /// age), "FreshnessNext" (%1 the time left), "FreshnessDue", "FreshnessOverdue" (%1 how late)
    /// and "FreshnessStopped". Empty without data.
    [[nodiscard]] QString text(const QDateTime &now, const CaptionLookup &caption) const;
    /// A duration as m:ss, or h:mm:ss from an hour on.
    [[nodiscard]] static QString duration(qint64 seconds);

private:
    QDateTime m_last;
    QDateTime m_next;
    bool m_stopped = false;
};
