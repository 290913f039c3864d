#include "views/outlinegrid.h"

#include "common/atomicfile.h"
#include "common/conversions.h"
#include "common/csvfield.h"
#include "common/dlverror.h"
#include "common/sharedtext.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <utility>

namespace {

[[nodiscard]] bool lessText(const QString &a, const QString &b)
{
    // Ordinal UTF-16 comparison: the grid sorts "exactly", so "B" < "a" and "a" < "b".
    return QString::compare(a, b, Qt::CaseSensitive) < 0;
}

[[nodiscard]] QRgb toStored(const QColor &color)
{
    return color.isValid() ? (color.rgb() | 0xFF000000u) : 0u;
}

} // namespace

OutlineGrid::OutlineGrid() = default;

OutlineGrid::~OutlineGrid()
{
    // Copy: an observer may remove itself while being told.
    const auto observers = m_observers;
    for (Observer *o : observers)
        o->gridDestroyed();
}

void OutlineGrid::addObserver(Observer *observer)
{
    if (observer &&
        std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end())
        m_observers.push_back(observer);
}

void OutlineGrid::removeObserver(Observer *observer)
{
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer),
                      m_observers.end());
}

// ---------------------------------------------------------------------------------------------
// Checks, notices and caches

void OutlineGrid::checkRow(int row) const
{
    if (row < 0 || row >= rowCount())
        throw DLVError::subscriptOutOfRange(QStringLiteral("row %1").arg(row));
}

void OutlineGrid::checkCol(int col) const
{
    if (col < 0 || col >= m_cols)
        throw DLVError::subscriptOutOfRange(QStringLiteral("column %1").arg(col));
}

void OutlineGrid::checkRange(int row1, int col1, int row2, int col2) const
{
    checkRow(row1);
    checkRow(row2);
    checkCol(col1);
    checkCol(col2);
}

quint64 OutlineGrid::nextRevision()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

OutlineGrid::Cell &OutlineGrid::cell(int row, int col)
{
    checkRow(row);
    checkCol(col);
    return m_rows[size_t(row)].cells[size_t(col)];
}

const OutlineGrid::Cell &OutlineGrid::cell(int row, int col) const
{
    checkRow(row);
    checkCol(col);
    return m_rows[size_t(row)].cells.at(col);
}

OutlineGrid::Row OutlineGrid::makeRow() const
{
    Row r;
    r.cells.resize(m_cols);
    return r;
}

void OutlineGrid::beginStructure()
{
    if (m_suspend == 0) {
        for (Observer *o : m_observers)
            o->gridStructureAboutToChange();
    }
}

void OutlineGrid::endStructure()
{
    m_shapeRevision = nextRevision();
    m_structureDirty = true;
    m_indexDirty = true;
    m_visibleDirty = true;
    clampCurrent();
    if (m_suspend == 0) {
        for (Observer *o : m_observers)
            o->gridStructureChanged();
    }
}

void OutlineGrid::notifyCells(int row1, int col1, int row2, int col2)
{
    if (m_suspend == 0) {
        for (Observer *o : m_observers)
            o->gridCellsChanged(std::min(row1, row2), std::min(col1, col2), std::max(row1, row2),
                                std::max(col1, col2));
    }
}

void OutlineGrid::notifyLayout()
{
    if (m_suspend == 0) {
        for (Observer *o : m_observers)
            o->gridLayoutSettingsChanged();
    }
}

void OutlineGrid::notifyCollapse(int row)
{
    m_visibleDirty = true;
    if (m_suspend == 0) {
        for (Observer *o : m_observers)
            o->gridCollapseStateChanged(row);
    }
}

void OutlineGrid::clampCurrent()
{
    if (m_currentRow >= rowCount())
        m_currentRow = rowCount() - 1;
    if (m_currentCol >= m_cols)
        m_currentCol = m_cols - 1;
    m_currentRow = std::max(m_currentRow, 0);
    m_currentCol = std::max(m_currentCol, 0);
}

const OutlineGrid::Structure &OutlineGrid::structure() const
{
    if (!m_structureDirty)
        return m_structure;
    const int n = rowCount();
    Structure &s = m_structure;
    s.parent.assign(size_t(n), -1);
    s.level.assign(size_t(n), 0);
    s.subtreeEnd.resize(size_t(n));
    s.childStart.assign(size_t(n) + 2, 0);
    for (int r = 0; r < n; ++r)
        s.subtreeEnd[size_t(r)] = r;

    // One pass with a stack of open nodes: the top is always the nearest node above.
    std::vector<int> open;
    for (int r = m_fixedRows; r < n; ++r) {
        const Row &row = m_rows[size_t(r)];
        if (row.node) {
            while (!open.empty() && s.level[size_t(open.back())] >= row.level) {
                s.subtreeEnd[size_t(open.back())] = r - 1;
                open.pop_back();
            }
            s.parent[size_t(r)] = open.empty() ? -1 : open.back();
            s.level[size_t(r)] = row.level;
            open.push_back(r);
        } else {
            const int p = open.empty() ? -1 : open.back();
            s.parent[size_t(r)] = p;
            s.level[size_t(r)] = p < 0 ? 0 : s.level[size_t(p)] + 1;
        }
    }
    for (int r : open)
        s.subtreeEnd[size_t(r)] = n - 1;

    // Child lists in one flat array; slot n stands for the top level.
    for (int r = m_fixedRows; r < n; ++r) {
        const int p = s.parent[size_t(r)];
        ++s.childStart[size_t(p < 0 ? n : p) + 1];
    }
    for (size_t i = 1; i < s.childStart.size(); ++i)
        s.childStart[i] += s.childStart[i - 1];
    s.children.assign(size_t(std::max(0, n - m_fixedRows)), 0);
    s.position.assign(size_t(n), 0);
    std::vector<int> fill(s.childStart.begin(), s.childStart.end() - 1);
    for (int r = m_fixedRows; r < n; ++r) {
        const size_t slot = size_t(s.parent[size_t(r)] < 0 ? n : s.parent[size_t(r)]);
        s.position[size_t(r)] = fill[slot] - s.childStart[slot];
        s.children[size_t(fill[slot]++)] = r;
    }
    m_structureDirty = false;
    return s;
}

