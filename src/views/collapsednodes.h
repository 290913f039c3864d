#pragma once

#include "common/ordereddict.h"

class OutlineGrid;

/// The in-memory memory of collapsed outline nodes, for the summary grid (element 0) and the two
/// hierarchy grids (elements 1 and 2). A node is named by its row's row data (a job-type code, a
/// BUID or the root mark "#"), never by its row number, so the memory survives rows moving
/// between fills. The summary grid's grand total in row 2 carries no row data and is remembered
/// as "TOTAL", but only once the grid holds more than the total row (4 rows or more).
///
/// The functions act on the grid data alone; they throw DLVError for a broken grid and leave the
/// reporting to the caller that traps errors.
class CollapsedNodes
{
public:
    /// Key that stands for the summary grid's grand-total node.
    static const QString TotalKey;

    /// The first row that names a node by its row data: 3 in the summary grid (row 2 is the grand
    /// total), 2 in the hierarchy grids (the root).
    [[nodiscard]] static int firstKeyedRow(int index) { return index == 0 ? 3 : 2; }

    /// Empties list, then adds the key of every collapsed node, top to bottom ("TOTAL" first).
    static void SaveCollapsedList(const OutlineGrid &grid, int index, StringSet &list);
    /// Collapses every node named in list; keys without a row are ignored.
    static void RestoreCollapsedList(OutlineGrid &grid, int index, const StringSet &list);
    /// Expands every node, when the grid holds more than its header rows (and, in the summary
    /// grid, more than the total row).
    static void ExpandNodes(OutlineGrid &grid, int index);
};
