// SPDX-License-Identifier: GPL-3.0-or-later
// What the sensor program can measure: the values of the cloud and rain sensor, and those of a
// weather station.
#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace skyhold {

enum class Item : std::uint8_t {
    Cloud, // sky temperature
    Rain,
    Brightness,
    Temperature, // of the air
    SensorTemperature,
    HeaterPercent,
    HeaterTemperature,
    Humidity,
    DewPoint,
    Wind,
    Gust,
    Direction,
    RainToday,
    Pressure,
    Count
};
inline constexpr std::size_t kItemCount = static_cast<std::size_t>(Item::Count);

template <typename Value>
struct PerItem : std::array<Value, kItemCount> {
    Value& operator[](Item item) {
        return std::array<Value, kItemCount>::operator[](static_cast<std::size_t>(item));
    }
    const Value& operator[](Item item) const {
        return std::array<Value, kItemCount>::operator[](static_cast<std::size_t>(item));
    }
};

// What a value is kept in: °C, km/h, mm, hPa, %, degrees; a plain number as the source has it.
enum class ItemMeasure { Plain, Temperature, Speed, Rain, Pressure, Percent, Angle };

struct ItemRow {
    Item item;
    const char16_t* name; // of its section in the settings
    const char16_t* caption;
    ItemMeasure measure;
    bool ofSensor; // the monitor reads it from the sensor program
    bool hasLevels;
};

inline constexpr std::array<ItemRow, kItemCount> kItems{{
    {Item::Cloud, u"cloud", u"sky temperature", ItemMeasure::Temperature, true, true},
    {Item::Rain, u"rain", u"rain", ItemMeasure::Plain, true, true},
    {Item::Brightness, u"brightness", u"brightness", ItemMeasure::Plain, true, true},
    {Item::Temperature, u"temperature", u"air temperature", ItemMeasure::Temperature, true, false},
    {Item::SensorTemperature, u"sensor-temperature", u"temperature of the sensor",
     ItemMeasure::Temperature, true, false},
    {Item::HeaterPercent, u"heater-percent", u"heater power", ItemMeasure::Percent, true, false},
    {Item::HeaterTemperature, u"heater-temperature", u"heater temperature",
     ItemMeasure::Temperature, true, false},
    {Item::Humidity, u"humidity", u"humidity", ItemMeasure::Percent, false, false},
    {Item::DewPoint, u"dew-point", u"dew point", ItemMeasure::Temperature, false, false},
    {Item::Wind, u"wind", u"wind", ItemMeasure::Speed, false, false},
    {Item::Gust, u"gust", u"gust", ItemMeasure::Speed, false, false},
    {Item::Direction, u"direction", u"wind direction", ItemMeasure::Angle, false, false},
    {Item::RainToday, u"rain-today", u"rain of the day", ItemMeasure::Rain, false, false},
    {Item::Pressure, u"pressure", u"pressure", ItemMeasure::Pressure, false, false},
}};

constexpr const ItemRow& rowOf(Item item) {
    return kItems[static_cast<std::size_t>(item)];
}

// A source's unit as a factor and an addend to what values are kept in.
struct UnitStep {
    double factor = 1;
    double addend = 0; // after the factor
};
// "C", "F", "K"; "km/h", "mph", "m/s", "kn"; "mm", "cm", "in"; "hPa", "mbar", "Pa", "inHg", "mmHg";
// "%", "fraction". Nothing for a text that is no unit of that measure.
std::optional<UnitStep> unitNamed(const QString& name, ItemMeasure measure);
// "°C", "km/h"; empty for a plain number.
QString unitOf(ItemMeasure measure);
// The units of that measure, for messages.
QString unitNames(ItemMeasure measure);

} // namespace skyhold