void OutlineGrid::ensureIndex() const
{
    if (!m_indexDirty)
        return;
    m_index.clear();
    m_index.reserve(rowCount());
    // Backwards, so that the first row with a key wins.
    for (int r = rowCount() - 1; r >= m_fixedRows; --r) {
        const QString &key = m_rows[size_t(r)].data;
        if (!key.isEmpty())
            m_index.insert(key, r);
    }
    m_indexDirty = false;
}

void OutlineGrid::ensureVisibility() const
{
    if (!m_visibleDirty)
        return;
    const Structure &s = structure();
    const int n = rowCount();
    m_visible.assign(size_t(n), true);
    for (int r = m_fixedRows; r < n; ++r) {
        const int p = s.parent[size_t(r)];
        if (p >= 0)
            m_visible[size_t(r)] = m_visible[size_t(p)] && !m_rows[size_t(p)].collapsed;
    }
    m_visibleDirty = false;
}

void OutlineGrid::applyOrder(int first, const std::vector<int> &order)
{
    std::vector<Row> moved;
    moved.reserve(order.size());
    for (int old : order)
        moved.push_back(std::move(m_rows[size_t(old)]));
    for (size_t i = 0; i < moved.size(); ++i)
        m_rows[size_t(first) + i] = std::move(moved[i]);
}

// ---------------------------------------------------------------------------------------------
// Dimensions and rows

void OutlineGrid::setRowCount(int rows)
{
    if (rows < 0)
        throw DLVError::invalidCall(QStringLiteral("row count %1").arg(rows));
    if (rows == rowCount())
        return;
    beginStructure();
    if (rows < rowCount()) {
        m_rows.erase(m_rows.begin() + rows, m_rows.end());
        m_fixedRows = std::min(m_fixedRows, rows);
    } else {
        m_rows.reserve(size_t(rows));
        while (rowCount() < rows)
            m_rows.push_back(makeRow());
    }
    endStructure();
}

void OutlineGrid::setColCount(int cols)
{
    if (cols < 0)
        throw DLVError::invalidCall(QStringLiteral("column count %1").arg(cols));
    if (cols == m_cols)
        return;
    beginStructure();
    m_cols = cols;
    for (Row &r : m_rows)
        r.cells.resize(cols);
    m_colWidths.resize(size_t(cols), DefaultColWidth);
    if (m_outlineCol >= cols)
        m_outlineCol = 0;
    if (m_outlineTextCol >= cols)
        m_outlineTextCol = -1;
    endStructure();
}

void OutlineGrid::setFixedRows(int fixed)
{
    if (fixed < 0 || fixed > rowCount())
        throw DLVError::subscriptOutOfRange(QStringLiteral("fixed rows %1").arg(fixed));
    if (fixed == m_fixedRows)
        return;
    beginStructure();
    m_fixedRows = fixed;
    endStructure();
}

void OutlineGrid::clear()
{
    m_textRevision = nextRevision();
    for (Row &r : m_rows) {
        for (Cell &c : r.cells)
            c = Cell();
    }
    if (rowCount() > 0 && m_cols > 0)
        notifyCells(0, 0, rowCount() - 1, m_cols - 1);
}

int OutlineGrid::addRow()
{
    beginStructure();
    m_rows.push_back(makeRow());
    // The new row has no row data: the index stays valid, which keeps find-then-append fills
    // linear.
    const bool indexWasClean = !m_indexDirty;
    endStructure();
    m_indexDirty = !indexWasClean;
    return rowCount() - 1;
}

void OutlineGrid::insertRow(int row)
{
    if (row < 0 || row > rowCount())
        throw DLVError::subscriptOutOfRange(QStringLiteral("row %1").arg(row));
    if (row == rowCount()) {
        addRow();
        return;
    }
    beginStructure();
    m_rows.insert(m_rows.begin() + row, makeRow());
    endStructure();
}

void OutlineGrid::removeRow(int row)
{
    checkRow(row);
    beginStructure();
    m_rows.erase(m_rows.begin() + row);
    if (row < m_fixedRows)
        --m_fixedRows;
    endStructure();
}

void OutlineGrid::removeRowsIf(int first, const std::function<bool(int)> &pred)
{
    if (first < 0)
        throw DLVError::subscriptOutOfRange(QStringLiteral("row %1").arg(first));
    const int n = rowCount();
    std::vector<char> drop(size_t(std::max(0, n - first)), 0);
    bool any = false;
    for (int r = first; r < n; ++r) {
        if (pred(r)) {
            drop[size_t(r - first)] = 1;
            any = true;
        }
    }
    if (!any)
        return;
    beginStructure();
    int out = first;
    int droppedFixed = 0;
    for (int r = first; r < n; ++r) {
        if (drop[size_t(r - first)]) {
            if (r < m_fixedRows)
                ++droppedFixed;
            continue;
        }
        if (out != r)
            m_rows[size_t(out)] = std::move(m_rows[size_t(r)]);
        ++out;
    }
    m_rows.erase(m_rows.begin() + out, m_rows.end());
    m_fixedRows -= droppedFixed;
    endStructure();
}

