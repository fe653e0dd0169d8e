#include "conditions/safety.h"

#include "monitor.h"

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct Safety : Monitor {
    SafetyDecision decide() {
        return DecideSafety(readings, controls, safety, sectors, clock.MsClock(), [this] {
            ++alarmSelections;
            flagSeenByAlarms = readings.UnsafeFlag;
        });
    }
    // One cycle whose raw decision is made by the rain alone.
    bool cycle(bool rawUnsafe) {
        readings.RainCondition = rawUnsafe ? RainRain : RainDry;
        decide();
        return readings.UnsafeFlag;
    }
    bool cloudCycle(std::int32_t cloud) {
        readings.CloudCondition = cloud;
        decide();
        return readings.UnsafeFlag;
    }
    QString causes(const SafetyDecision& decision) {
        return verdictCauses(decision, controls, sensorDescription);
    }

    int alarmSelections = 0;
    bool flagSeenByAlarms = false;
};

TEST_F(Safety, EveryFlaggedLevelAloneMakesTheSkyUnsafe) {
    const struct {
        Quantity quantity;
        std::array<const char*, 3> causes; // by level; null: the level is not flagged
    } rows[] = {
        {Quantity::Cloud, {nullptr, nullptr, "Cloud: Overcast"}},
        {Quantity::Rain, {nullptr, "Rain: Wet", "Rain: Rain"}},
        {Quantity::Brightness, {nullptr, nullptr, "Brightness: Very Light"}},
        {Quantity::Wind, {nullptr, "Wind: Windy", "Wind: Very Windy"}},
        {Quantity::Gust, {nullptr, "Gust: Gusty", "Gust: Very Gusty"}},
        {Quantity::Temperature, {"Temperature: Cold", nullptr, "Temperature: Hot"}},
        {Quantity::Dew, {"Dew point: Condensation", nullptr, nullptr}},
        {Quantity::Humidity, {nullptr, nullptr, "Humidity: Very Humid"}},
    };
    for (const auto& row : rows) {
        const std::int32_t usual = level(row.quantity);
        for (std::int32_t k = -1; k <= 4; ++k) {
            const char* cause =
                k >= 1 && k <= 3 ? row.causes[static_cast<std::size_t>(k - 1)] : nullptr;
            SCOPED_TRACE(testing::Message() << static_cast<int>(row.quantity) << ": " << k);
            level(row.quantity) = k;
            const SafetyDecision decision = decide();
            EXPECT_EQ(decision.unsafe(), cause != nullptr);
            EXPECT_EQ(readings.UnsafeFlag, cause != nullptr);
            EXPECT_EQ(causes(decision), QString::fromLatin1(cause));
        }
        level(row.quantity) = usual;
    }
}

TEST_F(Safety, StaleSourcesCountWhenTheirBoxIsChecked) {
    readings.StationDataOld = true;
    EXPECT_EQ(causes(decide()), u"Weather station: data old or missing"_s);
    EXPECT_TRUE(readings.UnsafeFlag);
    controls.WSDataOldUnsafe.Value = 0;
    EXPECT_FALSE(decide().unsafe());
    EXPECT_FALSE(readings.UnsafeFlag);

    readings.SensorError = true;
    EXPECT_EQ(causes(decide()), u"Sensor program: failed"_s);
    EXPECT_TRUE(readings.UnsafeFlag);
    controls.NBDataOldUnsafe.Value = 0;
    EXPECT_FALSE(decide().unsafe());
    EXPECT_FALSE(readings.UnsafeFlag);
}

TEST_F(Safety, EveryTestRunsEachCycleAndAllCausesAreNamedInOrder) {
    // The first test of the list is unsafe; the later ones must note what they see all the same.
    readings.CloudCondition = CloudVeryCloudy;
    readings.WindCondition = WindWindy;
    readings.GustCondition = WindCalm; // not flagged
    readings.WindDirection = 10;
    controls.DirectionWind[1].Caption = u"090  180  00"_s;
    controls.DirectionGust[0].Caption = u"090  180  00"_s;
    EXPECT_EQ(causes(decide()), u"Cloud: Overcast"_s);
    EXPECT_EQ(safety.PrevCloudLevel, CloudVeryCloudy);
    EXPECT_EQ(sectors.WindOutsideSince, clock.MsClock());
    EXPECT_EQ(sectors.GustOutsideSince, clock.MsClock());

    clock.advanceSeconds(10);
    readings.WindDirection = 100;
    readings.RainCondition = RainWet;
    readings.BrightnessCondition = BrightnessVerylight;
    readings.TemperatureCondition = TemperatureLow;
    readings.DewCondition = DewLow;
    readings.HumidityCondition = HumidityHigh;
    readings.GustCondition = WindVeryWindy;
    controls.DirectionGust[2].Caption = QString();
    readings.StationDataOld = readings.SensorError = true;
    const SafetyDecision decision = decide();
    EXPECT_EQ(causes(decision), u"Cloud: Overcast, Rain: Wet, Wind: Windy, Gust: Very Gusty, "
                                "Dew point: Condensation, Humidity: Very Humid, Temperature: Cold, "
                                "Brightness: Very Light, Weather station: data old or missing, "
                                "Sensor program: failed"_s);
    // A sensor program that does not answer leaves the level's number.
    const auto silent = [](Quantity, std::int32_t) {
        return QString();
    };
    EXPECT_TRUE(verdictCauses(decision, controls, silent)
                    .startsWith(u"Cloud: level 3, Rain: level 2, Wind: Windy"_s));
}

