#include "control/panelview.h"

#include <QFrame>
#include <QLabel>
#include <algorithm>

namespace {

QLabel *panelLabel(QWidget *parent, const char *name)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

// A caption the layout may shorten to its column; the whole text is kept beside it.
void setFullText(QLabel *label, const QString &text)
{
    label->setProperty("fullText", text);
    label->setText(text);
}

// Headings keep their column; a caption longer than the column is shortened with an ellipsis and
// shown whole in its tool tip (the figures below it stay aligned).
void fitHeading(QLabel *label, int width)
{
    const QString full = label->property("fullText").toString();
    const QString shown =
        label->fontMetrics().elidedText(full, Qt::ElideRight, std::max(20, width));
    label->setText(shown);
    label->setToolTip(shown == full ? QString() : full);
}

} // namespace

PanelView::PanelView(QFrame *frame)
{
    const auto figureLabel = [&](const char *name) {
        QLabel *l = panelLabel(frame, name);
        l->setText(QStringLiteral("0"));
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return l;
    };
    const auto counter = [&](const char *figureName) {
        QLabel *heading = panelLabel(frame, (QByteArray(figureName) + "Caption").constData());
        QLabel *figure = figureLabel(figureName);
        QFont f = figure->font();
        f.setBold(true);
        figure->setFont(f);
        m_counters.emplace_back(heading, figure);
        return figure;
    };
    // The counters in DLViewer::PanelFigure order, then the rates.
    for (std::size_t i = 0;
         const char *name : {"lblTechCount", "lblHrsWorked", "lblHrsRemaining", "lblWODone",
                             "lblWOOpen", "lblPtsDone", "lblPtsOpen"})
        m_figures[i++] = counter(name);
    // The technician count can be drilled into: show it as a link.
    QLabel *techCount = m_figures[0];
    techCount->setCursor(Qt::PointingHandCursor);
    QFont link = techCount->font();
    link.setUnderline(true);
    techCount->setFont(link);

    m_prodPerTech = panelLabel(frame, "lblProdPerTech");
    m_today = panelLabel(frame, "lblToday");
    m_reqProd = panelLabel(frame, "lblReqProd");
    m_wosPerHr = panelLabel(frame, "lblWOsPerHr");
    m_ptsPerHr = panelLabel(frame, "lblPtsPerHr");
    for (QLabel *heading : {m_prodPerTech, m_today, m_reqProd}) {
        QFont f = heading->font();
        f.setBold(true);
        heading->setFont(f);
    }
    for (std::size_t i = 7; const char *name : {"lblWOsPerHrToday", "lblWOsPerHrReq",
                                                "lblPtsPerHrToday", "lblPtsPerHrReq"}) {
        QLabel *rate = figureLabel(name);
        rate->setFrameShape(QFrame::StyledPanel);
        m_figures[i++] = rate;
    }
}

QLabel *PanelView::heading(const QLabel *figure) const
{
    for (const auto &[h, f] : m_counters)
        if (f == figure)
            return h;
    return nullptr;
}

void PanelView::setCaptions(const CaptionLookup &caption)
{
    static const char *const counterKeys[] = {"TechCount", "HoursWorked", "HoursRemaining",
                                              "WODone",    "WOOpen",      "PointsDone",
                                              "PointsOpen"};
    for (std::size_t i = 0; i < m_counters.size(); ++i)
        setFullText(m_counters[i].first, caption(QString::fromLatin1(counterKeys[i])));
    const QString viewTech = caption(QStringLiteral("ViewTechCount"));
    techCount()->setToolTip(viewTech);
    heading(techCount())->setToolTip(viewTech);
    setFullText(m_prodPerTech, caption(QStringLiteral("ProductivityPerTech")));
    setFullText(m_today, caption(QStringLiteral("CurrentProductivity")));
    setFullText(m_reqProd, caption(QStringLiteral("RequiredProductivity")));
    setFullText(m_wosPerHr, caption(QStringLiteral("WOsPerHour")));
    setFullText(m_ptsPerHr, caption(QStringLiteral("PtsPerHour")));
}

void PanelView::write(const PanelValues &panel)
{
    for (int i = 0; i < PanelValues::FigureCount; ++i)
        m_figures[std::size_t(i)]->setText(panel.text(i));
}

void PanelView::layout(const PanelLayout::Result &r, const std::function<int(double)> &px)
{
    const int w = px(r.width);
    // Counters: two heading/figure column pairs in the left part of the panel.
    const int pairWidth = int(w * 0.215);
    const int figureWidth = std::min(70, pairWidth / 3);
    for (std::size_t i = 0; i < m_counters.size(); ++i) {
        const int column = i < 3 ? 0 : 1;
        const int row = i < 3 ? int(i) : int(i) - 3;
        const int x = 8 + column * (pairWidth + 6);
        auto [heading, figure] = m_counters[i];
        fitHeading(heading, pairWidth - figureWidth - 4);
        heading->setGeometry(x, rowY(row), pairWidth - figureWidth - 4, kRowHeight);
        figure->setGeometry(x + pairWidth - figureWidth, rowY(row), figureWidth, kRowHeight);
    }

    const int headWidth = px(r.lblWOsPerHrTodayLeft - r.lblProdPerTechLeft) - 4;
    const auto place = [&](QLabel *label, int x, int y, int width) {
        fitHeading(label, width);
        label->setGeometry(x, y, width, kRowHeight);
    };
    place(m_prodPerTech, px(r.lblProdPerTechLeft), rowY(0),
          px(r.lblTodayLeft - r.lblProdPerTechLeft) - 4);
    place(m_today, px(r.lblTodayLeft), rowY(0), px(r.lblReqProdLeft - r.lblTodayLeft) - 4);
    place(m_reqProd, px(r.lblReqProdLeft), rowY(0), w - px(r.lblReqProdLeft) - 4);
    place(m_wosPerHr, px(r.lblWOsPerHrLeft), rowY(1), headWidth);
    place(m_ptsPerHr, px(r.lblPtsPerHrLeft), rowY(2), headWidth);
    const int figureW = px(r.lblWOsPerHrReqLeft - r.lblWOsPerHrTodayLeft) - 8;
    const auto rate = [&](std::size_t figure, double left, int row) {
        m_figures[figure]->setGeometry(px(left), rowY(row) + 1, figureW, kRowHeight - 2);
    };
    rate(7, r.lblWOsPerHrTodayLeft, 1);
    rate(9, r.lblPtsPerHrTodayLeft, 2);
    rate(8, r.lblWOsPerHrReqLeft, 1);
    rate(10, r.lblPtsPerHrReqLeft, 2);
}