// ---------------------------------------------------------------------------------------------
// Cells

QString OutlineGrid::Cell::decimalText(double value)
{
    return value == 0 ? QStringLiteral("0") : QString::number(value, 'g', 15);
}

bool OutlineGrid::Cell::sameShown(const Cell &o) const
{
    if ((digits && o.digits) || (decimal && o.decimal))
        return number == o.number;
    return SharedText::equal(shown(), o.shown());
}

const QString &OutlineGrid::text(int row, int col) const
{
    return cell(row, col).shown();
}

bool OutlineGrid::isEmpty(int row, int col) const
{
    const Cell &c = cell(row, col);
    return !c.digits && !c.decimal && c.text.isEmpty();
}

// The writers below leave a cell that already holds the value untouched: a row's cells are shared
// with the fill baseline until one is written, and a refill that finds most values unchanged
// then copies few rows. Each writer still tells its observers.

void OutlineGrid::writeCell(int row, int col, const Cell &value)
{
    const Cell &now = std::as_const(*this).cell(row, col);
    const bool sameNumber =
        now.number == value.number || (std::isnan(now.number) && std::isnan(value.number));
    if (now.digits == value.digits && now.decimal == value.decimal && sameNumber &&
        now.sameShown(value))
        return;
    m_textRevision = nextRevision();
    Cell &c = cell(row, col);
    c.text = value.text;
    c.number = value.number;
    c.digits = value.digits;
    c.decimal = value.decimal;
}

void OutlineGrid::setText(int row, int col, const QString &text)
{
    Cell value;
    value.text = text;
    writeCell(row, col, value);
    notifyCells(row, col, row, col);
}

void OutlineGrid::setNumber(int row, int col, qint64 value)
{
    Cell v;
    v.number = double(value);
    // Above 2^53 two numbers can share a double: their texts are then compared instead, and the
    // text is written at once (the double could not give it back).
    v.digits = value > -(qint64(1) << 53) && value < (qint64(1) << 53);
    if (!v.digits)
        v.text = QString::number(value);
    writeCell(row, col, v);
    notifyCells(row, col, row, col);
}

void OutlineGrid::setNumber(int row, int col, double value, const QString &text)
{
    Cell v;
    v.text = text;
    v.number = value;
    writeCell(row, col, v);
    notifyCells(row, col, row, col);
}

void OutlineGrid::setDecimal(int row, int col, double value)
{
    Cell v;
    v.number = value;
    v.decimal = std::isfinite(value);
    if (!v.decimal)
        v.text = Cell::decimalText(value);
    writeCell(row, col, v);
    notifyCells(row, col, row, col);
}

double OutlineGrid::number(int row, int col) const
{
    return cell(row, col).number;
}

void OutlineGrid::setText(int row1, int col1, int row2, int col2, const QString &text)
{
    checkRange(row1, col1, row2, col2);
    Cell value;
    value.text = text;
    for (int r = std::min(row1, row2); r <= std::max(row1, row2); ++r) {
        for (int c = std::min(col1, col2); c <= std::max(col1, col2); ++c)
            writeCell(r, c, value);
    }
    notifyCells(row1, col1, row2, col2);
}

QColor OutlineGrid::backColor(int row, int col) const
{
    const QRgb v = cell(row, col).back;
    return qAlpha(v) == 0 ? QColor() : QColor::fromRgb(v);
}

void OutlineGrid::setBackColor(int row, int col, const QColor &color)
{
    const QRgb v = toStored(color);
    if (std::as_const(*this).cell(row, col).back != v)
        cell(row, col).back = v;
    notifyCells(row, col, row, col);
}

void OutlineGrid::setBackColor(int row1, int col1, int row2, int col2, const QColor &color)
{
    checkRange(row1, col1, row2, col2);
    const QRgb v = toStored(color);
    for (int r = std::min(row1, row2); r <= std::max(row1, row2); ++r) {
        for (int c = std::min(col1, col2); c <= std::max(col1, col2); ++c) {
            if (std::as_const(m_rows[size_t(r)].cells)[c].back != v)
                m_rows[size_t(r)].cells[size_t(c)].back = v;
        }
    }
    notifyCells(row1, col1, row2, col2);
}

bool OutlineGrid::isBold(int row, int col) const
{
    return cell(row, col).bold;
}

void OutlineGrid::setBold(int row, int col, bool bold)
{
    if (std::as_const(*this).cell(row, col).bold != bold)
        cell(row, col).bold = bold;
    notifyCells(row, col, row, col);
}

void OutlineGrid::setBold(int row1, int col1, int row2, int col2, bool bold)
{
    checkRange(row1, col1, row2, col2);
    for (int r = std::min(row1, row2); r <= std::max(row1, row2); ++r) {
        for (int c = std::min(col1, col2); c <= std::max(col1, col2); ++c) {
            if (std::as_const(m_rows[size_t(r)].cells)[c].bold != bold)
                m_rows[size_t(r)].cells[size_t(c)].bold = bold;
        }
    }
    notifyCells(row1, col1, row2, col2);
}

