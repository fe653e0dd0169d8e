// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/reader.h"
#include "replay/source.h"

#include <algorithm>
#include <utility>

namespace skyhold {

namespace {

void put(ReplayStep& step, KeptCycle cycle, KeptUnits units) {
    if (cycle.units != units) {
        for (std::size_t i = 0; i < kMeasuredCount; ++i) {
            if (cycle.values[i])
                cycle.values[i] = converted(i, *cycle.values[i], cycle.units, units);
        }
    }
    putInto(step.observation, cycle);
    step.utcMs = cycle.atMs;
    step.intervalSeconds = cycle.intervalSeconds;
}

QString eachStep(const QString& path, std::int64_t sinceMs, std::int64_t cyclesFromMs,
                 std::int64_t untilMs, KeptUnits units, const TakeStep& take) {
    HistoryReader reader(path);
    ReplayStep step;
    bool more = true;
    bool first = true;
    const auto give = [&](const KeptCycle& cycle) {
        put(step, cycle, units);
        step.newSession = std::exchange(first, false) || cycle.number == 1;
        more = more && take(step);
        return more;
    };
    // Whatever was unsafe in a minute is unsafe in it, and whatever was safe at its best, too.
    reader.eachMinute(sinceMs, std::min(cyclesFromMs, untilMs), [&](const HistoryPoint& minute) {
        KeptCycle cycle = cycleOf(minute, Extreme::High);
        if (!give(cycle))
            return false;
        cycle = cycleOf(minute, Extreme::Low);
        cycle.atMs += minute.spanMs / 2;
        return give(cycle);
    });
    if (more)
        reader.eachCycle(std::max(sinceMs, cyclesFromMs), untilMs, give);
    return reader.fault();
}

} // namespace

ReplaySource fromHistory(const QString& path, std::int64_t sinceMs, std::int64_t untilMs,
                         KeptUnits units) {
    HistoryReader reader(path);
    const HistoryRange range = reader.range();
    ReplaySource source;
    source.fault = reader.fault();
    source.firstMs = std::max(sinceMs, range.firstMs);
    source.lastMs = std::min(untilMs, range.lastMs);
    // What is thinned is thinned by whole minutes.
    constexpr std::int64_t kMinuteMs = 60'000;
    const std::int64_t cyclesFrom =
        range.cyclesFromMs > 0 ? range.cyclesFromMs - range.cyclesFromMs % kMinuteMs : untilMs;
    reader.eachMinute(sinceMs, std::min(cyclesFrom, untilMs), [&source](const HistoryPoint&) {
        source.thinned = true;
        return false;
    });
    source.each = [=](const TakeStep& take) {
        return eachStep(path, sinceMs, cyclesFrom, untilMs, units, take);
    };
    return source;
}

} // namespace skyhold
