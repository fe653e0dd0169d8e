// SPDX-License-Identifier: GPL-3.0-or-later
// The history of ten years, made up: how large it is and how fast it is read, beside a plain table
// with an index over its times that holds the same minutes; and a year of cycles played again.
//
//   bench_history [YEARS] [FOLDER]      10 years in a temporary folder unless told otherwise
#include "history/reader.h"
#include "history/rows.h"
#include "history/store.h"
#include "replay/compare.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlError>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kDay = 86'400'000;
constexpr std::int64_t kStart = 1'700'006'400'000; // a midnight, UTC
constexpr int kStepSeconds = 10;

double seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

struct Spread {
    double median, lowest, highest;
};

Spread timed(int times, const std::function<void()>& work) {
    std::vector<double> taken;
    for (int i = 0; i < times; ++i)
        taken.push_back(seconds(work));
    std::ranges::sort(taken);
    return {taken[taken.size() / 2], taken.front(), taken.back()};
}

void print(const char* what, const Spread& spread) {
    std::printf("%-58s %9.1f ms  (%.1f to %.1f)\n", what, 1e3 * spread.median, 1e3 * spread.lowest,
                1e3 * spread.highest);
}

// Weather that no two cycles have in common: nothing is saved by values that stay.
class Weather {
  public:
    KeptCycle next(std::int64_t atMs, std::int64_t number) {
        KeptCycle cycle;
        cycle.atMs = atMs;
        cycle.number = number;
        cycle.intervalSeconds = kStepSeconds;
        const double hour = static_cast<double>(atMs % kDay) / 3.6e6;
        const auto around = [this](double mean, double spread) {
            return std::round(10 * (mean + spread * normal_(random_))) / 10;
        };
        auto& values = cycle.values;
        values[measured(Quantity::Cloud)] = around(-22, 4);
        values[measured(Quantity::Rain)] = around(2'600, 20);
        values[measured(Quantity::Brightness)] = around(12'000, 100);
        const double wind = std::abs(around(9 + 4 * std::sin(hour / 4), 3));
        values[measured(Quantity::Wind)] = wind;
        values[measured(Quantity::Gust)] = wind + std::abs(around(3, 2));
        values[measured(Quantity::Temperature)] = around(8, 3);
        values[measured(Quantity::Dew)] = around(6, 1);
        values[measured(Quantity::Humidity)] = around(60, 8);
        values[MeasuredDirection] = std::fmod(std::abs(around(200, 40)), 360);
        values[MeasuredDewPoint] = around(2, 3);
        values[MeasuredPressure] = around(1'013, 6);
        values[MeasuredAmbient] = around(8, 3);
        values[MeasuredSensorTemperature] = around(9, 3);
        values[MeasuredRainHeater] = around(20, 5);
        for (std::int32_t& level : cycle.levels)
            level = 1;
        cycle.station = cycle.sensor = SourceState::Ok;
        cycle.verdict = values[measured(Quantity::Gust)] > 20 ? Verdict::Unsafe : Verdict::Safe;
        return cycle;
    }

  private:
    std::mt19937_64 random_{1};
    std::normal_distribution<double> normal_;
};

bool fillCycles(HistoryStore& store, std::int64_t fromMs, std::int64_t toMs, Weather& weather) {
    HistoryBatch batch;
    std::int64_t number = 1;
    for (std::int64_t at = fromMs; at < toMs; at += 1'000LL * kStepSeconds) {
        batch.cycles.push_back(weather.next(at, number++));
        if (batch.cycles.size() == 8'640) {
            if (!store.write(batch))
                return false;
            batch.cycles.clear();
        }
    }
    return store.write(batch);
}

// What a storm season of events weighs: fifty a day, with their causes.
HistoryBatch eventsOf(std::int64_t dayMs) {
    HistoryBatch batch;
    const QJsonObject cause{{u"kind"_s, u"level"_s},
                            {u"name"_s, u"gust"_s},
                            {u"level"_s, 2},
                            {u"label"_s, u"Gusty"_s},
                            {u"value"_s, 34.2},
                            {u"unit"_s, u"km/h"_s},
                            {u"limit"_s, 20},
                            {u"relation"_s, u">"_s},
                            {u"since"_s, u"2026-11-23T05:09:30Z"_s},
                            {u"text"_s, u"Gust 34.2 km/h, above 20, since 05:09:30"_s}};
    for (int i = 0; i < 50; ++i)
        batch.events.push_back({dayMs + i * 1'700'000LL,
                                u"verdict"_s,
                                {},
                                i % 2 == 0 ? u"unsafe"_s : u"safe"_s,
                                u"Gust 34.2 km/h, above 20, since 05:09:30"_s,
                                {{u"causes"_s, QJsonArray{cause}}}});
    return batch;
}

void require(bool holds, const QString& fault) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", qPrintable(fault));
    std::exit(1);
}

// The made-up years: minutes of all of it as the thinning leaves them, and single cycles of the
// last thirty days. Minutes of one day are made from cycles and stand for every day, at its own
// times.
void fillYears(const QString& path, int years, Weather& weather) {
    const std::int64_t endMs = kStart + years * 365LL * kDay;
    const std::int64_t cyclesFromMs = endMs - 30 * kDay;
    HistoryStore store(path);
    require(store.open(), store.fault());
    require(fillCycles(store, kStart, kStart + kDay, weather), store.fault());
    while (store.tidy(kStart + kDay, {.cycleDays = 365})) {
    }
    store.close();
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"fill"_s);
        database.setDatabaseName(path);
        require(database.open(), database.lastError().text());
        QSqlQuery query(database);
        const qsizetype rest = pointColumns().indexOf(u',');
        for (std::int64_t day = 1; day < (cyclesFromMs - kStart) / kDay; ++day) {
            if (day % 100 == 1)
                query.exec(u"BEGIN"_s);
            require(query.exec(u"INSERT INTO minutes SELECT at + %1%2 FROM minutes WHERE at < %3"_s
                                   .arg(day * kDay)
                                   .arg(pointColumns().mid(rest))
                                   .arg(kStart + kDay)),
                    query.lastError().text());
            if (day % 100 == 0)
                query.exec(u"COMMIT"_s);
        }
        query.exec(u"COMMIT"_s);
        query.exec(u"DELETE FROM hours"_s);
        query.exec(u"DELETE FROM days"_s);
        query.exec(u"DELETE FROM cycles"_s);
    }
    QSqlDatabase::removeDatabase(u"fill"_s);
    require(store.open(), store.fault());
    for (std::int64_t at = kStart; at < endMs; at += kDay)
        require(store.write(eventsOf(at)), store.fault());
    require(fillCycles(store, cyclesFromMs, endMs, weather), store.fault());
    while (store.tidy(endMs, {})) {
    }
    require(store.fault().isEmpty(), store.fault());
}

