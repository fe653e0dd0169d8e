// A repeating timer of the user-interface thread. Interval 0 and not enabled mean stopped.
#pragma once

#include <QTimer>

#include <functional>

namespace skyhold {

class Clock;

class Timer {
  public:
    // The timer runs as fast as `clock` does.
    explicit Timer(const Clock& clock);

    void arm(int intervalMs);
    void disarm();
    int interval() const { return interval_; } // milliseconds of the clock
    bool enabled() const { return timer_.isActive(); }

    std::function<void()> Tick;

  private:
    const Clock& clock_;
    QTimer timer_;
    int interval_ = 0;
};

} // namespace skyhold
