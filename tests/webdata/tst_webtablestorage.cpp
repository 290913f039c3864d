// The table keeps its values back to back in one buffer with an end offset per cell; every
// change must keep every other value where it was. Checked against a plain grid of strings under
// random edits.

#include "webdata/qzwebtable.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using Grid = std::vector<std::vector<QString>>;

void expectSame(const QZWebTable &table, const QStringList &columns, const Grid &grid)
{
    ASSERT_EQ(table.columns(), columns);
    ASSERT_EQ(table.rowCount(), int(grid.size()));
    for (int r = 0; r < int(grid.size()); ++r) {
        for (int c = 0; c < int(columns.size()); ++c)
            ASSERT_EQ(table.value(r + 1, c).toString(), grid[std::size_t(r)][std::size_t(c)])
                << "row " << r + 1 << " column " << c;
    }
}

} // namespace

TEST(WebTableStorage, RandomEditsKeepEveryOtherValue)
{
    std::mt19937 random(7);
    const auto below = [&](int n) { return n <= 0 ? 0 : int(random() % unsigned(n)); };
    const QStringList samples = {QString(), QStringLiteral("x"), QStringLiteral("longer value"),
                                 QStringLiteral("é😀"), QStringLiteral("  ")};
    for (int round = 0; round < 40; ++round) {
        QZWebTable table(QStringLiteral("T"));
        QStringList columns;
        Grid grid;
        for (int step = 0; step < 60; ++step) {
            const int rows = int(grid.size());
            switch (below(7)) {
            case 0: { // a column, also on a table with rows
                const QString name = QStringLiteral("C%1").arg(columns.size());
                table.addColumn(name);
                columns.append(name);
                for (auto &row : grid)
                    row.emplace_back();
                break;
            }
            case 1:
                table.addRow();
                grid.emplace_back(std::size_t(columns.size()));
                break;
            case 2: {
                QStringList values;
                for (qsizetype c = 0; c < columns.size(); ++c)
                    values.append(samples[below(int(samples.size()))]);
                table.appendRow(values);
                grid.emplace_back(values.begin(), values.end());
                break;
            }
            case 3:
            case 4:
                if (rows > 0 && !columns.isEmpty()) {
                    const int r = below(rows);
                    const int c = below(int(columns.size()));
                    const QString value = samples[below(int(samples.size()))];
                    table.setValue(r + 1, c, value);
                    grid[std::size_t(r)][std::size_t(c)] = value;
                }
                break;
            case 5:
                if (rows > 0) {
                    const int r = below(rows);
                    table.removeRow(r + 1);
                    grid.erase(grid.begin() + r);
                }
                break;
            case 6:
                if (rows > 0 && !columns.isEmpty()) {
                    // A value copied from another cell of the same table (a view into its
                    // buffer, which the change may move).
                    const int r = below(rows);
                    const int c = below(int(columns.size()));
                    const int fromRow = below(rows);
                    const int fromColumn = below(int(columns.size()));
                    table.setValue(r + 1, c, table.value(fromRow + 1, fromColumn));
                    grid[std::size_t(r)][std::size_t(c)] =
                        grid[std::size_t(fromRow)][std::size_t(fromColumn)];
                }
                break;
            }
            expectSame(table, columns, grid);
        }
        // Equal contents make equal tables, however they were reached.
        EXPECT_EQ(QZWebTable::fromXml(table.toXml()), table);
        table.clearRows();
        grid.clear();
        expectSame(table, columns, grid);
    }
}