// The peer: the same minutes, their means alone, in a table whose times have an index.
void fillPlain(const QString& path, const QString& from) {
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"plain"_s);
    database.setDatabaseName(path);
    require(database.open(), database.lastError().text());
    QSqlQuery query(database);
    QStringList names, parts;
    for (std::size_t i = 0; i < kMeasuredCount; ++i) {
        names += QString(QLatin1String(measuredName(i))) + u" REAL"_s;
        parts += QString(QLatin1String(measuredName(i))) + u" / 100.0"_s;
    }
    for (const QString& statement :
         {u"PRAGMA journal_mode = WAL"_s, u"ATTACH '%1' AS made"_s.arg(from),
          u"CREATE TABLE readings (id INTEGER PRIMARY KEY, at INTEGER, %1)"_s.arg(
              names.join(u", "_s)),
          u"INSERT INTO readings SELECT NULL, at, %1 FROM made.minutes"_s.arg(parts.join(u", "_s)),
          u"CREATE INDEX readings_at ON readings (at)"_s, u"PRAGMA wal_checkpoint(TRUNCATE)"_s})
        require(query.exec(statement), query.lastError().text());
}

void readPlain(const QString& statement) {
    QSqlQuery query(QSqlDatabase::database(u"plain"_s));
    query.setForwardOnly(true);
    require(query.exec(statement), query.lastError().text());
    double sum = 0;
    while (query.next()) {
        for (int i = 0; i < 15; ++i)
            sum += query.value(i).toDouble();
    }
    require(std::isfinite(sum), u"no sum"_s);
}

void size(const char* what, const QString& path) {
    std::printf("%-58s %9.1f MB\n", what,
                static_cast<double>(QFileInfo(path).size() + QFileInfo(path + u"-wal"_s).size()) /
                    1e6);
}

// Twelve hours of cycles of ten seconds, with what is made of them.
void night(const QString& path, Weather& weather) {
    HistoryStore store(path);
    require(store.open(), store.fault());
    require(fillCycles(store, kStart, kStart + kDay / 2, weather), store.fault());
    HistoryBatch events = eventsOf(kStart);
    events.events.resize(25);
    require(store.write(events), store.fault());
    while (store.tidy(kStart + kDay / 2, {})) {
    }
}

