#include "conditions/safety.h"

#include "monitor.h"

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
        readings.Condition[Quantity::Rain] = rawUnsafe ? RainRain : RainDry;
        decide();
        return readings.UnsafeFlag;
    }
    QString causes(const SafetyDecision& decision) {
        return verdictCauses(decision, controls, sensorDescription);
    }

    int alarmSelections = 0;
    bool flagSeenByAlarms = false;
};

TEST_F(Safety, EveryFlaggedLevelAndEveryOldSourceAloneMakesTheSkyUnsafe) {
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
    const auto expect = [this](const QString& cause) {
        const SafetyDecision decision = decide();
        EXPECT_EQ(decision.unsafe(), !cause.isEmpty());
        EXPECT_EQ(readings.UnsafeFlag, !cause.isEmpty());
        EXPECT_EQ(causes(decision), cause);
    };
    for (const auto& row : rows) {
        const std::int32_t usual = level(row.quantity);
        for (std::int32_t k = -1; k <= 4; ++k) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(row.quantity) << ": " << k);
            level(row.quantity) = k;
            expect(k >= 1 && k <= 3
                       ? QString::fromLatin1(row.causes[static_cast<std::size_t>(k - 1)])
                       : QString());
        }
        level(row.quantity) = usual;
    }
    readings.StationDataOld = true;
    expect(u"Weather station: data old or missing"_s);
    controls.WSDataOldUnsafe.Value = 0;
    expect({});
    readings.SensorError = true;
    expect(u"Sensor program: failed"_s);
    controls.NBDataOldUnsafe.Value = 0;
    expect({});
}

TEST_F(Safety, WhatIsBeyondTheLastLimitIsNeverPassedOverSilently) {
    const auto notes = [this](const NumberForms& forms = {}) {
        return verdictNotes(readings, controls, forms).join(u", "_s);
    };
    readings.WindSpeed = 105;
    readings.GustSpeed = 8;
    EXPECT_EQ(notes(), QString());
    readings.Condition[Quantity::Wind] = WindUnknown;
    readings.Condition[Quantity::Temperature] = TemperatureUnknown; // missing
    EXPECT_EQ(notes(), u"Wind 105.0 km/h is beyond the last limit and is not judged"_s);
    readings.Condition[Quantity::Dew] = DewUnknown;
    readings.DewSpread = 100.25;
    readings.SpeedUnit = u"m"_s;
    EXPECT_EQ(notes({u","_s, {}}), u"Wind 105,0 m/s, Dew-point spread 100,3 °C are beyond the last "
                                   "limit and are not judged"_s);
    EXPECT_FALSE(decide().unsafe());

    controls.BeyondLimitUnsafe.Value = 1;
    const SafetyDecision decision = decide();
    EXPECT_TRUE(decision.unsafe());
    EXPECT_EQ(causes(decision), u"Wind: beyond the last limit, Dew point: beyond the last limit"_s);
    EXPECT_EQ(notes(), QString());

    for (const std::array<double, 3>& limits : {std::array{20.0, 10.0, 99.0},
                                                {10.0, 10.0, 99.0},
                                                {10.0, 99.0, 20.0},
                                                {10.0, kNan, 99.0}}) {
        for (std::size_t i = 0; i < 3; ++i)
            controls.Limit[Quantity::Gust][i].Value = limits[i];
        EXPECT_EQ(notes(), u"Limits of Gust are not in order"_s);
    }
}

TEST_F(Safety, EveryTestRunsEachCycleAndAllCausesAreNamedInOrder) {
    // The first test of the list is unsafe; the later ones must note what they see all the same.
    readings.Condition[Quantity::Cloud] = CloudVeryCloudy;
    readings.Condition[Quantity::Wind] = WindWindy;
    readings.Condition[Quantity::Gust] = WindCalm; // not flagged
    readings.WindDirection = 10;
    setDirections(u"090  180  00"_s);
    EXPECT_EQ(causes(decide()), u"Cloud: Overcast"_s);
    EXPECT_EQ(safety.PrevCloudLevel, CloudVeryCloudy);
    EXPECT_EQ(sectors.WindOutsideSince, clock.MsClock());
    EXPECT_EQ(sectors.GustOutsideSince, clock.MsClock());

    clock.advanceSeconds(10);
    readings.WindDirection = 100;
    readings.Condition[Quantity::Rain] = RainWet;
    readings.Condition[Quantity::Brightness] = BrightnessVerylight;
    readings.Condition[Quantity::Temperature] = TemperatureLow;
    readings.Condition[Quantity::Dew] = DewLow;
    readings.Condition[Quantity::Humidity] = HumidityHigh;
    readings.Condition[Quantity::Gust] = WindVeryWindy;
    controls.Direction[Quantity::Gust][2].Caption = QString();
    readings.StationDataOld = readings.SensorError = true;
    const SafetyDecision decision = decide();
    EXPECT_EQ(causes(decision), u"Cloud: Overcast, Rain: Wet, Wind: Windy, Gust: Very Gusty, "
                                "Dew point: Condensation, Humidity: Very Humid, Temperature: Cold, "
                                "Brightness: Very Light, Weather station: data old or missing, "
                                "Sensor program: failed"_s);
    // A sensor program that does not answer leaves the level's number.
    EXPECT_TRUE(verdictCauses(decision, controls, [](Quantity, std::int32_t) {
                    return QString();
                }).startsWith(u"Cloud: level 3, Rain: level 2, Wind: Windy"_s));
}

