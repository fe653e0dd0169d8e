// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/sensor_device.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kReadCycle = 5;
constexpr int kGraphFrequency = 12;
constexpr std::size_t kHistoryPoints = 120;

// The limits as other programs know them: the end of each level. There is none behind the last.
std::array<double, 3> limitsOf(const LevelRule& rule) {
    const double second = rule.level2 ? rule.level2->value : 0;
    const double third = rule.level3 ? rule.level3->value : second;
    return {second, third, third};
}

} // namespace

MeasuredSensor::MeasuredSensor(const SensorSettings& settings, const Measurements& measurements,
                               RoofSwitch* roof, std::function<void(const QString&)> log)
    : settings_(settings)
    , measurements_(measurements)
    , roof_(roof)
    , log_(std::move(log)) {}

QString MeasuredSensor::version() const {
    return u"5.20.0001"_s; // of these members, not of the program
}

QString MeasuredSensor::role() const {
    return settings_.master ? u"MASTER"_s : u"SLAVE"_s;
}

bool MeasuredSensor::dataReady() const {
    return settings_.anyOfSensor() && measurements_.missing(true).empty();
}

SensorReading MeasuredSensor::reading() const {
    SensorReading reading;
    const auto value = [this](Item item) {
        return settings_.items[item].value.isSet() ? measurements_.value(item) : 0;
    };
    const auto level = [this](Item item) {
        return settings_.items[item].isSet() ? measurements_.level(item) : 0;
    };
    reading.cloudCondition = level(Item::Cloud);
    reading.rainCondition = level(Item::Rain);
    reading.brightnessCondition = level(Item::Brightness);
    reading.skyTemperature = value(Item::Cloud);
    reading.rainValue = value(Item::Rain);
    reading.brightnessValue = value(Item::Brightness);
    reading.temperature = value(Item::Temperature);
    reading.sensorTemperature = value(Item::SensorTemperature);
    reading.heaterPercent = value(Item::HeaterPercent);
    reading.heaterTemperature = value(Item::HeaterTemperature);
    if (settings_.items[Item::HeaterPercent].isSet() && reading.heaterPercent)
        reading.heaterStatus = *reading.heaterPercent > 0 ? u"Heating"_s : u"Normal"_s;
    double oldest = -1;
    for (const ItemRow& row : kItems) {
        const std::optional<double> age = measurements_.ageSeconds(row.item);
        if (row.ofSensor && age)
            oldest = std::max(oldest, *age);
    }
    if (oldest >= 0)
        reading.time = QDateTime::currentDateTime().addMSecs(-std::llround(oldest * 1000));
    return reading;
}

SensorLimits MeasuredSensor::limits() const {
    return {.cloud = limitsOf(settings_.items[Item::Cloud].levels),
            .rain = limitsOf(settings_.items[Item::Rain].levels),
            .brightness = limitsOf(settings_.items[Item::Brightness].levels)};
}

void MeasuredSensor::keepHistory() {
    if (sinceKept_ > 0 || !dataReady()) {
        sinceKept_ = (sinceKept_ + 1) % kGraphFrequency;
        return;
    }
    sinceKept_ = 1;
    history_.push_back(reading());
    if (history_.size() > kHistoryPoints)
        history_.pop_front();
}

std::vector<SensorReading> MeasuredSensor::history() const {
    return {history_.begin(), history_.end()};
}

int MeasuredSensor::readCycle() const {
    return kReadCycle;
}

int MeasuredSensor::graphFrequency() const {
    return kGraphFrequency;
}

void MeasuredSensor::setSwitch(RoofState wanted) {
    if (roof_ && settings_.master)
        roof_->want(wanted, switchControl_ && !unsafe_ && dataReady());
}

RoofState MeasuredSensor::switchStatus() const {
    return roof_ ? roof_->state() : RoofState::Unknown;
}

void MeasuredSensor::setUnsafe(bool unsafe) {
    unsafe_ = unsafe;
    if (roof_)
        roof_->heard();
}

void MeasuredSensor::setLocalControl(bool claimed, const QString& label) {
    log_(claimed ? label : u"the monitor has given control back"_s);
}

} // namespace skyhold
