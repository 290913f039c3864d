#pragma once

#include <QByteArray>
#include <QColor>
#include <QHash>
#include <QList>
#include <QString>
#include <QtGlobal>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <vector>

/// The data of one outline grid: the cells, row data, outline tree and layout numbers that the
/// summary and hierarchy fills write and that the views, the collapsed-node memory, drill-down
/// and export read. No widget code lives here; OutlineGridModel and OutlineGridView show it.
///
/// Rows are numbered from 0 and include the fixed header rows (the control always uses two);
/// columns are numbered from 0. Geometry is kept in twips and converted by the view.
///
/// Outline: a row is either a node (a subtotal or tree row, with an explicit outline level and an
/// expanded/collapsed state) or a plain row. A plain row belongs to the nearest node above it and
/// its level is that node's level + 1 (0 when no node precedes it). A node's subtree is the run of
/// following rows whose level is greater than its own. Only rows from fixedRows() on take part.
///
/// Structural operations keep a hash index from row data to row, rebuilt lazily once after the
/// structure changed, so findRow() costs no scan per call. Appending rows keeps the index valid.
///
/// Errors: a row or column outside the grid throws DLVError(9); a malformed request (a node moved
/// into its own subtree, a cycle in a tree build) throws DLVError(5).
class OutlineGrid
{
public:
    /// Outline state of a node row, numbered as the collapsed-node memory stores it.
    enum CollapseState : int
    {
        Expanded = 0,
        Collapsed = 2
    };

    /// Receives change notices, used by the item model. While redraw is suspended only
    /// gridRedrawResumed() (once, at the end) and gridDestroyed() are sent.
    class Observer
    {
    public:
        virtual ~Observer() = default;
        /// Sent before rows, columns, fixed rows or the outline structure change.
        virtual void gridStructureAboutToChange() = 0;
        virtual void gridStructureChanged() = 0;
        /// Text, colour or bold of the cells in the given rectangle changed.
        virtual void gridCellsChanged(int row1, int col1, int row2, int col2) = 0;
        /// A node was expanded or collapsed.
        virtual void gridCollapseStateChanged(int row) = 0;
        /// Column widths, row heights, outline column or outline text column changed.
        virtual void gridLayoutSettingsChanged() = 0;
        virtual void gridCurrentCellChanged(int row, int col) = 0;
        /// Redraw was switched off (the first of nested suspensions).
        virtual void gridRedrawSuspended() = 0;
        /// Redraw was switched back on: everything may have changed.
        virtual void gridRedrawResumed() = 0;
        virtual void gridDestroyed() = 0;
    };

    /// What changed in one row between two states of a grid (see changesSince()).
    enum CellAspect : quint8
    {
        TextChanged = 1,  ///< the text a cell shows
        BackChanged = 2,  ///< back colour
        BoldChanged = 4,  ///< bold
        HeightChanged = 8 ///< the row's height (every column of the row)
    };
    struct RowChange
    {
        int row = 0;
        int col1 = 0; ///< first and last changed column
        int col2 = 0;
        quint8 aspects = 0; ///< CellAspect bits, over all changed cells of the row
    };
    /// The difference between two states of a grid, cell by cell when the shape is the same.
    struct Changes
    {
        /// Row count, fixed rows, columns, the outline columns, or a data row's row data, node
        /// flag or node level differ: the rows cannot be matched by position and nothing else is
        /// listed.
        bool shapeChanged = false;
        std::vector<RowChange> rows; ///< rows with changed cells, fixed rows included, in order
        std::vector<int> collapsed;  ///< node rows whose collapsed state differs
        bool currentCellChanged = false;
        [[nodiscard]] bool empty() const
        {
            return !shapeChanged && rows.empty() && collapsed.empty() && !currentCellChanged;
        }
    };

    /// One node for appendTree(): parent is an index into the same list, or -1 for a top node.
    struct TreeNode
    {
        QString text;
        QString rowData;
        int parent = -1;
    };

    /// Suspends redraw for its lifetime (exception safe).
    class RedrawSuspender
    {
    public:
        explicit RedrawSuspender(OutlineGrid &grid) : m_grid(grid) { m_grid.suspendRedraw(); }
        ~RedrawSuspender() { m_grid.resumeRedraw(); }
        RedrawSuspender(const RedrawSuspender &) = delete;
        RedrawSuspender &operator=(const RedrawSuspender &) = delete;

