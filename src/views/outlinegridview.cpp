#include "views/outlinegridview.h"

#include "views/gridcelldelegate.h"
#include "views/gridheaderview.h"
#include "views/outlinegrid.h"
#include "views/outlinegridmodel.h"

#include <QEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>
#include <QScrollBar>
#include <algorithm>
#include <vector>

Q_LOGGING_CATEGORY(lcOutlineGridView, "dlv.views.outlinegridview", QtWarningMsg)

namespace {

const QColor GridLineColor(212, 212, 212);
const QColor TreeLineColor(128, 128, 128);
constexpr int TreeIndent = 16;

} // namespace

OutlineGridView::OutlineGridView(QWidget *parent)
    : QTreeView(parent), m_header(new GridHeaderView(this))
{
    setHeader(m_header);
    setItemDelegate(new GridCellDelegate(this)); // owned by the view
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformRowHeights(true);
    setRootIsDecorated(true);
    setItemsExpandable(true);
    setExpandsOnDoubleClick(false);
    setAnimated(false);
    setAllColumnsShowFocus(false);
    setIndentation(TreeIndent);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    viewport()->installEventFilter(this);
    m_header->viewport()->setMouseTracking(true);
    m_header->viewport()->installEventFilter(this);
    setFocusPolicy(Qt::StrongFocus);

    connect(this, &QTreeView::expanded, this,
            [this](const QModelIndex &index) { onViewExpanded(index, true); });
    connect(this, &QTreeView::collapsed, this,
            [this](const QModelIndex &index) { onViewExpanded(index, false); });
    connect(m_header, &QHeaderView::sectionResized, this, &OutlineGridView::onSectionResized);
}

OutlineGridView::~OutlineGridView() = default;

void OutlineGridView::setGrid(OutlineGrid *grid)
{
    OutlineGridModel *old = m_model;
    m_model = nullptr;
    m_inFill = false;
    setModel(nullptr);
    delete old;
    if (!grid)
        return;
    m_model = new OutlineGridModel(grid, this);
    setModel(m_model);
    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this,
            &OutlineGridView::onModelAboutToBeReset);
    connect(m_model, &QAbstractItemModel::modelReset, this, &OutlineGridView::onModelReset);
    // A fill that changed the rows is one layout change: the rows that stay keep their place on
    // screen (scroll position, current cell, expansion), and the grid's own state is applied over
    // it. A fill that kept them tells its changed cells, nodes and current cell one by one.
    connect(m_model, &QAbstractItemModel::layoutAboutToBeChanged, this,
            &OutlineGridView::onModelAboutToBeReset);
    connect(m_model, &QAbstractItemModel::layoutChanged, this, &OutlineGridView::onModelReset);
    // Nothing paints a grid in the middle of its fill; its end repaints the view once.
    connect(m_model, &OutlineGridModel::fillStarted, this, [this] {
        m_inFill = true;
        setUpdatesEnabled(false);
    });
    connect(m_model, &OutlineGridModel::fillEnded, this, [this] {
        m_inFill = false;
        setUpdatesEnabled(true);
    });
    connect(m_model, &OutlineGridModel::collapseStateChanged, this,
            &OutlineGridView::onGridCollapseChanged);
    connect(m_model, &OutlineGridModel::currentCellChanged, this,
            &OutlineGridView::onGridCurrentCellChanged);
    connect(m_model, &OutlineGridModel::gridLayoutChanged, this, &OutlineGridView::applyGridLayout);
    if (grid->isRedrawSuspended()) {
        setUpdatesEnabled(false);
        return;
    }
    onModelReset();
}

OutlineGrid *OutlineGridView::grid() const
{
    return m_model ? m_model->grid() : nullptr;
}

double OutlineGridView::twipsPerPixelX() const
{
    return 1440.0 / std::max(1, logicalDpiX());
}

double OutlineGridView::twipsPerPixelY() const
{
    return 1440.0 / std::max(1, logicalDpiY());
}

int OutlineGridView::gridRowAt(const QPoint &viewportPos) const
{
    return OutlineGridModel::gridRow(indexAt(viewportPos));
}

int OutlineGridView::gridColAt(int viewportX) const
{
    return m_header->logicalIndexAt(viewportX);
}

