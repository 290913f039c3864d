#pragma once

#include "common/ordereddict.h"

#include <QString>
#include <span>
#include <vector>

class BUHierarchy;
class OutlineGrid;

/// What a hierarchy fill knows of the work-order grid's rows: the hierarchy position of each
/// row's unit (HierarchyGrid::Fill's unitOfRow) and whether the session holds each position's
/// unit (KeptPositions::members). A row is taken at its word while the grid's rows are as the
/// fill left them, or else while it still shows that unit's own id: a grid changed since the fill
/// is looked up as before.
struct KnownRows
{
    std::span<const int> unitOfRow;
    const BUHierarchy *hierarchy = nullptr;
    std::span<const char> sessionMembers;
    /// Whether the grid's rows are still as the fill that told unitOfRow left them (no row
    /// added, removed, moved or given other data since): the rows' units need no check then.
    bool rowsAsTold = false;
    /// Whether the last list (updateItems' items) was made with the same unit lookups, so that
    /// its items' units are positions in the same hierarchy.
    bool previousAlike = false;
};

/// The rules behind the unit list lvBU and the View button, without widgets: which units the list
/// offers (the session's units that the work-order hierarchy holds, in tree order) and whether a
/// new selection calls for a redraw of the summary.
class BUSelection
{
public:
    struct Item
    {
        QString key;   ///< "_" followed by the unit id
        QString text;  ///< the unit's description
        int level = 0; ///< outline level of the unit's row in the hierarchy
        int unit = -1; ///< the unit's hierarchy position, when the rows' units were known
    };

    /// Makes items, the last list made, the list for the hierarchy grid's rows, in place: from
    /// row 2 in tree order, every row whose row data is in the session set, with the unit's
    /// description. The hierarchy fill writes each unit's row from its entry in the description
    /// lookup, row data and tree text: the description is the row's tree text, read there rather
    /// than looked up again (a list of thousands of units is made on every refresh). An item for
    /// the same unit at the same place keeps its key, and with the same description and level
    /// stays as it was, so that an unchanged list touches no string (a copy of one counts a
    /// reference in its block, a cache miss apiece). known, when given, says which session
    /// units the rows show without a lookup of their ids. Returns whether any item changed
    /// (beyond the units it tells).
    static bool updateItems(const OutlineGrid &workOrderGrid, const StringSet &sessionBUs,
                            std::vector<Item> &items, const KnownRows &known = {});

    /// For the list shown as a tree: each item's parent item, the nearest item above it in the
    /// list with a lower level (a unit whose listed ancestors are all outside the session hangs
    /// at the top), or -1.
    [[nodiscard]] static std::vector<int> treeParents(const std::vector<Item> &items);
    /// Which items a filter leaves visible: those whose text holds it (ignoring case) and every
    /// item above one of them, so that a match is seen where it sits. All for an empty filter.
    [[nodiscard]] static std::vector<char> filterMatches(const std::vector<Item> &items,
                                                         const std::vector<int> &parents,
                                                         QStringView filter);

    /// The id of a list key (the key less its first character).
    [[nodiscard]] static QString idOfKey(const QString &key) { return key.mid(1); }

    /// True when the summary must be redrawn: the aggregate/single mode changed, or the selection
    /// differs in count or in its ids joined in order (so the same units in another order count
    /// as a change).
    [[nodiscard]] static bool needsRedraw(bool lastSingleMode, const StringSet &lastSelection,
                                          bool singleMode, const StringSet &selection);

    /// The ids of a set, each followed by "|".
    [[nodiscard]] static QString joined(const StringSet &ids);
};
