// SPDX-License-Identifier: GPL-3.0-or-later
// What comes closest to making a safe sky unsafe.
#pragma once

#include "model/judgement.h"
#include "model/observation.h"
#include "model/rules.h"

#include <optional>

namespace skyhold {

struct NearestLimit {
    Quantity quantity = Quantity::Wind;
    double value = 0;
    double limit = 0;   // both in display units
    bool above = false; // unsafe lies above the limit; else at it and below
    double share = 0;   // 0..1: what is left of the way from the far end of the safe values
};

// Of the station's quantities, the one that has the least share of its safe values left. The scale
// of a quantity is that of its graph: from 0, or twice a negative first limit, to the last limit.
// Nothing while no level that has a limit is unsafe, or none of the values is known.
std::optional<NearestLimit> nearestLimit(const Observation& observation, const Rules& rules,
                                         const Judgement& judgement);

// How far a value of that level is from one that is unsafe. Nothing where the level itself is
// unsafe, there is no unsafe one, or the limits are not in order.
std::optional<double> leftToUnsafe(double value, std::int32_t level, const LevelRules& levels,
                                   bool beyondIsUnsafe);

} // namespace skyhold
