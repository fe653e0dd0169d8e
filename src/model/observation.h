// SPDX-License-Identifier: GPL-3.0-or-later
// What both sources said in one cycle. Nothing is judged here, and nothing is made up: a value that
// is missing or not a number stays missing.
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

enum class StationFileState : std::uint8_t {
    Missing,   // no such file, or it cannot be read
    Old,       // not rewritten since it was last read, and its latest record or that rewriting too
               // long ago; or, before the first read, not rewritten for that long
    Unchanged, // not rewritten since it was last read, its latest record recent enough
    Refreshed  // rewritten since it was last read
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
    StationFileState file = StationFileState::Missing;
    QString detail;            // what is wrong with a file that is there and not old
    double ageSeconds = 0;     // of the latest record, or of the file where that decides
    double timeoutSeconds = 0; // the age at which it is old
    QDateTime written;         // modification time of the file
    QDateTime recordTime;      // of the latest record, local; the last one known
    // As the window shows them. Filled together when the file could be read; an entry that could
    // not be read stays as it was.
    bool tableFilled = false;
    std::array<std::optional<QString>, kStationEntries> texts;
    PerQuantity<std::optional<double>> numbers; // of the station's quantities; of Dew the dew point
    std::optional<double> windDirection;        // degrees
    std::optional<double> pressure;
    std::optional<double> dailyRain;
    bool valuesMissing = false; // of those that are judged

    QString text(StationEntry entry) const {
        return texts[static_cast<std::size_t>(entry)].value_or(QString());
    }
    // Read and fresh: its values may be judged.
    bool usable() const { return state == SourceState::Ok; }
    // A dead instrument counts as old data, too.
    bool faulty() const { return !usable() || valuesMissing; }
    // As the alarm of old data sees it: what cannot be used is as good as old.
    StationFileState alarmState() const {
        return faulty() && file != StationFileState::Missing ? StationFileState::Old : file;
    }
};

struct SensorObservation {
    SourceState state = SourceState::Absent;
    std::optional<double> skySensorTemperature;
    std::optional<double> coverTemperature; // the same member, read a second time for the records
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
    // As the window shows them; of Dew the dew point itself.
    PerQuantity<QString> texts;
    // Of the quantities that the sensor program classifies: the level and its words for it.
    PerQuantity<std::optional<std::int32_t>> givenLevels;
    PerQuantity<QString> givenLabels;
    SensorObservation sensor;
    StationObservation station;
};

} // namespace skyhold
