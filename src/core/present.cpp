// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/present.h"

#include "core/wording.h"
#include "records/status_lines.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct StatusLine {
    QString text;
    Colour colour = kNavy;
    QString alarm; // beside the verdict
};

StatusLine stationStatus(const StationObservation& station) {
    const QString age = formatNumber(station.ageSeconds, u"0", {}) + u"s old"_s;
    switch (station.state) {
    case SourceState::Absent:
        return {u"Weather Station Data - file not available"_s, kRed, u"WS data file absent"_s};
    case SourceState::Old:
        return {u"Weather Station Data too old - "_s + age, kRed, u"WS data too old"_s};
    default:
        break;
    }
    if (station.faulty())
        return {station.detail, kRed, u"WS data file unusable"_s};
    if (station.file == StationFileState::Refreshed)
        return {u"Weather Station Data - Refreshed"_s, kNavy, {}};
    return {u"Weather Station Data - "_s + age, kNavy, {}};
}

void showStatus(const Observation& observation, Records& records) {
    const StatusLine station = stationStatus(observation.station);
    records.display.WSAlarmMsg.Caption = station.alarm;
    if (observation.sensor.failed())
        SetStatusText(records.session.Statusbar1, u"Error with Kiv_Nubilo"_s, kRed);
    else
        SetStatusText(records.session.Statusbar1, station.text, station.colour);
}

Colour levelColour(Quantity quantity, const CycleResult& result) {
    const bool beyond = result.judgement.beyond[quantity] && result.rules.beyondIsUnsafe;
    return result.judgement.unsafe[quantity] || beyond ? kOrange : kYellow;
}

void showSensor(const CycleResult& result, Records& records) {
    ReadingDisplay& display = records.display;
    const bool failed = result.observation.sensor.failed();
    display.SensorStatus.Caption = failed ? u"NB error"_s : QString();
    for (const Quantity quantity : kSensorQuantities) {
        display.Label0[quantity].ForeColor = failed ? kRed : kCyan;
        PaintLabel(display.LVal[quantity], kGreen,
                   failed ? QString() : result.observation.texts[quantity]);
        if (!failed)
            PaintLabel(display.LCond[quantity], levelColour(quantity, result),
                       levelLabel(quantity, result, records.conditions));
        else
            display.LCond[quantity].Caption = QString();
    }
    if (failed)
        display.LCond[Quantity::Cloud].ForeColor = kYellow;
    const bool dayFirst = records.units.DateFormat.Index == 0;
    PaintLabel(
        display.Label3Sensor, kGreen,
        formatDate(records.readings.LastReading, dayFirst ? u"dd/mm hh:mm:ss" : u"mm/dd hh:mm:ss"));
}

void showStationTable(const StationObservation& station, ReadingDisplay& display) {
    static const std::array<QString, kStationEntries> descriptions{
        u"Date"_s,          u"Time"_s,      u"OutTemp"_s,     u"WindSpeed"_s, u"Gust"_s,
        u"WindDirection"_s, u"RainDaily"_s, u"OutHumidity"_s, u"DewPoint"_s,  u"Barometer"_s,
        u"Units"_s,         u"Units"_s,     u"Units"_s};
    if (!station.tableFilled)
        return;
    for (std::size_t i = 0; i < kStationEntries; ++i) {
        display.LblWSDesc[i].Caption = descriptions[i];
        if (station.texts[i])
            display.LblWSValue[i].Caption = *station.texts[i];
    }
}

// `whenMissing`: the header of a value that is not known.
void showValue(const QString& text, bool valid, Colour whenMissing, Label& header, Label& value) {
    const bool known = valid && !text.isEmpty();
    PaintLabel(value, known ? kGreen : kYellow, known ? text : QString());
    header.ForeColor = known ? kCyan : valid ? whenMissing : kRed;
}