    private:
        OutlineGrid &m_grid;
    };

    static constexpr int DefaultColWidth = 960;  ///< twips (64 pixels at 96 DPI)
    static constexpr int DefaultRowHeight = 285; ///< twips (19 pixels at 96 DPI)

    OutlineGrid();
    ~OutlineGrid();
    OutlineGrid(const OutlineGrid &) = delete;
    OutlineGrid &operator=(const OutlineGrid &) = delete;

    void addObserver(Observer *observer);
    void removeObserver(Observer *observer);

    // Dimensions ---------------------------------------------------------------------------
    [[nodiscard]] int rowCount() const noexcept { return int(m_rows.size()); }
    [[nodiscard]] int colCount() const noexcept { return m_cols; }
    [[nodiscard]] int fixedRows() const noexcept { return m_fixedRows; }
    /// Growing appends empty rows, shrinking cuts rows from the end. Fixed rows shrink along.
    void setRowCount(int rows);
    /// Growing appends empty cells to every row, shrinking cuts them.
    void setColCount(int cols);
    /// Throws DLVError(9) when fixed is negative or above rowCount().
    void setFixedRows(int fixed);
    /// Clears text, back colour and bold of every cell; dimensions, row data and outline stay.
    void clear();

    // Rows -------------------------------------------------------------------------------------
    /// Appends an empty plain row; returns its index.
    int addRow();
    /// Inserts an empty plain row at position row (0..rowCount()); it belongs to the nearest node
    /// above it.
    void insertRow(int row);
    void removeRow(int row);
    /// Removes every row from `first` on for which pred(row) is true (row numbers as they were
    /// before removal), in one pass.
    void removeRowsIf(int first, const std::function<bool(int row)> &pred);

    // Cells ------------------------------------------------------------------------------------
    [[nodiscard]] const QString &text(int row, int col) const;
    /// Whether the cell shows nothing (cheaper than asking for its text).
    [[nodiscard]] bool isEmpty(int row, int col) const;
    void setText(int row, int col, const QString &text);
    /// Writes a whole number as the cell's text (its decimal digits) and keeps the number, so
    /// that readers of figures (change cues) need not fetch and parse the text back.
    void setNumber(int row, int col, qint64 value);
    /// The same for a number shown with a text of the caller's (a rate with its decimals).
    void setNumber(int row, int col, double value, const QString &text);
    /// The same for a number shown in decimals: up to 15 significant digits, as short as they
    /// go, zero as "0" (also a negative zero).
    void setDecimal(int row, int col, double value);
    /// The number setNumber() wrote into the cell, NaN when its text was written otherwise.
    [[nodiscard]] double number(int row, int col) const;
    void setText(int row1, int col1, int row2, int col2, const QString &text);
    /// Invalid QColor when no back colour was set (the view's default shows).
    [[nodiscard]] QColor backColor(int row, int col) const;
    void setBackColor(int row, int col, const QColor &color);
    void setBackColor(int row1, int col1, int row2, int col2, const QColor &color);
    [[nodiscard]] bool isBold(int row, int col) const;
    void setBold(int row, int col, bool bold);
    void setBold(int row1, int col1, int row2, int col2, bool bold);
    /// A colour given in the host platform's blue-green-red order (0xBBGGRR).
    [[nodiscard]] static QColor fromBgr(quint32 bgr);

    [[nodiscard]] const QString &rowData(int row) const;
    /// Changes whenever rows are added, removed or moved or a row's data changes: while it stays,
    /// every row holds the data it held.
    [[nodiscard]] quint64 shapeRevision() const noexcept { return m_shapeRevision; }
    /// Changes whenever a cell's text or number changes (colours and bold do not count): while it
    /// and shapeRevision() stay, every cell shows what it showed.
    [[nodiscard]] quint64 textRevision() const noexcept { return m_textRevision; }

