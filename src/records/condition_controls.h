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

    // Entry i is the inclusive upper bound of level i + 1, in display units.
    ThreeBoxes LimitWind, LimitGust, LimitTemp, LimitDew, LimitHum;
    // Caption: description of level i + 1; BackColor: its colour.
    ThreeLabels ColorWind, ColorGust, ColorTemp, ColorDew, ColorHum;
    // Checked: level i + 1 makes the sky unsafe.
    ThreeChecks CondCloud, CondRain, CondDay, CondWind, CondGust, CondTemp, CondDew, CondHum;
    // Sector texts "from to minutes" of level i + 1.
    ThreeLabels DirectionWind, DirectionGust;

    CheckBox WSDataOldUnsafe;   // old or missing station data counts as unsafe
    CheckBox NBDataOldUnsafe;   // a failed sensor program counts as unsafe
    CheckBox BeyondLimitUnsafe; // a value beyond the last limit, which has no level, is unsafe

    NumberBox SafeDelayVal; // seconds
    Label SafeDelayMsg;
    Label LblStatus;
    Lamp LEDUnsafe;

    // Only the five station quantities have limits and swatches.
    ThreeBoxes& limits(Quantity quantity);
    const ThreeBoxes& limits(Quantity quantity) const;
    ThreeLabels& swatches(Quantity quantity);
    const ThreeLabels& swatches(Quantity quantity) const;
    ThreeChecks& unsafe(Quantity quantity);
    const ThreeChecks& unsafe(Quantity quantity) const;
};

// What the safe decision remembers from cycle to cycle. Times are MsClock stamps in milliseconds.
struct SafetyState {
    std::int32_t SafeState = 0; // 0 undecided in this session, 1 last was unsafe, 2 last was safe
    std::int64_t SafeDelayStart = 0;
    std::int32_t SafeDelayRemaining = 0; // whole seconds still to wait
    std::int32_t PrevCloudLevel = 0;
    std::int64_t CloudChangeTime = 0; // 0: long ago
    double CloudAlarmDelay = 0;       // seconds
    bool LocalControl = false;        // an automation client decides
};

// The last time at which a sector test of each kind found the direction outside; MsClock stamps.
struct SectorState {
    std::int64_t WindOutsideSince = 0;
    std::int64_t GustOutsideSince = 0;
};

} // namespace skyhold
