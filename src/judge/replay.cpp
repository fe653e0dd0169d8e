// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/replay.h"

#include <algorithm>

namespace skyhold {

bool ReplayCause::sameKind(const ReplayCause& other) const {
    if (delay || other.delay)
        return delay == other.delay;
    if (kind != other.kind)
        return false;
    return kind == CauseKind::Source ? source == other.source : quantity == other.quantity;
}

void Replay::cycle(const Observation& observation, std::int64_t utcMs, int intervalSeconds,
                   bool newSession) {
    const Moment now{utcMs, utcMs};
    const bool gap = begun_ && utcMs - lastMs_ > overdueMs_;
    if (begun_)
        countTo(std::min(utcMs, lastMs_ + overdueMs_));
    if (newSession || !begun_) {
        breakOff();
        beginSession(rules_, memory_, now);
    } else if (gap) {
        breakOff();
        distrust(memory_, now);
    }
    const bool wasSafe = begun_ && !unsafe_;
    judgement_ = judge(observation, rules_, memory_, now);
    ++outcome_.cycles;
    begun_ = true;
    lastMs_ = utcMs;
    overdueMs_ = skyhold::overdueMs(intervalSeconds);
    if (judgement_.UnsafeFlag) {
        const ReplayCause cause = firstCause(observation);
        if (!unsafe_ || !cause.sameKind(cause_))
            share_ = shareOf(cause);
        cause_ = cause;
        if (!unsafe_) {
            outcome_.periods.push_back({utcMs, utcMs, wasSafe, cause});
            if (wasSafe) {
                ++outcome_.closures;
                ++outcome_.shares[share_].closures;
            }
        }
    }
    unsafe_ = judgement_.UnsafeFlag;
}

void Replay::end(std::int64_t utcMs) {
    if (begun_)
        countTo(std::min(utcMs, lastMs_ + overdueMs_));
    breakOff();
}

// The verdict of the last cycle has counted until now.
void Replay::countTo(std::int64_t utcMs) {
    const std::int64_t passed = utcMs - lastMs_;
    outcome_.watchedMs += passed;
    if (!unsafe_)
        return;
    outcome_.unsafeMs += passed;
    outcome_.shares[share_].unsafeMs += passed;
    outcome_.periods.back().toUtcMs = utcMs;
}

void Replay::breakOff() {
    begun_ = false;
    unsafe_ = false;
}

ReplayCause Replay::firstCause(const Observation& observation) const {
    ReplayCause first;
    if (judgement_.causes.isEmpty()) {
        first.delay = true;
        return first;
    }
    const Cause& cause = judgement_.causes.front();
    first.kind = cause.kind;
    first.quantity = cause.quantity;
    first.source = cause.source;
    first.level = cause.level;
    if (cause.kind == CauseKind::Source)
        return first;
    first.value = observation.values[cause.quantity];
    if (!rowOf(cause.quantity).hasLimits())
        return first;
    const auto& limits = rules_.levels[cause.quantity].limits;
    // Level 1 ends at the first limit; the others begin above one.
    first.above = cause.kind == CauseKind::Beyond || cause.level > 1;
    first.limit = cause.kind == CauseKind::Beyond ? limits.back()
                  : first.above ? limits[static_cast<std::size_t>(cause.level - 2)]
                                : limits.front();
    return first;
}

std::size_t Replay::shareOf(const ReplayCause& cause) {
    const auto share =
        std::ranges::find_if(outcome_.shares, [&cause](const ReplayShare& candidate) {
            return candidate.cause.sameKind(cause);
        });
    const auto place = static_cast<std::size_t>(share - outcome_.shares.begin());
    if (share == outcome_.shares.end())
        outcome_.shares.push_back({cause, 0, 0});
    return place;
}

} // namespace skyhold
