// SPDX-License-Identifier: GPL-3.0-or-later
// The sector test: a wind or gust level only counts after the wind has blown from the level's
// sector for the level's time.
#pragma once

#include "model/sector.h"

#include <cstdint>
#include <optional>

namespace skyhold {

// True when `direction` (degrees) has been inside the sector for its minutes; one that is not known
// counts as inside. A direction outside restarts the wait: `outsideSince` becomes `nowMs`. Without
// a sector always true.
bool SectorHolds(const std::optional<Sector>& sector, std::optional<double> direction,
                 std::int64_t& outsideSince, std::int64_t nowMs);

} // namespace skyhold
