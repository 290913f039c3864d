#include "views/outlinegridmodel.h"

#include "common/displaytext.h"
#include "views/celldecorator.h"

#include <QColor>
#include <QLoggingCategory>
#include <QSize>
#include <algorithm>
#include <utility>

Q_LOGGING_CATEGORY(lcOutlineGridModel, "dlv.views.outlinegridmodel", QtWarningMsg)

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
    : QAbstractItemModel(parent), m_grid(grid), m_shown(grid)
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
    return m_shown && row >= m_shown->fixedRows() && row < m_shown->rowCount();
}

QModelIndex OutlineGridModel::indexForRow(int row, int col) const
{
    if (!validRow(row) || col < 0 || col >= m_shown->colCount())
        return {};
    return createIndex(m_shown->positionInParent(row), col, quintptr(row));
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
    if (!m_shown || row < 0 || column < 0 || column >= m_shown->colCount())
        return {};
    int parentRow = -1;
    if (parent.isValid()) {
        if (parent.column() != 0 || !validRow(gridRow(parent)))
            return {};
        parentRow = gridRow(parent);
    }
    const int child = m_shown->childRowAt(parentRow, row);
    return child < 0 ? QModelIndex() : createIndex(row, column, quintptr(child));
}

QModelIndex OutlineGridModel::parent(const QModelIndex &child) const
{
    const int row = gridRow(child);
    if (!validRow(row))
        return {};
    const int p = m_shown->parentRow(row);
    return p < 0 ? QModelIndex() : createIndex(m_shown->positionInParent(p), 0, quintptr(p));
}

QModelIndex OutlineGridModel::sibling(int row, int column, const QModelIndex &idx) const
{
    // Same row, other column: no tree walk needed.
    if (idx.isValid() && row == idx.row() && m_shown && column >= 0 &&
        column < m_shown->colCount() && validRow(gridRow(idx)))
        return createIndex(row, column, idx.internalId());
    return QAbstractItemModel::sibling(row, column, idx);
}

int OutlineGridModel::rowCount(const QModelIndex &parent) const
{
    if (!m_shown)
        return 0;
    if (!parent.isValid())
        return m_shown->childCount(-1);
    if (parent.column() != 0 || !validRow(gridRow(parent)))
        return 0;
    return m_shown->childCount(gridRow(parent));
}

int OutlineGridModel::columnCount(const QModelIndex &parent) const
{
    if (!m_shown || (parent.isValid() && parent.column() != 0))
        return 0;
    return m_shown->colCount();
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
    if (!validRow(row) || col < 0 || col >= m_shown->colCount())
        return {};
    // A decorator reads the grid by row number: not while the model still shows the grid as a
    // fill found it.
    const CellDecorator *decorator = m_shown == m_grid ? m_decorator : nullptr;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: {
        const QString &text = m_shown->text(row, col);
        if (text.isEmpty() && col == m_shown->outlineCol() && m_shown->outlineTextCol() >= 0 &&
            m_shown->isNode(row)) {
            const QString &outlineText = m_shown->text(row, m_shown->outlineTextCol());
            if (role == Qt::ToolTipRole && DisplayText::isCut(outlineText))
                return DisplayText::toolTip(outlineText);
            return DisplayText::shown(outlineText);
        }
        if (role == Qt::ToolTipRole)
            return DisplayText::isCut(text) ? QVariant(DisplayText::toolTip(text)) : QVariant();
        if (decorator) {
            const QString marker = decorator->decoration(row, col).marker;
            if (!marker.isEmpty())
                return marker + u' ' + DisplayText::shown(text);
        }
        return DisplayText::shown(text);
    }
    case Qt::BackgroundRole: {
        if (decorator) {
            const QColor own = decorator->decoration(row, col).back;
            if (own.isValid())
                return own;
        }
        const QColor c = m_shown->backColor(row, col);
        return c.isValid() ? QVariant(c) : QVariant();
    }
    case Qt::ForegroundRole:
        if (decorator) {
            const QColor own = decorator->decoration(row, col).text;
            if (own.isValid())
                return own;
        }
        return {};
    case Qt::FontRole:
        return m_shown->isBold(row, col) ? QVariant(m_boldFont) : QVariant();
    case Qt::TextAlignmentRole:
        if (col != m_shown->outlineCol() && looksNumeric(m_shown->text(row, col)))
            return QVariant(Qt::AlignRight | Qt::AlignVCenter);
        return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::SizeHintRole:
        return QSize(qRound(m_shown->colWidth(col) / m_twipsPerPixelX),
                     qRound(m_shown->rowHeight(row) / m_twipsPerPixelY));
    case RowDataRole:
        return m_shown->rowData(row);
    case GridRowRole:
        return row;
    case IsNodeRole:
        return m_shown->isNode(row);
    case OutlineLevelRole:
        return m_shown->outlineLevel(row);
    default:
        return {};
    }
}

