// SPDX-License-Identifier: GPL-3.0-or-later
// Inks of the looks, where everything of the timeline stands, and the marks of its axis.
#include "ui/look/look.h"
#include "ui/look/shades.h"
#include "ui/widgets/timeline_paint.h"

#include <QApplication>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kMinuteMs = 60'000;
constexpr std::int64_t kHourMs = 60 * kMinuteMs;

TimelineInk nightInks() {
    const QColor full(0xff, 0, 0);
    const QColor text(0xea, 0, 0);
    const QColor shape(0xb8, 0, 0);
    return {.ground = Qt::black,
            .text = text,
            .dim = text,
            .edge = {0x50, 0, 0},
            .grid = {0x28, 0, 0},
            .midnight = {0x80, 0, 0},
            .zone = {0x2c, 0, 0},
            .limit = shape,
            .limitText = text,
            .curve = {0xd8, 0, 0},
            .beyond = full,
            .safe = shape,
            .waiting = shape,
            .unsafe = full,
            .failed = full,
            .off = shape,
            .live = full,
            .old = shape,
            .readOut = full,
            .readOutText = Qt::black,
            .cursor = full,
            .outlines = true};
}

QColor mixed(const QColor& one, const QColor& other, double share) {
    const auto part = [share](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * share));
    };
    return {part(one.red(), other.red()), part(one.green(), other.green()),
            part(one.blue(), other.blue())};
}

// Stated inks, made readable on the ground.
TimelineInk inksOn(const QColor& ground) {
    const auto ink = [&ground](const QColor& stated) {
        return readableInk(stated, ground);
    };
    const bool dark = contrast(ground, Qt::white) > contrast(ground, Qt::black);
    const QColor red(0xff, 0x3b, 0x3b);
    return {.ground = ground,
            .text = look::kText,
            .dim = look::kDimText,
            .edge = look::kEdge,
            .grid = mixed(ground, look::kEdge, 0.5),
            .midnight = mixed(look::kEdge, look::kDimText, 0.4),
            .zone = dark ? QColor(0x33, 0x15, 0x1a) : mixed(ground, red, 0.14),
            .limit = dark ? QColor(0xff, 0x5a, 0x5a) : QColor(0xd0, 0x20, 0x20),
            .limitText = ink({0xff, 0x8f, 0x8f}),
            .curve = dark ? QColor(0xd5, 0xdd, 0xe5) : look::kText,
            .beyond = ink({0xff, 0x80, 0x00}),
            .safe = ink({0x3f, 0xd0, 0x7a}),
            .waiting = ink({0x5d, 0xb4, 0xf0}),
            .unsafe = dark ? red : QColor(0xc4, 0x16, 0x1c),
            .failed = dark ? QColor(0xff, 0xb0, 0x00) : QColor(0xe0, 0x8a, 0x00),
            .off = look::kDimText,
            .live = ink({0x00, 0xff, 0x00}),
            .old = ink({0x9a, 0xa6, 0xb2}),
            .readOut = dark ? QColor(Qt::white) : look::kText,
            .readOutText = dark ? QColor(Qt::black) : ground,
            .cursor = look::kText,
            .outlines = false};
}

std::int64_t markStep(double msPerMark) {
    for (const std::int64_t step :
         {kMinuteMs, 2 * kMinuteMs, 5 * kMinuteMs, 10 * kMinuteMs, 15 * kMinuteMs, 30 * kMinuteMs,
          kHourMs, 2 * kHourMs, 3 * kHourMs, 6 * kHourMs, 12 * kHourMs}) {
        if (static_cast<double>(step) >= msPerMark)
            return step;
    }
    const auto days =
        static_cast<std::int64_t>(std::ceil(msPerMark / static_cast<double>(24 * kHourMs)));
    return std::max<std::int64_t>(days, 1) * 24 * kHourMs;
}

} // namespace

TimelineInk timelineInk() {
    return lookInForce() == Look::Night ? nightInks() : inksOn(look::kCard);
}

QFont pixelFont(int pixels, bool bold) {
    QFont font = QApplication::font();
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

Night nightOf(NightRecord record) {
    Night night{std::move(record), {}, {}};
    night.band = bandOf(night.record);
    night.rows = rowsOf(night.record);
    return night;
}

double TimelineGrid::xOf(std::int64_t atMs, const TimeRange& shown) const {
    return plot.left() + plot.width() * static_cast<double>(atMs - shown.fromMs) /
                             static_cast<double>(std::max<std::int64_t>(shown.lengthMs(), 1));
}

std::int64_t TimelineGrid::timeAt(double x, const TimeRange& shown) const {
    const double share = (x - plot.left()) / std::max(plot.width(), 1.0);
    return shown.fromMs + std::llround(share * static_cast<double>(shown.lengthMs()));
}

TimelineGrid timelineGrid(const QSizeF& size, double unit, std::size_t rows) {
    TimelineGrid grid;
    grid.unit = unit;
    const double large = std::max(unit, 1.0);
    grid.text = static_cast<int>(std::lround(12 * large));
    grid.small = static_cast<int>(std::lround(11 * large));
    const double margin = 8 * unit;
    const double left = 134 * std::max(unit, 0.95);
    const double values = 66 * std::max(unit, 0.86);
    grid.labelEnd = left;
    grid.valueEnd = size.width() - margin;
    const double plotWidth = size.width() - left - values;
    grid.head = {left, 2 * unit, size.width() - left - margin, 20 * large};
    grid.band = {left, grid.head.bottom(), plotWidth, 24 * large};
    const double axis = 19 * large;
    const double top = grid.band.bottom() + 6 * unit;
    const double bottom = std::max(size.height() - axis - 2 * unit, top + 1);
    grid.plot = {left, top, plotWidth, bottom - top};
    grid.axis = {left, bottom, plotWidth, axis};
    const double each = grid.plot.height() / static_cast<double>(std::max<std::size_t>(rows, 1));
    for (std::size_t i = 0; i < rows; ++i)
        grid.rows.emplace_back(margin, top + static_cast<double>(i) * each,
                               size.width() - 2 * margin, each);
    return grid;
}

std::vector<AxisMark> axisMarks(const TimeRange& shown, double pixels, double leastPixels) {
    std::vector<AxisMark> marks;
    if (shown.lengthMs() <= 0 || pixels < leastPixels)
        return marks;
    const std::int64_t step =
        markStep(static_cast<double>(shown.lengthMs()) * leastPixels / pixels);
    const QDateTime from = QDateTime::fromMSecsSinceEpoch(shown.fromMs);
    QDate day = from.date();
    const int stepDays = static_cast<int>(std::max<std::int64_t>(step / (24 * kHourMs), 1));
    // From each midnight on: a day may have 23 or 25 hours.
    while (day.startOfDay().toMSecsSinceEpoch() < shown.toMs) {
        const std::int64_t midnight = day.startOfDay().toMSecsSinceEpoch();
        const QDate next = day.addDays(stepDays);
        const std::int64_t end =
            std::min<std::int64_t>(next.startOfDay().toMSecsSinceEpoch(), shown.toMs);
        for (std::int64_t at = midnight; at < end; at += step) {
            if (at < shown.fromMs)
                continue;
            const QDateTime time = QDateTime::fromMSecsSinceEpoch(at);
            const bool isMidnight = at == midnight;
            const bool days = step >= 24 * kHourMs;
            marks.push_back({at, time.toString(days ? u"ddd d"_s : u"HH:mm"_s), isMidnight});
        }
        day = next;
    }
    return marks;
}

} // namespace skyhold