QColor OutlineGrid::fromBgr(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

OutlineGrid::RowCells OutlineGrid::rowCells(int row) const
{
    checkRow(row);
    RowCells taken;
    taken.m_cells = m_rows[size_t(row)].cells;
    return taken;
}

bool OutlineGrid::unchangedSince(int row, const RowCells &taken) const
{
    checkRow(row);
    // A row without cells has no block to share: it proves nothing.
    return !taken.m_cells.isEmpty() &&
           m_rows[size_t(row)].cells.constData() == taken.m_cells.constData();
}

const QString &OutlineGrid::rowData(int row) const
{
    checkRow(row);
    return m_rows[size_t(row)].data;
}

void OutlineGrid::setRowData(int row, const QString &data)
{
    checkRow(row);
    QString &current = m_rows[size_t(row)].data;
    if (current == data)
        return;
    m_shapeRevision = nextRevision();
    if (!m_indexDirty && row >= m_fixedRows) {
        // Keep the index valid for the usual append-then-name pattern; anything that might expose
        // a duplicate further down falls back to a lazy rebuild.
        if (!current.isEmpty()) {
            const auto it = m_index.constFind(current);
            if (it != m_index.constEnd() && it.value() == row)
                m_indexDirty = true;
        }
        if (!m_indexDirty && !data.isEmpty()) {
            auto it = m_index.find(data);
            if (it == m_index.end())
                m_index.insert(data, row);
            else if (it.value() > row)
                it.value() = row;
        }
    }
    current = data;
}

int OutlineGrid::findRow(const QString &key) const
{
    if (key.isEmpty())
        return -1;
    ensureIndex();
    const auto it = m_index.constFind(key);
    return it == m_index.constEnd() ? -1 : it.value();
}

// ---------------------------------------------------------------------------------------------
// Layout

int OutlineGrid::colWidth(int col) const
{
    checkCol(col);
    return m_colWidths[size_t(col)];
}

void OutlineGrid::setColWidth(int col, int twips)
{
    checkCol(col);
    const int w = std::max(0, twips);
    if (m_colWidths[size_t(col)] == w)
        return;
    m_colWidths[size_t(col)] = w;
    notifyLayout();
}

void OutlineGrid::setColWidths(std::span<const int> twips)
{
    if (twips.empty())
        return;
    checkCol(int(twips.size()) - 1);
    bool changed = false;
    for (std::size_t c = 0; c < twips.size(); ++c) {
        const int w = std::max(0, twips[c]);
        changed = changed || m_colWidths[c] != w;
        m_colWidths[c] = w;
    }
    if (changed)
        notifyLayout();
}

int OutlineGrid::rowHeight(int row) const
{
    checkRow(row);
    const int h = m_rows[size_t(row)].height;
    return h < 0 ? DefaultRowHeight : h;
}

void OutlineGrid::setRowHeight(int row, int twips)
{
    checkRow(row);
    m_rows[size_t(row)].height = std::max(0, twips);
    notifyLayout();
}

void OutlineGrid::setOutlineCol(int col)
{
    checkCol(col);
    if (m_outlineCol == col)
        return;
    m_outlineCol = col;
    notifyLayout();
}

void OutlineGrid::setOutlineTextCol(int col)
{
    if (col != -1)
        checkCol(col);
    if (m_outlineTextCol == col)
        return;
    m_outlineTextCol = col;
    notifyLayout();
}

// ---------------------------------------------------------------------------------------------
// Sorting and subtotals

void OutlineGrid::sortRows(int row1, int row2, int col1, int col2)
{
    if (row1 > row2)
        std::swap(row1, row2);
    checkRow(row1);
    checkRow(row2);
    checkCol(col1);
    if (col2 != -1)
        checkCol(col2);
    std::vector<int> order(size_t(row2 - row1 + 1));
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = row1 + int(i);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        const auto &ca = m_rows[size_t(a)].cells;
        const auto &cb = m_rows[size_t(b)].cells;
        const int k =
            QString::compare(ca[size_t(col1)].shown(), cb[size_t(col1)].shown(), Qt::CaseSensitive);
        if (k != 0 || col2 == -1)
            return k < 0;
        return lessText(ca[size_t(col2)].shown(), cb[size_t(col2)].shown());
    });
    beginStructure();
    applyOrder(row1, order);
    endStructure();
}

void OutlineGrid::subtotal(int groupCol, const QList<int> &totalCols, const QColor &back, bool bold,
                           int level, const std::function<QString(double)> &format)
{
    checkCol(groupCol);
    for (int c : totalCols)
        checkCol(c);
    const auto fmt = [&format](double v) { return format ? format(v) : Conv::formatHash(v); };
    const QRgb backValue = toStored(back);

    std::vector<Row> out;
    out.reserve(m_rows.size() + m_rows.size() / 4 + 1);
    for (int r = 0; r < m_fixedRows; ++r)
        out.push_back(std::move(m_rows[size_t(r)]));

    std::vector<double> sums(size_t(totalCols.size()), 0.0);
    int group = -1; // index in `out` of the open group row
    const auto closeGroup = [&] {
        if (group < 0)
            return;
        Row &g = out[size_t(group)];
        for (qsizetype i = 0; i < totalCols.size(); ++i)
            g.cells[size_t(totalCols[i])].text = fmt(sums[size_t(i)]);
        group = -1;
    };

    for (size_t r = size_t(m_fixedRows); r < m_rows.size(); ++r) {
        Row &row = m_rows[r];
        if (row.node) {
            closeGroup();
            out.push_back(std::move(row));
            continue;
        }
        const QString &key = std::as_const(row.cells)[groupCol].shown();
        if (group < 0 || std::as_const(out[size_t(group)].cells)[groupCol].shown() != key) {
            closeGroup();
            Row g = makeRow();
            g.node = true;
            g.level = level;
            for (Cell &c : g.cells) {
                c.back = backValue;
                c.bold = bold;
            }
            g.cells[size_t(groupCol)].text = key;
            group = int(out.size());
            out.push_back(std::move(g));
            std::fill(sums.begin(), sums.end(), 0.0);
        }
        for (qsizetype i = 0; i < totalCols.size(); ++i)
            sums[size_t(i)] += Conv::leadingNumber(std::as_const(row.cells)[totalCols[i]].shown());
        out.push_back(std::move(row));
    }
    closeGroup();

    beginStructure();
    m_rows = std::move(out);
    endStructure();
}

