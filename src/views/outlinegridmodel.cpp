#include "views/outlinegridmodel.h"

#include "common/displaytext.h"
#include "views/celldecorator.h"

#include <QColor>
#include <QSize>
#include <algorithm>

namespace {

// Above this many rows one reset is cheaper for a view than a dataChanged() per row (ranges in a
// tree model cannot span parents, so a block of rows needs one signal per row).
constexpr int MaxRowsPerCellNotice = 512;

[[nodiscard]] bool looksNumeric(const QString &text)
{
    if (text.isEmpty())
        return false;
    const QChar first = text.front();
    if (first.isDigit())
        return true;
    return text.size() > 1 && (first == u'-' || first == u'+' || first == u'.') &&
           (text.at(1).isDigit() || text.at(1) == u'.');
}

} // namespace

OutlineGridModel::OutlineGridModel(OutlineGrid *grid, QObject *parent)
    : QAbstractItemModel(parent), m_grid(grid)
{
    m_boldFont.setBold(true);
    // Attached in the middle of a fill, the model shows the grid as it is; resuming resets it.
    if (m_grid)
        m_grid->addObserver(this);
}

OutlineGridModel::~OutlineGridModel()
{
    if (m_grid)
        m_grid->removeObserver(this);
}

int OutlineGridModel::gridRow(const QModelIndex &index)
{
    return index.isValid() ? int(index.internalId()) : -1;
}

bool OutlineGridModel::validRow(int row) const
{
    return m_grid && row >= m_grid->fixedRows() && row < m_grid->rowCount();
}

QModelIndex OutlineGridModel::indexForRow(int row, int col) const
{
    if (!validRow(row) || col < 0 || col >= m_grid->colCount())
        return {};
    return createIndex(m_grid->positionInParent(row), col, quintptr(row));
}

void OutlineGridModel::setTwipsPerPixel(double x, double y)
{
    if (x > 0)
        m_twipsPerPixelX = x;
    if (y > 0)
        m_twipsPerPixelY = y;
}

QModelIndex OutlineGridModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!m_grid || row < 0 || column < 0 || column >= m_grid->colCount())
        return {};
    int parentRow = -1;
    if (parent.isValid()) {
        if (parent.column() != 0 || !validRow(gridRow(parent)))
            return {};
        parentRow = gridRow(parent);
    }
    const int child = m_grid->childRowAt(parentRow, row);
    return child < 0 ? QModelIndex() : createIndex(row, column, quintptr(child));
}

QModelIndex OutlineGridModel::parent(const QModelIndex &child) const
{
    const int row = gridRow(child);
    if (!validRow(row))
        return {};
    const int p = m_grid->parentRow(row);
    return p < 0 ? QModelIndex() : createIndex(m_grid->positionInParent(p), 0, quintptr(p));
}

QModelIndex OutlineGridModel::sibling(int row, int column, const QModelIndex &idx) const
{
    // Same row, other column: no tree walk needed.
    if (idx.isValid() && row == idx.row() && m_grid && column >= 0 && column < m_grid->colCount() &&
        validRow(gridRow(idx)))
        return createIndex(row, column, idx.internalId());
    return QAbstractItemModel::sibling(row, column, idx);
}

int OutlineGridModel::rowCount(const QModelIndex &parent) const
{
    if (!m_grid)
        return 0;
    if (!parent.isValid())
        return m_grid->childCount(-1);
    if (parent.column() != 0 || !validRow(gridRow(parent)))
        return 0;
    return m_grid->childCount(gridRow(parent));
}

int OutlineGridModel::columnCount(const QModelIndex &parent) const
{
    if (!m_grid || (parent.isValid() && parent.column() != 0))
        return 0;
    return m_grid->colCount();
}

bool OutlineGridModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

void OutlineGridModel::setDecorator(const CellDecorator *decorator)
{
    m_decorator = decorator; // the views repaint on their next update
}