void showStation(const CycleResult& result, Records& records) {
    ReadingDisplay& display = records.display;
    const StationObservation& station = result.observation.station;
    showStationTable(station, display);
    const bool valid = station.usable();
    for (const Quantity quantity : kStationQuantities) {
        showValue(result.observation.texts[quantity], valid, kRed, display.Label0[quantity],
                  display.LVal[quantity]);
        const bool known = valid && result.observation.values[quantity].has_value();
        // Without valid data the temperature is not classified, and stays yellow.
        const bool coloured = valid || quantity != Quantity::Temperature;
        PaintLabel(display.LCond[quantity], coloured ? levelColour(quantity, result) : kYellow,
                   known ? levelLabel(quantity, result, records.conditions) : QString());
    }
    // Stations know no direction in still air.
    showValue(station.text(StationEntry::WindDirection), valid, kYellow, display.Label0Direction,
              display.LValWindDir);
    if (valid)
        PaintLabel(display.Label3Station, kGreen,
                   display.stationValue(StationEntry::Date).Caption.value() + u' ' +
                       display.stationValue(StationEntry::Time).Caption.value());
    else
        display.Label3Station.Caption = QString();
}

// Only a switch that this program drives is shown; that of a master that fails stands somewhere,
// but nobody can say where.
void showSwitch(const CycleResult& result, Records& records) {
    Label& value = records.display.LValSwitch;
    const SensorObservation& sensor = result.observation.sensor;
    if (records.session.SwitchControl) {
        const bool closed = records.readings.SwitchValue == 2;
        PaintLabel(value, closed ? kRed : kGreen, closed ? u"Closed"_s : u"Opened"_s);
    } else if (sensor.failed() && sensor.master) {
        value.Caption = QString();
    }
}

} // namespace

QString sourceCode(const Observation& observation) {
    if (observation.sensor.failed())
        return u"a31"_s;
    if (observation.station.state == SourceState::Absent)
        return u"a42"_s;
    return observation.station.faulty() ? u"a41"_s : QString();
}

void present(const CycleResult& result, const QString& codes, const NumberForms& forms,
             Records& records) {
    showStatus(result.observation, records);
    SetErrorCodes(records.session.Statusbar2, codes, kRed);
    showSensor(result, records);
    showStation(result, records);
    showSwitch(result, records);
    presentVerdict(result, records);
    records.display.LblCause.Caption =
        result.judgement.byClient ? u"Decided by "_s + records.session.LblControl.Caption.value()
                                  : withShownUnits(causeLine(result, records.conditions, forms));
    if (!result.judgement.byClient)
        records.conditions.SafeDelayMsg.Caption =
            result.judgement.waiting()
                ? u"SAFE condition delayed by %1 s"_s.arg(result.judgement.waitSeconds)
                : QString();
    records.display.LEDRead.blink(records.readings.ReadLedColour);
}

void presentVerdict(const CycleResult& result, Records& records) {
    Disp_UnsafeFlag(records.readings, records.conditions);
    const bool waiting = result.distrusted.isEmpty() && result.judgement.waiting();
    records.session.verdict = !records.readings.UnsafeFlag ? Verdict::Safe
                              : waiting                    ? Verdict::Waiting
                                                           : Verdict::Unsafe;
}

void presentNoVerdict(Records& records) {
    records.conditions.SafeDelayMsg.Caption = QString();
    records.conditions.LblStatus.Caption = QString();
    records.conditions.LEDUnsafe.FillColor = kGrey;
    records.display.LblCause.Caption = QString();
    records.display.NBAlarmMsg.Caption = QString();
    records.session.verdict = Verdict::None;
}

void Disp_UnsafeFlag(const CurrentReadings& readings, ConditionControls& controls) {
    controls.LblStatus.Caption = SafeText(readings.UnsafeFlag ? -1 : 0);
    controls.LEDUnsafe.FillColor = readings.UnsafeFlag ? kRed : kGreen;
}

QString SafeText(int flag) {
    if (flag == -1)
        return u"Unsafe"_s;
    return flag == 0 ? u"Safe"_s : QString();
}

} // namespace skyhold
