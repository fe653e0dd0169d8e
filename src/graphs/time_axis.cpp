// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/time_axis.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr int kParts = 12;
constexpr double kLongStepSeconds = 600;

// Day numbers hold a time to about a microsecond: comparisons allow for more than that.
constexpr double kPositionSlack = 1e-6;
constexpr double kSecondsSlack = 1e-3;

QString tickLabel(double time, bool withSeconds) {
    const std::int64_t second =
        std::llround((time - std::floor(time)) * kSecondsPerDay) % kSecondsPerDay;
    const auto twoDigits = [](std::int64_t number) {
        return QString::number(number).rightJustified(2, u'0');
    };
    QString label = twoDigits(second / 3600) + u':' + twoDigits(second / 60 % 60);
    if (withSeconds)
        label += u':' + twoDigits(second % 60);
    return label;
}

} // namespace

int TimeAxis::position(double time) const {
    if (!(end > start))
        return 0;
    // A point may lie outside the axis when the time of day was changed; it stays drawable.
    const double far = 10.0 * (right + 1);
    const double x = (time - start) * right / (end - start);
    return static_cast<int>(std::floor(std::clamp(x + kPositionSlack, -far, far)));
}

TimeAxis timeAxis(const GraphSeries& series, int right) {
    if (series.points.empty())
        return {0, 0, right};
    const double start = series.points.front().time;
    const double span = series.spanSeconds / static_cast<double>(kSecondsPerDay);
    return {start, std::max(series.points.back().time, start + span), right};
}

std::vector<TimeTick> timeTicks(const TimeAxis& axis) {
    std::vector<TimeTick> ticks;
    if (!(axis.end > axis.start))
        return ticks;
    const double step = (axis.end - axis.start) / kParts;
    const bool withSeconds = step * kSecondsPerDay < kLongStepSeconds - kSecondsSlack;
    for (int k = 1; k < kParts; ++k) {
        const double time = axis.start + k * step;
        ticks.push_back({axis.position(time), tickLabel(time, withSeconds)});
    }
    return ticks;
}

} // namespace skyhold