    /// A row's cells as they stood when taken, shared with the grid. While it is held, any write
    /// to the row copies the row's cells first, so unchangedSince() tells without reading a cell
    /// that no one wrote the row since: a fill that keeps what it wrote passes over such rows.
    class RowCells;
    [[nodiscard]] RowCells rowCells(int row) const;
    [[nodiscard]] bool unchangedSince(int row, const RowCells &taken) const;
    void setRowData(int row, const QString &data);
    /// The first data row (from fixedRows()) whose row data equals key exactly, or -1. An empty key
    /// matches nothing.
    [[nodiscard]] int findRow(const QString &key) const;

    // Layout ----------------------------------------------------------------------------------
    [[nodiscard]] int colWidth(int col) const;
    /// Width in twips; 0 hides the column.
    void setColWidth(int col, int twips);
    /// Widths of columns 0 to twips.size() - 1 at once, with one layout notice when any changed:
    /// a view then lays itself out once instead of once per column. Throws DLVError(9), changing
    /// nothing, when there are more widths than columns.
    void setColWidths(std::span<const int> twips);
    [[nodiscard]] bool isColHidden(int col) const { return colWidth(col) == 0; }
    [[nodiscard]] int rowHeight(int row) const;
    void setRowHeight(int row, int twips);
    /// The column that shows the outline tree (default 0).
    [[nodiscard]] int outlineCol() const noexcept { return m_outlineCol; }
    void setOutlineCol(int col);
    /// Node rows whose outline cell is empty show this column's text there (-1: none). The summary
    /// grid writes group captions into a hidden column and shows them in the tree column.
    [[nodiscard]] int outlineTextCol() const noexcept { return m_outlineTextCol; }
    void setOutlineTextCol(int col);

    // Sorting and subtotals ------------------------------------------------------------------
    /// Stable ascending sort of rows [row1, row2] by col1 then col2 (-1 for none), comparing text
    /// exactly (ordinal UTF-16, case-sensitive). Rows move with all their attributes.
    void sortRows(int row1, int row2, int col1, int col2 = -1);
    /// Inserts a node row (level `level`) above each run of plain data rows with equal text in
    /// groupCol, writes the run's text into its groupCol cell, fills each total column with the
    /// run's sum read by leading-number parse and written by format (default: the "#" format,
    /// which writes nothing for zero), and gives the whole row the back colour and bold. Existing
    /// node rows end a run and are kept as they are.
    void subtotal(int groupCol, const QList<int> &totalCols, const QColor &back, bool bold,
                  int level = 0, const std::function<QString(double)> &format = {});
    /// Removes every node row (the subtotal rows of subtotal() and any tree nodes).
    void removeSubtotals();

    // Outline --------------------------------------------------------------------------------
    [[nodiscard]] bool isNode(int row) const;
    /// Marks a row as a node at the given level (expanded), or back to a plain row.
    void setNode(int row, bool node, int level = 0);
    /// Effective outline level: the stored level for nodes, nearest node above + 1 for plain rows.
    [[nodiscard]] int outlineLevel(int row) const;
    /// Appends a node row at `level`, expanded; returns its index.
    int addNodeRow(int level);
    /// Appends a whole tree as node rows in depth-first order: each node directly followed by its
    /// subtree, siblings in list order (or by text ascending, stable, when sortByText). text goes
    /// into column textCol; top nodes get level baseLevel. Returns the grid row of each list item.
    /// Linear (n log n when sorting). Throws DLVError(5) for a bad parent index or a cycle.
    /// Where appendTree() puts a list of nodes: the node indexes depth first (each node directly
    /// followed by its subtree, siblings in list order or, with sortByText, by text ascending,
    /// stable) and each node's depth. Throws DLVError(5) for a bad parent index or a cycle.
    struct TreeLayout
    {
        std::vector<int> order;
        std::vector<int> depth;
    };
    [[nodiscard]] static TreeLayout layOutTree(const std::vector<TreeNode> &nodes, bool sortByText);
    /// When the data rows already are the rows appendTree() would append for nodes laid out so
    /// (same order, levels, row data and texts in textCol), keeps them: expands them, gives them
    /// the default height and returns true; their other cells stay as they are, for the caller
    /// to write. Otherwise changes nothing and returns false. A refill of an unchanged tree then
    /// writes only the cells whose values change, and the rows keep sharing their cells with a
    /// fill baseline.
    bool keepTree(const std::vector<TreeNode> &nodes, const TreeLayout &layout, int textCol,
                  int baseLevel = 0);
    /// appendTree() for a layout already made.
    std::vector<int> appendTree(const std::vector<TreeNode> &nodes, const TreeLayout &layout,
                                int textCol, int baseLevel = 0);
    std::vector<int> appendTree(const std::vector<TreeNode> &nodes, int textCol, int baseLevel = 0,
                                bool sortByText = false);
    /// Moves row (with its subtree) to be the last child of the node parentRow. Throws DLVError(5)
    /// when parentRow is not a node or lies inside the moved subtree. Returns the row's new index.
    int moveUnder(int row, int parentRow);
    /// Sorts the children of a node (each with its subtree) by the text of col, ascending,
    /// stable, exact. Plain children stay ahead of node children (a plain row after a node would
    /// belong to that node).
    void sortChildren(int nodeRow, int col);
    /// sortChildren() for every node at once, n log n.
    void sortAllChildren(int col);

