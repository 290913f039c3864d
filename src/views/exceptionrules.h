#pragma once

class OutlineGrid;
class PanelValues;

/// Which figures signal trouble to a dispatcher: jeopardy and late counts above zero, and units
/// (or the panel) whose completion rate so far is below the rate the open work requires in the
/// hours that remain. Pure decisions over the grids' data; the colours are CuePalette's.
class ExceptionRules
{
public:
    enum class Kind
    {
        None,
        Jeopardy,
        Late,
        BelowRate
    };
    enum class GridKind
    {
        Summary,   ///< job types and classes, work orders then points
        Hierarchy, ///< units; the same rules for the work-order and the point grid
    };

    /// The trouble a cell shows. Header rows, non-numeric cells and unit rows that no chosen unit
    /// reached show none. In a unit row the tree cell and the productivity cell are below rate
    /// when productivity < rate(open, hours remaining).
    [[nodiscard]] static Kind cellKind(const OutlineGrid &grid, GridKind kind, int row, int col);
    /// The trouble of panel figure `figure` (PanelValues order): the two "today" rates are below
    /// rate when smaller than their required rate.
    [[nodiscard]] static Kind panelKind(const PanelValues &panel, int figure);
};
