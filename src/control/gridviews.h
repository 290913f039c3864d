#pragma once

#include "common/ordereddict.h"
#include "views/outlinegrid.h"

#include <QString>
#include <array>
#include <functional>

class ErrorReporter;
class OutlineGridView;
class QFrame;
class QWidget;

/// The three grids and their views: 0 the summary (vsFlex0, on the summary frame), 1 the hierarchy
/// by work orders and 2 by points (vsFlex1 and vsFlex2, on the hierarchy frame, one shown at a
/// time). The data live here; the views only present them. Besides the set-up, sizing and the
/// display switch, this class keeps the collapsed-node operations, each trapping its errors
/// under its own name.
class GridViews final
{
public:
    using CaptionLookup = std::function<QString(const QString &key)>;
    static constexpr int kCount = 3;

    /// Creates the views on their frames; metrics is the widget whose resolution converts twips.
    GridViews(QFrame *summaryFrame, QFrame *hierarchyFrame, const QWidget *metrics,
              ErrorReporter &reporter);
    Q_DISABLE_COPY_MOVE(GridViews)

    [[nodiscard]] OutlineGrid &grid(int index) { return m_grids.at(std::size_t(index)); }
    [[nodiscard]] const OutlineGrid &grid(int index) const
    {
        return m_grids.at(std::size_t(index));
    }
    [[nodiscard]] OutlineGridView *view(int index) const { return m_views.at(std::size_t(index)); }

    [[nodiscard]] double twipsPerPixelX() const;
    [[nodiscard]] double twipsPerPixelY() const;

    /// The empty grids with their headings and column set-up.
    void InitSingleBUGrid(const CaptionLookup &caption);
    void InitBUHierarchyGrid(int index, const CaptionLookup &caption);

    /// Column widths of all three grids for an available width in twips, recomputed on every
    /// layout (overriding the widths the set-up gave).
    void setColumnWidths(double widthTwips);
    /// Where the grids start inside their frames: below the panel on the summary frame, below the
    /// display row on the hierarchy frame.
    void setTops(int summaryTop, int hierarchyTop);
    /// Places each view at its top across its frame, as tall as the frame allows.
    void layout();
    /// Fits the height of grid `index` to its rows (within the frame).
    void FitGridHeight(int index);
    /// Shows the hierarchy grid of a display option (0 work orders, 1 points).
    void showDisplay(int index);
    /// Whether grid `index` is shown within ancestor (saving and printing need the grid in view).
    [[nodiscard]] bool inView(int index, const QWidget *ancestor) const;

    /// The collapsed-node memory of one grid: the keys of its collapsed nodes top to bottom
    /// ("TOTAL" first for the summary's grand total), collapsing the nodes of a list, expanding
    /// everything.
    void SaveCollapsedList(int index, StringSet &list) const;
    void RestoreCollapsedList(int index, const StringSet &list);
    void ExpandNodes(int index);

private:
    std::array<OutlineGrid, kCount> m_grids;
    std::array<OutlineGridView *, kCount> m_views{};
    std::array<int, kCount> m_tops{};
    QFrame *m_summaryFrame;
    QFrame *m_hierarchyFrame;
    const QWidget *m_metrics;
    ErrorReporter &m_reporter;
};