QVariant OutlineGridModel::data(const QModelIndex &index, int role) const
{
    const int row = gridRow(index);
    const int col = index.column();
    if (!validRow(row) || col < 0 || col >= m_grid->colCount())
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: {
        const QString &text = m_grid->text(row, col);
        if (text.isEmpty() && col == m_grid->outlineCol() && m_grid->outlineTextCol() >= 0 &&
            m_grid->isNode(row)) {
            const QString &outlineText = m_grid->text(row, m_grid->outlineTextCol());
            if (role == Qt::ToolTipRole && DisplayText::isCut(outlineText))
                return DisplayText::toolTip(outlineText);
            return DisplayText::shown(outlineText);
        }
        if (role == Qt::ToolTipRole)
            return DisplayText::isCut(text) ? QVariant(DisplayText::toolTip(text)) : QVariant();
        if (m_decorator) {
            const QString marker = m_decorator->decoration(row, col).marker;
            if (!marker.isEmpty())
                return marker + u' ' + DisplayText::shown(text);
        }
        return DisplayText::shown(text);
    }
    case Qt::BackgroundRole: {
        if (m_decorator) {
            const QColor own = m_decorator->decoration(row, col).back;
            if (own.isValid())
                return own;
        }
        const QColor c = m_grid->backColor(row, col);
        return c.isValid() ? QVariant(c) : QVariant();
    }
    case Qt::ForegroundRole:
        if (m_decorator) {
            const QColor own = m_decorator->decoration(row, col).text;
            if (own.isValid())
                return own;
        }
        return {};
    case Qt::FontRole:
        return m_grid->isBold(row, col) ? QVariant(m_boldFont) : QVariant();
    case Qt::TextAlignmentRole:
        if (col != m_grid->outlineCol() && looksNumeric(m_grid->text(row, col)))
            return QVariant(Qt::AlignRight | Qt::AlignVCenter);
        return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::SizeHintRole:
        return QSize(qRound(m_grid->colWidth(col) / m_twipsPerPixelX),
                     qRound(m_grid->rowHeight(row) / m_twipsPerPixelY));
    case RowDataRole:
        return m_grid->rowData(row);
    case GridRowRole:
        return row;
    case IsNodeRole:
        return m_grid->isNode(row);
    case OutlineLevelRole:
        return m_grid->outlineLevel(row);
    default:
        return {};
    }
}

QVariant OutlineGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!m_grid || orientation != Qt::Horizontal || section < 0 || section >= m_grid->colCount())
        return {};
    const int fixed = m_grid->fixedRows();
    const int captionRow = fixed - 1;
    const int bandRow = fixed >= 2 ? 0 : -1;
    switch (role) {
    case Qt::DisplayRole:
        return captionRow >= 0 ? m_grid->text(captionRow, section) : QString();
    case Qt::BackgroundRole:
        if (captionRow >= 0 && m_grid->backColor(captionRow, section).isValid())
            return m_grid->backColor(captionRow, section);
        return {};
    case Qt::FontRole:
        return captionRow >= 0 && m_grid->isBold(captionRow, section) ? QVariant(m_boldFont)
                                                                      : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignCenter);
    case BandTextRole:
        return bandRow >= 0 ? m_grid->text(bandRow, section) : QString();
    case BandBackgroundRole:
        if (bandRow >= 0 && m_grid->backColor(bandRow, section).isValid())
            return m_grid->backColor(bandRow, section);
        return {};
    case BandBoldRole:
        return bandRow >= 0 && m_grid->isBold(bandRow, section);
    case CaptionBoldRole:
        return captionRow >= 0 && m_grid->isBold(captionRow, section);
    case BandHeightRole:
        return bandRow >= 0 ? m_grid->rowHeight(bandRow) : 0;
    case CaptionHeightRole:
        return captionRow >= 0 ? m_grid->rowHeight(captionRow) : 0;
    default:
        return {};
    }
}

Qt::ItemFlags OutlineGridModel::flags(const QModelIndex &index) const
{
    const int row = gridRow(index);
    if (!validRow(row))
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!m_grid->isNode(row))
        f |= Qt::ItemNeverHasChildren;
    return f;
}

QHash<int, QByteArray> OutlineGridModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractItemModel::roleNames();
    names.insert(RowDataRole, "rowData");
    names.insert(GridRowRole, "gridRow");
    names.insert(IsNodeRole, "isNode");
    names.insert(OutlineLevelRole, "outlineLevel");
    return names;
}

