// SPDX-License-Identifier: GPL-3.0-or-later
// The history as a user would find it: written by the worker, read by another connection.
#include "history/level_times.h"
#include "history/reader.h"
#include "history/writer.h"

#include "support/eventually.h"
#include "support/full_disk.h"
#include "support/test_folder.h"

#include <cmath>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kMinute = 60'000;
constexpr std::int64_t kDay = 86'400'000;
constexpr std::int64_t kStart = 1'700'006'400'000; // a midnight, UTC

KeptCycle cycleAt(std::int64_t atMs, double wind = 5) {
    KeptCycle cycle;
    cycle.atMs = atMs;
    cycle.number = 1 + (atMs - kStart) / 10'000;
    cycle.intervalSeconds = 10;
    cycle.values[measured(Quantity::Wind)] = wind;
    cycle.values[measured(Quantity::Cloud)] = -25.75;
    cycle.values[MeasuredDirection] = 350;
    cycle.levels[Quantity::Wind] = 1;
    cycle.station = cycle.sensor = SourceState::Ok;
    cycle.verdict = Verdict::Safe;
    return cycle;
}

HistoryEvent eventAt(std::int64_t atMs, const QString& kind, const QString& state,
                     const QJsonObject& detail = {}) {
    return {atMs, kind, {}, state, kind + u' ' + state, detail};
}