    /// The node a row belongs to, or -1 for a top-level row (and for fixed rows).
    [[nodiscard]] int parentRow(int row) const;
    /// Direct children of a node, or the top-level rows for -1, in row order.
    [[nodiscard]] QList<int> childRows(int row) const;
    [[nodiscard]] int childCount(int row) const;
    /// The i-th direct child of a node (or of the top level for -1); -1 when out of range.
    [[nodiscard]] int childRowAt(int row, int i) const;
    /// Position of a data row among its parent's children (or among the top-level rows).
    [[nodiscard]] int positionInParent(int row) const;
    /// The last row of a row's subtree (the row itself when it has no children).
    [[nodiscard]] int subtreeEnd(int row) const;

    [[nodiscard]] bool isCollapsed(int row) const;
    [[nodiscard]] CollapseState collapseState(int row) const
    {
        return isCollapsed(row) ? Collapsed : Expanded;
    }
    /// Plain rows cannot be collapsed: the call is ignored for them.
    void setCollapsed(int row, bool collapsed);
    /// Expands every node.
    void expandAll();
    /// Expands every node and gives every data row the default height, as a refill that keeps
    /// its rows leaves them.
    void resetDataRows();
    /// False when an ancestor node is collapsed.
    [[nodiscard]] bool isRowVisible(int row) const;

    // Redraw and current cell ------------------------------------------------------------------
    /// Nestable. While suspended no per-cell notices are sent; resuming sends one redrawResumed().
    void suspendRedraw();
    void resumeRedraw();
    [[nodiscard]] bool isRedrawSuspended() const noexcept { return m_suspend > 0; }
    /// The grid as the outermost suspendRedraw() found it, so that observers can tell what a fill
    /// changed when it resumes: rows and settings, the rows' cells shared until the fill writes
    /// them (a fill that replaces its rows copies no cell), taken only when the grid has
    /// observers, and dropped once gridRedrawResumed() has been sent. nullptr at any other time.
    /// It has no observers of its own.
    [[nodiscard]] const OutlineGrid *fillBaseline() const noexcept { return m_baseline.get(); }
    /// Compares this grid with an earlier state of it (normally fillBaseline()) in one pass over
    /// the cells. Shown texts are compared as the grid holds them: numbers written by
    /// setNumber(row, col, qint64) as numbers, other texts by their characters (shared text
    /// without reading it). A node's outline-text cell that shows in its empty outline cell
    /// widens its row's range to the outline column.
    [[nodiscard]] Changes changesSince(const OutlineGrid &before) const;

    [[nodiscard]] int currentRow() const noexcept { return m_currentRow; }
    [[nodiscard]] int currentCol() const noexcept { return m_currentCol; }
    /// Throws DLVError(9) outside the grid.
    void setCurrentCell(int row, int col);

