#pragma once

#include "model/counter.h"

#include <QString>
#include <QStringView>
#include <array>

class QZWebTable;

/// Column positions of one "BUDetailsInfo" table, looked up once per table.
/// Columns are resolved on first use and in the order a row is read ("BUID"; then "JobType";
/// then "JobClass" and the fourteen counters), so a missing column fails at the same point, with
/// the same partial model, as a field-by-name read would.
class DetailColumns
{
public:
    static constexpr int CounterCount = Counter::Count;
    /// The counter columns by counter index.
    static const std::array<QStringView, CounterCount> CounterColumns;

    explicit DetailColumns(const QZWebTable &table) : m_table(&table) {}

    [[nodiscard]] const QZWebTable &table() const { return *m_table; }

    /// Each throws DLVError(9) when the table lacks the column.
    [[nodiscard]] int buid();
    [[nodiscard]] int jobType();
    [[nodiscard]] int jobClass();
    /// Resolves "JobClass" and all counter columns (in counter order).
    void resolveClassFields();
    [[nodiscard]] int counter(int index) const { return m_counters[std::size_t(index)]; }

private:
    const QZWebTable *m_table;
    int m_buid = -1;
    int m_jobType = -1;
    int m_jobClass = -1;
    bool m_classFieldsResolved = false;
    std::array<int, CounterCount> m_counters{};
};
