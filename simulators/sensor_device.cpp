// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/sensor_device.h"

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kHistoryPoints = 120;
constexpr int kReadCycle = 5;  // seconds between readings
constexpr int kGraphFreq = 12; // readings for each point of a graph
constexpr int kSlowReadySeconds = 30;
constexpr qint64 kSecondsPerPoint = qint64{kReadCycle} * kGraphFreq;

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
    return first.addSecs(first.secsTo(clock_.now()) / kReadCycle * kReadCycle);
}

SensorReading SensorDevice::readingAt(const QDateTime& time) const {
    const Weather weather = weatherAt(options_.scenario, options_.scenarioStart, time);
    return {.time = time,
            .cloudCondition = weather.cloudCondition,
            .rainCondition = weather.rainCondition,
            .brightnessCondition = weather.brightnessCondition,
            .skyTemperature = weather.skyTemperature,
            .rainValue = weather.rainValue,
            .brightnessValue = weather.brightnessValue,
            .sensorTemperature = weather.sensorTemperature,
            .temperature = weather.temperature,
            .heaterPercent = weather.heaterPercent,
            .heaterTemperature = weather.heaterTemperature,
            .heaterStatus = weather.heaterPercent > 20 ? u"Heating"_s : u"Normal"_s};
}

SensorReading SensorDevice::reading() const {
    const QDateTime last = lastReading();
    if (last.isValid())
        return readingAt(last);
    SensorReading none;
    none.heaterStatus = u"Normal"_s;
    return none;
}

SensorLimits SensorDevice::limits() const {
    return {.cloud = kCloudLimits, .rain = kRainLimits, .brightness = kBrightnessLimits};
}

int SensorDevice::readCycle() const {
    return kReadCycle;
}

int SensorDevice::graphFrequency() const {
    return kGraphFreq;
}

std::vector<SensorReading> SensorDevice::history() const {
    std::vector<SensorReading> points;
    const QDateTime last = lastReading();
    if (!last.isValid())
        return points;
    const QDateTime first = firstReading();
    const qint64 newest = first.secsTo(last) / kSecondsPerPoint;
    const qint64 size = std::min<qint64>(newest + 1, kHistoryPoints);
    for (qint64 point = newest - size + 1; point <= newest; ++point)
        points.push_back(readingAt(first.addSecs(point * kSecondsPerPoint)));
    return points;
}

void SensorDevice::temperatureUnitChosen(const QString& letter) {
    onChange_(u"temperature unit "_s + letter);
}

void SensorDevice::setSwitchControl(bool byClient) {
    if (byClient == switchControl_)
        return;
    switchControl_ = byClient;
    onChange_(byClient ? u"switch control given"_s : u"switch control taken back"_s);
}

void SensorDevice::setSwitch(RoofState wanted) {
    if (wanted == switchStatus_)
        return;
    switchStatus_ = wanted;
    onChange_(wanted == RoofState::Opened ? u"switch 1 opened"_s : u"switch 2 closed"_s);
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
