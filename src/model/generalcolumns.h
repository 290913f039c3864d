#pragma once

#include <QStringView>

class QZWebTable;

/// Column positions of a "BUGeneralInfo" table, looked up once per table instead of once per
/// field. Columns are resolved on first use and in the order a row is read ("BUID", then
/// "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"), so a missing column fails at the same
/// point, with the same model left behind, as a field-by-name read would.
class GeneralColumns
{
public:
    explicit GeneralColumns(const QZWebTable &table) : m_table(&table) {}

    /// Throws DLVError(9) when the table has no "BUID" column.
    [[nodiscard]] int buid();
    /// Resolves "BUDesc" and the three number columns; throws DLVError(9) for the first missing.
    void resolveFields();

    [[nodiscard]] int buDesc() const { return m_buDesc; }
    [[nodiscard]] int techCount() const { return m_techCount; }
    [[nodiscard]] int hoursWorked() const { return m_hoursWorked; }
    [[nodiscard]] int hoursRemaining() const { return m_hoursRemaining; }

private:
    const QZWebTable *m_table;
    int m_buid = -1;
    int m_buDesc = -1;
    int m_techCount = -1;
    int m_hoursWorked = -1;
    int m_hoursRemaining = -1;
};
