// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/measurements.h"

#include <algorithm>

namespace skyhold {

namespace {

// No instrument shows these; a text that is a number by mistake (a status code, a lost point) is.
bool possible(ItemMeasure measure, double value) {
    switch (measure) {
    case ItemMeasure::Temperature:
        return value >= -150 && value <= 150;
    case ItemMeasure::Speed:
        return value >= 0 && value <= 500;
    case ItemMeasure::Percent:
        return value >= 0 && value <= 110;
    case ItemMeasure::Angle:
        return value >= -360 && value <= 360;
    case ItemMeasure::Pressure:
        return value >= 300 && value <= 1200;
    case ItemMeasure::Rain:
        return value >= 0;
    case ItemMeasure::Plain:
        break;
    }
    return true;
}

} // namespace

Measurements::Measurements(const SensorSettings& settings, NowMs nowMs)
    : settings_(settings)
    , nowMs_(std::move(nowMs)) {
    for (const SourceSettings& source : settings.sources)
        sources_[source.name].Arrived = [this, name = source.name](const QString& address) {
            arrived(name, address);
        };
    for (const ItemRow& row : kItems) {
        const ItemSettings& item = settings.items[row.item];
        finders_[row.item] = LevelFinder(item.levels);
        for (const ValueAddress& address : {item.value, item.levelFrom}) {
            if (address.isSet())
                sources_[address.source].want(address.address);
        }
    }
}

const SourceSample* Measurements::sample(const ValueAddress& address) const {
    const auto source = sources_.find(address.source);
    return source == sources_.end() ? nullptr : source->second.find(address.address);
}

bool Measurements::fresh(const ValueAddress& address, const ItemSettings& item) const {
    const SourceSample* found = sample(address);
    return found && static_cast<double>(nowMs_() - found->atMs) <= item.maxAgeSeconds * 1000;
}

std::optional<double> Measurements::value(Item item) const {
    const ItemSettings& settings = settings_.items[item];
    if (!settings.value.isSet() || !fresh(settings.value, settings))
        return std::nullopt;
    const std::optional<double> number = plainNumber(sample(settings.value)->text);
    if (!number)
        return std::nullopt;
    const double scaled = *number * settings.scale + settings.offset;
    const double value = scaled * settings.unit.factor + settings.unit.addend;
    return possible(rowOf(item).measure, value) ? std::optional(value) : std::nullopt;
}

// What the limits are compared with.
std::optional<double> Measurements::levelNumber(Item item) const {
    const ItemSettings& settings = settings_.items[item];
    if (settings.levelFrom.isSet()) {
        return fresh(settings.levelFrom, settings) ? plainNumber(sample(settings.levelFrom)->text)
                                                   : std::nullopt;
    }
    const std::optional<double> own = value(item);
    if (!own || !settings.differenceToAir)
        return own;
    const std::optional<double> air = value(Item::Temperature);
    return air ? std::optional(*own - *air) : std::nullopt;
}

std::optional<std::int32_t> Measurements::level(Item item) const {
    const ItemSettings& settings = settings_.items[item];
    if (settings.levels.words.empty())
        return levelNumber(item) ? levels_[item] : std::nullopt;
    const ValueAddress& from = settings.levelFrom.isSet() ? settings.levelFrom : settings.value;
    if (!fresh(from, settings))
        return std::nullopt;
    return finders_[item].levelOf(sample(from)->text);
}

std::optional<double> Measurements::ageSeconds(Item item) const {
    const ItemSettings& settings = settings_.items[item];
    std::optional<double> age;
    for (const ValueAddress& address : {settings.value, settings.levelFrom}) {
        if (!address.isSet())
            continue;
        const SourceSample* found = sample(address);
        if (!found)
            return std::nullopt;
        age = std::max(age.value_or(0), static_cast<double>(nowMs_() - found->atMs) / 1000);
    }
    return age;
}

bool Measurements::complete(Item item) const {
    const ItemSettings& settings = settings_.items[item];
    return (!settings.value.isSet() || value(item)) && (!rowOf(item).hasLevels || level(item));
}

std::vector<Item> Measurements::missing(bool ofSensorAlone) const {
    std::vector<Item> items;
    for (const ItemRow& row : kItems) {
        if (settings_.items[row.item].isSet() && (row.ofSensor || !ofSensorAlone) &&
            !complete(row.item))
            items.push_back(row.item);
    }
    return items;
}

// Hysteresis needs the level of every value that came.
void Measurements::arrived(const QString& source, const QString& address) {
    const ValueAddress news{source, address};
    for (const ItemRow& row : kItems) {
        const ItemSettings& item = settings_.items[row.item];
        if (!row.hasLevels || !item.levels.words.empty())
            continue;
        const bool ofAir = item.differenceToAir && settings_.items[Item::Temperature].value == news;
        if (item.value != news && item.levelFrom != news && !ofAir)
            continue;
        if (const std::optional<double> number = levelNumber(row.item))
            levels_[row.item] = finders_[row.item].levelOf(*number);
    }
    if (Changed)
        Changed();
}

} // namespace skyhold
