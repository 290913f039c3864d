#include "views/buselection.h"

#include "views/hierarchygrid.h"
#include "views/outlinegrid.h"

std::vector<BUSelection::Item> BUSelection::listItems(const OutlineGrid &workOrderGrid,
                                                      const StringSet &sessionBUs,
                                                      const StringSet &buDescriptions)
{
    std::vector<Item> items;
    for (int row = 2; row < workOrderGrid.rowCount(); ++row) {
        const QString &id = workOrderGrid.rowData(row);
        // The root row stands for the whole tree, not for a unit the user can pick, even when a
        // host lists "#" among the session's units.
        if (id == HierarchyGrid::RootKey || !sessionBUs.contains(id))
            continue;
        const QString *text = buDescriptions.find(id);
        items.push_back(Item{QStringLiteral("_") + id, text ? *text : QString()});
    }
    return items;
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
