// SPDX-License-Identifier: GPL-3.0-or-later
// How long each level of each quantity lasted.
#pragma once

#include "history/kept.h"

namespace skyhold {

class LevelTimes {
  public:
    // Cycles in the order of their times. What one says lasts until the next one, and at most two
    // intervals: nobody knows what was in a gap. A source that failed, or a value that is missing,
    // has no level.
    void add(const KeptCycle& cycle);

    // Of the last cycle; 0 before the first.
    std::int64_t lastMs() const { return last_ ? last_->atMs : 0; }
    std::int64_t ms(Quantity quantity, std::size_t index) const { return times_[quantity][index]; }

  private:
    std::optional<KeptCycle> last_;
    PerQuantity<std::array<std::int64_t, kLevelCount>> times_;
};

} // namespace skyhold