QVariant OutlineGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!m_shown || orientation != Qt::Horizontal || section < 0 || section >= m_shown->colCount())
        return {};
    const int fixed = m_shown->fixedRows();
    const int captionRow = fixed - 1;
    const int bandRow = fixed >= 2 ? 0 : -1;
    switch (role) {
    case Qt::DisplayRole:
        return captionRow >= 0 ? m_shown->text(captionRow, section) : QString();
    case Qt::BackgroundRole:
        if (captionRow >= 0 && m_shown->backColor(captionRow, section).isValid())
            return m_shown->backColor(captionRow, section);
        return {};
    case Qt::FontRole:
        return captionRow >= 0 && m_shown->isBold(captionRow, section) ? QVariant(m_boldFont)
                                                                       : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant(Qt::AlignCenter);
    case BandTextRole:
        return bandRow >= 0 ? m_shown->text(bandRow, section) : QString();
    case BandBackgroundRole:
        if (bandRow >= 0 && m_shown->backColor(bandRow, section).isValid())
            return m_shown->backColor(bandRow, section);
        return {};
    case BandBoldRole:
        return bandRow >= 0 && m_shown->isBold(bandRow, section);
    case CaptionBoldRole:
        return captionRow >= 0 && m_shown->isBold(captionRow, section);
    case BandHeightRole:
        return bandRow >= 0 ? m_shown->rowHeight(bandRow) : 0;
    case CaptionHeightRole:
        return captionRow >= 0 ? m_shown->rowHeight(captionRow) : 0;
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
    if (!m_shown->isNode(row))
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

const QList<int> &OutlineGridModel::rolesOf(quint8 aspects) const
{
    QList<int> &roles = m_roles[aspects & 15u];
    if (roles.isEmpty()) {
        if (aspects & OutlineGrid::TextChanged) // alignment follows the text (numbers go right)
            roles << Qt::DisplayRole << Qt::ToolTipRole << Qt::TextAlignmentRole;
        if (aspects & OutlineGrid::BackChanged)
            roles << Qt::BackgroundRole;
        if (aspects & OutlineGrid::BoldChanged)
            roles << Qt::FontRole;
        if (aspects & OutlineGrid::HeightChanged)
            roles << Qt::SizeHintRole;
    }
    return roles;
}

void OutlineGridModel::tellChanges(const OutlineGrid::Changes &changes)
{
    const int fixed = m_grid->fixedRows();
    int headerCol1 = m_grid->colCount();
    int headerCol2 = -1;
    for (const OutlineGrid::RowChange &change : changes.rows) {
        if (change.row < fixed) {
            headerCol1 = std::min(headerCol1, change.col1);
            headerCol2 = std::max(headerCol2, change.col2);
            continue;
        }
        Q_EMIT dataChanged(indexForRow(change.row, change.col1),
                           indexForRow(change.row, change.col2), rolesOf(change.aspects));
    }
    if (headerCol2 >= headerCol1)
        Q_EMIT headerDataChanged(Qt::Horizontal, headerCol1, headerCol2);
    for (const int row : changes.collapsed)
        Q_EMIT collapseStateChanged(indexForRow(row, 0), m_grid->isCollapsed(row));
    if (changes.currentCellChanged)
        Q_EMIT currentCellChanged(m_grid->currentRow(), m_grid->currentCol());
}

void OutlineGridModel::tellKeyedLayoutChange(const OutlineGrid &before)
{
    m_inLayoutChange = true;
    // Listeners save their indexes now, from the rows they knew: show the grid as it was.
    m_shown = &before;
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList from = persistentIndexList();
    m_shown = m_grid;
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex &index : from) {
        const int row = gridRow(index);
        // The key is read where the baseline keeps it; findRow() goes through the grid's row-data
        // index: linear in the persistent indexes.
        const bool known = row >= before.fixedRows() && row < before.rowCount();
        const QString *key = known ? &before.rowData(row) : nullptr;
        const int now = key && !key->isEmpty() ? m_grid->findRow(*key) : -1;
        to.append(now >= 0 ? indexForRow(now, index.column()) : QModelIndex());
    }
    changePersistentIndexList(from, to);
    m_inLayoutChange = false;
    Q_EMIT layoutChanged();
}

void OutlineGridModel::gridRedrawSuspended()
{
    m_inFill = true;
    Q_EMIT fillStarted();
}

void OutlineGridModel::gridRedrawResumed()
{
    const bool sawStart = std::exchange(m_inFill, false);
    const OutlineGrid *before = m_grid->fillBaseline();
    if (!sawStart || !before) {
        // Attached in the middle of a fill: show the grid as it is now.
        beginReset();
        endReset();
    } else {
        const OutlineGrid::Changes changes = m_grid->changesSince(*before);
        // Many nodes changing state are applied by a view in one pass after a layout change;
        // one by one each would relayout the tree.
        if (changes.shapeChanged || changes.collapsed.size() > MaxRowsPerCellNotice)
            tellKeyedLayoutChange(*before);
        else
            tellChanges(changes);
        qCDebug(lcOutlineGridModel)
            << "fill ended:" << (changes.shapeChanged ? "new shape" : "same shape,")
            << changes.rows.size() << "changed rows," << changes.collapsed.size()
            << "nodes collapsed or expanded, current cell moved:" << changes.currentCellChanged;
    }
    Q_EMIT gridLayoutChanged();
    Q_EMIT fillEnded();
}

void OutlineGridModel::gridDestroyed()
{
    const bool inFill = std::exchange(m_inFill, false);
    beginReset();
    m_grid = nullptr;
    m_shown = nullptr;
    endReset();
    if (inFill) // every started fill ends
        Q_EMIT fillEnded();
}