void OutlineGrid::removeSubtotals()
{
    removeRowsIf(m_fixedRows, [this](int r) { return m_rows[size_t(r)].node; });
}

// ---------------------------------------------------------------------------------------------
// Outline

bool OutlineGrid::isNode(int row) const
{
    checkRow(row);
    return m_rows[size_t(row)].node;
}

void OutlineGrid::setNode(int row, bool node, int level)
{
    checkRow(row);
    if (level < 0)
        throw DLVError::invalidCall(QStringLiteral("outline level %1").arg(level));
    Row &r = m_rows[size_t(row)];
    if (r.node == node && (!node || r.level == level))
        return;
    beginStructure();
    r.node = node;
    r.level = node ? level : 0;
    r.collapsed = false;
    endStructure();
}

int OutlineGrid::outlineLevel(int row) const
{
    checkRow(row);
    return structure().level[size_t(row)];
}

int OutlineGrid::addNodeRow(int level)
{
    if (level < 0)
        throw DLVError::invalidCall(QStringLiteral("outline level %1").arg(level));
    beginStructure();
    Row r = makeRow();
    r.node = true;
    r.level = level;
    m_rows.push_back(std::move(r));
    const bool indexWasClean = !m_indexDirty;
    endStructure();
    m_indexDirty = !indexWasClean;
    return rowCount() - 1;
}

namespace {

// Where a text's reference count lies (nothing is written through it).
const void *countOf(const QString &text)
{
    return const_cast<QString &>(text).data_ptr().d_ptr();
}

} // namespace

OutlineGrid::TreeLayout OutlineGrid::layOutTree(const std::vector<TreeNode> &nodes, bool sortByText)
{
    TreeLayout layout;
    std::vector<int> &order = layout.order;
    std::vector<int> &depth = layout.depth;
    const int n = int(nodes.size());
    // Children index (slot n: the top nodes), in list order.
    std::vector<int> start(size_t(n) + 2, 0);
    for (int i = 0; i < n; ++i) {
        const int p = nodes[size_t(i)].parent;
        if (p < -1 || p >= n || p == i)
            throw DLVError::invalidCall(QStringLiteral("tree node %1 has parent %2").arg(i).arg(p));
        ++start[size_t(p < 0 ? n : p) + 1];
    }
    for (size_t i = 1; i < start.size(); ++i)
        start[i] += start[i - 1];
    std::vector<int> kids(static_cast<size_t>(n));
    {
        std::vector<int> fill(start.begin(), start.end() - 1);
        for (int i = 0; i < n; ++i) {
            const int p = nodes[size_t(i)].parent;
            kids[size_t(fill[size_t(p < 0 ? n : p)]++)] = i;
        }
    }
    if (sortByText) {
        // Most comparisons are settled by the texts' first eight UTF-16 units, packed once per
        // node in order (zero-padded: a text that ends first packs lower, as it sorts lower);
        // only equal packs read the texts, which lie all over the heap in a large tree.
        struct Prefix
        {
            std::uint64_t high = 0;
            std::uint64_t low = 0;
        };
        std::vector<Prefix> prefix(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            const QString &text = nodes[size_t(i)].text;
            const QChar *units = text.constData();
            const int length = int(std::min<qsizetype>(text.size(), 8));
            Prefix &p = prefix[size_t(i)];
            for (int k = 0; k < length; ++k) {
                std::uint64_t &half = k < 4 ? p.high : p.low;
                half |= std::uint64_t(units[k].unicode()) << (48 - 16 * (k % 4));
            }
        }
        const auto less = [&](int a, int b) {
            const Prefix &pa = prefix[size_t(a)];
            const Prefix &pb = prefix[size_t(b)];
            if (pa.high != pb.high)
                return pa.high < pb.high;
            if (pa.low != pb.low)
                return pa.low < pb.low;
            return lessText(nodes[size_t(a)].text, nodes[size_t(b)].text);
        };
        for (int slot = 0; slot <= n; ++slot) {
            std::stable_sort(kids.begin() + start[size_t(slot)],
                             kids.begin() + start[size_t(slot) + 1], less);
        }
    }

    // Depth-first order without recursion (deep chains must not exhaust the stack).
    order.clear();
    depth.assign(static_cast<size_t>(n), 0);
    order.reserve(size_t(n));
    std::vector<int> stack;
    for (int k = start[size_t(n) + 1] - 1; k >= start[size_t(n)]; --k)
        stack.push_back(kids[size_t(k)]);
    while (!stack.empty()) {
        const int i = stack.back();
        stack.pop_back();
        order.push_back(i);
        for (int k = start[size_t(i) + 1] - 1; k >= start[size_t(i)]; --k) {
            depth[size_t(kids[size_t(k)])] = depth[size_t(i)] + 1;
            stack.push_back(kids[size_t(k)]);
        }
    }
    if (int(order.size()) != n)
        throw DLVError::invalidCall(QStringLiteral("tree has a cycle"));
    return layout;
}

