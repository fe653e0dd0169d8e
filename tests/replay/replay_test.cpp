// SPDX-License-Identifier: GPL-3.0-or-later
// "What if" over made-up weather, from a database and from text files.
#include "history/writer.h"
#include "replay/report.h"
#include "settings/load_save.h"

#include "support/test_folder.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kStart = 1'700'006'400'000; // a midnight, UTC
constexpr KeptUnits kMetric{'C', 'K'};

Rules gustRules(double limit, double delaySeconds = 60) {
    Rules rules;
    for (LevelRules& levels : rules.levels)
        levels.limits = {900, 950, 999};
    rules.levels[Quantity::Gust].limits = {limit, 500, 999};
    rules.levels[Quantity::Gust].unsafe = {false, true, true};
    rules.safeDelaySeconds = delaySeconds;
    return rules;
}

KeptCycle cycleAt(std::int64_t second, double gust) {
    KeptCycle cycle;
    cycle.atMs = kStart + 1'000 * second;
    cycle.number = 1 + second / 10;
    cycle.intervalSeconds = 10;
    cycle.values[measured(Quantity::Gust)] = gust;
    cycle.station = cycle.sensor = SourceState::Ok;
    return cycle;
}

class WhatIf : public testing::Test {
  protected:
    // Ten minutes of a calm sky; gusts of 30 in the third, of 24 in the seventh.
    void SetUp() override {
        HistoryWriter writer;
        writer.begin(path_, {});
        for (int second = 0; second < 600; second += 10)
            writer.add(cycleAt(second, second / 60 == 2 ? 30 : second / 60 == 6 ? 24 : 5));
        ASSERT_TRUE(writer.end());
    }

    TestFolder folder_;
    QString path_ = folder_.filePath(u"history.db"_s);
};