void readYears(const QString& path, int years) {
    HistoryReader reader(path);
    const std::int64_t endMs = kStart + years * 365LL * kDay;
    std::mt19937_64 random{2};
    std::size_t points = 0;
    const auto day = [&](std::int64_t from) {
        points = reader.readCycles(from, from + kDay, 0).size();
        require(points >= 1'000 && reader.fault().isEmpty(), u"a day is missing"_s);
    };
    print("24 hours anywhere, single minutes", timed(41, [&] {
              day(kStart + static_cast<std::int64_t>(
                               random() % static_cast<std::uint64_t>(endMs - kStart - 31 * kDay)));
          }));
    readPlain(u"SELECT count(*) FROM readings"_s);
    print("  the plain table", timed(41, [&] {
              const std::int64_t from =
                  kStart + static_cast<std::int64_t>(
                               random() % static_cast<std::uint64_t>(endMs - kStart - 31 * kDay));
              readPlain(u"SELECT * FROM readings WHERE at >= %1 AND at < %2"_s.arg(from).arg(from +
                                                                                             kDay));
          }));
    print("24 hours of the last month, every cycle", timed(41, [&] {
              day(endMs - kDay -
                  static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(28 * kDay)));
          }));
    print("all years, 1000 points", timed(11, [&] {
              points = reader.readCycles(kBeginning, kEndOfTime, 1'000).size();
              require(points > 500, u"points are missing"_s);
          }));
    print("  the plain table, by days", timed(3, [&] {
              QStringList means;
              for (std::size_t i = 0; i < kMeasuredCount; ++i)
                  means += u"avg(%1)"_s.arg(QLatin1String(measuredName(i)));
              readPlain(
                  u"SELECT at / 86400000, %1 FROM readings GROUP BY 1"_s.arg(means.join(u", "_s)));
          }));
}

Rules someRules(double gust) {
    Rules rules;
    for (LevelRules& levels : rules.levels)
        levels.limits = {9'000, 9'500, 9'999};
    rules.levels[Quantity::Gust].limits = {gust, 50, 99};
    rules.levels[Quantity::Gust].unsafe = {false, true, true};
    rules.levels[Quantity::Wind].sectors[1] = Sector{-45, 45, 5};
    rules.levels[Quantity::Wind].unsafe = {false, true, true};
    rules.safeDelaySeconds = 300;
    return rules;
}

void replayYear(const QString& path, Weather& weather) {
    {
        HistoryStore store(path);
        require(store.open(), store.fault());
        require(fillCycles(store, kStart, kStart + 365 * kDay, weather), store.fault());
    }
    size("a year of single cycles", path);
    const ReplaySource source = fromHistory(path, kBeginning, kEndOfTime, {'C', 'K'});
    for (const bool other : {false, true}) {
        std::int64_t cycles = 0;
        const Spread taken = timed(3, [&] {
            const Comparison comparison =
                compareRules(source, someRules(20), someRules(other ? 25 : 20));
            cycles = comparison.inForce.cycles;
            require(comparison.fault.isEmpty() && comparison.inForce.closures > 100,
                    u"the replay came to nothing"_s);
        });
        require(cycles == 365LL * 8'640, u"cycles are missing"_s);
        print(other ? "  played again, with two sets of limits"
                    : "  played again, with one set of limits",
              taken);
    }
}

void replayRate(Weather& weather) {
    std::vector<Observation> observations(1'024);
    for (std::size_t i = 0; i < observations.size(); ++i)
        putInto(observations[i], weather.next(kStart + static_cast<std::int64_t>(i), 2));
    constexpr std::int64_t kCycles = 2'000'000;
    const Spread taken = timed(5, [&] {
        Replay replay(someRules(20));
        for (std::int64_t i = 0; i < kCycles; ++i)
            replay.cycle(observations[static_cast<std::size_t>(i) % observations.size()],
                         kStart + i * 10'000, kStepSeconds, i == 0);
        replay.end(kStart + kCycles * 10'000);
        require(replay.outcome().closures > 100, u"the replay came to nothing"_s);
    });
    std::printf("%-58s %9.2f million cycles/s  (%.2f to %.2f)\n", "replay, without the database",
                kCycles / taken.median / 1e6, kCycles / taken.highest / 1e6,
                kCycles / taken.lowest / 1e6);
}

void run(int years, const QString& folder) {
    Weather weather;
    const auto path = [&folder](const QString& name) {
        return folder + u'/' + name;
    };
    replayRate(weather);
    night(path(u"night.db"_s), weather);
    size("a night of 4320 cycles and 25 events", path(u"night.db"_s));
    std::printf("%-58s %9.1f s\n", "made", seconds([&] {
                    fillYears(path(u"years.db"_s), years, weather);
                    fillPlain(path(u"plain.db"_s), path(u"years.db"_s));
                }));
    size("all years", path(u"years.db"_s));
    size("  the plain table, means alone", path(u"plain.db"_s));
    readYears(path(u"years.db"_s), years);
    QSqlDatabase::removeDatabase(u"plain"_s);
    replayYear(path(u"year.db"_s), weather);
}

} // namespace
} // namespace skyhold

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const int wanted = argc > 1 ? std::atoi(argv[1]) : 0; // 0 for options of other benchmarks
    skyhold::run(wanted > 0 ? wanted : 10,
                 argc > 2 ? QString::fromLocal8Bit(argv[2]) : folder.path());
    return 0;
}