bool OutlineGrid::keepTree(const std::vector<TreeNode> &nodes, const TreeLayout &layout,
                           int textCol, int baseLevel)
{
    checkCol(textCol);
    if (baseLevel < 0)
        throw DLVError::invalidCall(QStringLiteral("outline level %1").arg(baseLevel));
    const std::vector<int> &order = layout.order;
    const std::vector<int> &depth = layout.depth;
    if (rowCount() - m_fixedRows != int(nodes.size()) || order.size() != nodes.size())
        return false;
    for (size_t k = 0; k < order.size(); ++k) {
        const int i = order[k];
        const Row &r = m_rows[size_t(m_fixedRows) + k];
        const Cell &c = std::as_const(r.cells)[textCol];
        if (!r.node || r.level != baseLevel + depth[size_t(i)] ||
            !SharedText::equal(r.data, nodes[size_t(i)].rowData) || c.digits || c.decimal ||
            !std::isnan(c.number) || !SharedText::equal(c.text, nodes[size_t(i)].text))
            return false;
    }
    // Equal texts that are not the nodes' own strings (new lookups of the same units) are taken
    // over, so that the next compare with the same lookups reads no characters. A row whose cells
    // a baseline shares keeps its copy rather than being copied for it.
    for (size_t k = 0; k < order.size(); ++k) {
        const TreeNode &node = nodes[size_t(order[k])];
        Row &r = m_rows[size_t(m_fixedRows) + k];
        if (r.data.constData() != node.rowData.constData())
            r.data = node.rowData;
        if (std::as_const(r.cells)[textCol].text.constData() != node.text.constData() &&
            r.cells.isDetached())
            r.cells[textCol].text = node.text;
    }
    resetDataRows();
    return true;
}

void OutlineGrid::resetDataRows()
{
    bool heights = false;
    for (int r = m_fixedRows; r < rowCount(); ++r) {
        setCollapsed(r, false);
        if (m_rows[size_t(r)].height != -1) {
            m_rows[size_t(r)].height = -1;
            heights = true;
        }
    }
    if (heights)
        notifyLayout();
}

std::vector<int> OutlineGrid::appendTree(const std::vector<TreeNode> &nodes, int textCol,
                                         int baseLevel, bool sortByText)
{
    checkCol(textCol);
    if (baseLevel < 0)
        throw DLVError::invalidCall(QStringLiteral("outline level %1").arg(baseLevel));
    return appendTree(nodes, layOutTree(nodes, sortByText), textCol, baseLevel);
}

std::vector<int> OutlineGrid::appendTree(const std::vector<TreeNode> &nodes,
                                         const TreeLayout &layout, int textCol, int baseLevel)
{
    checkCol(textCol);
    if (baseLevel < 0)
        throw DLVError::invalidCall(QStringLiteral("outline level %1").arg(baseLevel));
    const int n = int(nodes.size());
    const std::vector<int> &order = layout.order;
    const std::vector<int> &depth = layout.depth;
    if (order.size() != nodes.size())
        throw DLVError::invalidCall(QStringLiteral("a layout of another tree"));

    beginStructure();
    const bool indexWasClean = !m_indexDirty;
    std::vector<int> rowOf(static_cast<size_t>(n));
    m_rows.reserve(m_rows.size() + size_t(n));
    for (size_t k = 0; k < order.size(); ++k) {
        // Copying a text counts a reference in its block, one cache miss each on a large tree
        // whose texts lie all over the heap: fetch the blocks a few nodes ahead.
        if (k + 8 < order.size()) {
            const TreeNode &ahead = nodes[size_t(order[k + 8])];
            __builtin_prefetch(countOf(ahead.text));
            __builtin_prefetch(countOf(ahead.rowData));
        }
        const int i = order[k];
        Row r = makeRow();
        r.node = true;
        r.level = baseLevel + depth[size_t(i)];
        r.cells[size_t(textCol)].text = nodes[size_t(i)].text;
        r.data = nodes[size_t(i)].rowData;
        rowOf[size_t(i)] = rowCount();
        if (indexWasClean && !r.data.isEmpty() && !m_index.contains(r.data))
            m_index.insert(r.data, rowCount());
        m_rows.push_back(std::move(r));
    }
    endStructure();
    m_indexDirty = !indexWasClean;
    return rowOf;
}

int OutlineGrid::moveUnder(int row, int parentRow)
{
    checkRow(row);
    checkRow(parentRow);
    if (row < m_fixedRows || parentRow < m_fixedRows)
        throw DLVError::invalidCall(QStringLiteral("fixed rows are not part of the outline"));
    if (!m_rows[size_t(parentRow)].node)
        throw DLVError::invalidCall(QStringLiteral("row %1 is not a node").arg(parentRow));
    const Structure &s = structure();
    const int end = s.subtreeEnd[size_t(row)];
    if (parentRow >= row && parentRow <= end)
        throw DLVError::invalidCall(
            QStringLiteral("row %1 lies in the moved subtree").arg(parentRow));

    int dest;
    if (m_rows[size_t(row)].node) {
        dest = s.subtreeEnd[size_t(parentRow)] + 1;
    } else {
        // A plain row must stand before the parent's first child node, or it would belong to it.
        dest = parentRow + 1;
        while (dest < rowCount() && !m_rows[size_t(dest)].node &&
               s.parent[size_t(dest)] == parentRow)
            ++dest;
    }
    const int newLevel = s.level[size_t(parentRow)] + 1;
    const int delta = newLevel - m_rows[size_t(row)].level;

    beginStructure();
    if (m_rows[size_t(row)].node) {
        for (int r = row; r <= end; ++r) {
            if (m_rows[size_t(r)].node)
                m_rows[size_t(r)].level += delta;
        }
    }
    int newRow;
    if (dest > end) {
        std::rotate(m_rows.begin() + row, m_rows.begin() + end + 1, m_rows.begin() + dest);
        newRow = dest - (end - row + 1);
    } else {
        std::rotate(m_rows.begin() + dest, m_rows.begin() + row, m_rows.begin() + end + 1);
        newRow = dest;
    }
    endStructure();
    return newRow;
}

