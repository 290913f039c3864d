#include "views/collapsednodes.h"

#include "views/outlinegrid.h"

const QString CollapsedNodes::TotalKey = QStringLiteral("TOTAL");

void CollapsedNodes::SaveCollapsedList(const OutlineGrid &grid, int index, StringSet &list)
{
    list.clear();
    // With only the header and total rows there is nothing under the total to hide.
    if (index == 0 && grid.rowCount() >= 4 && grid.isCollapsed(2))
        list.add(TotalKey, TotalKey);
    for (int row = firstKeyedRow(index); row < grid.rowCount(); ++row) {
        if (grid.isCollapsed(row)) {
            const QString &key = grid.rowData(row);
            list.addIfAbsent(key, key);
        }
    }
}

void CollapsedNodes::RestoreCollapsedList(OutlineGrid &grid, int index, const StringSet &list)
{
    if (list.isEmpty())
        return;
    if (index == 0 && grid.rowCount() >= 4 && list.contains(TotalKey))
        grid.setCollapsed(2, true);
    for (const auto &entry : list) {
        const int row = grid.findRow(entry.key);
        if (row != -1)
            grid.setCollapsed(row, true);
    }
}

void CollapsedNodes::ExpandNodes(OutlineGrid &grid, int index)
{
    if (grid.rowCount() <= (index == 0 ? 3 : 2))
        return;
    for (int row = 2; row < grid.rowCount(); ++row) {
        if (grid.isNode(row))
            grid.setCollapsed(row, false);
    }
}
