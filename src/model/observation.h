// What both sources said in one cycle. Nothing is judged here, and nothing is made up: a value that
// is missing, or is no number, is missing.
#pragma once

#include "model/quantity.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace skyhold {

enum class SourceState : std::uint8_t {
    Ok,
    Old,      // there, but not renewed for too long
    Unusable, // there, but cannot be trusted; the detail says why
    Failed,   // says itself that it fails, or does not answer
    Absent    // not there
};

// Entries of the station value table, in the order in which the window shows them.
enum class StationEntry : std::uint8_t {
    Date,
    Time,
    Temperature,
    WindSpeed,
    Gust,
    WindDirection,
    DailyRain,
    Humidity,
    DewPoint,
    Pressure,
    TemperatureUnit,
    SpeedUnit,
    PressureUnit
};
inline constexpr std::size_t kStationEntries = 13;

struct StationObservation {
    SourceState state = SourceState::Absent;
    QString detail;          // of Unusable: the status text
    bool rewritten = false;  // since it was last read
    double ageSeconds = 0;   // of the latest record, or of the file where that decides
    QDateTime written;       // modification time of the file
    QDateTime recordTime;    // of the latest record, local
    // As the window shows them; an entry that could not be read is left as it was.
    std::array<std::optional<QString>, kStationEntries> texts;
    std::optional<double> windDirection; // degrees
    std::optional<double> dewPoint;
    std::optional<double> pressure;
    std::optional<double> dailyRain;
    bool valuesMissing = false; // of those that are judged

    // Read and fresh: its values may be judged.
    bool usable() const { return state == SourceState::Ok; }
    // A dead instrument counts as old data, too.
    bool faulty() const { return !usable() || valuesMissing; }
};

struct SensorObservation {
    SourceState state = SourceState::Absent;
    std::optional<double> skySensorTemperature;
    std::optional<double> ambientTemperature;
    std::optional<double> rainHeaterPercent;
    std::optional<double> rainHeaterTemperature;
    std::optional<QString> rainHeaterStatus;
    QDateTime lastReading; // invalid when it did not say
    bool master = true;    // its role, where it said so

    bool failed() const { return state != SourceState::Ok; }
};

struct Observation {
    // In display units. Dew is the spread, temperature minus dew point.
    PerQuantity<std::optional<double>> values;
    // Of the quantities that the sensor program classifies: the level and its words for it.
    PerQuantity<std::optional<std::int32_t>> givenLevels;
    PerQuantity<QString> givenLabels;
    SensorObservation sensor;
    StationObservation station;
};

} // namespace skyhold
