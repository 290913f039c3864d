#pragma once

#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <utility>
#include <vector>

/// Times one benchmark stage and prints it as one JSON line:
/// {"stage":"load","ms":12.3,"peak_rss_kb":45678, ...extra fields}.
class Stage
{
public:
    explicit Stage(QString name);

    /// Extra fields printed after the timing; numbers are written as JSON numbers.
    void add(const QString &key, double value);
    void add(const QString &key, const QString &value);
    /// Stops the clock (first call only); returns the elapsed milliseconds.
    double stop();
    /// Reports a time measured elsewhere (such as the best of several runs) instead of the clock.
    void setElapsed(double ms) { m_ms = ms; }
    /// Stops the clock if running and prints the line.
    void print();

    /// The fastest of `runs` runs of body (at least one), in milliseconds.
    template <typename Body> [[nodiscard]] static double bestOf(int runs, Body &&body)
    {
        double best = 1e300;
        for (int i = 0; i < std::max(runs, 1); ++i) {
            QElapsedTimer timer;
            timer.start();
            body();
            best = std::min(best, double(timer.nsecsElapsed()) / 1e6);
        }
        return best;
    }

    /// The same with `before` run ahead of each timed run, untimed.
    template <typename Before, typename Body>
    [[nodiscard]] static double bestOf(int runs, Before &&before, Body &&body)
    {
        double best = 1e300;
        for (int i = 0; i < std::max(runs, 1); ++i) {
            before();
            best = std::min(best, bestOf(1, body));
        }
        return best;
    }

    /// Peak resident set size of this process in kB (VmHWM), or -1 when unknown.
    [[nodiscard]] static long peakRssKb();

private:
    QString m_name;
    QElapsedTimer m_timer;
    double m_ms = -1;
    std::vector<std::pair<QString, QString>> m_fields;
};
