#include "model/buhierarchy.h"

#include <algorithm>

void BUHierarchy::rebuild(const OrderedDict<QString> &parentMap)
{
    const auto n = std::size_t(parentMap.count());
    m_ids.clear();
    m_pieced.clear();
    m_anyPieced = false;
    m_parents.clear();
    m_unitIndex.clear();
    m_groupIndex.clear();
    m_ids.reserve(n);
    m_pieced.reserve(n);
    m_parents.reserve(n);
    m_unitIndex.reserve(qsizetype(n));
    for (const auto &entry : parentMap) {
        m_unitIndex.add(entry.key, int(m_ids.size()));
        m_ids.push_back(entry.key);
        m_pieced.push_back(entry.key.contains(u','));
        m_anyPieced = m_anyPieced || m_pieced.back();
        m_parents.push_back(entry.value);
    }

    // Group children by parent text, keeping parent-map order within each group (counting sort).
    std::vector<int> groupOfChild(n, -1);
    std::vector<int> groupSize;
    m_parentIndex.assign(n, -1);
    for (std::size_t i = 0; i < n; ++i) {
        m_parentIndex[i] = m_unitIndex.find(m_parents[i]) ? *m_unitIndex.find(m_parents[i]) : -1;
        if (m_parents[i] == m_ids[i])
            continue; // a root that is its own parent is not its own child
        int g = m_groupIndex.find(m_parents[i]) ? *m_groupIndex.find(m_parents[i]) : -1;
        if (g < 0) {
            g = int(groupSize.size());
            m_groupIndex.add(m_parents[i], g);
            groupSize.push_back(0);
        }
        groupOfChild[i] = g;
        ++groupSize[std::size_t(g)];
    }
    m_groupStart.assign(groupSize.size() + 1, 0);
    for (std::size_t g = 0; g < groupSize.size(); ++g)
        m_groupStart[g + 1] = m_groupStart[g] + groupSize[g];
    std::vector<int> fill(m_groupStart.begin(), m_groupStart.end() - 1);
    m_children.assign(m_groupStart.back(), -1);
    for (std::size_t i = 0; i < n; ++i)
        if (groupOfChild[i] >= 0)
            m_children[std::size_t(fill[std::size_t(groupOfChild[i])]++)] = int(i);

    m_unitGroup.assign(n, -1);
    for (std::size_t i = 0; i < n; ++i)
        if (const int *g = m_groupIndex.find(m_ids[i]))
            m_unitGroup[i] = *g;

    m_mark.assign(n, 0);
    m_stamp = 0;
}

std::span<const int> BUHierarchy::children(QStringView parentId) const
{
    const int *g = m_groupIndex.find(parentId);
    return g ? group(*g) : std::span<const int>();
}

void BUHierarchy::appendDescendants(QStringView id, std::vector<int> &out) const
{
    walk(id, indexOf(id), out, nullptr);
}

void BUHierarchy::appendDescendants(QStringView id, std::vector<int> &out,
                                    std::vector<char> &done) const
{
    walk(id, indexOf(id), out, &done);
}

void BUHierarchy::walk(QStringView id, int start, std::vector<int> &out,
                       std::vector<char> *done) const
{
    if (done && start >= 0) {
        if ((*done)[std::size_t(start)])
            return;
        (*done)[std::size_t(start)] = 1;
    }
    if (++m_stamp == 0) { // wrapped: forget every old mark
        std::fill(m_mark.begin(), m_mark.end(), 0);
        m_stamp = 1;
    }
    const std::uint32_t stamp = m_stamp;
    if (start >= 0)
        m_mark[std::size_t(start)] = stamp;

    // A node's listed children are contiguous in out; a frame walks them and descends into each.
    struct Frame
    {
        std::size_t next;
        std::size_t end;
    };
    std::vector<Frame> stack;
    const auto listChildren = [&](std::span<const int> kids) {
        const std::size_t begin = out.size();
        for (const int child : kids) {
            if (m_mark[std::size_t(child)] == stamp || (done && (*done)[std::size_t(child)]))
                continue;
            m_mark[std::size_t(child)] = stamp;
            if (done)
                (*done)[std::size_t(child)] = 1;
            out.push_back(child);
        }
        stack.push_back(Frame{begin, out.size()});
    };

    listChildren(start >= 0 ? childrenOf(start) : children(id));
    while (!stack.empty()) {
        Frame &top = stack.back();
        if (top.next == top.end) {
            stack.pop_back();
            continue;
        }
        const int child = out[top.next++];
        listChildren(childrenOf(child));
    }
}

namespace {

/// Adds the id's pieces between commas that out lacks, with position -1 (a piece is no id of
/// its own).
void addPieces(const QString &id, OrderedDict<QString> &out, std::vector<int> *positions)
{
    for (const QStringView piece : id.tokenize(u',')) {
        if (!out.contains(piece)) {
            const QString text = piece.toString();
            out.add(text, text);
            if (positions)
                positions->push_back(-1);
        }
    }
}

} // namespace

void BUHierarchy::appendIdList(const QString &id, OrderedDict<QString> &out,
                               std::vector<char> *done, std::vector<int> *positions) const
{
    const auto addUnit = [&](const QString &listed, int unit) {
        const qsizetype before = out.count();
        out.addIfAbsent(listed, listed); // shares the id's text
        if (positions && out.count() != before)
            positions->push_back(unit);
    };
    const int start = indexOf(id);
    // A unit that an earlier walk reached is listed already, and so is everything below it.
    if (done && start >= 0 && (*done)[std::size_t(start)])
        return;
    if (id.contains(u','))
        addPieces(id, out, positions);
    else
        addUnit(id, start);
    m_walk.clear();
    walk(id, start, m_walk, done);
    // Whether an id holds a comma is known from the build: an id list of thousands of units then
    // goes without searching each id again.
    for (const int unit : m_walk) {
        const QString &listed = m_ids[std::size_t(unit)];
        if (m_pieced[std::size_t(unit)])
            addPieces(listed, out, positions);
        else
            addUnit(listed, unit);
    }
}

void BUHierarchy::appendUnitIdList(int unit, OrderedDict<QString> &out, std::vector<char> &done,
                                   std::vector<int> &positions) const
{
    if (done[std::size_t(unit)])
        return;
    const QString &id = m_ids[std::size_t(unit)];
    out.appendUnique(id, id);
    positions.push_back(unit);
    m_walk.clear();
    walk(id, unit, m_walk, &done);
    for (const int listed : m_walk) {
        out.appendUnique(m_ids[std::size_t(listed)], m_ids[std::size_t(listed)]);
        positions.push_back(listed);
    }
}
