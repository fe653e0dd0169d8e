// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/readings.h"

namespace skyhold {

namespace {

// A value that could not be read keeps its last state.
template <typename Value, typename Read>
void updateIfRead(Value& value, const std::optional<Read>& read) {
    if (read)
        value = *read;
}

void takeSensor(const Observation& observation, CurrentReadings& readings) {
    const SensorObservation& sensor = observation.sensor;
    updateIfRead(readings.SensorValues[kSkyTemperature], observation.values[Quantity::Cloud]);
    updateIfRead(readings.SensorValues[kRainValue], observation.values[Quantity::Rain]);
    updateIfRead(readings.SensorValues[kBrightnessValue], observation.values[Quantity::Brightness]);
    updateIfRead(readings.SensorValues[kSkySensorTemperature], sensor.coverTemperature);
    updateIfRead(readings.SensorValues[kRainHeaterPercent], sensor.rainHeaterPercent);
    updateIfRead(readings.SensorValues[kRainHeaterTemperature], sensor.rainHeaterTemperature);
    updateIfRead(readings.SkySensorTemperature, sensor.skySensorTemperature);
    updateIfRead(readings.AmbientTemperature, sensor.ambientTemperature);
    updateIfRead(readings.RainHeaterStatus, sensor.rainHeaterStatus);
    if (sensor.lastReading.isValid())
        readings.LastReading = sensor.lastReading;
    readings.SensorError = sensor.failed();
}

void takeStation(const StationObservation& station, CurrentReadings& readings) {
    readings.StationValid = station.usable();
    readings.StationFileMissing = station.state == SourceState::Absent;
    readings.StationDataOld = station.faulty();
    readings.StationDateTime = station.recordTime;
    if (station.tableFilled)
        readings.BarometricPressure = station.pressure.value_or(0);
    if (!station.usable())
        return;
    readings.StationTemperature = station.numbers[Quantity::Temperature];
    readings.WindSpeed = station.numbers[Quantity::Wind];
    readings.GustSpeed = station.numbers[Quantity::Gust];
    readings.WindDirection = station.windDirection;
    readings.DewPointValue = station.numbers[Quantity::Dew];
    readings.HumidityValue = station.numbers[Quantity::Humidity];
}

} // namespace

void takeReadings(const CycleResult& result, CurrentReadings& readings) {
    takeSensor(result.observation, readings);
    takeStation(result.observation.station, readings);
    readings.Condition = result.judgement.levels;
    readings.UnsafeFlag = result.judgement.UnsafeFlag;
    const bool good = !readings.StationDataOld && !readings.SensorError;
    readings.ReadLedColour = good ? kGreen : kYellow;
}

} // namespace skyhold
