// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor's values and levels, from the texts of the sources by the settings.
#pragma once

#include "sensors/settings.h"
#include "sensors/source_readings.h"

#include <map>

namespace skyhold {

class Measurements {
  public:
    using NowMs = std::function<std::int64_t()>; // as bootMs

    explicit Measurements(const SensorSettings& settings, NowMs nowMs = bootMs);

    // Where the source of that name puts its texts; it wants what the settings map.
    SourceReadings& of(const QString& source) { return sources_[source]; }

    // In what values are kept in. Nothing for a text that is no number, a value that cannot be, or
    // one older than its limit.
    std::optional<double> value(Item item) const;
    // 1..3. Nothing while what it is found from is missing.
    std::optional<std::int32_t> level(Item item) const;
    // Of the oldest text that the item needs; nothing when one is missing.
    std::optional<double> ageSeconds(Item item) const;
    // The item has all that the settings say it should.
    bool complete(Item item) const;
    // The items that are not, of the sensor's alone or of all.
    std::vector<Item> missing(bool ofSensorAlone) const;

    // After every text that came.
    std::function<void()> Changed;

  private:
    void arrived(const QString& source, const QString& address);
    const SourceSample* sample(const ValueAddress& address) const;
    bool fresh(const ValueAddress& address, const ItemSettings& item) const;
    std::optional<double> levelNumber(Item item) const;

    const SensorSettings& settings_;
    NowMs nowMs_;
    std::map<QString, SourceReadings> sources_;
    PerItem<LevelFinder> finders_;
    PerItem<std::optional<std::int32_t>> levels_; // by the limits, of the latest texts
};

} // namespace skyhold
