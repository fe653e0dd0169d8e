// SPDX-License-Identifier: GPL-3.0-or-later
// A clock that stands still until a test moves it.
#pragma once

#include "platform/clock.h"

#include <QCoreApplication>

#include <functional>

namespace skyhold {

class ManualClock : public Clock {
  public:
    explicit ManualClock(const QDateTime& start = QDateTime(QDate(2026, 11, 16), QTime(22, 0)))
        : now_(start)
        , stamp_(static_cast<std::int64_t>(daySerial(start) * 86'400'000.0)) {}

    QDateTime now() const override { return now_; }
    std::int64_t MsClock() const override { return stamp_; }
    void waitServingEvents(int ms) override {
        if (onWait && ms > 0)
            onWait();
        QCoreApplication::processEvents();
        advanceMs(ms);
    }

    void advanceMs(std::int64_t ms) {
        now_ = now_.addMSecs(ms);
        stamp_ += ms;
    }
    void advanceSeconds(std::int64_t seconds) { advanceMs(seconds * 1000); }
    // Sets the time of day alone, as an administrator or a time server does.
    void setTimeOfDay(const QDateTime& time) { now_ = time; }

    // Called once for every wait, before its time passes; not when events alone are served.
    std::function<void()> onWait;

  private:
    QDateTime now_;
    std::int64_t stamp_;
};

} // namespace skyhold
