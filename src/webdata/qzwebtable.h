#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <cstdint>
#include <vector>

class QZWebTable;

/// A lightweight view of one row of a QZWebTable (valid while the table lives and is not changed).
class QZWebRow
{
public:
    QZWebRow(const QZWebTable &table, int row) : m_table(&table), m_row(row) {}

    [[nodiscard]] int number() const { return m_row; }
    [[nodiscard]] const QZWebTable &table() const { return *m_table; }
    /// Field by column name (a column-name lookup per call; hot loops use value(column index)).
    /// Throws DLVError(9) with a clear description for a missing column.
    [[nodiscard]] QString field(QStringView column) const;
    [[nodiscard]] QStringView value(int column) const;

private:
    const QZWebTable *m_table;
    int m_row;
};

/// A host data table: a name, an ordered list of column names and 1-based rows of text values.
/// Values are kept compactly (one UTF-16 buffer and an end offset per cell), so a 300,000-row table
/// is cheap to hold and reading a value never allocates. Column and table names compare without
/// regard to letter case. Also serves as a profile section (name, field list, rows).
class QZWebTable
{
public:
    QZWebTable() = default;
    explicit QZWebTable(QString name, const QStringList &columns = {});

    [[nodiscard]] const QString &name() const { return m_name; }
    void setName(QString name) { m_name = std::move(name); }

    [[nodiscard]] int columnCount() const { return int(m_columns.size()); }
    [[nodiscard]] const QStringList &columns() const { return m_columns; }
    /// The column names joined by ",".
    [[nodiscard]] QString fieldList() const;
    /// Appends a column (existing rows get an empty value); throws DLVError(457) if present.
    void addColumn(const QString &name);
    /// Index of a column (case-insensitive), or -1.
    [[nodiscard]] int columnIndex(QStringView name) const;
    /// Index of a column that must exist; throws DLVError(9) "Table 'X' has no column 'Y'".
    [[nodiscard]] int requireColumn(QStringView name) const;

    [[nodiscard]] int rowCount() const;
    /// Row view; throws DLVError(9) when row is outside 1..rowCount().
    [[nodiscard]] QZWebRow row(int row) const;
    /// Value of a cell, row 1-based, column 0-based; throws DLVError(9) when out of range.
    /// The view stays valid until the table is changed.
    [[nodiscard]] QStringView value(int row, int column) const;
    /// Value by column name; throws DLVError(9) for a missing row or column.
    [[nodiscard]] QString field(int row, QStringView column) const;

    /// Appends an empty row and returns its 1-based number.
    int addRow();
    /// Appends a row; values.size() must equal columnCount() (else DLVError(5)).
    void appendRow(const QStringList &values);
    void setValue(int row, int column, QStringView value);
    void setField(int row, QStringView column, QStringView value);
    void removeRow(int row);
    void clearRows();
    /// Capacity hint for loaders and generators.
    void reserve(int rows, qsizetype textChars);

    /// The table as an XML document "<Table name=..>" (format: docs/host-protocol.md).
    [[nodiscard]] QString toXml() const;
    /// Replaces this table by the one in the text; throws DLVError(5) for malformed text and
    /// leaves the table unchanged then.
    void loadXml(QStringView xml);
    [[nodiscard]] static QZWebTable fromXml(QStringView xml);
    /// The same from UTF-8 bytes (files).
    void loadXmlUtf8(QByteArrayView xml);
    [[nodiscard]] static QZWebTable fromXmlUtf8(QByteArrayView xml);

    friend bool operator==(const QZWebTable &a, const QZWebTable &b);

private:
    friend class QZWebTablePrivate;
    friend class WebXmlStreamReader;
    /// Position of a cell (0-based, row-major) in m_ends.
    [[nodiscard]] std::size_t cellIndex(int row, int column) const
    {
        return std::size_t(row - 1) * std::size_t(m_columns.size()) + std::size_t(column);
    }
    [[nodiscard]] std::uint32_t cellBegin(std::size_t cell) const
    {
        return cell == 0 ? 0 : m_ends[cell - 1];
    }

    QString m_name;
    QStringList m_columns;
    // The values one after the other in m_text, in row-major cell order with nothing between
    // them, and where each ends: 4 bytes per cell besides the text. A value that changes length
    // moves the text after it, which costs nothing for the usual filling of the last row.
    std::vector<std::uint32_t> m_ends;
    std::vector<char16_t> m_text;
    int m_rows = 0; // kept apart from m_ends: a table may have rows but no columns
};
