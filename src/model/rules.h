// SPDX-License-Identifier: GPL-3.0-or-later
// The settings by which a cycle is judged, as a value.
#pragma once

#include "model/quantity.h"
#include "model/sector.h"

#include <optional>

namespace skyhold {

// Of the levels of one quantity, index 0 for level 1.
struct LevelRules {
    std::array<double, kLevelCount> limits{}; // inclusive upper bounds, in display units
    std::array<bool, kLevelCount> unsafe{};
    std::array<std::optional<Sector>, kLevelCount> sectors{}; // none: whatever the direction

    bool operator==(const LevelRules&) const = default;
    bool ordered() const { return limits[0] < limits[1] && limits[1] < limits[2]; }
};

// What only ever holds a safe back for longer.
struct CalmRules {
    // Each `closures` closures within an hour double the safe delay, up to `longestSeconds`; an
    // hour without one undoes it. 0: never.
    std::int32_t closures = 0;
    double longestSeconds = 3600;
    // A session's first safe waits for the delay like any other, and a wind that stands in its
    // sector when a session begins counts at once.
    bool earnFirstSafe = false;
    bool operator==(const CalmRules&) const = default;
};

struct Rules {
    PerQuantity<LevelRules> levels;
    bool stationOldIsUnsafe = true;
    bool sensorFailedIsUnsafe = true;
    bool beyondIsUnsafe = false;  // a value above the last limit, which has no level
    double safeDelaySeconds = 0;  // 0 and less mean no delay
    double cloudDelaySeconds = 0; // how long it must be cloudy before that counts

    CalmRules calm;
    bool operator==(const Rules&) const = default;
};

} // namespace skyhold
