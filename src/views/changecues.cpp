#include "views/changecues.h"

#include "views/outlinegrid.h"

namespace {

// The value a cell shows: empty reads as 0 (zero sums are written as nothing); text that is not
// a plain number has none.
bool cueValue(const QString &text, double &value)
{
    if (text.isEmpty()) {
        value = 0;
        return true;
    }
    bool ok = false;
    value = text.toDouble(&ok);
    return ok;
}

} // namespace

QString ChangeCues::rowKey(const OutlineGrid &grid, int row)
{
    const QString &data = grid.rowData(row);
    if (!data.isEmpty())
        return data;
    return QStringLiteral("\x01") + QString::number(row); // the summary's grand total
}

void ChangeCues::begin(const QString &context, bool afterRefresh, qint64 nowMs)
{
    m_cueing = afterRefresh && context == m_context && !m_previous.isEmpty();
    m_context = context;
    m_current.clear();
    m_current.reserve(m_previous.size());
    m_cues.clear();
    m_cued = 0;
    m_startMs = nowMs;
}

void ChangeCues::addRow(const QString &key, Cells &&cells)
{
    if (m_cueing) {
        const auto it = m_previous.constFind(key);
        if (it != m_previous.constEnd()) {
            const Cells &old = *it;
            QList<qint8> directions;
            const qsizetype n = std::min(old.size(), cells.size());
            for (qsizetype c = 0; c < n; ++c) {
                if (old[c] == cells[c])
                    continue;
                double before = 0;
                double after = 0;
                if (!cueValue(old[c], before) || !cueValue(cells[c], after) || before == after)
                    continue;
                if (directions.isEmpty())
                    directions.resize(cells.size(), qint8(0));
                directions[c] = qint8(after > before ? Direction::Up : Direction::Down);
                ++m_cued;
            }
            if (!directions.isEmpty())
                m_cues.insert(key, directions);
        }
    }
    m_current.insert(key, std::move(cells));
}

int ChangeCues::end()
{
    m_previous.swap(m_current);
    m_current.clear();
    if (m_cued == 0)
        m_startMs = 0;
    return m_cued;
}

int ChangeCues::capture(const OutlineGrid &grid, const QString &context, bool afterRefresh,
                        qint64 nowMs)
{
    begin(context, afterRefresh, nowMs);
    const int cols = grid.colCount();
    for (int row = grid.fixedRows(); row < grid.rowCount(); ++row) {
        Cells cells;
        cells.reserve(cols);
        for (int col = 0; col < cols; ++col)
            cells.append(grid.text(row, col));
        addRow(rowKey(grid, row), std::move(cells));
    }
    return end();
}

int ChangeCues::captureValues(const QList<std::pair<QString, QString>> &values,
                              const QString &context, bool afterRefresh, qint64 nowMs)
{
    begin(context, afterRefresh, nowMs);
    for (const auto &[key, text] : values)
        addRow(key, Cells{text});
    return end();
}

ChangeCues::Direction ChangeCues::direction(const OutlineGrid &grid, int row, int col) const
{
    if (m_cues.isEmpty() || row < grid.fixedRows() || row >= grid.rowCount())
        return Direction::None;
    const auto it = m_cues.constFind(rowKey(grid, row));
    if (it == m_cues.constEnd() || col < 0 || col >= it->size())
        return Direction::None;
    return Direction(it->at(col));
}

ChangeCues::Direction ChangeCues::direction(const QString &key) const
{
    const auto it = m_cues.constFind(key);
    return it == m_cues.constEnd() || it->isEmpty() ? Direction::None : Direction(it->at(0));
}

double ChangeCues::strength(qint64 nowMs) const
{
    if (m_cues.isEmpty() || m_durationMs <= 0)
        return 0;
    const qint64 elapsed = nowMs - m_startMs;
    if (elapsed < 0 || elapsed >= m_durationMs)
        return 0;
    return 1.0 - double(elapsed) / double(m_durationMs);
}

void ChangeCues::clear()
{
    m_previous.clear();
    m_current.clear();
    m_cues.clear();
    m_context.clear();
    m_cued = 0;
    m_startMs = 0;
}

QString ChangeCues::marker(Direction d)
{
    switch (d) {
    case Direction::Up:
        return QStringLiteral("\u25B2");
    case Direction::Down:
        return QStringLiteral("\u25BC");
    case Direction::None:
        break;
    }
    return {};
}