TEST_F(WhatIf, countsClosuresAndTimesSideBySide) {
    const Comparison comparison = compareRules(fromHistory(path_, kBeginning, kEndOfTime, kMetric),
                                               gustRules(20), gustRules(25));
    EXPECT_EQ(comparison.inForce.cycles, 60);
    EXPECT_EQ(comparison.inForce.watchedMs, 600'000);
    EXPECT_EQ(comparison.inForce.closures, 2);
    EXPECT_EQ(comparison.inForce.unsafeMs, 240'000); // a minute each, and a minute of delay
    EXPECT_EQ(comparison.tried.closures, 1);
    ASSERT_EQ(comparison.inForce.shares.size(), 2U);
    EXPECT_EQ(comparison.inForce.shares[0].unsafeMs, 120'000);
    EXPECT_TRUE(comparison.inForce.shares[1].cause.delay);
    ASSERT_EQ(comparison.differences.size(), 1U);
    EXPECT_EQ(comparison.differences[0].fromUtcMs, kStart + 360'000);
    EXPECT_EQ(comparison.differences[0].toUtcMs, kStart + 480'000);
    EXPECT_TRUE(comparison.differences[0].unsafeInForce);
    EXPECT_EQ(shortCause(comparison.differences[0].cause, kMetric), u"gust 24 > 20 km/h"_s);
    EXPECT_EQ(comparisonSummary(comparison),
              u"1 closure instead of 2, unsafe 2 min 0 s instead of 4 min 0 s"_s);
    // The same weather in other units.
    const Comparison knots = compareRules(fromHistory(path_, kBeginning, kEndOfTime, {'F', 'k'}),
                                          gustRules(20 / 1.852), gustRules(25 / 1.852));
    EXPECT_EQ(knots.inForce.unsafeMs, comparison.inForce.unsafeMs);
    EXPECT_EQ(knots.tried.unsafeMs, comparison.tried.unsafeMs);
}

TEST_F(WhatIf, canBeStopped) {
    HistoryBatch more;
    for (int i = 0; i < 12'000; ++i)
        more.cycles.push_back(cycleAt(600 + 10 * i, 5));
    {
        HistoryStore store(path_);
        ASSERT_TRUE(store.open());
        ASSERT_TRUE(store.write(more));
    }
    double done = 0;
    const Comparison comparison = compareRules(fromHistory(path_, kBeginning, kEndOfTime, kMetric),
                                               gustRules(20), gustRules(25), [&done](double now) {
                                                   done = now;
                                                   return false;
                                               });
    EXPECT_TRUE(comparison.stopped);
    EXPECT_LT(comparison.inForce.cycles, 12'000);
    EXPECT_GT(done, 0.5);
    EXPECT_LT(done, 0.8);
}

TEST_F(WhatIf, minutesCountWithTheirHighestValues) {
    {
        HistoryStore store(path_);
        ASSERT_TRUE(store.open());
        ASSERT_TRUE(store.write({{}, {cycleAt(5 * 86'400, 5)}}));
        while (store.tidy(kStart + 5LL * 86'400'000, {.cycleDays = 1})) {
        }
    }
    const ReplaySource source = fromHistory(path_, kBeginning, kEndOfTime, kMetric);
    EXPECT_TRUE(source.thinned);
    const Comparison comparison = compareRules(source, gustRules(20, 0), gustRules(25, 0));
    EXPECT_EQ(comparison.inForce.closures, 2);
    EXPECT_EQ(comparison.tried.closures, 1);
}

TEST(Replay, gapsAndNewSessionsCountForNothing) {
    Replay replay(gustRules(20, 0));
    Observation observation;
    const auto cycle = [&](std::int64_t second, double gust, bool first = false) {
        putInto(observation, cycleAt(second, gust));
        replay.cycle(observation, kStart + 1'000 * second, 10, first);
    };
    cycle(0, 5, true);
    cycle(10, 5);
    cycle(1'000, 30); // asleep in between; unsafe when it looks again, but nobody saw it close
    cycle(1'010, 5);
    cycle(1'020, 30);
    cycle(5'000, 30, true);
    replay.end(kStart + 5'010'000);
    const ReplayOutcome& outcome = replay.outcome();
    EXPECT_EQ(outcome.watchedMs, 10'000 + 35'000 + 20'000 + 35'000 + 10'000);
    EXPECT_EQ(outcome.closures, 1);
    EXPECT_EQ(outcome.unsafeMs, 10'000 + 35'000 + 10'000);
    ASSERT_EQ(outcome.periods.size(), 3U);
    EXPECT_TRUE(outcome.periods[1].closure);
}

TEST(ReplayText, readsLogsAndUserDataFiles) {
    const SettingsFolder folder;
    Records records;
    LoadSettings(records, SettingsStore(u"Kiv_Skyhold"_s));
    struct Case {
        const char* what;
        QByteArray text;
        int cycles;
        int closures;
        bool faulty;
    };
    const QByteArray logHeader =
        "time_utc,temperature_f,dew_point_f,humidity_pct,wind_direction_deg,wind_mph,gust_mph\n";
    const QByteArray fileHeader =
        "\"Date\",\"Time\",\"Rain Condition\",\"Gust Speed\",\"Wind Speed\"\n";
    const Case cases[] = {
        {"a gust that is not reported is the wind",
         logHeader + "2013-02-01T05:00:00Z,50,30,50,250,5,\n"
                     "2013-02-01T06:00:00Z,50,30,50,,18,\n"
                     "rubbish\n"
                     "2013-02-01T07:00:00Z,50,30,50,250,5,6\n",
         3, 1, false},
        {"a temperature that is missing is missing",
         logHeader + "2013-02-01T05:00:00Z,,30,50,250,5,5\n", 1, 0, true},
        {"a line of headings within, a decimal comma in quotes",
         fileHeader + "\"2026-11-16\",\"22:00:00\",\"Dry\",\"5\",\"3\"\r\n" + fileHeader +
             "\"2026-11-16\",\"22:00:10\",\"Dry\",\"20,5\",\"3\"\r\n" +
             "\"2026-11-16\",\"22:00:20\",\"Dry\",\"19,5\",\"3\"\r\n",
         3, 1, false},
        {"levels by their words",
         fileHeader + "\"2026-11-16\",\"22:00:00\",\"Dry\",\"5\",\"3\"\n"
                      "\"2026-11-16\",\"22:00:10\",\"Rain\",\"5\",\"3\"\n",
         2, 1, false},
    };
    Rules rules = gustRules(20, 0);
    rules.levels[Quantity::Rain].unsafe = {false, true, true};
    for (const auto& [what, text, cycles, closures, faulty] : cases) {
        SCOPED_TRACE(what);
        const ReplaySource source = fromText(text, records, kBeginning, kEndOfTime, kMetric);
        ASSERT_EQ(source.fault, QString());
        const Comparison comparison = compareRules(source, rules, rules);
        EXPECT_EQ(comparison.inForce.cycles, cycles);
        EXPECT_EQ(comparison.inForce.closures, closures);
        EXPECT_EQ(comparison.inForce.unsafeMs > 0 && closures == 0, faulty);
    }
    for (const QByteArray& text :
         {QByteArray(), QByteArray("a,b\n1,2\n"), QByteArray("\xff\xfe\0\0\"\"\",", 9)})
        EXPECT_NE(fromText(text, records, kBeginning, kEndOfTime, kMetric).fault, QString());
}

TEST(ReplaySuggest, looksAtNightsThatWereSafeThroughout) {
    // Three nights of two hours: calm, one with a closure, and calm again with daylight before.
    ReplaySource source;
    source.each = [](const TakeStep& take) {
        ReplayStep step;
        step.intervalSeconds = 60;
        for (int night = 0; night < 3; ++night) {
            for (int minute = 0; minute < 120; ++minute) {
                KeptCycle cycle = cycleAt(0, night == 1 && minute > 60 ? 30 : 10 + night);
                const bool day = night == 2 && minute < 20;
                cycle.levels[Quantity::Brightness] = day ? 3 : 1;
                if (day)
                    cycle.values[measured(Quantity::Gust)] = 19;
                putInto(step.observation, cycle);
                step.utcMs = kStart + night * 86'400'000LL + minute * 60'000LL;
                step.newSession = minute == 0;
                if (!take(step))
                    return QString();
            }
        }
        return QString();
    };
    Rules rules = gustRules(20, 0);
    rules.levels[Quantity::Brightness].unsafe = {false, false, true};
    const Suggestion suggestion = suggest(source, rules);
    EXPECT_EQ(suggestion.nights, 3);
    EXPECT_EQ(suggestion.safeNights, 2);
    ASSERT_TRUE(suggestion.seen[Quantity::Gust]);
    EXPECT_EQ(suggestion.seen[Quantity::Gust]->high, 12);
    EXPECT_TRUE(suggestionText(suggestion, rules, kMetric).contains(u"20 (8 above)"_s));
}

} // namespace
} // namespace skyhold
