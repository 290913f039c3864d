#pragma once

#include "model/dlvsurface.h"

#include <QString>
#include <utility>
#include <vector>

/// Serves a list view of units to the controller.
class FakeSurface final : public DLVSurface
{
public:
    [[nodiscard]] int buListCount() const override { return int(items.size()); }
    [[nodiscard]] QString buListKey(int index) const override
    {
        return items[std::size_t(index)].first;
    }
    [[nodiscard]] bool buListSelected(int index) const override
    {
        return items[std::size_t(index)].second;
    }

    /// Adds a list item "_" + id.
    void addItem(const QString &id, bool selected) { items.emplace_back("_" + id, selected); }

    std::vector<std::pair<QString, bool>> items;
};
