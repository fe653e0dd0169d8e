// SPDX-License-Identifier: GPL-3.0-or-later
// The time, handed to everything that asks for it.
#pragma once

#include <QDateTime>

#include <cstdint>

namespace skyhold {

class Clock {
  public:
    virtual ~Clock() = default;

    // Local date and time.
    virtual QDateTime now() const = 0;

    // Milliseconds for elapsed times: local days since 30 December 1899 in milliseconds when the
    // clock was made, and from then on only ever forward, whatever happens to the time of day.
    // Time asleep does not count, for nothing was observed in it.
    virtual std::int64_t MsClock() const = 0;

    // Lets `ms` of this clock pass while user input, timers and automation calls are served.
    virtual void waitServingEvents(int ms) = 0;

    // How many times as fast as real time this clock runs; timers follow it.
    virtual double scale() const { return 1; }
};

// Where a scaled clock begins: `origin` on this clock was real time `realOriginMs` (milliseconds
// since 1970 UTC). Programs given the same start show the same time.
struct ClockStart {
    QDateTime origin;
    std::int64_t realOriginMs = 0;
    double scale = 1;
};

class SystemClock : public Clock {
  public:
    SystemClock();
    explicit SystemClock(const ClockStart& start);

    QDateTime now() const override;
    std::int64_t MsClock() const override;
    void waitServingEvents(int ms) override;
    double scale() const override { return start_.scale; }

  private:
    ClockStart start_;
    bool shifted_ = false;
    std::int64_t stampAtStart_ = 0;
    std::int64_t monotonicAtStart_ = 0;
    mutable std::int64_t offsetMinute_ = -1; // minute since 1970 UTC that the offset is of
    mutable int offsetSeconds_ = 0;          // local time is UTC and this
};

// Milliseconds since the machine's start, which only ever go forward and count the time asleep too:
// what was heard before a sleep is not news after it.
std::int64_t bootMs();

// Local days since 30 December 1899, the time of day as the fraction.
double daySerial(const QDateTime& time);
QDateTime fromDaySerial(double days);

} // namespace skyhold
