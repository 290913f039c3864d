#include "host/trendchart.h"

#include "common/atomicfile.h"

#include <QChart>
#include <QChartView>
#include <QDateTimeAxis>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLegend>
#include <QLineSeries>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>

namespace {

QLineSeries *rateSeries(const QString &name, const QColor &colour, Qt::PenStyle style)
{
    auto *series = new QLineSeries;
    series->setName(name);
    QPen pen(colour);
    pen.setWidth(2);
    pen.setStyle(style);
    series->setPen(pen);
    series->setPointsVisible(true);
    return series;
}

} // namespace

TrendChart::TrendChart(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("trendChart"));
    m_chart = new QChart;
    m_chart->setTitle(tr("Today's rates per hour: current against required"));
    m_chart->legend()->setAlignment(Qt::AlignBottom);
    m_chart->legend()->setMarkerShape(QLegend::MarkerShapeFromSeries); // dashes show in it too
    // Blue and orange tell the measures apart also for colour-blind readers; the required rates
    // are dashed.
    m_woToday = rateSeries(tr("Work orders: current"), QColor(0x00, 0x5a, 0xb5), Qt::SolidLine);
    m_woRequired = rateSeries(tr("Work orders: required"), QColor(0x00, 0x5a, 0xb5), Qt::DashLine);
    m_ptsToday = rateSeries(tr("Points: current"), QColor(0xc2, 0x4e, 0x00), Qt::SolidLine);
    m_ptsRequired = rateSeries(tr("Points: required"), QColor(0xc2, 0x4e, 0x00), Qt::DashLine);
    m_timeAxis = new QDateTimeAxis;
    m_timeAxis->setFormat(QStringLiteral("HH:mm"));
    m_timeAxis->setTitleText(tr("Time of refresh"));
    m_rateAxis = new QValueAxis;
    m_rateAxis->setLabelFormat(QStringLiteral("%.2f"));
    m_rateAxis->setTitleText(tr("Per hour"));
    m_chart->addAxis(m_timeAxis, Qt::AlignBottom);
    m_chart->addAxis(m_rateAxis, Qt::AlignLeft);
    for (QLineSeries *s : {m_woToday, m_woRequired, m_ptsToday, m_ptsRequired}) {
        m_chart->addSeries(s);
        s->attachAxis(m_timeAxis);
        s->attachAxis(m_rateAxis);
    }

    m_view = new QChartView(m_chart, this); // the view owns the chart
    m_view->setRenderHint(QPainter::Antialiasing);
    m_view->setMinimumSize(360, 240);
    auto *exportButton = new QPushButton(tr("&Export PNG…"), this);
    exportButton->setObjectName(QStringLiteral("exportTrend"));
    connect(exportButton, &QPushButton::clicked, this, &TrendChart::exportWithDialog);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(exportButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_view, 1);
    layout->addLayout(buttons);
    setPoints({});
}

TrendChart::~TrendChart() = default;

void TrendChart::setPoints(const QList<PanelTrendPoint> &points)
{
    QList<QPointF> woToday, woRequired, ptsToday, ptsRequired;
    double top = 1.0;
    for (const PanelTrendPoint &p : points) {
        const double x = double(p.time.toMSecsSinceEpoch());
        woToday.append({x, p.wosPerHrToday});
        woRequired.append({x, p.wosPerHrReq});
        ptsToday.append({x, p.ptsPerHrToday});
        ptsRequired.append({x, p.ptsPerHrReq});
        top = std::max({top, double(p.wosPerHrToday), double(p.wosPerHrReq),
                        double(p.ptsPerHrToday), double(p.ptsPerHrReq)});
    }
    m_woToday->replace(woToday);
    m_woRequired->replace(woRequired);
    m_ptsToday->replace(ptsToday);
    m_ptsRequired->replace(ptsRequired);
    QDateTime first = points.isEmpty() ? QDateTime::currentDateTime() : points.front().time;
    QDateTime last = points.isEmpty() ? first : points.back().time;
    if (first.secsTo(last) < 60) { // a single refresh still gets a readable axis
        first = first.addSecs(-30);
        last = last.addSecs(30);
    }
    m_timeAxis->setRange(first, last);
    m_rateAxis->setRange(0, top * 1.1);
    m_rateAxis->setTickCount(6);
    m_rateAxis->applyNiceNumbers();
}

int TrendChart::pointCount() const
{
    return int(m_woToday->count());
}

bool TrendChart::exportPng(const QString &fileName)
{
    m_error.clear();
    const QPixmap picture = m_view->grab();
    return AtomicFile::write(
        fileName, [&](QIODevice &device) { return picture.save(&device, "PNG"); }, &m_error);
}

void TrendChart::exportWithDialog()
{
    const QString start = QDir(m_lastFolder.isEmpty() ? QDir::homePath() : m_lastFolder)
                              .filePath(QStringLiteral("trend.png"));
    QString fileName = QFileDialog::getSaveFileName(this, tr("Export trend chart"), start,
                                                    tr("PNG pictures (*.png)"));
    if (fileName.isEmpty())
        return;
    if (!fileName.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive))
        fileName += QStringLiteral(".png");
    m_lastFolder = QFileInfo(fileName).absolutePath();
    if (!exportPng(fileName))
        QMessageBox::warning(this, tr("Export trend chart"),
                             tr("The chart could not be saved to %1: %2")
                                 .arg(QDir::toNativeSeparators(fileName), m_error));
}
