// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/observe.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// The spread of the two temperatures, as their decimal texts on the window give it: 8.3 - 5.3 is 3,
// and must meet a limit of 3, though the nearest binary numbers are slightly more than 3 apart.
std::optional<double> dewSpread(const StationObservation& station, const NumberForms& forms) {
    const std::optional<double> temperature = station.numbers[Quantity::Temperature];
    const std::optional<double> dewPoint = station.numbers[Quantity::Dew];
    if (!temperature || !dewPoint)
        return std::nullopt;
    const QString shown = formatNumber(*temperature, u"0.0", forms);
    const std::optional<double> warm = numberFromText(shown, forms);
    if (!warm)
        return std::nullopt;
    constexpr double kPrecision = 1e9;
    return std::round((*warm - *dewPoint) * kPrecision) / kPrecision;
}

QDateTime dateOf(const std::optional<QVariant>& value) {
    const std::optional<double> days = value ? toReal(*value) : std::nullopt;
    return days ? fromDaySerial(*days) : QDateTime();
}

// Temperatures have a decimal, counts have none.
QStringView formatOf(Quantity quantity) {
    return rowOf(quantity).measure == Measure::Temperature ? u"0.0" : u"0";
}

QString member(const char* name) {
    return QString::fromLatin1(name);
}

} // namespace

void takeStationValues(Observation& observation, const NumberForms& forms) {
    const StationObservation& station = observation.station;
    for (const Quantity quantity : kStationQuantities) {
        const std::optional<double> number = station.numbers[quantity];
        observation.values[quantity] = number;
        if (number)
            observation.texts[quantity] = rowOf(quantity).measure == Measure::Temperature
                                              ? formatNumber(*number, u"0.0", forms)
                                              : numberText(*number, forms);
    }
    observation.values[Quantity::Dew] = dewSpread(station, forms);
}

namespace {

// What a cycle reads, in the order that the sensor program expects.
QStringList sensorReads() {
    QStringList names;
    for (const Quantity quantity : kSensorQuantities)
        names += member(rowOf(quantity).levelMember);
    for (const Quantity quantity : kSensorQuantities)
        names += member(rowOf(quantity).valueMember);
    return names + QStringList{u"SkySensorTemperature"_s,  u"AmbientTemperature"_s,
                               u"SkySensorTemperature"_s,  u"RainHeaterPercent"_s,
                               u"RainHeaterTemperature"_s, u"RainHeaterStatus"_s,
                               u"LastReading"_s,           u"DeviceIsRunning"_s,
                               u"Kiv_XFERFileErr"_s};
}

} // namespace

void readSensorValues(SensorLink& sensor, const NumberForms& forms, Observation& observation) {
    for (const Quantity quantity : kSensorQuantities) {
        const std::optional<double> value = sensor.readReal(member(rowOf(quantity).valueMember));
        observation.values[quantity] = value;
        if (value)
            observation.texts[quantity] = formatNumber(*value, formatOf(quantity), forms);
    }
}

bool readSensorLevel(SensorLink& sensor, Quantity quantity, Observation& observation) {
    const std::optional<std::int32_t> level = sensor.readLevel(member(rowOf(quantity).levelMember));
    if (!level || level == observation.givenLevels[quantity])
        return level.has_value();
    observation.givenLevels[quantity] = level;
    observation.givenLabels[quantity] = sensor.levelDescription(quantity, *level);
    return true;
}

void ReadSensor(SensorLink& sensor, const NumberForms& forms, Observation& observation) {
    SensorObservation& seen = observation.sensor;
    sensor.readAhead(sensorReads());
    for (const Quantity quantity : kSensorQuantities)
        observation.givenLevels[quantity] = sensor.readLevel(member(rowOf(quantity).levelMember));
    readSensorValues(sensor, forms, observation);
    seen.skySensorTemperature = sensor.readReal(u"SkySensorTemperature"_s);
    seen.ambientTemperature = sensor.readReal(u"AmbientTemperature"_s);
    seen.coverTemperature = sensor.readReal(u"SkySensorTemperature"_s);
    seen.rainHeaterPercent = sensor.readReal(u"RainHeaterPercent"_s);
    seen.rainHeaterTemperature = sensor.readReal(u"RainHeaterTemperature"_s);
    seen.rainHeaterStatus = sensor.readText(u"RainHeaterStatus"_s);
    seen.lastReading = dateOf(sensor.read(u"LastReading"_s));

    const bool running = sensor.readBoolean(u"DeviceIsRunning"_s).value_or(false);
    const bool transferError = sensor.readBoolean(u"Kiv_XFERFileErr"_s).value_or(true);
    const bool callFailed = sensor.consumeCallFailure();
    if (!sensor.connected())
        seen.state = SourceState::Absent;
    else
        seen.state =
            callFailed || !running || transferError ? SourceState::Failed : SourceState::Ok;
}

void readRoleAndLabels(SensorLink& sensor, const PerQuantity<std::int32_t>& lastLevels,
                       Observation& observation) {
    if (observation.sensor.failed()) {
        const QString master = u"MASTER"_s;
        observation.sensor.master = sensor.readText(u"Kiv_DeviceRole"_s).value_or(master) == master;
        // What failed in here belongs to the failure that is being reported.
        sensor.consumeCallFailure();
    }
    for (const Quantity quantity : kSensorQuantities) {
        const std::int32_t level = observation.givenLevels[quantity].value_or(lastLevels[quantity]);
        observation.givenLabels[quantity] = sensor.levelDescription(quantity, level);
    }
}

} // namespace skyhold