TEST_F(Safety, SafeDelayWalks) {
    constexpr int kUnsafe = -2; // a level is unsafe, and the verdict at once
    constexpr int kSafe = -1;   // no level is unsafe, nor the verdict
    struct Step {
        double seconds; // the clock before the cycle
        int outcome;    // one of these, or how long safe is still held back
    };
    const struct {
        const char* name;
        double delay;
        std::vector<Step> steps;
    } walks[] = {
        {"first cycle of a session safe", 60, {{0, kSafe}, {10, kSafe}}},
        {"unsafe at any time at once", 60, {{0, kUnsafe}, {5, kUnsafe}, {5, 60}}},
        {"a new session forgets that wait", 60, {{0, kSafe}, {10, kSafe}}},
        {"no delay", 0, {{0, kUnsafe}, {5, kSafe}, {5, kUnsafe}}},
        {"negative is no delay", -5, {{0, kUnsafe}, {5, kSafe}}},
        {"the whole wait",
         60,
         {{0, kUnsafe}, {5, 60}, {1, 59}, {58, 1}, {1, kSafe}, {99, kSafe}, {5, kUnsafe}, {5, 60}}},
        {"one unsafe cycle ends the wait, the next safe one begins it anew",
         60,
         {{0, kUnsafe}, {5, 60}, {50, 10}, {5, kUnsafe}, {5, 60}, {59, 1}, {1, kSafe}}},
        {"after a safe first one", 60, {{0, kSafe}, {30, kUnsafe}, {5, 60}, {60, kSafe}}},
        {"halves round to even", 2.5, {{0, kUnsafe}, {5, 2}, {1, 2}, {1, 0}, {1, kSafe}}},
        {"beyond every range", 1e300, {{0, kUnsafe}, {5, 2'147'483'647}}},
        {"no number", kNan, {{0, kUnsafe}, {5, 2'147'483'647}}},
    };
    for (const auto& walk : walks) {
        safety.SafeState = 0; // as a new session begins
        controls.SafeDelayVal.Value = walk.delay;
        for (std::size_t i = 0; i < walk.steps.size(); ++i) {
            const auto& [seconds, outcome] = walk.steps[i];
            SCOPED_TRACE(testing::Message() << walk.name << ", step " << i);
            clock.advanceMs(static_cast<std::int64_t>(seconds * 1000));
            EXPECT_EQ(cycle(outcome == kUnsafe), outcome != kSafe);
            EXPECT_EQ(controls.SafeDelayMsg.Caption.value(),
                      outcome < 0 ? QString() : u"SAFE condition delayed by %1 s"_s.arg(outcome));
            EXPECT_EQ(safety.SafeState, outcome == kUnsafe ? 1 : 2);
            EXPECT_EQ(safety.SafeDelayRemaining, std::max(outcome, 0));
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

TEST_F(Safety, CloudyCountsAfterItsDelayUnlessItFollowsOvercastOrBeginsASession) {
    controls.Cond[Quantity::Cloud][1].Value = 1; // overcast is flagged, clear is not
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
        readings.Condition[Quantity::Cloud] = step.cloud;
        decide();
        EXPECT_EQ(readings.UnsafeFlag, step.unsafe);
    }
}

TEST_F(Safety, TheCloudTestMayBeAskedByEachCallerOfACycle) {
    // The label's colour asks before the decision does; both must get the same answer.
    safety.CloudAlarmDelay = 300;
    for (const auto& [cloud, active] : {std::pair{CloudVeryCloudy, true},
                                        {CloudCloudy, true},
                                        {CloudClear, true},
                                        {CloudCloudy, false},
                                        {CloudVeryCloudy, true}}) {
        readings.Condition[Quantity::Cloud] = cloud;
        clock.advanceSeconds(10);
        for (int asked = 0; asked < 2; ++asked)
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
    readings.Condition[Quantity::Cloud] = CloudVeryCloudy;
    readings.StationDataOld = true;
    clock.advanceSeconds(10);
    EXPECT_EQ(causes(decide()), QString());
    EXPECT_FALSE(readings.UnsafeFlag);
    EXPECT_EQ(alarmSelections, 2);
    EXPECT_EQ(safety.PrevCloudLevel, CloudClear);

    safety.LocalControl = false;
    decide();
    EXPECT_TRUE(readings.UnsafeFlag);
    EXPECT_EQ(alarmSelections, 3);
}

TEST_F(Safety, TheVerdictIsShown) {
    for (const bool unsafe : {true, false}) {
        readings.UnsafeFlag = unsafe;
        Disp_UnsafeFlag(readings, controls);
        EXPECT_EQ(controls.LblStatus.Caption.value(), unsafe ? u"Unsafe"_s : u"Safe"_s);
        EXPECT_EQ(controls.LEDUnsafe.FillColor.value(), unsafe ? 255 : 65280);
    }
    EXPECT_EQ(SafeText(-1), u"Unsafe"_s);
    EXPECT_EQ(SafeText(0), u"Safe"_s);
    EXPECT_EQ(SafeText(1), QString());
}

} // namespace

} // namespace skyhold
