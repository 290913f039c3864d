#pragma once

#include "common/paneltrendpoint.h"

#include <QList>
#include <QWidget>

class QChart;
class QChartView;
class QDateTimeAxis;
class QLineSeries;
class QValueAxis;

/// Today's current and required rates as the control kept them after each refresh: completed
/// work orders (and points) per hour worked against the open ones per remaining hour. When the
/// current line runs below the required one, the units fall behind.
class TrendChart final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrendChart)

public:
    explicit TrendChart(QWidget *parent = nullptr);
    ~TrendChart() override;

    /// Shows these points (oldest first), replacing what was shown.
    void setPoints(const QList<PanelTrendPoint> &points);
    [[nodiscard]] int pointCount() const;

    /// Writes the chart as a PNG picture. The file is written next to its final name and renamed
    /// over it only when complete, so an existing picture is never left half written. Returns
    /// false, with the reason in errorString(), when it cannot be written.
    bool exportPng(const QString &fileName);
    [[nodiscard]] QString errorString() const { return m_error; }

private:
    void exportWithDialog();

    QChart *m_chart = nullptr;
    QChartView *m_view = nullptr;
    QDateTimeAxis *m_timeAxis = nullptr;
    QValueAxis *m_rateAxis = nullptr;
    QLineSeries *m_woToday = nullptr;
    QLineSeries *m_woRequired = nullptr;
    QLineSeries *m_ptsToday = nullptr;
    QLineSeries *m_ptsRequired = nullptr;
    QString m_error;
    QString m_lastFolder;
};
