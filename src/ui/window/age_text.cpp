// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/age_text.h"

namespace skyhold {

namespace {

QString inUnits(qint64 seconds) {
    struct Unit {
        const char* name;
        qint64 seconds;
        qint64 upTo; // in seconds; from there on the next unit
    };
    constexpr qint64 kMinute = 60;
    constexpr qint64 kHour = 60 * kMinute;
    constexpr qint64 kDay = 24 * kHour;
    constexpr Unit units[]{{"s", 1, 99}, {"min", kMinute, 90 * kMinute}, {"h", kHour, 2 * kDay}};
    for (const Unit& unit : units) {
        if (seconds <= unit.upTo)
            return QStringLiteral("%1 %2")
                .arg((seconds + unit.seconds - 1) / unit.seconds)
                .arg(QLatin1String(unit.name));
    }
    return QStringLiteral("%1 days").arg((seconds + kDay - 1) / kDay);
}

} // namespace

QString ageText(const QDateTime& read, const QDateTime& now, int stands) {
    constexpr qint64 kAhead = 60;
    if (!read.isValid())
        return {};
    const qint64 age = read.secsTo(now);
    if (age < -kAhead)
        return inUnits(-age) + QStringLiteral(" ahead");
    return inUnits(std::max<qint64>(age, 0) + stands) + QStringLiteral(" ago");
}

} // namespace skyhold
