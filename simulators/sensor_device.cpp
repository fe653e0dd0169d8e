#include "simulators/sensor_device.h"

#include "bus/automation_value.h"

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kHistoryPoints = 120;
constexpr int kSlowReadySeconds = 30;
constexpr qint64 kSecondsPerPoint = qint64{kSensorReadCycle} * kSensorGraphFreq;

} // namespace

SensorDevice::SensorDevice(const Clock& clock, const SensorOptions& options, const Faults& faults,
                           std::function<void(const QString&)> onChange)
    : clock_(clock)
    , options_(options)
    , faults_(faults)
    , onChange_(std::move(onChange)) {}

QString SensorDevice::version() const {
    return faults_.has(u"old-version"_s) ? u"5.10.0001"_s : options_.version;
}

QString SensorDevice::role() const {
    return faults_.has(u"role"_s) ? faults_.value(u"role"_s) : options_.role;
}

void SensorDevice::start() {
    if (started_.isValid())
        return;
    started_ = clock_.now();
    onChange_(u"device started"_s);
}

bool SensorDevice::running() const {
    return started_.isValid() && !faults_.has(u"not-running"_s);
}

double SensorDevice::secondsSinceStart() const {
    return static_cast<double>(started_.msecsTo(clock_.now())) / 1000;
}

bool SensorDevice::dataReady() const {
    if (!running())
        return false;
    const double wait = faults_.has(u"slow-ready"_s)
                            ? faults_.number(u"slow-ready"_s, kSlowReadySeconds)
                            : options_.readyAfter;
    return secondsSinceStart() >= wait;
}

bool SensorDevice::transferFailed() const {
    return faults_.has(u"xfer-error"_s);
}

QDateTime SensorDevice::firstReading() const {
    // In local time, so that what is counted from it follows summer time.
    return started_.toLocalTime().addMSecs(static_cast<qint64>(options_.readyAfter * 1000));
}

QDateTime SensorDevice::lastReading() const {
    if (!dataReady())
        return {};
    const QDateTime first = firstReading();
    return first.addSecs(first.secsTo(clock_.now()) / kSensorReadCycle * kSensorReadCycle);
}

Weather SensorDevice::weatherAt(const QDateTime& time) const {
    return skyhold::weatherAt(options_.scenario, options_.scenarioStart, time);
}

Weather SensorDevice::reading() const {
    const QDateTime last = lastReading();
    return last.isValid() ? weatherAt(last) : Weather{};
}

QString SensorDevice::heaterStatus() const {
    return reading().heaterPercent > 20 ? u"Heating"_s : u"Normal"_s;
}

double SensorDevice::temperature(double celsius) const {
    return temperatureIn(temperatureUnit_ == u"F"_s ? u'F' : u'C', celsius);
}

int SensorDevice::historySize() const {
    const QDateTime last = lastReading();
    if (!last.isValid())
        return 0;
    const qint64 points = firstReading().secsTo(last) / kSecondsPerPoint + 1;
    return static_cast<int>(std::min<qint64>(points, kHistoryPoints));
}

QList<QVariantList> SensorDevice::history(SensorGraph graph) const {
    const QVariant unused = QVariantList(); // how an empty value goes over the bus
    QList<QVariantList> table{{unused}, {unused}, {unused}, {unused}};
    const int size = historySize();
    if (size == 0)
        return table;
    const QDateTime first = firstReading();
    const qint64 newest = first.secsTo(lastReading()) / kSecondsPerPoint;
    for (qint64 point = newest - size + 1; point <= newest; ++point) {
        const QDateTime time = first.addSecs(point * kSecondsPerPoint);
        const Weather weather = weatherAt(time);
        table[1].append(QVariant::fromValue(AutomationDate{daySerial(time)}));
        switch (graph) {
        case SensorGraph::Cloud:
            table[2].append(temperature(weather.skyTemperature));
            table[3].append(weather.cloudCondition);
            break;
        case SensorGraph::Rain:
            table[2].append(weather.rainValue);
            table[3].append(weather.rainCondition);
            break;
        case SensorGraph::Day:
            table[2].append(weather.brightnessValue);
            table[3].append(weather.brightnessCondition);
            break;
        case SensorGraph::Temp:
            table[2].append(temperature(weather.temperature));
            table[3].append(temperature(weather.sensorTemperature));
            break;
        }
    }
    return table;
}

void SensorDevice::setTemperatureUnit(const QString& letter) {
    if (letter == temperatureUnit_)
        return;
    temperatureUnit_ = letter;
    onChange_(u"temperature unit "_s + letter);
}

void SensorDevice::setSwitchControl(bool byClient) {
    if (byClient == switchControl_)
        return;
    switchControl_ = byClient;
    onChange_(byClient ? u"switch control given"_s : u"switch control taken back"_s);
}

void SensorDevice::setSwitch(double value) {
    if ((value != 1 && value != 2) || value == switchStatus_)
        return;
    switchStatus_ = value;
    onChange_(value == 1 ? u"switch 1 opened"_s : u"switch 2 closed"_s);
}

void SensorDevice::setUnsafe(bool unsafe) {
    if (unsafe_ == unsafe)
        return;
    unsafe_ = unsafe;
    onChange_(unsafe ? u"unsafe"_s : u"safe"_s);
}

void SensorDevice::setLocalControl(bool claimed, const QString& label) {
    onChange_(claimed ? u"control claimed: "_s + label : u"control released"_s);
}

void SensorDevice::stopAlarm() {
    onChange_(u"alarm stopped"_s);
}

} // namespace skyhold
