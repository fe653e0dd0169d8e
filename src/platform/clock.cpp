// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/clock.h"

#include <QEventLoop>
#include <QTimer>

#include <cmath>
#include <ctime>

namespace skyhold {

namespace {

constexpr std::int64_t kMsPerMinute = 60'000;
constexpr std::int64_t kMsPerDay = 86'400'000;
const QDate kSerialEpoch(1899, 12, 30);

std::int64_t monotonicMs() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

std::int64_t localStamp(const QDateTime& time) {
    return kSerialEpoch.daysTo(time.date()) * kMsPerDay + time.time().msecsSinceStartOfDay();
}

} // namespace

SystemClock::SystemClock()
    : SystemClock(ClockStart{}) {}

SystemClock::SystemClock(const ClockStart& start)
    : start_(start)
    , shifted_(start.origin.isValid())
    , monotonicAtStart_(monotonicMs()) {
    stampAtStart_ = localStamp(SystemClock::now());
}

QDateTime SystemClock::now() const {
    std::int64_t ms = QDateTime::currentMSecsSinceEpoch();
    if (shifted_) {
        const auto elapsed = static_cast<double>(ms - start_.realOriginMs);
        ms = start_.origin.toMSecsSinceEpoch() + std::llround(elapsed * start_.scale);
    }
    // Each look-up of the offset looks at the file of the time zone. Summer time begins and ends
    // at a whole minute, so that one look-up a minute is exact.
    const std::int64_t minute = ms / kMsPerMinute;
    if (minute != offsetMinute_) {
        offsetMinute_ = minute;
        offsetSeconds_ = QDateTime::fromMSecsSinceEpoch(ms).offsetFromUtc();
    }
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::OffsetFromUTC, offsetSeconds_);
}

std::int64_t SystemClock::MsClock() const {
    const double elapsed = static_cast<double>(monotonicMs() - monotonicAtStart_);
    return stampAtStart_ + std::llround(elapsed * start_.scale);
}

void SystemClock::waitServingEvents(int ms) {
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(std::ceil(ms / start_.scale)), Qt::PreciseTimer, &loop,
                       &QEventLoop::quit);
    loop.exec();
}

std::int64_t bootMs() {
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

double daySerial(const QDateTime& time) {
    return static_cast<double>(localStamp(time)) / static_cast<double>(kMsPerDay);
}

QDateTime fromDaySerial(double days) {
    if (!(std::abs(days) < 3'000'000)) // year 10000 and beyond, and what is not a number
        return {};
    // The fraction is the time of day, not the time since midnight: the two differ by an hour on a
    // day on which summer time begins or ends.
    const auto stamp = std::llround(days * static_cast<double>(kMsPerDay));
    const auto ms = (stamp % kMsPerDay + kMsPerDay) % kMsPerDay;
    const QDate date = kSerialEpoch.addDays((stamp - ms) / kMsPerDay);
    const QDateTime time(date, QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms)));
    // The hour that summer time leaves out, from a program that does not follow it.
    return time.isValid() ? time : QDateTime(date, QTime(0, 0)).addMSecs(ms);
}

} // namespace skyhold
