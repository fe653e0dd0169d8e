// SPDX-License-Identifier: GPL-3.0-or-later
// "What if": the recorded cycles by the rules in force and by others, side by side; and what the
// records say of where limits should be. Functions of what they are given: they may run on any
// thread, for as long as nobody stops them.
#pragma once

#include "judge/replay.h"
#include "replay/source.h"

#include <QString>

#include <functional>
#include <vector>

namespace skyhold {

// Called now and then with what is done, 0 to 1; false stops the work.
using Progress = std::function<bool(double done)>;

// A time in which the two would not have said the same.
struct Difference {
    std::int64_t fromUtcMs = 0;
    std::int64_t toUtcMs = 0;
    bool unsafeInForce = false; // and safe by the others; else the other way round
    ReplayCause cause;          // of the unsafe one, at the beginning
};

struct Comparison {
    ReplayOutcome inForce;
    ReplayOutcome tried;
    std::vector<Difference> differences;
    bool stopped = false; // by `progress`: it is not whole
    QString fault;        // what could not be read; empty: nothing
};

Comparison compareRules(const ReplaySource& source, const Rules& inForce, const Rules& tried,
                        const Progress& progress = {});

// What was measured in nights that the rules called safe: from local noon to noon, without the
// cycles in which daylight or a source spoke for unsafe, with no other cause, and at least an hour
// of them.
struct Suggestion {
    int nights = 0; // with at least an hour of cycles in the dark
    int safeNights = 0;
    PerQuantity<std::optional<Extent>> seen; // lowest and highest in the safe ones
    bool stopped = false;
    QString fault;
};

Suggestion suggest(const ReplaySource& source, const Rules& inForce, const Progress& progress = {});

} // namespace skyhold