HistoryBatch cyclesFrom(std::int64_t fromMs, std::int64_t toMs, std::int64_t stepMs = 10'000) {
    HistoryBatch batch;
    for (std::int64_t at = fromMs; at < toMs; at += stepMs)
        batch.cycles.push_back(cycleAt(at, static_cast<double>(at / 10'000 % 6)));
    return batch;
}

void tidyWhole(HistoryStore& store, std::int64_t nowMs, const HistoryKeep& keep) {
    int steps = 0;
    while (store.tidy(nowMs, keep))
        ASSERT_LT(++steps, 10'000);
    ASSERT_EQ(store.fault(), QString());
}

class History : public testing::Test {
  protected:
    TestFolder folder_;
    QString path_ = folder_.filePath(u"data/history.db"_s);
};

TEST_F(History, keepsWhatItIsGiven) {
    KeptCycle odd = cycleAt(kStart + 10'000, 0.1 + 0.2);
    odd.units = {'F', 'k'};
    odd.values[measured(Quantity::Cloud)].reset();
    odd.levels[Quantity::Rain] = 9;
    odd.station = SourceState::Old;
    odd.valuesMissing = odd.byClient = true;
    odd.sensor = SourceState::Absent;
    odd.verdict = Verdict::Waiting;
    {
        HistoryWriter writer;
        writer.add(cycleAt(1)); // before it began: goes nowhere
        writer.begin(path_, {});
        writer.add(cycleAt(kStart));
        writer.add(odd);
        writer.add(eventAt(kStart, u"verdict"_s, u"unsafe"_s, {{u"causes"_s, u"…"_s}}));
        EXPECT_TRUE(writer.end());
        EXPECT_EQ(writer.state().fault, QString());
    }
    HistoryReader reader(path_);
    std::vector<KeptCycle> cycles;
    EXPECT_TRUE(reader.eachCycle(kBeginning, kEndOfTime, [&](const KeptCycle& cycle) {
        cycles.push_back(cycle);
        return true;
    }));
    ASSERT_EQ(cycles.size(), 2U);
    EXPECT_EQ(cycles[1].values, odd.values);
    EXPECT_EQ(cycles[1].units, odd.units);
    EXPECT_EQ(cycles[1].levels, odd.levels);
    EXPECT_TRUE(cycles[1].valuesMissing && cycles[1].byClient);
    EXPECT_EQ(cycles[1].station, SourceState::Old);
    EXPECT_EQ(cycles[1].sensor, SourceState::Absent);
    EXPECT_EQ(cycles[1].verdict, Verdict::Waiting);
    const auto events = reader.readEvents(kBeginning, kEndOfTime);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].detail[u"causes"_s].toString(), u"…"_s);
    EXPECT_EQ(QFile::permissions(path_) & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
}

TEST(LevelTimes, aLevelLastsUntilTheNextCycleAndNotThroughAGap) {
    LevelTimes times;
    const auto add = [&times](std::int64_t second, std::int32_t wind,
                              SourceState station = SourceState::Ok) {
        KeptCycle cycle = cycleAt(kStart + second * 1'000);
        cycle.levels[Quantity::Wind] = wind;
        cycle.station = station;
        times.add(cycle);
    };
    add(0, 1);
    add(10, 2);
    add(25, 2, SourceState::Old);
    add(35, 9); // no level
    add(45, 1);
    add(3'600, 1); // a gap: two intervals of it count
    add(3'605, 3); // lasts until the next one, which is not there yet
    EXPECT_EQ(times.ms(Quantity::Wind, 0), 10'000 + 20'000 + 5'000);
    EXPECT_EQ(times.ms(Quantity::Wind, 1), 15'000);
    EXPECT_EQ(times.ms(Quantity::Wind, 2), 0);
    EXPECT_EQ(times.ms(Quantity::Cloud, 0), 0);
    EXPECT_EQ(times.lastMs(), kStart + 3'605'000);
}

TEST_F(History, thinsToMinutesAndForgets) {
    HistoryStore store(path_);
    ASSERT_TRUE(store.open()) << qPrintable(store.fault());
    ASSERT_TRUE(store.write(cyclesFrom(kStart, kStart + 3 * kDay)));
    ASSERT_TRUE(store.write({{eventAt(kStart, u"roof"_s, u"open"_s)}, {}}));
    const std::int64_t now = kStart + 3 * kDay;
    tidyWhole(store, now, {.cycleDays = 1});

    HistoryReader reader(path_);
    EXPECT_EQ(reader.range().cyclesFromMs, now - kDay);
    const auto minute = reader.readCycles(kStart + kMinute, kStart + 2 * kMinute, 0);
    ASSERT_EQ(minute.size(), 1U);
    const Extent wind = *minute[0].values[measured(Quantity::Wind)];
    EXPECT_EQ(wind, (Extent{0, 2.5, 5}));
    EXPECT_EQ(minute[0].values[measured(Quantity::Cloud)], (Extent{-25.75, -25.75, -25.75}));
    EXPECT_EQ(minute[0].values[MeasuredDirection]->mean, 350); // not their sum over 6
    EXPECT_EQ(minute[0].cycles, 6);
    EXPECT_EQ(reader.readCycles(kStart, now, 0).size(), 2 * 1'440U + 8'640U);
    // No more points than wanted, and none of the time is lost.
    for (const int most : {3, 72, 500}) {
        int cycles = 0;
        const auto points = reader.readCycles(kStart, now, most);
        for (const HistoryPoint& point : points)
            cycles += point.cycles;
        EXPECT_LE(points.size(), static_cast<std::size_t>(most));
        EXPECT_EQ(cycles, 3 * 8'640) << most;
    }

    tidyWhole(store, kStart + 4 * 366 * kDay, {.cycleDays = 1, .eventYears = 1});
    EXPECT_TRUE(HistoryReader(path_).readEvents(kBeginning, kEndOfTime).empty());
    EXPECT_TRUE(HistoryReader(path_).readCycles(kBeginning, kEndOfTime, 0).empty());
}

TEST_F(History, staysWithinItsSize) {
    HistoryStore store(path_);
    ASSERT_TRUE(store.open());
    constexpr int kDays = 12;
    for (int day = 0; day < kDays; ++day)
        ASSERT_TRUE(store.write(cyclesFrom(kStart + day * kDay, kStart + (day + 1) * kDay)));
    store.close(); // what waits beside the file goes into it
    EXPECT_GT(store.fileBytes(), 5 << 20);
    ASSERT_TRUE(store.open());
    tidyWhole(store, kStart + kDays * kDay, {.cycleDays = 365, .megabytes = 2});
    store.close();
    EXPECT_LT(store.fileBytes(), 9 << 19); // and a few free pages
    EXPECT_EQ(HistoryReader(path_).range().lastMs, kStart + kDays * kDay - 10'000);
}

TEST_F(History, tornDatabaseIsSetAside) {
    const auto make = [this] {
        HistoryStore store(path_);
        return store.open() && store.write(cyclesFrom(kStart, kStart + kDay / 4)) &&
               !store.tidy(kStart + kDay / 4, {});
    };
    const std::function<void(QFile&)> wounds[] = {
        [](QFile& file) { file.resize(file.size() / 2); }, [](QFile& file) { file.resize(100); },
        [](QFile& file) {
            file.resize(0);
            file.write("This is no database, but it has some length at least.");
        },
        [](QFile& file) {
            file.seek(file.size() / 3);
            file.write(QByteArray(50'000, '\x5a'));
        }};
    int number = 0;
    for (const auto& wound : wounds) {
        SCOPED_TRACE(++number);
        ASSERT_TRUE(make());
        QFile file(path_);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        wound(file);
        file.close();
        HistoryWriter writer;
        writer.begin(path_, {});
        writer.add(cycleAt(kStart + kDay));
        EXPECT_TRUE(writer.end());
        EXPECT_NE(writer.state().setAside, QString());
        EXPECT_TRUE(QFile::exists(writer.state().setAside));
        HistoryReader reader(path_);
        EXPECT_EQ(reader.readCycles(kBeginning, kEndOfTime, 0).size(), 1U);
        const auto events = reader.readEvents(kBeginning, kEndOfTime, u"history"_s);
        ASSERT_EQ(events.size(), 1U);
        EXPECT_EQ(events[0].state, u"torn"_s);
        QFile::remove(path_);
    }
}

TEST_F(History, sessionOfAKilledProgramEndsAtItsLastCycle) {
    {
        HistoryStore store(path_);
        ASSERT_TRUE(store.open());
        ASSERT_TRUE(store.write({{eventAt(kStart, u"session"_s, u"started"_s),
                                  eventAt(kStart, u"verdict"_s, u"safe"_s)},
                                 {cycleAt(kStart), cycleAt(kStart + 50'000)}}));
    }
    EXPECT_TRUE(HistoryReader(path_).readPeriods(kStart, kEndOfTime).front().lasts);
    HistoryStore store(path_);
    ASSERT_TRUE(store.open());
    HistoryReader reader(path_);
    const auto periods = reader.readPeriods(kStart + 1, kEndOfTime);
    ASSERT_EQ(periods.size(), 1U);
    EXPECT_FALSE(periods[0].lasts);
    EXPECT_EQ(periods[0].toMs, kStart + 50'000);
    EXPECT_EQ(reader.stateAt(kStart + 30'000)[u"safe"_s], true);
    EXPECT_EQ(reader.stateAt(kStart + 36'000)[u"safe"_s], false); // nobody had looked for long
    EXPECT_EQ(reader.stateAt(kStart + 60'000)[u"session"_s], u"idle"_s);
    EXPECT_TRUE(reader.stateAt(kStart - 1).isEmpty());
}

TEST_F(History, periodsAreOfTheVerdictWhateverItsCauses) {
    HistoryStore store(path_);
    ASSERT_TRUE(store.open());
    HistoryBatch batch;
    const char16_t* const states[] = {u"safe",    u"unsafe", u"unsafe", u"unsafe",
                                      u"waiting", u"safe",   u"none"};
    for (const char16_t* const state : states)
        batch.events.push_back(eventAt(kStart + kMinute * std::ssize(batch.events), u"verdict"_s,
                                       QString::fromUtf16(state)));
    ASSERT_TRUE(store.write(batch));
    HistoryReader reader(path_);
    const auto all = reader.readPeriods(kBeginning, kEndOfTime);
    ASSERT_EQ(all.size(), 4U);
    EXPECT_EQ(all[1].changes.size(), 3U);
    EXPECT_EQ(all[1].toMs - all[1].fromMs, 3 * kMinute);
    EXPECT_FALSE(all[3].lasts);
    // A range in the midst of one has the whole of it.
    const auto midst = reader.readPeriods(kStart + 150'000, kStart + 160'000);
    ASSERT_EQ(midst.size(), 1U);
    EXPECT_EQ(midst[0].fromMs, kStart + kMinute);
    EXPECT_EQ(midst[0].toMs, kStart + 4 * kMinute);
}

TEST_F(History, fullDiskLosesOldCyclesFirstAndRecordingGoesOn) {
    HistoryWriter writer;
    writer.begin(path_, {});
    writer.add(cycleAt(kStart));
    eventually([&] { return writer.state().fileBytes > 0; });
    constexpr int kMost = HistoryWriter::kMostWaiting;
    constexpr int kMore = 500;
    {
        const FullDisk full(1'000);
        writer.add(eventAt(kStart + 1, u"roof"_s, u"closed"_s));
        eventually([&] { return !writer.state().fault.isEmpty(); });
        for (int i = 1; i <= kMost + kMore; ++i)
            writer.add(cycleAt(kStart + 10'000LL * i));
    }
    EXPECT_EQ(writer.state().lostReadings, kMore + 1); // the event has a place, too
    EXPECT_EQ(writer.state().lostEvents, 0);
    eventually([&] { return writer.state().fault.isEmpty(); });
    EXPECT_TRUE(writer.end());
    HistoryReader reader(path_);
    const auto events = reader.readEvents(kBeginning, kEndOfTime);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].state, u"closed"_s);
    EXPECT_TRUE(events[1].text.startsWith(u"501 readings and 0 events were lost"_s));
    EXPECT_EQ(reader.range().lastMs, kStart + 10'000LL * (kMost + kMore));
}

TEST_F(History, goesOnInANewFileWhenItsOwnIsRemoved) {
    HistoryWriter writer;
    writer.begin(path_, {});
    writer.add(cycleAt(kStart));
    eventually([&] { return writer.state().fileBytes > 0; });
    ASSERT_TRUE(QDir(folder_.filePath(u"data"_s)).removeRecursively());
    writer.add(cycleAt(kStart + 10'000));
    EXPECT_TRUE(writer.end());
    EXPECT_EQ(HistoryReader(path_).readCycles(kBeginning, kEndOfTime, 0).size(), 1U);
    EXPECT_NE(HistoryReader(folder_.filePath(u"none.db"_s)).fault(), QString());
    // A folder in its place is a fault, and keeps nobody.
    HistoryWriter hindered;
    hindered.begin(folder_.path(), {});
    hindered.add(cycleAt(kStart));
    EXPECT_FALSE(hindered.end());
    EXPECT_NE(hindered.state().fault, QString());
}

} // namespace
} // namespace skyhold
