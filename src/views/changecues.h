#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QtGlobal>
#include <vector>

class OutlineGrid;

/// Which figures rose or fell at the last refresh, and how strongly to show it as time passes.
///
/// Cells are keyed by what their row stands for (its row data, or its position for the one row
/// without row data) and their column, never by row number, so rows that moved, appeared or
/// vanished between refreshes give no false cues. Rows are told apart by a 64-bit hash of that key
/// (no copy of thousands of keys per refresh); two keys sharing a hash could at worst cue a cell
/// wrongly once. A capture compares every figure with the previous capture: a numeric cell whose
/// value differs is cued up or down (an empty cell counts as 0, as the grids write zero sums as
/// nothing). The outline columns hold names, never figures, and are not read; other cells without
/// a numeric value on both sides are not cued.
///
/// Cues are only drawn when the two captures show the same thing: the caller passes a context
/// (the chosen units and mode) and whether the capture follows a data refresh; otherwise the
/// capture only becomes the new baseline. All cues of a capture start together and fade out over
/// duration(); the caller supplies the clock, so nothing here waits or reads the time itself.
class ChangeCues
{
public:
    enum class Direction : qint8
    {
        None = 0,
        Up = 1,
        Down = -1
    };
    static constexpr qint64 DefaultDurationMs = 4000;

    /// Compares the grid's data rows with the previous capture; returns the number of cued cells.
    int capture(const OutlineGrid &grid, const QString &context, bool afterRefresh, qint64 nowMs);
    /// The same for named values (the panel's figures): one row of cells per key.
    int captureValues(const QList<std::pair<QString, QString>> &values, const QString &context,
                      bool afterRefresh, qint64 nowMs);

    /// The cue of a grid cell, whatever the time.
    [[nodiscard]] Direction direction(const OutlineGrid &grid, int row, int col) const;
    [[nodiscard]] Direction direction(const QString &key) const;
    /// 1 when the cues have just started, falling linearly to 0 at the end of duration().
    [[nodiscard]] double strength(qint64 nowMs) const;
    [[nodiscard]] bool active(qint64 nowMs) const { return strength(nowMs) > 0; }
    [[nodiscard]] qint64 duration() const { return m_durationMs; }
    /// The number of cells the last capture cued.
    [[nodiscard]] int cued() const { return m_cued; }
    void setDuration(qint64 ms) { m_durationMs = ms; }
    /// Forgets the baseline and the cues.
    void clear();

    /// The glyph that tells up from down without colour.
    [[nodiscard]] static QString marker(Direction d);

private:
    /// One capture: each row's key, where its cells start in `values`, and their numeric values
    /// (NaN for text that is no number); `cues` runs parallel to `values`.
    struct Snapshot
    {
        QHash<size_t, qsizetype> rows; ///< row key's hash -> offset of its cells
        std::vector<double> values;
        std::vector<qint8> cues;
        void clear()
        {
            rows.clear();
            values.clear();
            cues.clear();
        }
    };
    [[nodiscard]] static size_t rowKey(const OutlineGrid &grid, int row);
    [[nodiscard]] static size_t valueKey(const QString &key);
    void begin(const QString &context, bool afterRefresh, qint64 nowMs, qsizetype rows);
    /// Adds a row whose cells the caller then appends to m_next.values; returns their offset.
    qsizetype addRow(size_t key);
    void compareRow(size_t key, qsizetype offset, qsizetype cells);
    int end();

    Snapshot m_last; ///< the latest capture, with its cues
    Snapshot m_next; ///< being built
    QString m_context;
    bool m_cueing = false;
    int m_cued = 0;
    qint64 m_startMs = 0;
    qint64 m_durationMs = DefaultDurationMs;
};