TEST_F(Safety, SafeDelayWalks) {
    struct Step {
        double seconds; // the clock before the cycle
        bool rawUnsafe;
        bool unsafe;
        QString message;
    };
    const auto delayed = [](int seconds) {
        return u"SAFE condition delayed by "_s + QString::number(seconds) + u" s"_s;
    };
    const struct {
        const char* name;
        double delay;
        std::vector<Step> steps;
    } walks[] = {
        {"first cycle of a session safe", 60, {{0, false, false, {}}, {10, false, false, {}}}},
        {"unsafe at any time at once",
         60,
         {{0, true, true, {}}, {5, true, true, {}}, {5, false, true, delayed(60)}}},
        {"no delay", 0, {{0, true, true, {}}, {5, false, false, {}}, {5, true, true, {}}}},
        {"negative is no delay", -5, {{0, true, true, {}}, {5, false, false, {}}}},
        {"the whole wait",
         60,
         {{0, true, true, {}},
          {5, false, true, delayed(60)},
          {1, false, true, delayed(59)},
          {58, false, true, delayed(1)},
          {1, false, false, {}},
          {100, false, false, {}},
          {5, true, true, {}},
          {5, false, true, delayed(60)}}},
        {"one unsafe cycle ends the wait, the next safe one begins it anew",
         60,
         {{0, true, true, {}},
          {5, false, true, delayed(60)},
          {50, false, true, delayed(10)},
          {5, true, true, {}},
          {5, false, true, delayed(60)},
          {59, false, true, delayed(1)},
          {1, false, false, {}}}},
        {"unsafe after a safe first decision",
         60,
         {{0, false, false, {}},
          {30, true, true, {}},
          {5, false, true, delayed(60)},
          {60, false, false, {}}}},
        {"a fraction rounds, halves to even",
         2.5,
         {{0, true, true, {}},
          {5, false, true, delayed(2)},
          {1, false, true, delayed(2)},
          {1, false, true, delayed(0)},
          {1, false, false, {}}}},
        {"beyond every range",
         1e300,
         {{0, true, true, {}}, {5, false, true, delayed(2'147'483'647)}}},
        {"no number",
         std::numeric_limits<double>::quiet_NaN(),
         {{0, true, true, {}}, {5, false, true, delayed(2'147'483'647)}}},
    };
    for (const auto& walk : walks) {
        safety = {};
        controls.SafeDelayVal.Value = walk.delay;
        for (std::size_t i = 0; i < walk.steps.size(); ++i) {
            const Step& step = walk.steps[i];
            SCOPED_TRACE(testing::Message() << walk.name << ", step " << i);
            clock.advanceMs(static_cast<std::int64_t>(step.seconds * 1000));
            EXPECT_EQ(cycle(step.rawUnsafe), step.unsafe);
            EXPECT_EQ(controls.SafeDelayMsg.Caption.value(), step.message);
            EXPECT_EQ(safety.SafeState, step.rawUnsafe ? 1 : 2);
            EXPECT_EQ(safety.SafeDelayRemaining,
                      step.message.isEmpty() ? 0 : step.message.section(u' ', 4, 4).toInt());
        }
    }
}

TEST_F(Safety, SecondsOfTheWaitAreCountedByTheirBoundaries) {
    SafetyState state;
    const std::int64_t second = clock.MsClock() / 1000 * 1000;
    EXPECT_TRUE(applySafeDelay(true, 2, state, second));
    EXPECT_TRUE(applySafeDelay(false, 2, state, second + 900));
    EXPECT_EQ(state.SafeDelayRemaining, 2);
    EXPECT_TRUE(applySafeDelay(false, 2, state, second + 1'999));
    EXPECT_EQ(state.SafeDelayRemaining, 1);
    EXPECT_FALSE(applySafeDelay(false, 2, state, second + 2'000));
    EXPECT_EQ(state.SafeDelayRemaining, 0);
}

TEST_F(Safety, ANewSessionForgetsTheWait) {
    controls.SafeDelayVal.Value = 60;
    cycle(true);
    EXPECT_TRUE(cycle(false));
    EXPECT_EQ(safety.SafeDelayRemaining, 60);
    safety.SafeState = 0;
    EXPECT_FALSE(cycle(false));
    EXPECT_EQ(safety.SafeDelayRemaining, 0);
    EXPECT_EQ(controls.SafeDelayMsg.Caption.value(), QString());
}

TEST_F(Safety, CloudyCountsAfterItsDelayUnlessItFollowsOvercastOrBeginsASession) {
    controls.CondCloud[1].Value = 1; // overcast is flagged, clear is not
    safety.CloudAlarmDelay = 300;
    const struct {
        const char* what;
        int seconds;
        std::int32_t cloud;
        bool unsafe;
    } steps[] = {
        {"session begins cloudy", 0, CloudCloudy, true},
        {"clear", 10, CloudClear, false},
        {"cloudy begins", 10, CloudCloudy, false},
        {"not long enough", 299, CloudCloudy, false},
        {"long enough", 1, CloudCloudy, true},
        {"still", 10, CloudCloudy, true},
        {"a clear cycle", 10, CloudClear, false},
        {"the wait begins anew", 10, CloudCloudy, false},
        {"overcast at once", 10, CloudVeryCloudy, true},
        {"cloudy after overcast", 10, CloudCloudy, true},
        {"and it goes on", 10, CloudCloudy, true},
        {"unknown keeps what was seen", 10, CloudUnknown, false},
        {"cloudy again", 10, CloudCloudy, true},
        {"overcast", 10, CloudVeryCloudy, true},
        {"clear after overcast", 10, CloudClear, false},
        {"cloudy after clear", 10, CloudCloudy, false},
        {"not long enough", 299, CloudCloudy, false},
        {"long enough", 1, CloudCloudy, true},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.what);
        clock.advanceSeconds(step.seconds);
        EXPECT_EQ(cloudCycle(step.cloud), step.unsafe);
    }
}

TEST_F(Safety, TheCloudTestMayBeAskedByEachCallerOfACycle) {
    // The label's colour asks before the decision does; both must get the same answer.
    controls.CondCloud[1].Value = 1;
    safety.CloudAlarmDelay = 300;
    for (const auto& [cloud, active] : {std::pair{CloudVeryCloudy, true},
                                        {CloudCloudy, true},
                                        {CloudClear, true},
                                        {CloudCloudy, false},
                                        {CloudVeryCloudy, true}}) {
        readings.CloudCondition = cloud;
        clock.advanceSeconds(10);
        EXPECT_EQ(CloudLevelActive(cloud, readings, safety, clock.MsClock()), active);
        EXPECT_EQ(CloudLevelActive(cloud, readings, safety, clock.MsClock()), active);
        EXPECT_FALSE(CloudLevelActive(cloud % 3 + 1, readings, safety, clock.MsClock()));
    }
}

TEST_F(Safety, AlarmsAreSelectedWithTheNewVerdictAndNothingRunsUnderLocalControl) {
    cycle(false);
    cycle(true);
    EXPECT_EQ(alarmSelections, 2);
    EXPECT_TRUE(flagSeenByAlarms);

    safety.LocalControl = true;
    readings.UnsafeFlag = false; // the client's verdict
    readings.CloudCondition = CloudVeryCloudy;
    readings.StationDataOld = true;
    clock.advanceSeconds(10);
    const SafetyDecision decision = decide();
    EXPECT_FALSE(readings.UnsafeFlag);
    EXPECT_EQ(alarmSelections, 2);
    EXPECT_EQ(causes(decision), QString());
    EXPECT_EQ(safety.PrevCloudLevel, CloudClear);

    safety.LocalControl = false;
    decide();
    EXPECT_TRUE(readings.UnsafeFlag);
    EXPECT_EQ(alarmSelections, 3);
}

TEST_F(Safety, TheVerdictIsShown) {
    readings.UnsafeFlag = true;
    Disp_UnsafeFlag(readings, controls);
    EXPECT_EQ(controls.LblStatus.Caption.value(), u"Unsafe"_s);
    EXPECT_EQ(controls.LEDUnsafe.FillColor.value(), 255);
    readings.UnsafeFlag = false;
    Disp_UnsafeFlag(readings, controls);
    EXPECT_EQ(controls.LblStatus.Caption.value(), u"Safe"_s);
    EXPECT_EQ(controls.LEDUnsafe.FillColor.value(), 65280);

    EXPECT_EQ(SafeText(-1), u"Unsafe"_s);
    EXPECT_EQ(SafeText(0), u"Safe"_s);
    EXPECT_EQ(SafeText(1), QString());
}

} // namespace

} // namespace skyhold
