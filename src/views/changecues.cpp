#include "views/changecues.h"

#include "views/outlinegrid.h"

#include <limits>

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr size_t kKeySeed = 0x2545F4914F6CDD1Dull;

// Numbers the general parser reads when the quick reading below cannot.
double slowCueValue(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? value : kNoValue;
}

// The value a cell shows: empty reads as 0 (zero sums are written as nothing); text that is not
// a number has none. Whole and plain decimal numbers, nearly every cell, and text that starts
// with a letter (descriptions) are decided without the general parser.
double cueValue(const QString &text)
{
    const qsizetype n = text.size();
    if (n == 0)
        return 0;
    const QChar *p = text.constData();
    const auto digit = [p](qsizetype i) {
        return p[i].unicode() >= u'0' && p[i].unicode() <= u'9';
    };
    const bool negative = p[0] == u'-';
    qsizetype i = negative ? 1 : 0;
    if (i < n && !digit(i) && p[i] != u'.')
        return digit(0) || p[0] == u'.' || p[0] == u'+' || negative ? slowCueValue(text) : kNoValue;
    constexpr int kExactDigits = 15;
    qint64 whole = 0;
    int digits = 0;
    for (; i < n && digit(i); ++i, ++digits)
        whole = whole * 10 + (p[i].unicode() - u'0');
    double value = double(whole);
    if (i < n && p[i] == u'.') {
        qint64 fraction = 0;
        double scale = 1;
        for (++i; i < n && digit(i); ++i, ++digits) {
            fraction = fraction * 10 + (p[i].unicode() - u'0');
            scale *= 10;
        }
        value += double(fraction) / scale;
    }
    if (i != n || digits == 0 || digits > kExactDigits)
        return slowCueValue(text); // exponents, separators, long numbers, or no number at all
    return negative ? -value : value;
}

} // namespace

size_t ChangeCues::rowKey(const OutlineGrid &grid, int row)
{
    const QString &data = grid.rowData(row);
    if (!data.isEmpty())
        return qHash(data, kKeySeed);
    // The summary's grand total, the one row without row data: kept apart from any text's hash.
    return qHash(QStringLiteral("\x01%1").arg(row), kKeySeed);
}

size_t ChangeCues::valueKey(const QString &key)
{
    return qHash(key, kKeySeed);
}

void ChangeCues::begin(const QString &context, bool afterRefresh, qint64 nowMs, qsizetype rows)
{
    m_cueing = afterRefresh && context == m_context && !m_last.rows.isEmpty();
    m_context = context;
    m_next.clear();
    m_next.rows.reserve(rows);
    m_cued = 0;
    m_startMs = nowMs;
}

qsizetype ChangeCues::addRow(size_t key)
{
    const qsizetype offset = qsizetype(m_next.values.size());
    m_next.rows.insert(key, offset);
    return offset;
}

void ChangeCues::compareRow(size_t key, qsizetype offset, qsizetype cells)
{
    if (!m_cueing)
        return;
    const auto it = m_last.rows.constFind(key);
    if (it == m_last.rows.constEnd())
        return; // a new row: nothing to compare with
    const qsizetype old = *it;
    // Rows of a grid have one width; the bound only guards a grid whose columns changed.
    const qsizetype oldEnd = std::min<qsizetype>(qsizetype(m_last.values.size()), old + cells);
    for (qsizetype c = 0; old + c < oldEnd; ++c) {
        const double before = m_last.values[size_t(old + c)];
        const double after = m_next.values[size_t(offset + c)];
        if (before == after || before != before || after != after)
            continue; // unchanged, or no number on one side
        m_next.cues[size_t(offset + c)] = qint8(after > before ? Direction::Up : Direction::Down);
        ++m_cued;
    }
}

int ChangeCues::end()
{
    std::swap(m_last, m_next);
    m_next.clear();
    if (m_cued == 0)
        m_startMs = 0;
    return m_cued;
}

int ChangeCues::capture(const OutlineGrid &grid, const QString &context, bool afterRefresh,
                        qint64 nowMs)
{
    const int first = grid.fixedRows();
    const int cols = grid.colCount();
    begin(context, afterRefresh, nowMs, std::max(0, grid.rowCount() - first));
    const size_t total = size_t(std::max(0, grid.rowCount() - first)) * size_t(cols);
    m_next.values.reserve(total);
    m_next.cues.assign(total, qint8(0));
    const int names = grid.outlineCol();
    const int moreNames = grid.outlineTextCol();
    for (int row = first; row < grid.rowCount(); ++row) {
        const size_t key = rowKey(grid, row);
        const qsizetype offset = addRow(key);
        for (int col = 0; col < cols; ++col) {
            if (col == names || col == moreNames) {
                m_next.values.push_back(kNoValue);
                continue;
            }
            // Figures written as numbers are read as such: no text to fetch and parse.
            const double number = grid.number(row, col);
            m_next.values.push_back(number == number ? number : cueValue(grid.text(row, col)));
        }
        compareRow(key, offset, cols);
    }
    return end();
}

int ChangeCues::captureValues(const QList<std::pair<QString, QString>> &values,
                              const QString &context, bool afterRefresh, qint64 nowMs)
{
    begin(context, afterRefresh, nowMs, values.size());
    m_next.values.reserve(size_t(values.size()));
    m_next.cues.assign(size_t(values.size()), qint8(0));
    for (const auto &[name, text] : values) {
        const size_t key = valueKey(name);
        const qsizetype offset = addRow(key);
        m_next.values.push_back(cueValue(text));
        compareRow(key, offset, 1);
    }
    return end();
}

ChangeCues::Direction ChangeCues::direction(const OutlineGrid &grid, int row, int col) const
{
    if (m_cued == 0 || row < grid.fixedRows() || row >= grid.rowCount() || col < 0)
        return Direction::None;
    const auto it = m_last.rows.constFind(rowKey(grid, row));
    if (it == m_last.rows.constEnd())
        return Direction::None;
    const size_t at = size_t(*it + col);
    if (col >= grid.colCount() || at >= m_last.cues.size())
        return Direction::None;
    return Direction(m_last.cues[at]);
}

ChangeCues::Direction ChangeCues::direction(const QString &key) const
{
    if (m_cued == 0)
        return Direction::None;
    const auto it = m_last.rows.constFind(valueKey(key));
    if (it == m_last.rows.constEnd() || size_t(*it) >= m_last.cues.size())
        return Direction::None;
    return Direction(m_last.cues[size_t(*it)]);
}

double ChangeCues::strength(qint64 nowMs) const
{
    if (m_cued == 0 || m_durationMs <= 0)
        return 0;
    const qint64 elapsed = nowMs - m_startMs;
    if (elapsed < 0 || elapsed >= m_durationMs)
        return 0;
    return 1.0 - double(elapsed) / double(m_durationMs);
}

void ChangeCues::clear()
{
    m_last.clear();
    m_next.clear();
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
