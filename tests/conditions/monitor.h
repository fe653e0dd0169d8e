// The records of a monitor as a first start leaves them, with calm, clear, dry weather, and a
// clock to move.
#pragma once

#include "support/manual_clock.h"

#include "records/condition_controls.h"
#include "records/current_readings.h"
#include "records/reading_display.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace skyhold {

struct Monitor : testing::Test {
    Monitor() {
        setLevels(controls.LimitWind, controls.ColorWind, controls.CondWind, {10, 20, 99},
                  QStringLiteral("Calm/Windy/Very Windy"), {0, 1, 1});
        setLevels(controls.LimitGust, controls.ColorGust, controls.CondGust, {10, 20, 99},
                  QStringLiteral("Calm/Gusty/Very Gusty"), {0, 1, 1});
        setLevels(controls.LimitTemp, controls.ColorTemp, controls.CondTemp, {-5, 50, 99},
                  QStringLiteral("Cold/Fine/Hot"), {1, 0, 1});
        setLevels(controls.LimitDew, controls.ColorDew, controls.CondDew, {3, 5, 99},
                  QStringLiteral("Condensation/Humid/Fine"), {1, 0, 0});
        setLevels(controls.LimitHum, controls.ColorHum, controls.CondHum, {80, 90, 99},
                  QStringLiteral("Fine/Humid/Very Humid"), {0, 0, 1});
        setFlags(controls.CondCloud, {0, 0, 1});
        setFlags(controls.CondRain, {0, 1, 1});
        setFlags(controls.CondDay, {0, 0, 1});
        for (std::size_t i = 0; i < 3; ++i) {
            controls.DirectionWind[i].Caption = QStringLiteral("000  359  01");
            controls.DirectionGust[i].Caption = QStringLiteral("000  359  01");
        }
        controls.WSDataOldUnsafe.Value = 1;
        controls.NBDataOldUnsafe.Value = 1;
        safety.PrevCloudLevel = CloudCloudy;

        readings.StationValid = true;
        readings.CloudCondition = CloudClear;
        readings.RainCondition = RainDry;
        readings.BrightnessCondition = BrightnessDark;
        readings.WindCondition = WindCalm;
        readings.GustCondition = WindCalm;
        readings.TemperatureCondition = TemperatureMedium;
        readings.DewCondition = DewHigh;
        readings.HumidityCondition = HumidityLow;
    }

    static void setFlags(ThreeChecks& boxes, const std::array<int, 3>& values) {
        for (std::size_t i = 0; i < 3; ++i)
            boxes[i].Value = values[i];
    }

    static void setLevels(ThreeBoxes& limits, ThreeLabels& swatches, ThreeChecks& unsafe,
                          const std::array<double, 3>& bounds, const QString& descriptions,
                          const std::array<int, 3>& flags) {
        const QStringList texts = descriptions.split(u'/');
        for (std::size_t i = 0; i < 3; ++i) {
            limits[i].Value = bounds[i];
            swatches[i].Caption = texts[static_cast<qsizetype>(i)];
        }
        setFlags(unsafe, flags);
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
