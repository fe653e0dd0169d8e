// SPDX-License-Identifier: GPL-3.0-or-later
// The judged quantities as rows of one table: what each is called, where its value comes from, its
// levels with their keys and defaults, and its places in the orders of decision, alarms and data
// items. Code that handles quantities walks this table; state is PerQuantity.
#pragma once

#include "model/colours.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace skyhold {

enum class Quantity : std::uint8_t {
    Cloud,
    Rain,
    Brightness,
    Wind,
    Gust,
    Temperature,
    Dew, // the spread: temperature minus dew point
    Humidity
};

inline constexpr std::size_t kQuantityCount = 8;
inline constexpr std::size_t kLevelCount = 3;

// One value for each quantity.
template <class T>
struct PerQuantity {
    std::array<T, kQuantityCount> values{};

    constexpr T& operator[](Quantity quantity) {
        return values[static_cast<std::size_t>(quantity)];
    }
    constexpr const T& operator[](Quantity quantity) const {
        return values[static_cast<std::size_t>(quantity)];
    }
    constexpr auto begin() { return values.begin(); }
    constexpr auto end() { return values.end(); }
    constexpr auto begin() const { return values.begin(); }
    constexpr auto end() const { return values.end(); }
    bool operator==(const PerQuantity&) const = default;
};

// The sensor program classifies what it measures by itself; the station's values are classified by
// limits.
enum class SourceName : std::uint8_t { Sensor, Station };

// What a value is measured in. Speeds and temperatures follow the station's units.
enum class Measure : std::uint8_t {
    Speed,
    Temperature,
    TemperatureDifference,
    Percent,
    Cycles,
    Kelvin
};

// A level as it is in a fresh store, and the keys of its settings.
struct LevelRow {
    const char* unsafeKey; // in section "Unsafe"
    bool unsafe;
    const char* alarmKey; // in section "Alarms"; followed by "Stat" for the alarm's switch
    // Of a station quantity the user's to change; of a sensor quantity what stands until the sensor
    // program has been asked.
    const char* description;
    // Of station quantities, in sections "Limit", "Description" and "Color".
    const char* limitKey = nullptr;
    const char* limit = nullptr;
    Colour colour = 0;
    // Of sensor quantities: the member that has the level's description.
    const char* descriptionMember = nullptr;
};

struct QuantityRow {
    Quantity quantity;
    const char16_t* name;    // "Dew point"
    const char16_t* title;   // on pages: "Dew-point spread"
    const char* header;      // over its value: "DewPoint"
    const char* settingName; // as the settings describe it: "dew-point spread"
    const char* key;         // in the state document: "dew_spread"
    SourceName source;
    Measure measure;
    const char* valueMember; // of the sensor program, or the row's name in the station's file
    const char* levelMember = nullptr; // of the sensor program; none for the station's quantities
    const char* valueLabel;            // of the names of its labels: "LValWindSpeed"
    const char* conditionLabel;        // "LCondWind"
    const char* suffix; // of the names of its controls: "LimitTemp", "CondTemp", "AlarmTemp"
    const char* sectorKey = nullptr; // "WindDir", followed by the level's index; none: no sectors
    char16_t alarmLetter;            // an alarm's id is this letter and the level's index
    int indicator;                   // which of the PlayAlarm indicators shows its alarm
    int dataItem;                    // its condition among the items of the user data file
    int limitDecimals = 0;  // digits that the number boxes of its limits take after the point
    int negativeLimits = 0; // how many of its limits, from the first, may be negative
    std::array<LevelRow, kLevelCount> levels;

    bool hasLimits() const { return source == SourceName::Station; }
    bool hasSectors() const { return sectorKey != nullptr; }
};

using QuantityTable = std::array<QuantityRow, kQuantityCount>;

// In the order of Quantity.
const QuantityTable& quantityTable();
const QuantityRow& rowOf(Quantity quantity);

inline constexpr std::array kAllQuantities{
    Quantity::Cloud, Quantity::Rain,        Quantity::Brightness, Quantity::Wind,
    Quantity::Gust,  Quantity::Temperature, Quantity::Dew,        Quantity::Humidity};
inline constexpr std::array kStationQuantities{
    Quantity::Wind, Quantity::Gust, Quantity::Temperature, Quantity::Dew, Quantity::Humidity};
inline constexpr std::array kSensorQuantities{Quantity::Cloud, Quantity::Rain,
                                              Quantity::Brightness};

// The order of the causes of an unsafe verdict, and of the alarms: the first active one sounds.
inline constexpr std::array kDecisionOrder{
    Quantity::Cloud, Quantity::Rain,     Quantity::Wind,        Quantity::Gust,
    Quantity::Dew,   Quantity::Humidity, Quantity::Temperature, Quantity::Brightness};

} // namespace skyhold
