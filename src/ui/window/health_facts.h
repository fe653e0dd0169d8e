// SPDX-License-Identifier: GPL-3.0-or-later
// How all that goes on beside the readings is doing: both sources, the cycles, recording, uploads,
// the network, alarms; each as a shape, a word and a second line. Plain values; the widgets only
// paint them.
#pragma once

#include "core/monitoring_core.h"

#include <array>

namespace skyhold {

enum class HealthShape : std::uint8_t {
    Off,     // a ring
    Working, // a dot
    Filling, // a ring that fills
    Failed,  // a triangle
    Armed,   // a bell
    Sounding // a full bell
};

struct HealthFact {
    QString name{};
    HealthShape shape = HealthShape::Off;
    QString word{};     // "ok 12 s", "cannot sound", "on"
    QString brief{};    // the same where there is little room; may be empty
    QString line{};     // below it; may be empty
    QString help{};     // a sentence
    bool warns = false; // it soon fails
    double share = 0;   // 0..1 of Filling

    bool failed() const { return shape == HealthShape::Failed; }
    bool sounds() const { return shape == HealthShape::Sounding; }
    bool operator==(const HealthFact&) const = default;
};

enum class HealthField : std::uint8_t {
    Sensor,
    Station,
    Cycle,
    Recording,
    Upload,
    Network,
    Alarms
};
inline constexpr std::size_t kHealthFields = 7;

using HealthFacts = std::array<HealthFact, kHealthFields>;

// At this moment; the ages count on between cycles.
HealthFacts healthFacts(const MonitoringCore& core);

} // namespace skyhold
