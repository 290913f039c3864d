#pragma once

#include "views/panellayout.h"
#include "views/panelvalues.h"

#include <QString>
#include <QtGlobal>
#include <array>
#include <functional>
#include <utility>
#include <vector>

class QFrame;
class QLabel;

/// The productivity panel at the top of the summary frame: seven counters (a heading beside each
/// figure) and the per-hour rates (today and required, by work orders and by points) under their
/// headings. The figure labels carry the original names (lblTechCount, ...); each counter's
/// heading is "<name>Caption". The panel's four rows also hold the summary options, which
/// SelectionOptions places with rowY().
class PanelView final
{
public:
    using CaptionLookup = std::function<QString(const QString &key)>;
    using Figures = std::array<QLabel *, PanelValues::FigureCount>;

    static constexpr int kRowHeight = 22;
    static constexpr int kRows = 4;
    /// Top of panel row `row` inside the summary frame.
    [[nodiscard]] static constexpr int rowY(int row) { return 6 + row * kRowHeight; }
    /// Top of the summary grid: below the panel's rows.
    [[nodiscard]] static constexpr int bottom() { return rowY(kRows) + 8; }

    /// The labels become children of frame; every figure starts at "0".
    explicit PanelView(QFrame *frame);
    Q_DISABLE_COPY_MOVE(PanelView)

    void setCaptions(const CaptionLookup &caption);
    /// Writes the eleven figures.
    void write(const PanelValues &panel);
    /// Places the labels for the layout r of the panel's width; px turns twips into pixels.
    void layout(const PanelLayout::Result &r, const std::function<int(double)> &px);

    /// The eleven figure labels in the panel's order (that of DLViewer::PanelFigure).
    [[nodiscard]] const Figures &figures() const { return m_figures; }
    [[nodiscard]] QLabel *techCount() const { return m_figures[0]; }

private:
    QLabel *heading(const QLabel *figure) const;

    Figures m_figures{};
    std::vector<std::pair<QLabel *, QLabel *>> m_counters; ///< (heading, figure)
    QLabel *m_prodPerTech = nullptr;
    QLabel *m_today = nullptr;
    QLabel *m_reqProd = nullptr;
    QLabel *m_wosPerHr = nullptr;
    QLabel *m_ptsPerHr = nullptr;
};
