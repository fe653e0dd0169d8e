// SPDX-License-Identifier: GPL-3.0-or-later
// A repeating timer of the user-interface thread. Interval 0 and not enabled mean stopped.
#pragma once

#include <QObject>

#include <cstdint>
#include <functional>

namespace skyhold {

class Clock;

class Timer {
  public:
    // The timer runs as fast as `clock` does. A machine that wakes from sleep finds it due at
    // once when its time passed meanwhile.
    explicit Timer(const Clock& clock);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void arm(int intervalMs);
    void disarm();
    int interval() const { return interval_; } // milliseconds of the clock
    bool enabled() const { return interval_ > 0; }

    // The last tick, or the arming, lies more than three intervals and five real seconds back, the
    // time asleep included: the machine slept, or something held the program. Over with the next
    // tick.
    bool overdue() const;

    std::function<void()> Overdue; // before a tick that comes when the timer is overdue
    std::function<void()> Tick;

  private:
    void expired();
    std::int64_t realIntervalMs() const;

    const Clock& clock_;
    QObject context_; // what listens goes with the timer
    int fd_ = -1;
    int interval_ = 0;
    std::int64_t lastTick_ = 0; // real milliseconds since the machine's start
    bool ticking_ = false;      // a tick that serves events must not begin again
};

} // namespace skyhold
