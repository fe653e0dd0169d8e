#include "core/read_cycle.h"

#include "conditions/classification.h"
#include "conditions/safety.h"
#include "conditions/staleness.h"
#include "core/alarms.h"
#include "core/observation.h"
#include "core/recording.h"
#include "core/sensor_readings.h"
#include "core/station_display.h"
#include "datafiles/ccdap_file.h"
#include "datafiles/station_file.h"
#include "graphs/history.h"
#include "graphs/render.h"
#include "records/status_lines.h"
#include "units/detection.h"

#include <algorithm>

namespace skyhold {

namespace {

struct StationUnits {
    QString temperature; // "C", "F" or " "
    QString speed;       // "K", "M", "m" or "k"
};

void readStation(MonitoringCore& core);
StationUnits stationUnits(Records& records);
void tellTemperatureUnit(SensorLink& sensor, const QString& detected);
void followUnits(Records& records, const StationUnits& units);
void classify(MonitoringCore& core);
void decide(MonitoringCore& core);
QString causeInWords(const SafetyDecision& decision, Records& records, const NumberForms& forms);
void driveSwitch(SensorLink& sensor, Records& records);
void writeCcdapFile(MonitoringCore& core);

} // namespace

void RunReadCycle(MonitoringCore& core) {
    Records& records = core.records;
    core.sensor.beginCycle(
        {records.readings, records.session, records.alarms, records.conditions, records.display});
    records.readings.SensorDataReady = false;
    core.forms = localeNumberForms();

    readStation(core);
    const StationUnits units = stationUnits(records);
    tellTemperatureUnit(core.sensor, units.temperature);
    followUnits(records, units);

    ReadSensor(core.sensor, records, core.forms, alarmPlayer(core));
    classify(core);
    decide(core);
    driveSwitch(core.sensor, records);
    records.readings.SensorDataReady =
        core.sensor.readBoolean(QStringLiteral("DataReady")).value_or(false);

    writeCcdapFile(core);
    WriteUserDataLine(core);
    AddReading(records.history, records.readings, records.graphs.GraphNoPoints);
    RenderGraphs({records.history, records.conditions, records.graphs}, records.pictures,
                 core.renderedGraphs, core.images, records.session.Statusbar2);
    records.display.LEDRead.blink(records.readings.ReadLedColour);
    if (core.cycleDone)
        core.cycleDone();
}

void StartReading(MonitoringCore& core) {
    Records& records = core.records;
    records.readings.LastFileTime = neverReadFileTime();
    core.stationMemory.reset();
    SetStatusText(records.session.Statusbar1, QString(), kNavy);
    records.session.RefreshRead.Enabled = false;
    records.stationFile.TimeoutREAD.Enabled = false;
    records.stationFile.ButtHTMPath.Enabled = false;

    const QDateTime now = core.clock.now();
    records.readings.LastReading = now;
    records.readings.ReadingStart = now;
    records.sectors.WindOutsideSince = core.clock.MsClock();
    records.sectors.GustOutsideSince = core.clock.MsClock();
    core.sensor.takeCallFailure();

    RunReadCycle(core);
    core.TimerRead.Overdue = [&core] {
        distrustAfterGap(core);
    };
    core.TimerRead.Tick = [&core] {
        RunReadCycle(core);
    };
    core.TimerRead.arm(1000 * records.session.RefreshRead.chosenSeconds());
}

void StopReading(MonitoringCore& core) {
    Records& records = core.records;
    records.session.RefreshRead.Enabled = true;
    records.stationFile.TimeoutREAD.Enabled = true;
    records.stationFile.ButtHTMPath.Enabled = true;
    core.TimerRead.disarm();
    records.display.LEDRead.blink(kGrey);
}

namespace {

void readStation(MonitoringCore& core) {
    Records& records = core.records;
    CurrentReadings& readings = records.readings;
    const QDateTime modified = stationFileTime(records.stationFile.HTMFile.Caption);
    const auto soundAlarm = [&core, &readings](StationFileState state) {
        StationDataAlarm(state, alarmPlayer(core), readings,
                         [&core] { stopSensorAlarm(core.sensor); });
    };
    StationFileState state = StationFileState::Missing;
    const auto whenJudged = [&](StationFileState judged) {
        state = judged;
        if (readings.StationDataOld)
            soundAlarm(state);
    };
    if (!CheckStationStaleness(records.stationFile, readings, records.display, records.session,
                               core.clock, whenJudged)) {
        SetStationDataValid(false, records, core.forms);
        return;
    }
    const StationRead read =
        ReadStationFile(records.stationFile, records.units, core.forms, fileTimeText(modified),
                        core.stationMemory, readings, records.display);
    if (read != StationRead::Valid) {
        // A file that is there but cannot be trusted must not look like calm, dry weather, nor must
        // a value that it lacks.
        readings.StationDataOld = true;
        readings.ReadLedColour = kYellow;
        SetStatusText(records.session.Statusbar1, stationReadStatus(read), kRed);
        records.display.WSAlarmMsg.Caption = QStringLiteral("WS data file unusable");
        soundAlarm(StationFileState::Old);
        SetErrorCodes(records.session.Statusbar2, QStringLiteral("a41"), kRed);
    } else {
        soundAlarm(state); // over only now, so that an unusable file does not start it again
    }
    SetStationDataValid(mayBeJudged(read), records, core.forms);
}

// A file that could not be read names no units: those in force stay. Nor does a value that is
// missing with its unit; an empty unit text would turn the other speeds into km/h.
StationUnits stationUnits(Records& records) {
    const CurrentReadings& readings = records.readings;
    StationUnits units{readings.TemperatureUnit, readings.SpeedUnit};
    if (!readings.StationValid)
        return units;
    const QString temperature = records.display.LblWSValue[10].Caption;
    if (readings.StationTemperature || !temperature.isEmpty())
        units.temperature = DetectTemperatureUnit(temperature, records.units);
    const QString speed = records.display.LblWSValue[11].Caption;
    if (readings.WindSpeed || !speed.isEmpty())
        units.speed = DetectSpeedUnit(speed, records.units, readings.SpeedUnit);
    return units;
}

void tellTemperatureUnit(SensorLink& sensor, const QString& detected) {
    const QString member = QStringLiteral("Kiv_TemperatureUnits");
    const std::optional<QString> told = sensor.readText(member);
    if (told && *told != detected)
        sensor.write(member, detected);
}

void followUnits(Records& records, const StationUnits& units) {
    CurrentReadings& readings = records.readings;
    if (units.temperature != readings.TemperatureUnit) {
        const auto option = QStringLiteral("CF").indexOf(units.temperature);
        if (option >= 0)
            records.units.UnitsTemp.choose(static_cast<int>(option));
        readings.TemperatureUnit = units.temperature;
    }
    if (units.speed != readings.SpeedUnit) {
        const auto option = QStringLiteral("KMmk").indexOf(units.speed);
        records.units.UnitsSpeed.choose(static_cast<int>(option));
    }
}

void classify(MonitoringCore& core) {
    CurrentReadings& readings = core.records.readings;
    const ConditionControls& controls = core.records.conditions;
    ReadingDisplay& display = core.records.display;
    const SensorDescription description = [&core](Quantity quantity, std::int32_t level) {
        return core.sensor.levelDescription(quantity, level);
    };
    // A failed cycle shows no descriptions, and they are asked for all the same: without that, one
    // that cannot be read would be a failure in every second cycle only.
    if (readings.SensorError) {
        for (const auto& [quantity, level] : {std::pair{Quantity::Cloud, readings.Condition[Quantity::Cloud]},
                                              {Quantity::Rain, readings.Condition[Quantity::Rain]},
                                              {Quantity::Brightness, readings.Condition[Quantity::Brightness]}})
            core.sensor.levelDescription(quantity, level);
    }
    const std::int64_t now = core.clock.MsClock();
    ClassifyCloud(display, readings, controls, core.records.safety, description, now);
    ClassifyRain(display, readings, controls, description);
    ClassifyBrightness(display, readings, controls, description);
    ClassifyDew(display, readings, controls, core.forms);
    ClassifyHumidity(display, readings, controls);
    ClassifyWind(display, readings, controls, core.records.sectors, now);
    ClassifyGust(display, readings, controls, core.records.sectors, now);
}

SensorLink::Effect effectOf(bool unsafe) {
    return unsafe ? SensorLink::Effect::Other : SensorLink::Effect::Opens;
}

void decide(MonitoringCore& core) {
    Records& records = core.records;
    const std::int64_t now = core.clock.MsClock();
    const SafetyDecision decision = DecideSafety(
        records.readings, records.conditions, records.safety, records.sectors, now,
        [&core, &records, now] {
            SelectConditionAlarm(alarmPlayer(core), records.readings, records.conditions,
                                 records.safety, records.sectors, now);
        });
    Disp_UnsafeFlag(records.readings, records.conditions);
    records.display.LblCause.Caption = causeInWords(decision, records, core.forms);
    const bool unsafe = records.readings.UnsafeFlag;
    core.sensor.command(QStringLiteral("SetUnSafe"), {unsafe}, effectOf(unsafe));
}

// Why the verdict is what it is. The sensor program's descriptions are taken from the display, so
// that words cost no further call.
QString causeInWords(const SafetyDecision& decision, Records& records, const NumberForms& forms) {
    if (records.safety.LocalControl)
        return QStringLiteral("Decided by ") + records.session.LblControl.Caption.value();
    const auto notJudged = [&records](Quantity quantity) {
        return isBeyondLimits(records.readings, quantity);
    };
    QStringList words;
    if (decision.unsafe())
        words += verdictCauses(decision, records.conditions,
                               [&records](Quantity quantity, std::int32_t) {
                                   return records.display.LCond[quantity].Caption.value();
                               });
    else
        words += (std::ranges::any_of(kStationQuantities, notJudged)
                      ? QStringLiteral("All other conditions safe")
                      : QStringLiteral("All conditions safe")) +
                 (records.readings.UnsafeFlag ? QStringLiteral(" again") : QString());
    words += verdictNotes(records.readings, records.conditions, forms);
    return words.join(QStringLiteral(", "));
}

void driveSwitch(SensorLink& sensor, Records& records) {
    CurrentReadings& readings = records.readings;
    if (!records.session.SwitchControl) {
        readings.SwitchValue =
            sensor.readReal(QStringLiteral("SwitchStatus")).value_or(readings.SwitchValue);
        return;
    }
    readings.SwitchValue = readings.UnsafeFlag ? 2 : 1;
    sensor.command(QStringLiteral("Kiv_SetSwitch"), {readings.SwitchValue},
                   effectOf(readings.UnsafeFlag));
    const bool closed = readings.SwitchValue == 2;
    PaintLabel(records.display.LValSwitch, closed ? kRed : kGreen,
               closed ? QStringLiteral("Closed") : QStringLiteral("Opened"));
}

void writeCcdapFile(MonitoringCore& core) {
    Records& records = core.records;
    if (!WriteCcdapFile(records.ccdap, records.readings, core.clock, core.forms))
        SetErrorCodes(records.session.Statusbar2, QStringLiteral("c51"), kRed);
}

} // namespace

} // namespace skyhold