void OutlineGrid::sortChildren(int nodeRow, int col)
{
    checkRow(nodeRow);
    checkCol(col);
    if (nodeRow < m_fixedRows || !m_rows[size_t(nodeRow)].node)
        return;
    const Structure &s = structure();
    const int first = nodeRow + 1;
    const int last = s.subtreeEnd[size_t(nodeRow)];
    if (last < first)
        return;
    std::vector<int> plain;
    std::vector<int> heads;
    for (int k = s.childStart[size_t(nodeRow)]; k < s.childStart[size_t(nodeRow) + 1]; ++k) {
        const int c = s.children[size_t(k)];
        (m_rows[size_t(c)].node ? heads : plain).push_back(c);
    }
    const auto byText = [&](int a, int b) {
        return lessText(std::as_const(m_rows[size_t(a)].cells)[col].shown(),
                        std::as_const(m_rows[size_t(b)].cells)[col].shown());
    };
    std::stable_sort(plain.begin(), plain.end(), byText);
    std::stable_sort(heads.begin(), heads.end(), byText);
    std::vector<int> order;
    order.reserve(size_t(last - first + 1));
    order.insert(order.end(), plain.begin(), plain.end());
    for (int h : heads) {
        for (int r = h; r <= s.subtreeEnd[size_t(h)]; ++r)
            order.push_back(r);
    }
    beginStructure();
    applyOrder(first, order);
    endStructure();
}

void OutlineGrid::sortAllChildren(int col)
{
    checkCol(col);
    const Structure &s = structure();
    const int n = rowCount();
    if (n <= m_fixedRows)
        return;
    // Sort every child list (plain children ahead of nodes), then flatten depth first.
    std::vector<int> kids = s.children;
    const auto key = [&](int r) -> const QString & {
        return std::as_const(m_rows[size_t(r)].cells)[col].shown();
    };
    for (int r = m_fixedRows; r < n; ++r) {
        if (!m_rows[size_t(r)].node)
            continue;
        auto b = kids.begin() + s.childStart[size_t(r)];
        auto e = kids.begin() + s.childStart[size_t(r) + 1];
        std::stable_sort(b, e, [&](int x, int y) {
            const bool nx = m_rows[size_t(x)].node;
            const bool ny = m_rows[size_t(y)].node;
            if (nx != ny)
                return !nx;
            return lessText(key(x), key(y));
        });
    }
    std::vector<int> order;
    order.reserve(size_t(n - m_fixedRows));
    std::vector<int> stack;
    for (int k = s.childStart[size_t(n) + 1] - 1; k >= s.childStart[size_t(n)]; --k)
        stack.push_back(kids[size_t(k)]);
    while (!stack.empty()) {
        const int r = stack.back();
        stack.pop_back();
        order.push_back(r);
        for (int k = s.childStart[size_t(r) + 1] - 1; k >= s.childStart[size_t(r)]; --k)
            stack.push_back(kids[size_t(k)]);
    }
    beginStructure();
    applyOrder(m_fixedRows, order);
    endStructure();
}

int OutlineGrid::parentRow(int row) const
{
    checkRow(row);
    return structure().parent[size_t(row)];
}

QList<int> OutlineGrid::childRows(int row) const
{
    if (row != -1)
        checkRow(row);
    const Structure &s = structure();
    const size_t slot = row < 0 ? size_t(rowCount()) : size_t(row);
    QList<int> out;
    if (row >= 0 && row < m_fixedRows)
        return out;
    out.reserve(s.childStart[slot + 1] - s.childStart[slot]);
    for (int k = s.childStart[slot]; k < s.childStart[slot + 1]; ++k)
        out.push_back(s.children[size_t(k)]);
    return out;
}

int OutlineGrid::childCount(int row) const
{
    if (row != -1)
        checkRow(row);
    if (row >= 0 && row < m_fixedRows)
        return 0;
    const Structure &s = structure();
    const size_t slot = row < 0 ? size_t(rowCount()) : size_t(row);
    return s.childStart[slot + 1] - s.childStart[slot];
}

int OutlineGrid::childRowAt(int row, int i) const
{
    if (row < -1 || row >= rowCount() || (row >= 0 && row < m_fixedRows) || i < 0)
        return -1;
    const Structure &s = structure();
    const size_t slot = row < 0 ? size_t(rowCount()) : size_t(row);
    const int k = s.childStart[slot] + i;
    return k < s.childStart[slot + 1] ? s.children[size_t(k)] : -1;
}

int OutlineGrid::positionInParent(int row) const
{
    checkRow(row);
    return structure().position[size_t(row)];
}

int OutlineGrid::subtreeEnd(int row) const
{
    checkRow(row);
    return structure().subtreeEnd[size_t(row)];
}

bool OutlineGrid::isCollapsed(int row) const
{
    checkRow(row);
    return m_rows[size_t(row)].collapsed;
}

void OutlineGrid::setCollapsed(int row, bool collapsed)
{
    checkRow(row);
    Row &r = m_rows[size_t(row)];
    if (!r.node || r.collapsed == collapsed)
        return;
    r.collapsed = collapsed;
    notifyCollapse(row);
}

