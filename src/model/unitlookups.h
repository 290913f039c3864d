#pragma once

#include "common/ordereddict.h"

class BUHierarchy;

/// What the hierarchy views read of one load besides the units: the description and parent
/// lookups (exact keys, host order) and the children index built from the parent map. References
/// into the data controller, valid until its next load.
struct UnitLookups
{
    const StringSet &descriptions;
    const StringSet &parents;
    const BUHierarchy &hierarchy;
};
