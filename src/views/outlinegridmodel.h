#pragma once

#include "views/outlinegrid.h"

class CellDecorator;

#include <QAbstractItemModel>
#include <QFont>
#include <array>

/// A tree-shaped item model over an OutlineGrid. Data rows (from the first non-fixed row) form the
/// tree by outline level: nodes hold their children, plain rows are leaves. Each index's internal
/// id is its grid row. The fixed rows become header data: the caption row (the last fixed row) as
/// the usual display/background/font roles, the band row above it through the Band* roles.
///
/// The grid stays the single source of truth. Cell changes become dataChanged(); a structural
/// change made alone becomes one model reset. A fill (everything between suspending and resuming
/// the grid's redraw) is told when it ends, by comparing the grid with the state the fill found
/// (OutlineGrid::fillBaseline()):
/// - Same shape (rows, row data, outline tree, columns): one dataChanged() per changed row over
///   its changed columns with the roles that changed, headerDataChanged() for the fixed rows,
///   collapseStateChanged() per node whose state changed, currentCellChanged() when the grid's
///   current cell moved. Nothing at all when nothing changed. Indexes stay as they are.
/// - Otherwise one layout change keyed by row data: every persistent index (a view's current
///   cell, its expanded nodes, its scroll anchor, a host's own) follows its row to wherever the
///   row with the same row data stands after the fill, or becomes invalid when no such row
///   remains. While layoutAboutToBeChanged() is being sent the model still shows the grid as the
///   fill found it, so listeners save indexes of the rows they knew.
/// So rows that stay keep their identity across refreshes, and a fill of any size costs one
/// pass over the cells and at most one notice per changed row.
/// The grid must outlive the model or tell it that it is gone (it does so from its destructor).
class OutlineGridModel final : public QAbstractItemModel, private OutlineGrid::Observer
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OutlineGridModel)

public:
    enum Role
    {
        RowDataRole = Qt::UserRole + 1, ///< QString: the row's row data
        GridRowRole,                    ///< int: the grid row number
        IsNodeRole,                     ///< bool: the row is an outline node
        OutlineLevelRole,               ///< int: the effective outline level
        // Header (horizontal headerData) roles:
        BandTextRole,       ///< QString: band row (row 0) text of the column
        BandBackgroundRole, ///< QColor: band row back colour (absent when unset)
        BandBoldRole,       ///< bool: band row bold
        CaptionBoldRole,    ///< bool: caption row bold
        BandHeightRole,     ///< int: band row height in twips, 0 when there is no band row
        CaptionHeightRole,  ///< int: caption row height in twips, 0 when there is no caption row
    };

    explicit OutlineGridModel(OutlineGrid *grid, QObject *parent = nullptr);
    ~OutlineGridModel() override;

    [[nodiscard]] OutlineGrid *grid() const noexcept { return m_grid; }

    /// The index of a data row in a column; invalid for fixed rows and rows outside the grid.
    [[nodiscard]] QModelIndex indexForRow(int gridRow, int col) const;
    /// The grid row of an index, -1 for an invalid one.
    [[nodiscard]] static int gridRow(const QModelIndex &index);

    /// Colours and markers drawn over the cells (trouble, change cues); nullptr: none. The
    /// decorator must outlive its use here. The grid's data are not touched.
    void setDecorator(const CellDecorator *decorator);
    [[nodiscard]] const CellDecorator *decorator() const noexcept { return m_decorator; }

    /// Pixel conversion for the size hints (1440 / logical DPI; 15 at 96 DPI).
    void setTwipsPerPixel(double x, double y);

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    [[nodiscard]] QModelIndex sibling(int row, int column, const QModelIndex &idx) const override;
    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index,
                                int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    /// A node was expanded or collapsed in the grid (index in column 0).
    void collapseStateChanged(const QModelIndex &index, bool collapsed);
    /// Column widths, row heights or the outline columns changed.
    void gridLayoutChanged();
    /// The grid's current cell was set by code.
    void currentCellChanged(int row, int col);
    /// A fill began: nothing is told until it ends, and the grid may differ from what was told.
    void fillStarted();
    /// A fill ended and its changes were told (also sent when the grid is destroyed during one).
    void fillEnded();

private:
    void gridStructureAboutToChange() override;
    void gridStructureChanged() override;
    void gridCellsChanged(int row1, int col1, int row2, int col2) override;
    void gridCollapseStateChanged(int row) override;
    void gridLayoutSettingsChanged() override;
    void gridCurrentCellChanged(int row, int col) override;
    void gridRedrawSuspended() override;
    void gridRedrawResumed() override;
    void gridDestroyed() override;

    [[nodiscard]] bool validRow(int row) const;
    /// The roles of a row's changed aspects (OutlineGrid::CellAspect bits).
    [[nodiscard]] const QList<int> &rolesOf(quint8 aspects) const;
    /// Tells a fill that kept the grid's shape, change by change.
    void tellChanges(const OutlineGrid::Changes &changes);
    /// Tells a fill that changed the shape as one layout change keyed by row data.
    void tellKeyedLayoutChange(const OutlineGrid &before);
    /// Inside a reset or a fill's layout change the views must not hear of single changes.
    [[nodiscard]] bool restructuring() const noexcept { return m_inReset || m_inLayoutChange; }
    void beginReset();
    void endReset();

    OutlineGrid *m_grid = nullptr;
    /// What the model answers from: the grid, or while a layout change is being announced the
    /// grid as the fill found it.
    const OutlineGrid *m_shown = nullptr;
    const CellDecorator *m_decorator = nullptr;
    QFont m_boldFont;
    double m_twipsPerPixelX = 15.0;
    double m_twipsPerPixelY = 15.0;
    bool m_inReset = false;
    bool m_inLayoutChange = false;
    /// The model saw the fill begin (attached in the middle of one, it resets at its end).
    bool m_inFill = false;
    mutable std::array<QList<int>, 16> m_roles; ///< by CellAspect bits, built on first use
};