    // Export ------------------------------------------------------------------------------------
    /// Every row (fixed rows included) as comma-separated UTF-8 lines ending in CR LF. Fields with
    /// a comma, quote, CR or LF are quoted with inner quotes doubled. A field that starts with
    /// "=", "+", "-" or "@" and is not a plain number ("-12", "+3", "-0.5", "1E5") gets a leading
    /// apostrophe so that a spreadsheet does not run it as a formula.
    [[nodiscard]] QByteArray commaText() const;
    /// Writes commaText() to a file, replacing it. False when the file cannot be written.
    [[nodiscard]] bool saveCommaText(const QString &path) const;

private:
    struct Cell
    {
        /// The text shown. A whole number that setNumber wrote keeps only its value until its
        /// text is first asked for: a fill writes hundreds of thousands of them, a view shows a
        /// screenful.
        /// The text setDecimal() shows for value.
        [[nodiscard]] static QString decimalText(double value);
        [[nodiscard]] const QString &shown() const
        {
            if (text.isNull() && (digits || decimal))
                text = digits ? QString::number(qint64(number)) : decimalText(number);
            return text;
        }
        /// Whether the cell shows exactly what o shows.
        [[nodiscard]] bool sameShown(const Cell &o) const;
        mutable QString text; ///< null while a number's digits are not yet written (see shown())
        /// The number the text was written from (setNumber), NaN for any other text.
        double number = std::numeric_limits<double>::quiet_NaN();
        QRgb back = 0; ///< alpha 0: no colour set
        bool bold = false;
        bool digits = false;  ///< text is number's decimal digits: equal numbers, equal text
        bool decimal = false; ///< text is decimalText(number): equal numbers, equal text
    };
    struct Row
    {
        /// Shared with a fill baseline until either side writes (implicit sharing): taking the
        /// baseline copies no cell, and a fill that replaces its rows copies none either. Read
        /// through const access (std::as_const) so that reading never copies.
        QList<Cell> cells;
        QString data;
        int height = -1; ///< -1: default
        int level = 0;   ///< meaningful for nodes only
        bool node = false;
        bool collapsed = false;
    };
    /// Derived outline structure, rebuilt lazily after structural changes.
    struct Structure
    {
        std::vector<int> parent;     ///< per row; -1 top level or fixed row
        std::vector<int> level;      ///< effective level per row
        std::vector<int> childStart; ///< per row + 1 for the top level (index rowCount())
        std::vector<int> children;   ///< flat child lists
        std::vector<int> subtreeEnd; ///< per row
        std::vector<int> position;   ///< per row: index in its parent's child list
    };

    void checkRow(int row) const;
    void checkCol(int col) const;
    void checkRange(int row1, int col1, int row2, int col2) const;
    Cell &cell(int row, int col);
    const Cell &cell(int row, int col) const;
    [[nodiscard]] Row makeRow() const;

    void beginStructure();
    void endStructure();
    void notifyCells(int row1, int col1, int row2, int col2);
    /// Gives the cell value's text, number and form, unless it holds them already.
    void writeCell(int row, int col, const Cell &value);
    void notifyLayout();
    void notifyCollapse(int row);
    void clampCurrent();

    const Structure &structure() const;
    void ensureIndex() const;
    void ensureVisibility() const;
    /// Reorders rows: position first + i receives old row order[i] (a permutation of that range).
    void applyOrder(int first, const std::vector<int> &order);

    std::vector<Row> m_rows;
    int m_cols = 0;
    int m_fixedRows = 0;
    std::vector<int> m_colWidths;
    int m_outlineCol = 0;
    int m_outlineTextCol = -1;
    int m_currentRow = 0;
    int m_currentCol = 0;
    int m_suspend = 0;
    std::vector<Observer *> m_observers;

    std::unique_ptr<OutlineGrid> m_baseline; ///< see fillBaseline()

    mutable Structure m_structure;
    mutable bool m_structureDirty = true;
    mutable QHash<QString, int> m_index;
    mutable bool m_indexDirty = true;
    /// Revisions are numbered across all grids: a grid never shows another grid's revision, so
    /// whoever kept one cannot take a new grid for the one it saw.
    static quint64 nextRevision();
    quint64 m_shapeRevision = nextRevision();
    quint64 m_textRevision = nextRevision();
    mutable std::vector<bool> m_visible;
    mutable bool m_visibleDirty = true;
};

class OutlineGrid::RowCells
{
    friend class OutlineGrid;
    QList<Cell> m_cells;
};
