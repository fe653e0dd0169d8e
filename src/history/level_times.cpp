// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/level_times.h"

#include <algorithm>

namespace skyhold {

namespace {

bool known(const KeptCycle& cycle, const QuantityRow& row) {
    const SourceState source = row.source == SourceName::Station ? cycle.station : cycle.sensor;
    const std::int32_t level = cycle.levels[row.quantity];
    const bool valued =
        row.source == SourceName::Sensor || cycle.values[measured(row.quantity)].has_value();
    return source == SourceState::Ok && valued && level >= 1 &&
           level <= static_cast<std::int32_t>(kLevelCount);
}

} // namespace

void LevelTimes::add(const KeptCycle& cycle) {
    if (last_) {
        const std::int64_t longest = 2'000LL * last_->intervalSeconds;
        const std::int64_t lasted = std::clamp<std::int64_t>(cycle.atMs - last_->atMs, 0, longest);
        for (const QuantityRow& row : quantityTable()) {
            if (known(*last_, row))
                times_[row.quantity][static_cast<std::size_t>(last_->levels[row.quantity] - 1)] +=
                    lasted;
        }
    }
    last_ = cycle;
}

} // namespace skyhold
