// SPDX-License-Identifier: GPL-3.0-or-later
// Thresholds, level descriptions and colours, unsafe levels, sectors and the verdict's controls.
#pragma once

#include "model/quantity.h"
#include "records/controls.h"

#include <array>
#include <cstdint>

namespace skyhold {

using ThreeBoxes = std::array<NumberBox, 3>;
using ThreeLabels = std::array<Label, 3>;
using ThreeChecks = std::array<CheckBox, 3>;

struct ConditionControls {
    ConditionControls();

    // Entry i is the inclusive upper bound of level i + 1, in display units; of quantities with
    // limits alone.
    PerQuantity<ThreeBoxes> Limit;
    // Caption: description of level i + 1; BackColor: its colour; likewise.
    PerQuantity<ThreeLabels> Color;
    // Checked: level i + 1 makes the sky unsafe.
    PerQuantity<ThreeChecks> Cond;
    // Sector texts "from to minutes" of level i + 1; of quantities with sectors alone.
    PerQuantity<ThreeLabels> Direction;

    CheckBox WSDataOldUnsafe;   // old or missing station data counts as unsafe
    CheckBox NBDataOldUnsafe;   // a failed sensor program counts as unsafe
    CheckBox BeyondLimitUnsafe; // a value beyond the last limit, which has no level, is unsafe

    CheckBox QuickReaction; // looks between two cycles, too
    CheckBox EarnFirstSafe; // a session's first safe waits for its delay
    NumberBox FlapClosures; // closures within an hour that double the safe delay; 0: never
    NumberBox FlapLongest;  // the longest delay that comes of it, seconds
    NumberBox RoofCheck;    // seconds for which the roof may be elsewhere than told; 0: any time
    OptionGroup RoofAtStop; // an open roof when the session ends: 0 left, 1 asked about, 2 closed

    NumberBox SafeDelayVal;     // seconds
    double CloudAlarmDelay = 0; // seconds that it must be cloudy before that counts; not kept
    Label SafeDelayMsg;
    Label LblStatus;
    Lamp LEDUnsafe;
};

} // namespace skyhold