QRect OutlineGridView::cellRect(int row, int col) const
{
    return m_model ? visualRect(m_model->indexForRow(row, col)) : QRect();
}

// ---------------------------------------------------------------------------------------------
// Applying the grid's state

void OutlineGridView::applyGridLayout()
{
    OutlineGrid *g = grid();
    if (!g)
        return;
    const double tx = twipsPerPixelX();
    m_model->setTwipsPerPixel(tx, twipsPerPixelY());
    m_applying = true;
    for (int c = 0; c < g->colCount() && c < m_header->count(); ++c) {
        const int twips = g->colWidth(c);
        setColumnHidden(c, twips == 0);
        if (twips > 0)
            m_header->resizeSection(c, std::max(1, qRound(twips / tx)));
    }
    if (g->colCount() > 0)
        setTreePosition(g->outlineCol());
    m_applying = false;
    m_header->updateGeometry();
    updateGeometries();
    m_header->viewport()->update();
    viewport()->update();
}

void OutlineGridView::applyCollapseState()
{
    OutlineGrid *g = grid();
    if (!g)
        return;
    // With a full relayout pending, expand() only records the index; one layout then builds the
    // visible rows. Expanding node by node against a laid-out tree would be quadratic.
    scheduleDelayedItemsLayout();
    int expandedNodes = 0;
    bool anyNode = false;
    for (int r = g->fixedRows(); r < g->rowCount(); ++r) {
        if (!g->isNode(r) || g->childCount(r) == 0)
            continue;
        anyNode = true;
        const QModelIndex index = m_model->indexForRow(r, 0);
        if (g->isCollapsed(r)) {
            collapse(index);
        } else {
            expand(index);
            ++expandedNodes;
        }
    }
    // Without nodes there is no tree to show: plain rows get no branch lines of their own.
    setRootIsDecorated(anyNode);
    qCDebug(lcOutlineGridView) << "applied outline state:" << expandedNodes << "expanded nodes";
}

void OutlineGridView::applyCurrentCell()
{
    OutlineGrid *g = grid();
    if (!g || !selectionModel())
        return;
    const QModelIndex index = m_model->indexForRow(g->currentRow(), g->currentCol());
    m_syncingCurrent = true;
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clear();
    m_syncingCurrent = false;
}

void OutlineGridView::onModelAboutToBeReset()
{
    // A suspended fill holds the model inside its reset; nothing should paint stale rows.
    setUpdatesEnabled(false);
}

void OutlineGridView::onModelReset()
{
    applyGridLayout();
    applyCollapseState();
    applyCurrentCell();
    setUpdatesEnabled(true);
}

void OutlineGridView::onGridCollapseChanged(const QModelIndex &index, bool collapsed)
{
    if (collapsed)
        collapse(index);
    else
        expand(index);
}

void OutlineGridView::onGridCurrentCellChanged(int, int)
{
    if (!m_syncingCurrent)
        applyCurrentCell();
}

void OutlineGridView::onViewExpanded(const QModelIndex &index, bool expanded)
{
    OutlineGrid *g = grid();
    const int row = OutlineGridModel::gridRow(index);
    if (!g || g->isRedrawSuspended() || row < g->fixedRows() || row >= g->rowCount())
        return;
    g->setCollapsed(row, !expanded);
}

void OutlineGridView::onSectionResized(int logicalIndex, int, int newSize)
{
    OutlineGrid *g = grid();
    // Only a user's drag writes back; resets and our own layout pass resize sections too.
    if (!g || m_applying || !m_headerPressed || logicalIndex >= g->colCount() || newSize <= 0)
        return;
    m_applying = true;
    g->setColWidth(logicalIndex, qRound(newSize * twipsPerPixelX()));
    m_applying = false;
}

void OutlineGridView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                  const QList<int> &roles)
{
    // The changed rows of a fill come one notice each, and the tree view looks each one up among
    // its shown rows (all of them for a row inside a collapsed node): thousands of notices would
    // cost far more than the fill. The fill's end repaints the whole view anyway; only a changed
    // row height needs the tree view's own handling.
    if (m_inFill && !roles.isEmpty() && !roles.contains(Qt::SizeHintRole))
        return;
    QTreeView::dataChanged(topLeft, bottomRight, roles);
}

