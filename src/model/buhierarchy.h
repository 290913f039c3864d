#pragma once

#include "common/ordereddict.h"

#include <QString>
#include <QStringView>
#include <cstdint>
#include <span>
#include <vector>

/// The business-unit tree as the parent map records it, indexed once per load: for every unit
/// (an entry of the parent map, by its position there) and for every parent text that some entry
/// names (also texts that are no unit, such as "" or a missing root), the children in parent-map
/// order. A unit that is its own parent is not its own child. The parent map is the only record
/// of the hierarchy and may come from a host with cyclic or self-referencing data: descendant
/// walks are iterative and cut a cycle where it closes.
class BUHierarchy
{
public:
    BUHierarchy() = default;

    /// Re-indexes from a parent map (BUID -> parent BUID, exact keys).
    void rebuild(const OrderedDict<QString> &parentMap);

    /// Number of units (entries of the parent map).
    [[nodiscard]] int count() const { return int(m_ids.size()); }
    /// Position of a unit in the parent map (exact text), or -1.
    [[nodiscard]] int indexOf(QStringView id) const { return int(m_unitIndex.indexOf(id)); }
    [[nodiscard]] const QString &id(int unit) const { return m_ids[std::size_t(unit)]; }
    [[nodiscard]] const QString &parentId(int unit) const { return m_parents[std::size_t(unit)]; }
    /// Position of the unit's parent, -1 when the parent text is no unit; a root that is its own
    /// parent gives its own position.
    [[nodiscard]] int parentIndex(int unit) const { return m_parentIndex[std::size_t(unit)]; }

    /// Direct children (unit positions, parent-map order) of a unit.
    [[nodiscard]] std::span<const int> childrenOf(int unit) const
    {
        return group(m_unitGroup[std::size_t(unit)]);
    }
    /// Direct children of any parent text (a unit id, "#", "" ...).
    [[nodiscard]] std::span<const int> children(QStringView parentId) const;

    /// Appends to out every descendant of id in the order of the step-by-step listing: the direct
    /// children in parent-map order, then each child's descendants in turn. id itself and any unit
    /// already listed are never listed (or descended into) again, which ends cycles.
    void appendDescendants(QStringView id, std::vector<int> &out) const;
    /// The same, for a run of walks whose listings are merged first-seen (the aggregate of many
    /// units): a unit marked in done is neither listed nor descended into, since an earlier walk
    /// listed it and with it everything below it; listed units (and id) get marked. The run
    /// costs one visit per unit however deep the tree. done has count() entries.
    void appendDescendants(QStringView id, std::vector<int> &out, std::vector<char> &done) const;

    /// Adds to out the id and every descendant in listing order, each once (see
    /// appendDescendants; done as there, for calls that fill one out: a unit marked done is in out
    /// with its descendants already, and its call adds nothing). The listing joins the ids with ","
    /// and splits the text again, so an id that itself holds a comma arrives as its pieces. With
    /// positions, each key added to out adds its unit's position there, or -1 for a piece of an id.
    void appendIdList(const QString &id, OrderedDict<QString> &out,
                      std::vector<char> *done = nullptr,
                      std::vector<int> *positions = nullptr) const;

    /// Whether some unit's id holds a comma, and so lists as its pieces.
    [[nodiscard]] bool hasPiecedIds() const { return m_anyPieced; }
    /// appendIdList() for a unit known by its position, with done and positions, where no unit's
    /// id holds a comma (hasPiecedIds() is false) and out holds only keys that earlier calls of
    /// this one with the same done added: every key added is then new, and goes in unchecked
    /// (OrderedDict::appendUnique), which for the aggregate of thousands of units saves hashing
    /// every id.
    void appendUnitIdList(int unit, OrderedDict<QString> &out, std::vector<char> &done,
                          std::vector<int> &positions) const;

private:
    /// start is the position of id, or -1 when id is no unit.
    void walk(QStringView id, int start, std::vector<int> &out, std::vector<char> *done) const;
    [[nodiscard]] std::span<const int> group(int g) const
    {
        if (g < 0)
            return {};
        return std::span<const int>(m_children)
            .subspan(std::size_t(m_groupStart[std::size_t(g)]),
                     std::size_t(m_groupStart[std::size_t(g) + 1] - m_groupStart[std::size_t(g)]));
    }

    std::vector<QString> m_ids;
    std::vector<char> m_pieced; // whether the id holds a comma, and so lists as its pieces
    bool m_anyPieced = false;
    std::vector<QString> m_parents;
    std::vector<int> m_parentIndex;
    OrderedDict<int> m_unitIndex{KeyCompare::Exact};  // id -> unit position
    OrderedDict<int> m_groupIndex{KeyCompare::Exact}; // parent text -> group
    std::vector<int> m_unitGroup;                     // unit -> group of its children, or -1
    std::vector<int> m_groupStart;                    // group g's children: [start[g], start[g+1])
    std::vector<int> m_children;

    // Walk state reused between calls: a unit is "reached" when its mark equals the walk's stamp,
    // so starting a walk costs nothing however many units there are.
    mutable std::vector<std::uint32_t> m_mark;
    mutable std::uint32_t m_stamp = 0;
    mutable std::vector<int> m_walk; // scratch for appendIdList
};
