#include "core/sensor_readings.h"

#include "conditions/classification.h"
#include "core/alarms.h"
#include "records/status_lines.h"

namespace skyhold {

namespace {

constexpr std::array kSensorHeaders{Quantity::Cloud, Quantity::Rain, Quantity::Brightness};

void paintHeaders(ReadingDisplay& display, Colour colour) {
    for (const Header which : kSensorHeaders)
        display.Label0[which].ForeColor = colour;
}

// A value that could not be read keeps its last state; the failure is tested below.
template <typename Value, typename Read>
void keep(Value& value, const std::optional<Read>& read) {
    if (read)
        value = *read;
}

QDateTime dateOf(const std::optional<QVariant>& value) {
    const std::optional<double> days = value ? toReal(*value) : std::nullopt;
    return days ? fromDaySerial(*days) : QDateTime();
}

void readValues(SensorLink& sensor, CurrentReadings& readings) {
    keep(readings.Condition[Quantity::Cloud], sensor.readLevel(QStringLiteral("Condition_Cloud")));
    keep(readings.Condition[Quantity::Rain], sensor.readLevel(QStringLiteral("Condition_Rain")));
    keep(readings.Condition[Quantity::Brightness], sensor.readLevel(QStringLiteral("Condition_Brightness")));
    keep(readings.SensorValues[0], sensor.readReal(QStringLiteral("SkyTemperature")));
    keep(readings.SensorValues[1], sensor.readReal(QStringLiteral("RainValue")));
    keep(readings.SensorValues[2], sensor.readReal(QStringLiteral("BrightnessValue")));
    keep(readings.SkySensorTemperature, sensor.readReal(QStringLiteral("SkySensorTemperature")));
    keep(readings.AmbientTemperature, sensor.readReal(QStringLiteral("AmbientTemperature")));
    keep(readings.SensorValues[3], sensor.readReal(QStringLiteral("SkySensorTemperature")));
    keep(readings.SensorValues[4], sensor.readReal(QStringLiteral("RainHeaterPercent")));
    keep(readings.SensorValues[5], sensor.readReal(QStringLiteral("RainHeaterTemperature")));
    keep(readings.RainHeaterStatus, sensor.readText(QStringLiteral("RainHeaterStatus")));
    const QDateTime last = dateOf(sensor.read(QStringLiteral("LastReading")));
    if (last.isValid())
        readings.LastReading = last;
}

bool sensorFailed(SensorLink& sensor) {
    const bool running = sensor.readBoolean(QStringLiteral("DeviceIsRunning")).value_or(false);
    const bool transferError = sensor.readBoolean(QStringLiteral("Kiv_XFERFileErr")).value_or(true);
    return sensor.takeCallFailure() || !running || transferError;
}

void showFailure(SensorLink& sensor, Records& records, const AlarmPlayer& player) {
    ReadingDisplay& display = records.display;
    SetStatusText(records.session.Statusbar1, QStringLiteral("Error with Kiv_Nubilo"), kRed);
    records.readings.SensorError = true;
    display.SensorStatus.Caption = QStringLiteral("NB error");
    records.readings.ReadLedColour = kYellow;
    SensorFailureAlarm(true, player, records.readings, [&sensor] { stopSensorAlarm(sensor); });
    SetErrorCodes(records.session.Statusbar2, QStringLiteral("a31"), kRed);
    paintHeaders(display, kRed);
    for (Label* label : {&display.LVal[Quantity::Cloud], &display.LVal[Quantity::Rain], &display.LVal[Quantity::Brightness],
                         &display.LCond[Quantity::Rain], &display.LCond[Quantity::Brightness]})
        label->Caption = QString();
    PaintLabel(display.LCond[Quantity::Cloud], kYellow, QString());
    // A master's switch stands somewhere, but nobody can tell where.
    const QString master = QStringLiteral("MASTER");
    if (sensor.readText(QStringLiteral("Kiv_DeviceRole")).value_or(master) == master)
        display.LValSwitch.Caption = QString();
    // What failed in here belongs to the failure that has just been shown.
    sensor.takeCallFailure();
}

} // namespace

void ReadSensor(SensorLink& sensor, Records& records, const NumberForms& forms,
                const AlarmPlayer& player) {
    CurrentReadings& readings = records.readings;
    ReadingDisplay& display = records.display;
    readings.SensorError = false;
    display.SensorStatus.Caption = QString();
    paintHeaders(display, kCyan);

    readValues(sensor, readings);
    PaintLabel(display.LVal[Quantity::Cloud], kGreen, formatNumber(readings.SensorValues[0], u"0.0", forms));
    PaintLabel(display.LVal[Quantity::Rain], kGreen, formatNumber(readings.SensorValues[1], u"0", forms));
    PaintLabel(display.LVal[Quantity::Brightness], kGreen, formatNumber(readings.SensorValues[2], u"0", forms));
    if (readings.StationValid) {
        if (readings.StationTemperature)
            PaintLabel(display.LVal[Quantity::Temperature], kGreen,
                       formatNumber(*readings.StationTemperature, u"0.0", forms));
        ClassifyTemperature(display.LCond[Quantity::Temperature], readings.StationTemperature, readings,
                            records.conditions);
        PaintLabel(display.Label3Station, kGreen,
                   display.LblWSValue[0].Caption.value() + u' ' +
                       display.LblWSValue[1].Caption.value());
    }
    const bool dayFirst = records.units.DateFormat.Index == 0;
    PaintLabel(display.Label3Sensor, kGreen,
               formatDate(readings.LastReading, dayFirst ? u"dd/mm hh:mm:ss" : u"mm/dd hh:mm:ss"));

    if (sensorFailed(sensor)) {
        showFailure(sensor, records, player);
        return;
    }
    SensorFailureAlarm(false, player, readings, nullptr);
    if (records.session.Statusbar2.Caption.value() == QStringLiteral("a31"))
        SetErrorCodes(records.session.Statusbar2, QString(), kRed);
}

} // namespace skyhold
