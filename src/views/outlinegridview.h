#pragma once

#include <QTreeView>

class GridHeaderView;
class OutlineGrid;
class OutlineGridModel;

/// The widget that shows an OutlineGrid: a tree view with the grid's two fixed rows as a two-row
/// header (GridHeaderView), the outline tree in the grid's outline column, cell colours and bold,
/// column widths from twips (1440 / logical DPI twips per pixel), hidden zero-width columns,
/// single-cell selection and no editing.
///
/// The grid is the source of truth in both directions: expanding or collapsing a node by mouse or
/// keyboard writes the node's state into the grid, and after every model reset or layout change (a
/// fill that changed the rows) the grid's collapsed states, widths and current cell are applied to
/// the view in one pass; a fill that kept the rows tells only what changed. The view reports its
/// current cell to the grid (grid row and column numbering).
///
/// Keyboard: arrows move between cells; in the outline column Left collapses a node (or moves to
/// its parent) and Right expands it; "+" expands, "-" collapses and "*" expands a node with its
/// whole subtree in any column; Enter emits enterPressed().
///
/// "Mouse row/column" follow the host grid's sense: the grid row and column under the last known
/// mouse position over the view or its header (header rows are 0 and 1), -1 when the mouse is
/// outside any row or column.
class OutlineGridView final : public QTreeView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OutlineGridView)

public:
    explicit OutlineGridView(QWidget *parent = nullptr);
    ~OutlineGridView() override;

    /// Shows a grid, which the caller owns and which must outlive its use here; nullptr detaches.
    /// The view creates and owns the item model.
    void setGrid(OutlineGrid *grid);
    [[nodiscard]] OutlineGrid *grid() const;
    [[nodiscard]] OutlineGridModel *gridModel() const noexcept { return m_model; }
    [[nodiscard]] GridHeaderView *gridHeader() const noexcept { return m_header; }

    [[nodiscard]] double twipsPerPixelX() const;
    [[nodiscard]] double twipsPerPixelY() const;

    [[nodiscard]] int mouseRow() const noexcept { return m_mouseRow; }
    [[nodiscard]] int mouseCol() const noexcept { return m_mouseCol; }
    /// Grid row under a viewport position, -1 when none.
    [[nodiscard]] int gridRowAt(const QPoint &viewportPos) const;
    /// Grid column under a viewport x position, -1 when none.
    [[nodiscard]] int gridColAt(int viewportX) const;
    /// Viewport rectangle of a data cell (empty when the row is not shown).
    [[nodiscard]] QRect cellRect(int row, int col) const;

Q_SIGNALS:
    /// A double-click, with the grid cell under the mouse and the button that made it. The grid's
    /// current cell is already set by the first click.
    void cellDoubleClicked(int mouseRow, int mouseCol, Qt::MouseButton button,
                           Qt::KeyboardModifiers modifiers);
    /// Enter or Return was pressed, with the cell under the mouse at that moment.
    void enterPressed(int mouseRow, int mouseCol, Qt::KeyboardModifiers modifiers);
    /// A mouse button went down on the view or its header (after the current cell moved).
    void mouseButtonPressed(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, int mouseRow,
                            int mouseCol);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = QList<int>()) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                 const QModelIndex &index) const override;
    void drawBranches(QPainter *painter, const QRect &rect,
                      const QModelIndex &index) const override;

private:
    void applyGridLayout();
    void applyCollapseState();
    void applyCurrentCell();
    void onModelAboutToBeReset();
    void onModelReset();
    void onGridCollapseChanged(const QModelIndex &index, bool collapsed);
    void onGridCurrentCellChanged(int row, int col);
    void onViewExpanded(const QModelIndex &index, bool expanded);
    void onSectionResized(int logicalIndex, int oldSize, int newSize);
    void trackViewportMouse(const QPoint &pos);
    void setNodeCollapsed(int row, bool collapsed, bool withSubtree);

    GridHeaderView *m_header = nullptr;  ///< child widget, owned by Qt parentage
    OutlineGridModel *m_model = nullptr; ///< child object, owned by Qt parentage
    int m_mouseRow = -1;
    int m_mouseCol = -1;
    bool m_applying = false;
    bool m_syncingCurrent = false;
    bool m_headerPressed = false;
    bool m_inFill = false; ///< between the model's fillStarted() and fillEnded()
};
