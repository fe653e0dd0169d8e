// SPDX-License-Identifier: GPL-3.0-or-later
// The roof's switch: when it is moved, and by what.
#pragma once

#include "sensorhost/sensor_source.h"
#include "sensors/settings.h"

#include <functional>
#include <memory>

namespace skyhold {

class IndiSource;

// What moves the roof, and says where it is.
class SwitchDriver {
  public:
    virtual ~SwitchDriver() = default;
    virtual void start() = 0;
    // False when it could not even be asked for.
    virtual bool open() = 0;
    virtual void close() = 0;
    // As the device itself says it; Unknown while it moves or does not answer.
    virtual RoofState state() const = 0;
    // Nothing of what was asked is still to be sent.
    virtual bool settled() const = 0;
    virtual QString trouble() const = 0;
};

// Nothing for the kind None. `indi` is the source that a switch of the kind Indi is reached
// through.
std::unique_ptr<SwitchDriver> makeSwitchDriver(const SwitchSettings& settings, IndiSource* indi);

// Moves the roof as the monitor says.
//
// Opening is asked for once, when the monitor's word changes to it: a roof that was closed by hand
// or by a rain relay meanwhile is not opened again. Closing is repeated until the device says that
// the roof is closed. A roof that was opened for the monitor is closed when the monitor has been
// silent for `closeAfterSeconds`, because nobody watches the sky then; a roof that others opened
// is left alone.
class RoofSwitch {
  public:
    RoofSwitch(SwitchDriver& driver, double closeAfterSeconds, std::function<std::int64_t()> nowMs,
               std::function<void(const QString&)> log);

    // From the monitor or its client.
    void want(RoofState wanted, bool mayOpen);
    // The monitor has said something.
    void heard();
    // To be called every second or so.
    void tick();
    // The program ends: a roof that was opened for the monitor is closed.
    void end();

    RoofState state() const { return driver_.state(); }

  private:
    void close(const QString& why);

    SwitchDriver& driver_;
    double closeAfterSeconds_;
    std::function<std::int64_t()> nowMs_;
    std::function<void(const QString&)> log_;
    RoofState wanted_ = RoofState::Unknown;
    std::int64_t heardMs_ = 0;
    std::int64_t sentMs_ = 0; // when closing was last asked for
};

} // namespace skyhold
