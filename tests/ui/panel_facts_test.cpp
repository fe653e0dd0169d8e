// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/night_reader.h"
#include "ui/window/panel_facts.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

constexpr std::int64_t kMinuteMs = 60'000;

// A running session whose sources are good: wind 13 with limits of 10, 20 and 30.
CycleResult goodCycle() {
    CycleResult result;
    result.number = 1;
    result.intervalSeconds = 10;
    result.judged.ms = kMinuteMs;
    result.observation.sensor.state = SourceState::Ok;
    StationObservation& station = result.observation.station;
    station.state = SourceState::Ok;
    station.ageSeconds = 20;
    station.timeoutSeconds = 180;
    result.observation.values[Quantity::Wind] = 13;
    result.observation.values[Quantity::Dew] = 3.4;
    result.rules.levels[Quantity::Wind] = {.limits = {10, 20, 30}, .unsafe = {false, false, true}};
    result.judgement.levels[Quantity::Wind] = 2;
    return result;
}

PanelMoment running(Verdict verdict, std::int64_t laterMs = 0) {
    return {.session = SessionState::Running, .verdict = verdict, .ms = kMinuteMs + laterMs};
}

const Cause kWindCause{.kind = CauseKind::Level, .quantity = Quantity::Wind, .level = 3};
const Cause kStationCause{.kind = CauseKind::Source, .source = SourceName::Station};

