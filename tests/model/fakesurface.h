#pragma once

#include "model/dlvsurface.h"

#include <QHash>
#include <QString>
#include <utility>
#include <vector>

/// Records what the controller writes on the control and serves a list view of units.
class FakeSurface final : public DLVSurface
{
public:
    void setCaption(QStringView controlName, const QString &text) override
    {
        captions.insert(controlName.toString(), text);
    }
    void setVisible(QStringView controlName, bool visible) override
    {
        visibility.insert(controlName.toString(), visible);
    }
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

    QHash<QString, QString> captions;
    QHash<QString, bool> visibility;
    std::vector<std::pair<QString, bool>> items;
};
