// A monitor whose alarms are played by a scripted media control, in calm, clear, dry weather.
#pragma once

#include "conditions/alarms.h"
#include "conditions/rules_of.h"
#include "judge/judge.h"
#include "support/manual_clock.h"
#include "support/scripted_media.h"
#include "support/test_folder.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

struct AlarmFixture : testing::Test {
    AlarmFixture() {
        for (const QuantityRow& row : quantityTable()) {
            for (std::size_t i = 0; i < kLevelCount; ++i) {
                controls.Cond[row.quantity][i].Value = row.levels[i].unsafe ? 1 : 0;
                if (row.hasLimits())
                    controls.Limit[row.quantity][i].Value =
                        QByteArray(row.levels[i].limit).toDouble();
            }
        }
        seen.station.state = SourceState::Ok;
        seen.sensor.state = SourceState::Ok;
        for (const Quantity quantity : kAllQuantities)
            setLevel(quantity, 1);
        setLevel(Quantity::Temperature, 2);
        setLevel(Quantity::Dew, 3);
        beginSession({}, memory, {clock.MsClock(), clock.MsClock()});
    }

    // 0 is above the last limit.
    void setLevel(Quantity quantity, std::int32_t level) {
        const auto& limits = controls.Limit[quantity];
        if (!rowOf(quantity).hasLimits())
            seen.givenLevels[quantity] = level;
        else if (level == 0)
            seen.values[quantity] = limits.back().Value + 1;
        else
            seen.values[quantity] = limits[static_cast<std::size_t>(level - 1)].Value;
    }

    // A sound file of that name; its path.
    QString sound(const QString& name) const { return folder.write(name + u".wav"_s); }

    // The one indicator that is lit, or -1.
    int lit() const {
        int found = -1;
        for (int i = 0; i < 10; ++i) {
            if (!alarms.PlayAlarm[static_cast<std::size_t>(i)])
                continue;
            EXPECT_EQ(found, -1) << "two indicators are lit";
            found = i;
        }
        return found;
    }

    ManualClock clock;
    Observation seen;
    ConditionControls controls;
    JudgeMemory memory;
    CurrentReadings readings;
    TestFolder folder;
    AlarmControls alarms;
    ScriptedMedia media;
    Timer timer{clock};
    AlarmPlayer player{media, timer, alarms};
};

} // namespace skyhold
