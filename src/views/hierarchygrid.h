#pragma once

#include "common/ordereddict.h"
#include "views/outlinegrid.h"

#include <QString>
#include <array>
#include <functional>
#include <span>
#include <vector>

class BusinessUnits;
struct UnitLookups;

/// What a hierarchy fill wrote into the rows of both grids: each row's figures, and its cells in
/// either grid as the fill left them (OutlineGrid::RowCells). A refresh mostly changes few rows;
/// the next fill with it passes over the others without reading a cell.
/// It also holds the tree it laid out, which stands while what the tree is made of stays (the
/// same lookups, the model holding the same of their units) and no one has moved a row or
/// written a text in either grid since: the next fill then takes the rows as they are without
/// building the tree again or reading a row.
class WrittenRows
{
    friend class HierarchyGrid;
    static constexpr int Figures = 18; // technicians, two hours, 2 x 7 counts, reached
    std::vector<std::array<qint32, Figures>> m_figures;
    std::array<std::vector<OutlineGrid::RowCells>, 2> m_cells;

    struct Tree
    {
        bool valid = false;
        quint64 epoch = 0;
        std::vector<char> held; ///< per hierarchy position: whether the model holds the unit
        bool rootHeld = false;  ///< whether the model holds a unit "#"
        std::vector<int> rowOfUnit;
        int rows = 0; ///< rows of each grid
        std::array<quint64, 2> shape{};
        std::array<quint64, 2> text{};
    };
    Tree m_tree;

public:
    /// Whether the work-order grid's rows are still those of the last fill with this memory, for
    /// lookups of the given epoch: no row added, removed or moved, no row data changed since.
    /// The units that fill told of its rows (HierarchyGrid::Fill's unitOfRow) then stand.
    [[nodiscard]] bool rowsStand(const OutlineGrid &workOrders, quint64 epoch) const
    {
        return m_tree.valid && m_tree.epoch == epoch &&
               m_tree.shape[0] == workOrders.shapeRevision();
    }
};

/// The business-unit hierarchy grids (elements 1, work orders, and 2, points) over their grid
/// data, without widgets: an outline tree of the units under the root "#", each unit under its
/// parent, with each row showing the figures of the selected units that reach it.
///
/// Layout: 12 columns, rows 0 and 1 are the fixed header rows, row 2 is the root (row data "#"),
/// unit rows follow in tree order with their BUID as row data. Column 0 holds the tree, 1 to 3
/// technicians and hours, 4 to 10 the seven status counts, 11 the productivity (completed over
/// hours worked).
///
/// The tree equals the one the long-standing step-by-step procedure gives (every unit under the
/// root in description-lookup order, then each unit moved under its parent in parent-lookup order,
/// childless units the model lacks pruned bottom-up, children sorted by text), but it is built
/// directly: parents are resolved once, the moves are replayed with a disjoint-set forest, and the
/// grid receives the finished tree in one bulk append. Linear apart from the sort.
///
/// Bad parent data: a unit whose parent has no row stays under the root. A unit whose parent lies
/// in its own subtree at the time of its move (it is its own parent, or the move would close a
/// cycle through units moved under it before) cannot be moved there and also stays under the
/// root, with the units already moved under it.
class HierarchyGrid
{
public:
    static constexpr int ColumnCount = 12;
    static constexpr quint32 HeaderBgr = 0xD9FCFD;
    static constexpr quint32 CountsBgr = 0xFAFDC6;
    static constexpr quint32 ProductivityBgr = 0xE4FEE3;
    static constexpr quint32 UnreachedBgr = 0xD0D0D0;
    /// Row data of the root row, and the description lookup's key of its text.
    static const QString RootKey;

    using CaptionLookup = std::function<QString(const QString &key)>;

    /// Lays out grid element index (1 work orders, 2 points): columns, widths (pixels converted
    /// with the horizontal twips per pixel), header colours and captions, two fixed rows.
    static void InitBUHierarchyGrid(OutlineGrid &grid, int index, const CaptionLookup &caption,
                                    double twipsPerPixelX);

    /// The tree as appendTree() takes it: the root first, then the units that stay under the
    /// root in description-lookup order, then the units moved under a parent in parent-lookup
    /// order. Appended with sorting by text, it gives the rows of the step-by-step procedure.
    /// nodeOfUnit, when given, receives each description-lookup position's node (the root's
    /// position: the root node), or -1 for a unit left out.
    [[nodiscard]] static std::vector<OutlineGrid::TreeNode>
    BuildTree(const UnitLookups &lookups, const BusinessUnits &bus,
              std::vector<int> *nodeOfUnit = nullptr);

    /// The whole fill of both grids: the tree (the rows of the last fill when it is unchanged,
    /// else new rows), column 0 bold from row 1, figures of the selected units, grey rows that no
    /// selected unit reaches. A selected unit's row adds its own figures and those of every unit
    /// below it that the model holds: a unit below several selected rows counts once in each of
    /// them. Throws DLVError (6 when a sum leaves the 32-bit range; the grids
    /// then hold the tree without figures).
    /// written, when given, is what the last fill with it wrote: a row whose figures are the same
    /// and that no one wrote since is passed over without reading its cells.
    /// selectionPositions, when given, holds each selected id's hierarchy position or -1, in the
    /// selection's order (KeptPositions), so that the ids need not be looked up. unitOfRow, when
    /// given, receives the hierarchy position of the unit each row of the work-order grid shows
    /// (-1 for other rows), or nothing when the lookups do not say it directly.
    static void Fill(OutlineGrid &workOrders, OutlineGrid &points, const UnitLookups &lookups,
                     const BusinessUnits &bus, const StringSet &selection,
                     std::span<const int> selectionPositions = {},
                     std::vector<int> *unitOfRow = nullptr, WrittenRows *written = nullptr);
};
