// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/timer.h"

#include "platform/clock.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

namespace skyhold {

namespace {

constexpr std::int64_t kPatienceMs = 5000;

timespec timeOf(std::int64_t ms) {
    timespec time{};
    time.tv_sec = static_cast<time_t>(ms / 1000);
    time.tv_nsec = static_cast<long>(ms % 1000 * 1'000'000);
    return time;
}

} // namespace

Timer::Timer(const Clock& clock)
    : clock_(clock)
    , fd_(::timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {
    if (fd_ < 0)
        qFatal("no timer can be made");
    auto* notifier = new QSocketNotifier(fd_, QSocketNotifier::Read, &context_);
    QObject::connect(notifier, &QSocketNotifier::activated, &context_, [this] { expired(); });
}

Timer::~Timer() {
    ::close(fd_);
}

std::int64_t Timer::realIntervalMs() const {
    return std::max<std::int64_t>(1, std::llround(interval_ / clock_.scale()));
}

void Timer::arm(int intervalMs) {
    interval_ = intervalMs;
    lastTick_ = bootMs();
    const timespec every = timeOf(realIntervalMs());
    const itimerspec times{.it_interval = every, .it_value = every};
    ::timerfd_settime(fd_, 0, &times, nullptr);
}

void Timer::disarm() {
    interval_ = 0;
    const itimerspec never{};
    ::timerfd_settime(fd_, 0, &never, nullptr);
}

bool Timer::overdue() const {
    return enabled() && bootMs() - lastTick_ > 3 * realIntervalMs() + kPatienceMs;
}

void Timer::expired() {
    std::uint64_t times = 0; // several that were missed are one tick
    if (::read(fd_, &times, sizeof times) != sizeof times || ticking_)
        return;
    ticking_ = true;
    if (overdue() && Overdue)
        Overdue();
    lastTick_ = bootMs();
    if (Tick)
        Tick();
    ticking_ = false;
}

} // namespace skyhold
