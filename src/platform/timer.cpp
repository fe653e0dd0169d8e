#include "platform/timer.h"

#include "platform/clock.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

Timer::Timer(const Clock& clock)
    : clock_(clock) {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
        if (Tick)
            Tick();
    });
}

void Timer::arm(int intervalMs) {
    interval_ = intervalMs;
    timer_.start(std::max(1, static_cast<int>(std::lround(intervalMs / clock_.scale()))));
}

void Timer::disarm() {
    interval_ = 0;
    timer_.stop();
}

} // namespace skyhold