void OutlineGridView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTreeView::currentChanged(current, previous);
    OutlineGrid *g = grid();
    const int row = OutlineGridModel::gridRow(current);
    if (m_syncingCurrent || !g || g->isRedrawSuspended() || row < g->fixedRows() ||
        row >= g->rowCount() || current.column() < 0 || current.column() >= g->colCount())
        return;
    m_syncingCurrent = true;
    g->setCurrentCell(row, current.column());
    m_syncingCurrent = false;
}

void OutlineGridView::setNodeCollapsed(int row, bool collapsed, bool withSubtree)
{
    OutlineGrid *g = grid();
    if (!g)
        return;
    const int last = withSubtree ? g->subtreeEnd(row) : row;
    for (int r = row; r <= last; ++r)
        g->setCollapsed(r, collapsed);
}

// ---------------------------------------------------------------------------------------------
// Mouse and keyboard

void OutlineGridView::trackViewportMouse(const QPoint &pos)
{
    m_mouseRow = gridRowAt(pos);
    m_mouseCol = gridColAt(pos.x());
}

void OutlineGridView::mousePressEvent(QMouseEvent *event)
{
    trackViewportMouse(event->position().toPoint());
    QTreeView::mousePressEvent(event);
    Q_EMIT mouseButtonPressed(event->button(), event->modifiers(), m_mouseRow, m_mouseCol);
}

void OutlineGridView::mouseDoubleClickEvent(QMouseEvent *event)
{
    trackViewportMouse(event->position().toPoint());
    QTreeView::mouseDoubleClickEvent(event);
    Q_EMIT cellDoubleClicked(m_mouseRow, m_mouseCol, event->button(), event->modifiers());
}

void OutlineGridView::mouseMoveEvent(QMouseEvent *event)
{
    trackViewportMouse(event->position().toPoint());
    QTreeView::mouseMoveEvent(event);
}

bool OutlineGridView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == viewport() && event->type() == QEvent::Leave) {
        m_mouseRow = -1;
        m_mouseCol = -1;
    } else if (watched == m_header->viewport()) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            const auto *me = static_cast<QMouseEvent *>(event);
            const QPoint pos = me->position().toPoint();
            m_mouseRow = m_header->headerRowAt(pos.y());
            m_mouseCol = m_header->logicalIndexAt(pos.x());
            if (event->type() == QEvent::MouseButtonPress) {
                m_headerPressed = true;
                Q_EMIT mouseButtonPressed(me->button(), me->modifiers(), m_mouseRow, m_mouseCol);
            } else if (event->type() == QEvent::MouseButtonRelease) {
                m_headerPressed = false;
            } else if (event->type() == QEvent::MouseButtonDblClick) {
                Q_EMIT cellDoubleClicked(m_mouseRow, m_mouseCol, me->button(), me->modifiers());
            }
            break;
        }
        case QEvent::Leave:
            m_mouseRow = -1;
            m_mouseCol = -1;
            break;
        default:
            break;
        }
    }
    return QTreeView::eventFilter(watched, event);
}

void OutlineGridView::keyPressEvent(QKeyEvent *event)
{
    OutlineGrid *g = grid();
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Q_EMIT enterPressed(m_mouseRow, m_mouseCol, event->modifiers());
        event->accept();
        return;
    }
    const QModelIndex current = currentIndex();
    const int row = OutlineGridModel::gridRow(current);
    if (!g || row < g->fixedRows() || row >= g->rowCount()) {
        QTreeView::keyPressEvent(event);
        return;
    }
    const bool node = g->isNode(row) && g->childCount(row) > 0;
    const bool inOutline = current.column() == g->outlineCol();
    switch (event->key()) {
    case Qt::Key_Plus:
        if (node)
            setNodeCollapsed(row, false, false);
        event->accept();
        return;
    case Qt::Key_Minus:
        if (node)
            setNodeCollapsed(row, true, false);
        event->accept();
        return;
    case Qt::Key_Asterisk:
        if (node)
            setNodeCollapsed(row, false, true);
        event->accept();
        return;
    case Qt::Key_Left:
    case Qt::Key_Right: {
        if (event->modifiers() & ~Qt::KeypadModifier)
            break;
        const bool left = (event->key() == Qt::Key_Left) != (layoutDirection() == Qt::RightToLeft);
        if (inOutline && left) {
            if (node && !g->isCollapsed(row)) {
                setNodeCollapsed(row, true, false);
                event->accept();
                return;
            }
            if (const int parent = g->parentRow(row); parent >= 0) {
                setCurrentIndex(m_model->indexForRow(parent, current.column()));
                event->accept();
                return;
            }
        } else if (inOutline && node && g->isCollapsed(row)) {
            setNodeCollapsed(row, false, false);
            event->accept();
            return;
        }
        // Otherwise move one visible column; the tree view would expand or collapse instead.
        int v = m_header->visualIndex(current.column());
        do {
            v += left ? -1 : 1;
        } while (v >= 0 && v < m_header->count() && isColumnHidden(m_header->logicalIndex(v)));
        if (v >= 0 && v < m_header->count())
            setCurrentIndex(current.sibling(current.row(), m_header->logicalIndex(v)));
        event->accept();
        return;
    }
    default:
        break;
    }
    QTreeView::keyPressEvent(event);
}

