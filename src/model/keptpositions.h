#pragma once

#include "common/ordereddict.h"

#include <span>
#include <vector>

class BUHierarchy;

/// The hierarchy positions of a set of unit ids, and which positions the set holds, kept while
/// the set (its shared contents) and the unit lookups (their epoch) stay as they were. A refresh
/// asks for the chosen units' and the session's positions every time: thousands of ids that would
/// otherwise each be hashed and compared again, a cache miss or two apiece once the set outgrows
/// the cache.
class KeptPositions
{
public:
    /// Brings the positions up to date for ids in the hierarchy of the unit lookups of the given
    /// epoch (UnitLookups::epoch); cheap when neither changed.
    void update(const StringSet &ids, const BUHierarchy &hierarchy, quint64 epoch);
    /// Each id's position, in the set's order, or -1 for an id that is no unit.
    [[nodiscard]] std::span<const int> positions() const { return m_positions; }
    /// Per hierarchy position: whether the set holds that unit's id. Sets that compare ids
    /// without regard to case hold no member here (the hierarchy's ids are exact).
    [[nodiscard]] std::span<const char> members() const { return m_members; }

private:
    // The contents the positions were taken from, held so that sharing them proves equality.
    StringSet m_ids{KeyCompare::Exact};
    quint64 m_epoch = 0; // 0: nothing kept
    std::vector<int> m_positions;
    std::vector<char> m_members;
};
