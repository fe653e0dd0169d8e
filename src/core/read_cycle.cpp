// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/read_cycle.h"

#include "conditions/alarms.h"
#include "conditions/rules_of.h"
#include "core/alarms.h"
#include "core/observe.h"
#include "core/publish.h"
#include "core/quick_look.h"
#include "core/verdict.h"
#include "judge/judge.h"
#include "records/status_lines.h"
#include "units/detection.h"

#include <algorithm>

namespace skyhold {

namespace {

void followUnits(const StationObservation& station, MonitoringCore& core);

} // namespace

void RunReadCycle(MonitoringCore& core) {
    Records& records = core.records;
    core.sensor.beginCycle(
        {records.readings, records.session, records.alarms, records.conditions, records.display});
    records.readings.SensorDataReady = false;
    core.forms = localeNumberForms();

    Observation seen;
    seen.station = observeStation(records.stationFile, records.units, core.forms, core.clock,
                                  core.stationMemory);
    // Before the sensor program is read, whose own alarm it silences.
    soundStationAlarm(core, seen.station);
    followUnits(seen.station, core);
    takeStationValues(seen, core.forms);
    ReadSensor(core.sensor, core.forms, seen);
    soundSensorAlarm(core, seen.sensor);
    readRoleAndLabels(core.sensor, core.result.memory.levels, seen);

    CycleResult& result = core.result;
    result.observation = std::move(seen);
    result.rules = rulesOf(records.conditions);
    result.judged = momentOf(core.clock);
    result.judgement =
        judge(result.observation, result.rules, result.memory, result.judged, clientDecides(core));
    result.temperatureUnit = records.readings.TemperatureUnit;
    result.speedUnit = records.readings.SpeedUnit;
    result.intervalSeconds = records.session.RefreshRead.chosenSeconds();
    result.distrusted.clear();
    ++result.number;

    publish(core);
}

void StartReading(MonitoringCore& core) {
    Records& records = core.records;
    core.stationMemory.reset();
    SetStatusText(records.session.Statusbar1, QString(), kNavy);
    records.session.RefreshRead.Enabled = false;
    records.stationFile.TimeoutREAD.Enabled = false;
    records.stationFile.ButtHTMPath.Enabled = false;

    const QDateTime now = core.clock.now();
    records.readings.LastReading = now;
    records.readings.ReadingStart = now;
    beginSession(rulesOf(records.conditions), core.result.memory, momentOf(core.clock));
    core.sensor.consumeCallFailure();

    RunReadCycle(core);
    core.TimerRead.Overdue = [&core] {
        distrustAfterGap(core);
    };
    core.TimerRead.Tick = [&core] {
        RunReadCycle(core);
    };
    core.TimerRead.arm(1000 * records.session.RefreshRead.chosenSeconds());
    startQuickLooks(core);
}

void StopReading(MonitoringCore& core) {
    Records& records = core.records;
    records.session.RefreshRead.Enabled = true;
    records.stationFile.TimeoutREAD.Enabled = true;
    records.stationFile.ButtHTMPath.Enabled = true;
    core.TimerRead.disarm();
    stopQuickLooks(core);
    records.display.LEDRead.blink(kGrey);
}

namespace {

struct StationUnits {
    TemperatureCode temperature;
    SpeedCode speed;
};

// A file that could not be read names no units: those in force stay. Nor does a value that is
// missing with its unit; an empty unit text would turn the other speeds into km/h.
StationUnits detectUnits(const StationObservation& station, const CurrentReadings& inForce,
                         const UnitControls& controls) {
    StationUnits units{inForce.TemperatureUnit, inForce.SpeedUnit};
    if (!station.usable())
        return units;
    const QString temperature = station.text(StationEntry::TemperatureUnit);
    if (station.numbers[Quantity::Temperature] || !temperature.isEmpty())
        units.temperature = DetectTemperatureUnit(temperature, controls);
    const QString speed = station.text(StationEntry::SpeedUnit);
    if (station.numbers[Quantity::Wind] || !speed.isEmpty())
        units.speed = DetectSpeedUnit(speed, controls, inForce.SpeedUnit);
    return units;
}

void sendTemperatureUnit(SensorLink& sensor, const QString& letter) {
    const QString member = QStringLiteral("Kiv_TemperatureUnits");
    const std::optional<QString> sent = sensor.readText(member);
    if (sent && *sent != letter)
        sensor.write(member, letter);
}

template <class Codes, class Code>
int indexOf(const Codes& codes, Code code) {
    return static_cast<int>(std::ranges::find(codes, code) - codes.begin());
}

// The station's units are those in which everything is shown; a change converts limits and history.
void followUnits(const StationObservation& station, MonitoringCore& core) {
    Records& records = core.records;
    CurrentReadings& readings = records.readings;
    const StationUnits units = detectUnits(station, readings, records.units);
    sendTemperatureUnit(core.sensor, letterOf(units.temperature));
    if (units.temperature != readings.TemperatureUnit) {
        if (units.temperature != TemperatureCode::Unknown)
            records.units.UnitsTemp.choose(indexOf(kTemperatureCodes, units.temperature));
        readings.TemperatureUnit = units.temperature;
    }
    if (units.speed != readings.SpeedUnit) {
        records.units.UnitsSpeed.choose(indexOf(kSpeedCodes, units.speed));
    }
}

} // namespace

bool unitsStay(const StationObservation& station, const MonitoringCore& core) {
    const CurrentReadings& readings = core.records.readings;
    const StationUnits units = detectUnits(station, readings, core.records.units);
    return units.temperature == readings.TemperatureUnit && units.speed == readings.SpeedUnit;
}

} // namespace skyhold