void OutlineGrid::expandAll()
{
    for (int r = m_fixedRows; r < rowCount(); ++r) {
        if (m_rows[size_t(r)].collapsed)
            setCollapsed(r, false);
    }
}

bool OutlineGrid::isRowVisible(int row) const
{
    checkRow(row);
    ensureVisibility();
    return m_visible[size_t(row)];
}

// ---------------------------------------------------------------------------------------------
// Redraw and current cell

void OutlineGrid::suspendRedraw()
{
    if (m_suspend++ == 0) {
        if (!m_observers.empty()) {
            // Rows share their cells with the grid: no cell is copied here.
            auto baseline = std::make_unique<OutlineGrid>();
            baseline->m_rows = m_rows;
            baseline->m_cols = m_cols;
            baseline->m_fixedRows = m_fixedRows;
            baseline->m_colWidths = m_colWidths;
            baseline->m_outlineCol = m_outlineCol;
            baseline->m_outlineTextCol = m_outlineTextCol;
            baseline->m_currentRow = m_currentRow;
            baseline->m_currentCol = m_currentCol;
            if (!m_structureDirty) {
                baseline->m_structure = m_structure;
                baseline->m_structureDirty = false;
            }
            m_baseline = std::move(baseline);
        }
        for (Observer *o : m_observers)
            o->gridRedrawSuspended();
    }
}

void OutlineGrid::resumeRedraw()
{
    if (m_suspend == 0)
        return;
    if (--m_suspend == 0) {
        // Copy: an observer may remove itself while being told.
        const auto observers = m_observers;
        for (Observer *o : observers)
            o->gridRedrawResumed();
        m_baseline.reset();
    }
}

OutlineGrid::Changes OutlineGrid::changesSince(const OutlineGrid &before) const
{
    Changes out;
    out.currentCellChanged =
        before.m_currentRow != m_currentRow || before.m_currentCol != m_currentCol;
    const int rows = rowCount();
    if (before.rowCount() != rows || before.m_cols != m_cols || before.m_fixedRows != m_fixedRows ||
        before.m_outlineCol != m_outlineCol || before.m_outlineTextCol != m_outlineTextCol) {
        out.shapeChanged = true;
        return out;
    }
    // The shape first: when it differs no cell needs comparing.
    for (int r = m_fixedRows; r < rows; ++r) {
        const Row &a = before.m_rows[size_t(r)];
        const Row &b = m_rows[size_t(r)];
        if (a.node != b.node || (b.node && a.level != b.level) ||
            !SharedText::equal(a.data, b.data)) {
            out.shapeChanged = true;
            return out;
        }
    }
    const int textCol = m_outlineTextCol;
    for (int r = 0; r < rows; ++r) {
        const Row &a = before.m_rows[size_t(r)];
        const Row &b = m_rows[size_t(r)];
        RowChange change{r, m_cols, -1, 0};
        if (a.cells.constData() == b.cells.constData() && a.height == b.height) {
            // Still shared: the fill never wrote the row.
            if (b.node && r >= m_fixedRows && a.collapsed != b.collapsed)
                out.collapsed.push_back(r);
            continue;
        }
        for (int c = 0; c < m_cols; ++c) {
            const Cell &x = a.cells[c];
            const Cell &y = b.cells[c];
            quint8 aspects = 0;
            if (!x.sameShown(y))
                aspects |= TextChanged;
            if (x.back != y.back)
                aspects |= BackChanged;
            if (x.bold != y.bold)
                aspects |= BoldChanged;
            if (aspects == 0)
                continue;
            change.aspects |= aspects;
            change.col1 = std::min(change.col1, c);
            change.col2 = c;
            // A node with an empty outline cell shows its outline-text cell's text there.
            if (c == textCol && (aspects & TextChanged) && r >= m_fixedRows && b.node &&
                b.cells[m_outlineCol].shown().isEmpty()) {
                change.col1 = std::min(change.col1, m_outlineCol);
                change.col2 = std::max(change.col2, m_outlineCol);
            }
        }
        if (a.height != b.height &&
            (a.height < 0 ? DefaultRowHeight : a.height) !=
                (b.height < 0 ? DefaultRowHeight : b.height) &&
            m_cols > 0) {
            change.aspects |= HeightChanged;
            change.col1 = 0;
            change.col2 = m_cols - 1;
        }
        if (change.aspects != 0)
            out.rows.push_back(change);
        if (b.node && r >= m_fixedRows && a.collapsed != b.collapsed)
            out.collapsed.push_back(r);
    }
    return out;
}

void OutlineGrid::setCurrentCell(int row, int col)
{
    checkRow(row);
    checkCol(col);
    if (row == m_currentRow && col == m_currentCol)
        return;
    m_currentRow = row;
    m_currentCol = col;
    if (m_suspend == 0) {
        for (Observer *o : m_observers)
            o->gridCurrentCellChanged(row, col);
    }
}

// ---------------------------------------------------------------------------------------------
// Export

QByteArray OutlineGrid::commaText() const
{
    QString out;
    qsizetype estimate = 0;
    for (const Row &r : m_rows) {
        for (const Cell &c : r.cells)
            estimate += c.shown().size() + 1;
        estimate += 2;
    }
    out.reserve(estimate + estimate / 16);
    for (const Row &r : m_rows) {
        for (qsizetype c = 0; c < r.cells.size(); ++c) {
            if (c > 0)
                out += u',';
            CsvField::append(out, r.cells[c].shown());
        }
        out += QLatin1String("\r\n");
    }
    return out.toUtf8();
}

bool OutlineGrid::saveCommaText(const QString &path) const
{
    return AtomicFile::write(path, commaText());
}
