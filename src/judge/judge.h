// SPDX-License-Identifier: GPL-3.0-or-later
// The judgement of a cycle: a function of values. It calls nobody, and what the rules must remember
// is in `memory`.
#pragma once

#include "model/judgement.h"
#include "model/observation.h"
#include "model/rules.h"

namespace skyhold {

// Levels, causes, delay and verdict of one cycle. While a client decides (`byClient`) levels are
// found as always, and the verdict stays as it is in the memory.
//
// The live cycle, recorded nights and every "what would have been" go through this one function.
Judgement judge(const Observation& observation, const Rules& rules, JudgeMemory& memory, Moment now,
                bool byClient = false);

// What a session starts with. `now` is when it started to read.
void beginSession(const Rules& rules, JudgeMemory& memory, Moment now);

// Makes `unsafe` the verdict, and notes since when it is.
void publishVerdict(JudgeMemory& memory, bool unsafe, Moment now);

// There were no readings for a while: the verdict becomes unsafe, and safe waits for the whole
// delay again.
void distrust(JudgeMemory& memory, Moment now);

} // namespace skyhold
