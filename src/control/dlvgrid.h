#pragma once

#include <QColor>
#include <QString>

class OutlineGrid;

/// Read access to one of the control's three grids, for hosts that check, log or mirror what
/// the user sees. Get one from DLViewer::Grid(); it reads the grid live, so keep it no longer than
/// the control and read again after a refresh. Every reader returns an empty value (empty text,
/// false, 0, an invalid colour) for a row or column outside the grid, never an error.
///
/// Rows count from 0 and include the fixed header rows (FixedRows(), two for every grid): row 0
/// holds the column bands ("Work Orders", "Points"), row 1 the column captions, data rows follow.
/// Each data row's RowData names what it stands for: "type|class" for a summary class row,
/// "|class" for a per-class total, the job-type code for a job-type row, empty for the grand
/// total; the unit id (the root "#" first) in the hierarchy grids.
class DLVGrid
{
public:
    /// The three grids of the control.
    enum Element : int
    {
        Summary = 0,             ///< the "BU Summary" tab
        HierarchyWorkOrders = 1, ///< the "BU Hierarchy" tab, displayed by work orders
        HierarchyPoints = 2,     ///< the "BU Hierarchy" tab, displayed by points
    };

    /// Columns of the summary grid. Column 1 (the job-type text of group rows) is hidden on
    /// screen but written to exports.
    enum SummaryColumn : int
    {
        SummaryMargin = 0,
        SummaryJobType = 1,
        SummaryOutline = 2, ///< the tree column: job type, or job class under it
        SummaryWOOpen = 3,
        SummaryWOWarning,
        SummaryWOJeopardy,
        SummaryWOLate,
        SummaryWOCompleted,
        SummaryWOCanceled,
        SummaryWONotDone,
        SummaryPtsOpen,
        SummaryPtsWarning,
        SummaryPtsJeopardy,
        SummaryPtsLate,
        SummaryPtsCompleted,
        SummaryPtsCanceled,
        SummaryPtsNotDone,
        SummaryColumnCount
    };

    /// Columns of both hierarchy grids; the status columns count work orders or points by grid.
    enum HierarchyColumn : int
    {
        HierarchyUnit = 0, ///< the tree column with the unit's description
        HierarchyTechCount,
        HierarchyHoursRemaining,
        HierarchyHoursCompleted,
        HierarchyOpen,
        HierarchyWarning,
        HierarchyJeopardy,
        HierarchyLate,
        HierarchyCompleted,
        HierarchyCanceled,
        HierarchyNotDone,
        HierarchyProductivity, ///< completed per hour worked
        HierarchyColumnCount
    };

    /// A reader of nothing: no rows, no columns.
    DLVGrid() = default;

    [[nodiscard]] int Rows() const;
    [[nodiscard]] int Cols() const;
    [[nodiscard]] int FixedRows() const;
    /// The cell's text as filled (figures as digits, an empty cell as "").
    [[nodiscard]] QString TextMatrix(int row, int col) const;
    [[nodiscard]] QString RowData(int row) const;
    /// The row is an outline node (a job type or total in the summary, a unit in the hierarchy).
    [[nodiscard]] bool IsNode(int row) const;
    /// Outline level of a data row (0 for the top), -1 for a fixed row or a row outside.
    [[nodiscard]] int Level(int row) const;
    /// The node is collapsed: the rows below it are folded away on screen.
    [[nodiscard]] bool IsCollapsed(int row) const;
    /// The row shows on screen (no collapsed node above it).
    [[nodiscard]] bool IsVisible(int row) const;
    /// The cell's own back colour; invalid where the cell keeps the grid's default.
    [[nodiscard]] QColor BackColor(int row, int col) const;
    [[nodiscard]] bool IsBold(int row, int col) const;
    /// The first data row whose RowData equals key exactly, or -1.
    [[nodiscard]] int FindRow(const QString &key) const;

private:
    friend class DLViewer;
    explicit DLVGrid(const OutlineGrid *grid) : m_grid(grid) {}
    [[nodiscard]] bool validRow(int row) const;
    [[nodiscard]] bool validCell(int row, int col) const;

    const OutlineGrid *m_grid = nullptr;
};
