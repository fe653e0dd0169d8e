// SPDX-License-Identifier: GPL-3.0-or-later
// The steps of a verdict: levels, the cloud delay, the safe delay.
#pragma once

#include "model/judgement.h"
#include "model/rules.h"

namespace skyhold {

// The first level whose limit is not below the value; 0 above the last limit and for what is no
// finite number.
std::int32_t bandLevel(double value, const std::array<double, kLevelCount>& limits);

// Whether the cloud level of this cycle counts: cloudy only after it has lasted `delaySeconds`,
// unless it follows overcast or begins a session. Notes changes of the level; once per cycle.
bool CloudLevelActive(std::int32_t level, double delaySeconds, JudgeMemory& memory,
                      std::int64_t nowMs);

// The verdict to publish (true = unsafe) for this cycle's raw decision, and the whole seconds still
// to wait. A change from unsafe to safe is held back for `delaySeconds`; 0 and less is no delay.
// The first decision of a session has none unless `earnFirst`.
struct DelayedVerdict {
    bool unsafe = false;
    std::int32_t waitSeconds = 0;
};
DelayedVerdict applySafeDelay(bool unsafe, double delaySeconds, JudgeMemory& memory,
                              std::int64_t nowMs, bool earnFirst = false);

// The safe delay in force: the one of the rules, or a longer one after too many closures.
double delayInForce(const Rules& rules, FlapMemory& flap, std::int64_t nowMs);

// Notes that the verdict has turned from safe to unsafe.
void noteClosure(const Rules& rules, FlapMemory& flap, std::int64_t nowMs);

} // namespace skyhold
