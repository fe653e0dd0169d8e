// The records of a monitor as a first start leaves them, with calm, clear, dry weather, and a
// clock to move.
#pragma once

#include "support/manual_clock.h"

#include "records/condition_controls.h"
#include "model/current_readings.h"
#include "records/reading_display.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <limits>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Monitor : testing::Test {
    Monitor() {
        setLevels(Quantity::Wind, {10, 20, 99}, u"Calm/Windy/Very Windy"_s, {0, 1, 1});
        setLevels(Quantity::Gust, {10, 20, 99}, u"Calm/Gusty/Very Gusty"_s, {0, 1, 1});
        setLevels(Quantity::Temperature, {-5, 50, 99}, u"Cold/Fine/Hot"_s, {1, 0, 1});
        setLevels(Quantity::Dew, {3, 5, 99}, u"Condensation/Humid/Fine"_s, {1, 0, 0});
        setLevels(Quantity::Humidity, {80, 90, 99}, u"Fine/Humid/Very Humid"_s, {0, 0, 1});
        setFlags(Quantity::Cloud, {0, 0, 1});
        setFlags(Quantity::Rain, {0, 1, 1});
        setFlags(Quantity::Brightness, {0, 0, 1});
        setDirections(u"000  359  01"_s);
        controls.WSDataOldUnsafe.Value = 1;
        controls.NBDataOldUnsafe.Value = 1;
        safety.PrevCloudLevel = CloudCloudy;

        readings.StationValid = true;
        readings.Condition[Quantity::Cloud] = CloudClear;
        readings.Condition[Quantity::Rain] = RainDry;
        readings.Condition[Quantity::Brightness] = BrightnessDark;
        readings.Condition[Quantity::Wind] = readings.Condition[Quantity::Gust] = WindCalm;
        readings.Condition[Quantity::Temperature] = TemperatureMedium;
        readings.Condition[Quantity::Dew] = DewHigh;
        readings.Condition[Quantity::Humidity] = HumidityLow;
    }

    // The sector of every level of wind and gust.
    void setDirections(const QString& sector) {
        for (std::size_t i = 0; i < 3; ++i) {
            controls.Direction[Quantity::Wind][i].Caption = sector;
            controls.Direction[Quantity::Gust][i].Caption = sector;
        }
    }
    void setFlags(Quantity quantity, const std::array<int, 3>& values) {
        for (std::size_t i = 0; i < 3; ++i)
            controls.Cond[quantity][i].Value = values[i];
    }
    void setLevels(Quantity quantity, const std::array<double, 3>& bounds,
                   const QString& descriptions, const std::array<int, 3>& flags) {
        for (std::size_t i = 0; i < 3; ++i) {
            controls.Limit[quantity][i].Value = bounds[i];
            controls.Color[quantity][i].Caption =
                descriptions.split(u'/')[static_cast<qsizetype>(i)];
        }
        setFlags(quantity, flags);
    }

    static QString sensorDescription(Quantity quantity, std::int32_t level) {
        const char* texts = quantity == Quantity::Cloud  ? "Clear/Cloudy/Overcast"
                            : quantity == Quantity::Rain ? "Dry/Wet/Rain"
                                                         : "Dark/Light/Very Light";
        return QString::fromLatin1(texts).section(u'/', level - 1, level - 1);
    }

    std::int32_t& level(Quantity quantity) {
        using R = CurrentReadings;
        constexpr std::array fields{&R::CloudCondition,      &R::RainCondition,
                                    &R::BrightnessCondition, &R::WindCondition,
                                    &R::GustCondition,       &R::TemperatureCondition,
                                    &R::DewCondition,        &R::HumidityCondition};
        return readings.*fields[static_cast<std::size_t>(quantity)];
    }

    ManualClock clock;
    CurrentReadings readings;
    ReadingDisplay display;
    ConditionControls controls;
    SafetyState safety;
    SectorState sectors;
};

} // namespace skyhold