// ---------------------------------------------------------------------------------------------
// Painting

void OutlineGridView::drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QTreeView::drawRow(painter, option, index);
    // Cell borders, as a grid shows them; the tree's indentation area is not split. One pixel
    // wide rectangles are the lines' very pixels, filled as spans (a stroked line costs several
    // times as much, and a screenful of a grid has a thousand of them).
    const QRect r = option.rect;
    int right = r.left();
    for (int v = 0; v < m_header->count(); ++v) {
        const int l = m_header->logicalIndex(v);
        if (m_header->isSectionHidden(l))
            continue;
        const int x = m_header->sectionViewportPosition(l) + m_header->sectionSize(l) - 1;
        painter->fillRect(QRect(x, r.top(), 1, r.height()), GridLineColor);
        right = std::max(right, x);
    }
    painter->fillRect(QRect(r.left(), r.bottom(), right - r.left() + 1, 1), GridLineColor);
}

void OutlineGridView::drawBranches(QPainter *painter, const QRect &rect,
                                   const QModelIndex &index) const
{
    const QModelIndex treeCell = index.sibling(index.row(), treePosition());
    const QVariant bg = treeCell.data(Qt::BackgroundRole);
    painter->fillRect(rect, bg.isValid() ? bg.value<QColor>() : palette().color(QPalette::Base));
    if (!rootIsDecorated() && !index.parent().isValid())
        return; // a grid without nodes: no tree lines

    // Whether the item and each of its ancestors has a following sibling, item first.
    std::vector<bool> hasNext;
    for (QModelIndex a = index; a.isValid(); a = a.parent())
        hasNext.push_back(a.row() < model()->rowCount(a.parent()) - 1);
    const int depth = int(hasNext.size()) - 1;
    const int indent = indentation();
    const int top = rect.top();
    const int bottom = rect.bottom();
    const int cy = rect.center().y();

    painter->save();
    QPen dotted(TreeLineColor, 0, Qt::DotLine);
    painter->setPen(dotted);
    for (int level = 0; level < depth; ++level) {
        if (hasNext[size_t(depth - level)]) {
            const int x = rect.left() + level * indent + indent / 2;
            painter->drawLine(x, top, x, bottom);
        }
    }
    const int cx = rect.left() + depth * indent + indent / 2;
    const bool firstTop = depth == 0 && index.row() == 0;
    painter->drawLine(cx, firstTop ? cy : top, cx, hasNext[0] ? bottom : cy);
    painter->drawLine(cx, cy, rect.left() + (depth + 1) * indent - 2, cy);

    if (model()->hasChildren(index)) {
        const QRect box(cx - 4, cy - 4, 8, 8);
        painter->setPen(QPen(TreeLineColor, 0, Qt::SolidLine));
        painter->fillRect(box, palette().color(QPalette::Base));
        painter->drawRect(box);
        painter->setPen(QPen(palette().color(QPalette::Text), 0));
        painter->drawLine(cx - 2, cy, cx + 2, cy);
        if (!isExpanded(index))
            painter->drawLine(cx, cy - 2, cx, cy + 2);
    }
    painter->restore();
}
