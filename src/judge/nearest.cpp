// SPDX-License-Identifier: GPL-3.0-or-later
#include "judge/nearest.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

struct SafeSpan {
    std::optional<double> bottom; // unsafe at it and below
    std::optional<double> top;    // unsafe above it
};

// Around a level that is not unsafe. Level i + 1 ends at limit i and begins above limit i - 1.
SafeSpan spanAround(std::size_t index, const LevelRules& levels, bool beyondIsUnsafe) {
    SafeSpan span;
    for (std::size_t i = 0; i < index; ++i) {
        if (levels.unsafe[i])
            span.bottom = levels.limits[i];
    }
    for (std::size_t i = kLevelCount - 1; i > index; --i) {
        if (levels.unsafe[i])
            span.top = levels.limits[i - 1];
    }
    if (!span.top && beyondIsUnsafe)
        span.top = levels.limits.back();
    return span;
}

void consider(const NearestLimit& candidate, std::optional<NearestLimit>& nearest) {
    if (!nearest || candidate.share < nearest->share)
        nearest = candidate;
}

double shareOf(double value, double limit, double farEnd) {
    const double way = std::abs(farEnd - limit);
    return way > 0 ? std::clamp(std::abs(value - limit) / way, 0.0, 1.0) : 0;
}

} // namespace

std::optional<NearestLimit> nearestLimit(const Observation& observation, const Rules& rules,
                                         const Judgement& judgement) {
    std::optional<NearestLimit> nearest;
    if (!observation.station.usable())
        return nearest;
    for (const Quantity quantity : kStationQuantities) {
        const LevelRules& levels = rules.levels[quantity];
        const std::optional<double> value = observation.values[quantity];
        const std::int32_t level = judgement.levels[quantity];
        if (!value || level < 1 || level > static_cast<std::int32_t>(kLevelCount) ||
            !levels.ordered())
            continue;
        const auto index = static_cast<std::size_t>(level - 1);
        if (levels.unsafe[index])
            continue; // it would count, but for its sector
        const double first = levels.limits.front();
        const double scaleBottom = first >= 0 ? 0 : 2 * first;
        const SafeSpan span = spanAround(index, levels, rules.beyondIsUnsafe);
        if (span.top)
            consider({quantity, *value, *span.top, true,
                      shareOf(*value, *span.top, span.bottom.value_or(scaleBottom))},
                     nearest);
        if (span.bottom)
            consider({quantity, *value, *span.bottom, false,
                      shareOf(*value, *span.bottom, span.top.value_or(levels.limits.back()))},
                     nearest);
    }
    return nearest;
}

std::optional<double> leftToUnsafe(double value, std::int32_t level, const LevelRules& levels,
                                   bool beyondIsUnsafe) {
    if (level < 1 || level > static_cast<std::int32_t>(kLevelCount) || !levels.ordered())
        return std::nullopt;
    const auto index = static_cast<std::size_t>(level - 1);
    if (levels.unsafe[index])
        return std::nullopt;
    const SafeSpan span = spanAround(index, levels, beyondIsUnsafe);
    if (!span.bottom && !span.top)
        return std::nullopt;
    const double below = span.bottom ? value - *span.bottom : HUGE_VAL;
    const double above = span.top ? *span.top - value : HUGE_VAL;
    return std::max(std::min(below, above), 0.0);
}

} // namespace skyhold
