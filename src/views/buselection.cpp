#include "views/buselection.h"

#include "common/sharedtext.h"
#include "model/buhierarchy.h"
#include "views/hierarchygrid.h"
#include "views/outlinegrid.h"

bool BUSelection::updateItems(const OutlineGrid &workOrderGrid, const StringSet &sessionBUs,
                              std::vector<Item> &items, const KnownRows &known)
{
    // The unit a row shows, when the fill said so and the row still shows that unit's id.
    const auto knownUnit = [&](int row, const QString &id) {
        const int unit =
            std::size_t(row) < known.unitOfRow.size() ? known.unitOfRow[std::size_t(row)] : -1;
        return unit >= 0 && known.hierarchy && unit < known.hierarchy->count() &&
                       std::size_t(unit) < known.sessionMembers.size() &&
                       (known.rowsAsTold || SharedText::equal(id, known.hierarchy->id(unit)))
                   ? unit
                   : -1;
    };
    bool changed = false;
    std::size_t at = 0;
    for (int row = 2; row < workOrderGrid.rowCount(); ++row) {
        const QString &id = workOrderGrid.rowData(row);
        // The root row stands for the whole tree, not for a unit the user can pick, even when a
        // host lists "#" among the session's units.
        if (id == HierarchyGrid::RootKey)
            continue;
        const int unit = knownUnit(row, id);
        if (unit >= 0 ? !known.sessionMembers[std::size_t(unit)] : !sessionBUs.contains(id))
            continue;
        const QString &text = workOrderGrid.text(row, 0);
        const int level = workOrderGrid.outlineLevel(row);
        if (at == items.size()) {
            items.push_back(Item{QStringLiteral("_") + id, text, level, unit});
            changed = true;
            ++at;
            continue;
        }
        // The item at this place is for the same unit: by position when the items come from
        // the same lookups, else by its key. An item that stays as it was touches no string.
        Item &item = items[at++];
        const bool sameUnit = known.previousAlike && unit >= 0 && item.unit >= 0
                                  ? item.unit == unit
                                  : QStringView(item.key).mid(1) == id;
        if (!sameUnit) {
            item.key = QStringLiteral("_") + id;
            changed = true;
        }
        if (!SharedText::equal(item.text, text)) {
            item.text = text;
            changed = true;
        }
        if (item.level != level) {
            item.level = level;
            changed = true;
        }
        item.unit = unit;
    }
    if (at != items.size()) {
        items.resize(at);
        changed = true;
    }
    return changed;
}

std::vector<int> BUSelection::treeParents(const std::vector<Item> &items)
{
    std::vector<int> parents(items.size(), -1);
    std::vector<int> open; // the chain of items that later ones may hang under
    for (std::size_t i = 0; i < items.size(); ++i) {
        while (!open.empty() && items[std::size_t(open.back())].level >= items[i].level)
            open.pop_back();
        parents[i] = open.empty() ? -1 : open.back();
        open.push_back(int(i));
    }
    return parents;
}

std::vector<char> BUSelection::filterMatches(const std::vector<Item> &items,
                                             const std::vector<int> &parents, QStringView filter)
{
    std::vector<char> visible(items.size(), filter.isEmpty() ? 1 : 0);
    if (filter.isEmpty())
        return visible;
    // Children come after their parents: going backwards, a match is known before its parent.
    for (std::size_t i = items.size(); i-- > 0;) {
        if (!visible[i] && items[i].text.contains(filter, Qt::CaseInsensitive))
            visible[i] = 1;
        if (visible[i] && parents[i] >= 0)
            visible[std::size_t(parents[i])] = 1;
    }
    return visible;
}

QString BUSelection::joined(const StringSet &ids)
{
    qsizetype length = 0;
    for (const auto &entry : ids)
        length += entry.key.size() + 1;
    QString text;
    text.reserve(length);
    for (const auto &entry : ids) {
        text += entry.key;
        text += u'|';
    }
    return text;
}

bool BUSelection::needsRedraw(bool lastSingleMode, const StringSet &lastSelection, bool singleMode,
                              const StringSet &selection)
{
    if (lastSingleMode != singleMode)
        return true;
    if (lastSelection.count() != selection.count())
        return true;
    // Joined texts, not element-wise: ids are compared exactly as the joined lists read.
    return joined(lastSelection) != joined(selection);
}
