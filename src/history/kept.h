// SPDX-License-Identifier: GPL-3.0-or-later
// What the history keeps: read cycles, spans of time that many cycles were thinned to, and events.
// Plain values; times are milliseconds since 1970, UTC.
#pragma once

#include "model/cycle_result.h"
#include "model/session_state.h"

#include <QJsonObject>
#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace skyhold {

inline constexpr std::int64_t kBeginning = 0;
inline constexpr std::int64_t kEndOfTime = 253'402'300'799'999; // of the year 9999

// What is measured: the quantities in their order, then what is kept beside them.
inline constexpr std::size_t kMeasuredCount = kQuantityCount + 6;
enum Measured : std::size_t {
    MeasuredDirection = kQuantityCount, // degrees, where the wind comes from
    MeasuredDewPoint,
    MeasuredPressure,
    MeasuredAmbient,
    MeasuredSensorTemperature,
    MeasuredRainHeater // percent
};
template <class T>
using PerMeasured = std::array<T, kMeasuredCount>;

constexpr std::size_t measured(Quantity quantity) {
    return static_cast<std::size_t>(quantity);
}

// Its column in the database, and its name wherever readings are shown by name: "dew_spread".
const char* measuredName(std::size_t index);
// Nothing where the unit never changes.
std::optional<Measure> measureOf(std::size_t index);

// The units in force: 'C', 'F' or ' '; 'K' km/h, 'M' mph, 'm' m/s, 'k' knots.
struct KeptUnits {
    char temperature = 'C';
    char speed = 'K';
    bool operator==(const KeptUnits&) const = default;
};
// A value from one unit into another, not rounded.
double converted(std::size_t index, double value, KeptUnits from, KeptUnits to);
// "km/h", "°C", "%", "hPa", "°"; empty for a plain count.
QString measuredUnit(std::size_t index, KeptUnits units);

// One read cycle.
struct KeptCycle {
    std::int64_t atMs = 0;   // when it was judged
    std::int64_t number = 0; // counts from 1 in a session
    int intervalSeconds = 0;
    KeptUnits units;
    PerMeasured<std::optional<double>> values; // of Dew the spread; none: missing
    PerQuantity<std::int32_t> levels;          // 0 unknown, 1..3, 9 for a number that is no level
    SourceState station = SourceState::Absent;
    bool valuesMissing = false; // the station does not say what it should
    SourceState sensor = SourceState::Absent;
    Verdict verdict = Verdict::None;
    bool byClient = false; // a client decided

    bool stationFaulty() const { return station != SourceState::Ok || valuesMissing; }
    bool unsafe() const { return verdict != Verdict::Safe; }
};

KeptCycle keptCycle(const CycleResult& result, Verdict verdict);
// What both sources said, as far as the rules ask. `observation` may be used again and again.
void putInto(Observation& observation, const KeptCycle& cycle);

struct Extent {
    double low = 0;
    double mean = 0;
    double high = 0;
    bool operator==(const Extent&) const = default;
};

// A span of time: a cycle (spanMs 0), a minute, an hour, a day, or any of them taken together.
struct HistoryPoint {
    std::int64_t atMs = 0; // its beginning
    std::int64_t spanMs = 0;
    int cycles = 0;
    int unsafeCycles = 0;
    KeptUnits units;
    // Of the wind direction the mean of the vectors, as all three.
    PerMeasured<std::optional<Extent>> values;
    PerQuantity<std::int32_t> lowestLevel; // 0 where none was known
    PerQuantity<std::int32_t> highestLevel;
    SourceState station = SourceState::Ok; // the worst
    int stationFaultyCycles = 0;
    SourceState sensor = SourceState::Ok; // the worst
    int sensorFailedCycles = 0;
    Verdict verdict = Verdict::None; // the worst
};

HistoryPoint pointOf(const KeptCycle& cycle);

// A span of time as the one cycle that had all of its lowest, mean or highest values. The lowest
// comes with the lowest levels and with the sources well if they ever were, the highest with the
// highest levels and the sources at their worst.
enum class Extreme : std::uint8_t { Low, Mean, High };
KeptCycle cycleOf(const HistoryPoint& point, Extreme extreme);

// Takes points together into one. What was measured in other units than the last of them is left
// out: it happens once, when the units change.
class PointSum {
  public:
    void add(const HistoryPoint& point);
    bool empty() const { return sum_.cycles == 0; }
    HistoryPoint take(std::int64_t atMs, std::int64_t spanMs);

  private:
    struct Weighted {
        double sum = 0;
        double sine = 0; // of directions
        double cosine = 0;
        int weight = 0;
    };
    HistoryPoint sum_;
    PerMeasured<Weighted> weighted_;
};

// Something that happened.
struct HistoryEvent {
    std::int64_t atMs = 0;
    // "verdict", "session", "source", "alarm", "roof", "limits" or "history".
    QString kind;
    QString name;       // of a source "station" or "sensor", of an alarm its id
    QString state;      // "unsafe", "started", "failed", "open" …
    QString text;       // in words
    QJsonObject detail; // of a verdict its causes, as in the state document
};

} // namespace skyhold