// ---------------------------------------------------------------------------------------------
// Grid notices

void OutlineGridModel::beginReset()
{
    if (m_inReset)
        return;
    m_inReset = true;
    beginResetModel();
}

void OutlineGridModel::endReset()
{
    if (!m_inReset)
        return;
    m_inReset = false;
    endResetModel();
}

void OutlineGridModel::gridStructureAboutToChange()
{
    beginReset();
}

void OutlineGridModel::gridStructureChanged()
{
    endReset();
}

void OutlineGridModel::gridCellsChanged(int row1, int col1, int row2, int col2)
{
    if (restructuring())
        return;
    const int fixed = m_grid->fixedRows();
    if (row1 < fixed)
        Q_EMIT headerDataChanged(Qt::Horizontal, col1, col2);
    const int first = std::max(row1, fixed);
    if (first > row2)
        return;
    if (row2 - first + 1 > MaxRowsPerCellNotice) {
        beginReset();
        endReset();
        return;
    }
    // Text in the outline-text column also shows in the outline column of node rows.
    const int textCol = m_grid->outlineTextCol();
    if (textCol >= col1 && textCol <= col2) {
        col1 = std::min(col1, m_grid->outlineCol());
        col2 = std::max(col2, m_grid->outlineCol());
    }
    for (int r = first; r <= row2; ++r)
        Q_EMIT dataChanged(indexForRow(r, col1), indexForRow(r, col2));
}

void OutlineGridModel::gridCollapseStateChanged(int row)
{
    if (!restructuring() && validRow(row))
        Q_EMIT collapseStateChanged(indexForRow(row, 0), m_grid->isCollapsed(row));
}

void OutlineGridModel::gridLayoutSettingsChanged()
{
    if (restructuring())
        return;
    Q_EMIT gridLayoutChanged();
    if (m_grid->colCount() > 0)
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, m_grid->colCount() - 1);
}

void OutlineGridModel::gridCurrentCellChanged(int row, int col)
{
    if (!restructuring())
        Q_EMIT currentCellChanged(row, col);
}

void OutlineGridModel::beginLayoutChange()
{
    if (m_inReset || m_inLayoutChange)
        return;
    m_inLayoutChange = true;
    Q_EMIT layoutAboutToBeChanged();
    // Keys first, while the grid still holds the rows the indexes point at.
    m_movingIndexes = persistentIndexList();
    m_movingKeys.clear();
    m_movingKeys.reserve(std::size_t(m_movingIndexes.size()));
    for (const QModelIndex &index : std::as_const(m_movingIndexes)) {
        const int row = gridRow(index);
        m_movingKeys.emplace_back(validRow(row) ? m_grid->rowData(row) : QString(), index.column());
    }
}

void OutlineGridModel::endLayoutChange()
{
    if (!m_inLayoutChange)
        return;
    m_inLayoutChange = false;
    QModelIndexList moved;
    moved.reserve(m_movingIndexes.size());
    for (const auto &[key, col] : m_movingKeys) {
        // findRow() goes through the grid's row-data index: linear in the persistent indexes.
        const int row = m_grid && !key.isEmpty() ? m_grid->findRow(key) : -1;
        moved.append(row >= 0 ? indexForRow(row, col) : QModelIndex());
    }
    changePersistentIndexList(m_movingIndexes, moved);
    m_movingIndexes.clear();
    m_movingKeys.clear();
    Q_EMIT layoutChanged();
}

void OutlineGridModel::gridRedrawSuspended()
{
    beginLayoutChange();
}

void OutlineGridModel::gridRedrawResumed()
{
    if (m_inLayoutChange) {
        endLayoutChange();
    } else {
        // Attached in the middle of a fill: show the grid as it is now.
        beginReset();
        endReset();
    }
    Q_EMIT gridLayoutChanged();
}

void OutlineGridModel::gridDestroyed()
{
    if (m_inLayoutChange) {
        m_grid = nullptr;
        endLayoutChange(); // every index becomes invalid
    }
    beginReset();
    m_grid = nullptr;
    endReset();
}
