// SPDX-License-Identifier: GPL-3.0-or-later
// One read cycle as a value: what was observed, and how it was judged by which rules. It is stored
// once; outlets, window and other programs follow it.
#pragma once

#include "model/judgement.h"
#include "model/observation.h"
#include "model/rules.h"
#include "model/units.h"

namespace skyhold {

inline constexpr int kRoofOpen = 1; // as the sensor program's switch has them
inline constexpr int kRoofClosed = 2;

// Whether the roof goes where it is told; all 0 where that is not checked.
struct RoofCheck {
    int told = 0;
    int reads = 0;       // 0: neither
    Moment since;        // since when the two differ; 0: they do not
    bool faulty = false; // for longer than the user allows
};

struct CycleResult {
    std::int64_t number = 0; // counts from 1 in a session; 0 before the first cycle
    Moment judged;           // when its judgement was made
    Moment end;
    QDateTime localTime; // of the same moment
    int intervalSeconds = 0;

    Observation observation;
    Rules rules;
    Judgement judgement;
    RoofCheck roof;
    JudgeMemory memory; // after this cycle, and before the next
    // In force.
    TemperatureCode temperatureUnit = TemperatureCode::Celsius;
    SpeedCode speedUnit = SpeedCode::KilometresPerHour;

    // Why the verdict was taken back since this cycle, in words; empty while it stands.
    QString distrusted;
};

} // namespace skyhold
