// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/safety.h"

#include "model/conditions.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

constexpr double kLongestDelay = 2'147'483'647; // seconds
constexpr std::int64_t kQuietMs = 3'600'000;
constexpr double kLeastDoubledDelay = 60; // seconds
constexpr std::int32_t kMostDoublings = 30;

// The second that a moment lies in, before the clock's zero, too.
double wholeSeconds(std::int64_t ms) {
    return std::floor(static_cast<double>(ms) / 1000);
}

} // namespace

std::int32_t bandLevel(double value, const std::array<double, kLevelCount>& limits) {
    if (!std::isfinite(value))
        return 0;
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (value <= limits[i])
            return static_cast<std::int32_t>(i) + 1;
    }
    return 0;
}

bool CloudLevelActive(std::int32_t level, double delaySeconds, JudgeMemory& memory,
                      std::int64_t nowMs) {
    if (level == CloudUnknown)
        return false;
    const std::int32_t previous = memory.PrevCloudLevel;
    if (previous != level) {
        memory.PrevCloudLevel = level;
        memory.CloudChangeTime = nowMs;
    }
    if (previous == CloudVeryCloudy) {
        memory.CloudChangeTime = 0;
        return true;
    }
    if (level != CloudCloudy || memory.CloudChangeTime == 0)
        return true;
    const double elapsed = static_cast<double>(nowMs - memory.CloudChangeTime) / 1000;
    return !(elapsed < delaySeconds); // a delay that is not a number counts as none
}

DelayedVerdict applySafeDelay(bool unsafe, double delaySeconds, JudgeMemory& memory,
                              std::int64_t nowMs, bool earnFirst) {
    // Bounded, so that stamps and the countdown stay in range; in this order of the arguments a
    // delay that is not a number counts as the longest one.
    const double delay = std::max(-kLongestDelay, std::min(kLongestDelay, delaySeconds));

    const std::int32_t before = memory.SafeState;
    memory.SafeState = unsafe ? 1 : 2;
    if (before == 0 && !earnFirst) {
        memory.SafeDelayStart = nowMs - std::llround(delay * 1000);
        return {unsafe, 0};
    }
    if (before != memory.SafeState)
        memory.SafeDelayStart = nowMs;
    if (unsafe)
        return {true, 0};

    const double elapsed = std::abs(wholeSeconds(nowMs) - wholeSeconds(memory.SafeDelayStart));
    if (delay <= elapsed)
        return {false, 0};
    return {true, static_cast<std::int32_t>(std::nearbyint(delay - elapsed))};
}

double delayInForce(const Rules& rules, FlapMemory& flap, std::int64_t nowMs) {
    if (rules.calm.closures <= 0 || nowMs - flap.lastClosure >= kQuietMs)
        flap = {};
    if (flap.doublings == 0)
        return rules.safeDelaySeconds;
    // Twice nothing would be nothing.
    const double base = std::max(kLeastDoubledDelay, rules.safeDelaySeconds);
    const double lengthened = std::min(std::ldexp(base, flap.doublings), rules.calm.longestSeconds);
    // It only ever lengthens; a delay that is no number stays one.
    return lengthened > rules.safeDelaySeconds ? lengthened : rules.safeDelaySeconds;
}

void noteClosure(const Rules& rules, FlapMemory& flap, std::int64_t nowMs) {
    if (rules.calm.closures <= 0)
        return;
    flap.lastClosure = nowMs;
    flap.closures.removeIf([nowMs](std::int64_t then) { return nowMs - then >= kQuietMs; });
    flap.closures.append(nowMs);
    if (flap.closures.size() < rules.calm.closures)
        return;
    flap.closures.clear();
    flap.doublings = std::min(flap.doublings + 1, kMostDoublings);
}

} // namespace skyhold