TEST(PanelFacts, TheBannerPartsTheSkyFromAFailedSource) {
    struct Case {
        const char* name;
        void (*change)(CycleResult& result, PanelMoment& now);
        BannerKind kind;
        QString line;
    };
    const Case cases[]{
        {"no session",
         [](CycleResult&, PanelMoment& now) { now.session = SessionState::Idle; },
         BannerKind::Idle,
         {}},
        {"a start that waits",
         [](CycleResult&, PanelMoment& now) {
             now.session = SessionState::Starting;
             now.startLimit = 10;
             now.started = 4.9;
         },
         BannerKind::Starting, u"Kiv_Nubilo, 4 of 10 s"_s},
        {"no reading yet", [](CycleResult&, PanelMoment& now) { now.verdict = Verdict::None; },
         BannerKind::NoVerdict, u"No verdict yet"_s},
        {"safe", [](CycleResult&, PanelMoment&) {}, BannerKind::Safe, {}},
        {"safe for a while",
         [](CycleResult& result, PanelMoment& now) {
             const QDateTime since(QDate(2026, 11, 23), QTime(2, 47));
             result.memory.verdictSince = since.toMSecsSinceEpoch();
             now.utcMs = since.addSecs(7'265).toMSecsSinceEpoch();
         },
         BannerKind::Safe, u"since 02:47:00 · 2 h 1 min"_s},
        {"a cycle that does not come", [](CycleResult&, PanelMoment& now) { now.overdue = true; },
         BannerKind::SourceFailed, u"no reading for 0 s"_s},
        {"the delay, three seconds on",
         [](CycleResult& result, PanelMoment& now) {
             now.verdict = Verdict::Waiting;
             now.ms += 3'000;
             result.judgement.waitSeconds = 405;
         },
         BannerKind::Waiting, u"Safe in 6:42"_s},
        {"the delay has passed, nothing is read yet",
         [](CycleResult& result, PanelMoment& now) {
             now.verdict = Verdict::Waiting;
             now.ms += 9'000;
             result.judgement.waitSeconds = 5;
         },
         BannerKind::Waiting, u"The next reading decides"_s},
        {"wind",
         [](CycleResult& result, PanelMoment& now) {
             now.verdict = Verdict::Unsafe;
             result.judgement.causes = {kWindCause};
         },
         BannerKind::Unsafe,
         {}},
        {"old station data, two seconds on",
         [](CycleResult& result, PanelMoment& now) {
             now.verdict = Verdict::Unsafe;
             now.ms += 2'000;
             result.observation.station.state = SourceState::Old;
             result.observation.station.ageSeconds = 193;
             result.judgement.causes = {kStationCause};
         },
         BannerKind::SourceFailed, u"station data 195 s old"_s},
        {"a failed source that does not count",
         [](CycleResult& result, PanelMoment&) {
             result.observation.sensor.state = SourceState::Failed;
         },
         BannerKind::SourceFailed, u"Kiv_Nubilo has failed"_s},
        {"old data, and rain",
         [](CycleResult& result, PanelMoment& now) {
             now.verdict = Verdict::Unsafe;
             result.observation.station.state = SourceState::Old;
             result.judgement.causes = {kStationCause, {.quantity = Quantity::Rain, .level = 3}};
         },
         BannerKind::Unsafe,
         {}},
        {"a client decides",
         [](CycleResult& result, PanelMoment& now) {
             now.verdict = Verdict::Unsafe;
             result.judgement.byClient = true;
             result.observation.station.state = SourceState::Old;
         },
         BannerKind::Unsafe,
         {}},
    };
    for (const Case& c : cases) {
        CycleResult result = goodCycle();
        PanelMoment now = running(Verdict::Safe);
        c.change(result, now);
        const BannerFacts facts = bannerFacts(result, now);
        EXPECT_EQ(facts.kind, c.kind) << c.name;
        EXPECT_EQ(facts.line, c.line) << c.name;
    }
}

TEST(PanelFacts, TheRingOfADelayFillsAsItPasses) {
    CycleResult result = goodCycle();
    result.judgement.delaySeconds = 600;
    result.judgement.waitSeconds = 450;
    EXPECT_DOUBLE_EQ(bannerFacts(result, running(Verdict::Waiting)).share, 0.25);
    EXPECT_DOUBLE_EQ(bannerFacts(result, running(Verdict::Waiting, 150'000)).share, 0.5);
    EXPECT_DOUBLE_EQ(bannerFacts(result, running(Verdict::Waiting, 900'000)).share, 1);
}

TEST(PanelFacts, ATileShowsWhetherItSpeaksForUnsafeAndHowNearItsLimitIs) {
    CycleResult result = goodCycle();
    TileFacts wind = tileFacts(Quantity::Wind, result, Verdict::Safe, {});
    EXPECT_FALSE(wind.culprit);
    EXPECT_TRUE(wind.nearest);
    ASSERT_TRUE(wind.gauge);
    ASSERT_EQ(wind.gauge->unsafe.size(), 1U); // level 3, and not what lies beyond it
    EXPECT_EQ(wind.gauge->unsafe[0].from, wind.gauge->limits[1].at);
    EXPECT_EQ(wind.gauge->unsafe[0].to, wind.gauge->limits[2].at);
    EXPECT_TRUE(wind.gauge->limits[1].unsafe);
    EXPECT_FALSE(wind.gauge->limits[0].unsafe);
    EXPECT_GT(wind.gauge->marker, wind.gauge->limits[0].at);
    EXPECT_LT(wind.gauge->marker, wind.gauge->limits[1].at);
    EXPECT_EQ(tileFacts(Quantity::Dew, result, Verdict::Safe, {}).spread, u"spread 3.4"_s);

    Cause cause = kWindCause;
    cause.sinceUtcMs = QDateTime(QDate(2026, 11, 23), QTime(5, 9, 40)).toMSecsSinceEpoch();
    result.judgement.causes = {cause};
    wind = tileFacts(Quantity::Wind, result, Verdict::Unsafe, {});
    EXPECT_TRUE(wind.culprit);
    EXPECT_EQ(wind.foot, u"> 20 since 05:09"_s);
    EXPECT_FALSE(wind.nearest);
    EXPECT_FALSE(tileFacts(Quantity::Dew, result, Verdict::Unsafe, {}).culprit);

    result.observation.station.state = SourceState::Old;
    EXPECT_FALSE(tileFacts(Quantity::Wind, result, Verdict::Unsafe, {}).gauge);
    EXPECT_EQ(tileFacts(Quantity::Dew, result, Verdict::Unsafe, {}).spread, QString());
}

TEST(PanelFacts, AGaugeOfTheSensorsOwnLevelsNeedsABoundaryThatWasSeen) {
    TimelineRow rain;
    rain.index = measured(Quantity::Rain);
    rain.decimals = 0;
    rain.low = 600;
    rain.high = 2600;
    Night night{{}, {}, {rain}};
    EXPECT_FALSE(observedGauge(nullptr, Quantity::Rain, 2100));
    EXPECT_FALSE(observedGauge(&night, Quantity::Rain, 2100));
    night.rows[0].lines = {{{}, 1600, true, true}};
    night.rows[0].zones = {{{}, -kNoBound, 1600}};
    const std::optional<Gauge> gauge = observedGauge(&night, Quantity::Rain, 2100);
    const Gauge expected{
        .marker = 0.75, .limits = {{0.5, true, u"≈ 1600"_s}}, .unsafe = {{0, 0.5}}};
    EXPECT_EQ(gauge, expected);
    EXPECT_FALSE(observedGauge(&night, Quantity::Cloud, -10));
}

TEST(PanelFacts, AgesGrowBetweenCyclesAndWarnFromHalfOfWhatIsAllowed) {
    CycleResult result = goodCycle();
    EXPECT_EQ(stationAge(result, kMinuteMs).seconds, 20);
    EXPECT_FALSE(stationAge(result, kMinuteMs + 69'000).ageing);
    EXPECT_TRUE(stationAge(result, kMinuteMs + 70'000).ageing);
    EXPECT_FALSE(stationAge(result, kMinuteMs + 70'000).failed);
    EXPECT_EQ(secondsToCycle(result, kMinuteMs + 4'000), 6);
    EXPECT_EQ(secondsToCycle(result, kMinuteMs + 14'000), 0);
}

} // namespace
} // namespace skyhold
