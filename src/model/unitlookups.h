#pragma once

#include "common/ordereddict.h"

#include <span>

class BUHierarchy;
class BusinessUnit;

/// What the hierarchy views read of one load besides the units: the description and parent
/// lookups (exact keys, host order) and the children index built from the parent map, with the
/// model's unit of every hierarchy position, looked up once per load. References into the data
/// controller, valid until its next load.
struct UnitLookups
{
    const StringSet &descriptions;
    const StringSet &parents;
    const BUHierarchy &hierarchy;
    /// The model's unit (any letter case) of each hierarchy position, or null.
    std::span<const BusinessUnit *const> units;
    /// Whether the description lookup holds the parent map's ids in the same order (both come
    /// from one table), so that a unit has the same position in both and in the hierarchy.
    bool aligned = false;
    /// Names these lookups among all lookups of all controllers: equal epochs, equal lookups.
    /// A message that lists the same units keeps the lookups and their epoch.
    quint64 epoch = 0;
};
