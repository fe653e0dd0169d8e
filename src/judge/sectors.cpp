// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/sectors.h"

#include <cmath>

namespace skyhold {

namespace {

constexpr std::int64_t kMsPerMinute = 60'000;

bool isInside(const Sector& sector, double direction) {
    if (sector.from < 0)
        return direction >= sector.from + 360 || direction <= sector.to;
    return sector.from <= direction && direction <= sector.to;
}

} // namespace

bool SectorHolds(const std::optional<Sector>& sector, std::optional<double> direction,
                 std::int64_t& outsideSince, std::int64_t nowMs) {
    if (!sector)
        return true;
    const bool known = direction && std::isfinite(*direction);
    if (known && !isInside(*sector, *direction)) {
        outsideSince = nowMs;
        return false;
    }
    return nowMs - outsideSince >= sector->minutes * kMsPerMinute;
}

} // namespace skyhold
