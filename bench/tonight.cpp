// SPDX-License-Identifier: GPL-3.0-or-later
// The page Tonight over 7 days of every cycle: what its reading thread takes, and what holds the
// window's own thread: the log, the first painting, painting while it is dragged and zoomed, and
// the cycle that comes while it is shown.
//
//   bench_tonight [SECONDS]      from one cycle to the next; 10 unless told otherwise
#include "history/store.h"
#include "ui/look/look.h"
#include "ui/widgets/night_log.h"
#include "ui/widgets/timeline.h"

#include <QApplication>
#include <QJsonArray>
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
constexpr std::int64_t kEnd = kStart + 7 * kDay;
constexpr int kMostPoints = 2'400; // as the page asks for
constexpr int kRounds = 15;

void require(bool holds, const QString& fault) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", qPrintable(fault));
    std::exit(1);
}

void measure(const char* what, const std::function<void()>& work) {
    std::vector<double> taken;
    for (int i = 0; i < kRounds; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        taken.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
                .count());
    }
    std::ranges::sort(taken);
    std::printf("%-58s %9.1f ms  (%.1f to %.1f)\n", what, taken[taken.size() / 2], taken.front(),
                taken.back());
}

class Week {
  public:
    explicit Week(int stepSeconds)
        : step_(stepSeconds) {}

    void fill(const QString& path) {
        HistoryStore store(path);
        require(store.open(), store.fault());
        HistoryBatch batch;
        batch.events.push_back(
            {kStart, u"session"_s, {}, u"started"_s, {}, {{u"interval_s"_s, step_}}});
        QString last;
        std::int64_t number = 1;
        for (std::int64_t at = kStart; at < kEnd; at += 1'000LL * step_) {
            batch.cycles.push_back(next(at, number++));
            const bool unsafe = batch.cycles.back().verdict == Verdict::Unsafe;
            // Verdicts change twice an hour, as in a changeable week.
            const QString verdict = unsafe ? u"unsafe"_s : u"safe"_s;
            if (verdict != last)
                batch.events.push_back(change(at, verdict));
            last = verdict;
            if (batch.cycles.size() == 8'640) {
                require(store.write(batch), store.fault());
                batch = {};
            }
        }
        require(store.write(batch), store.fault());
        while (store.tidy(kEnd, {})) {
        }
    }

  private:
    KeptCycle next(std::int64_t atMs, std::int64_t number) {
        KeptCycle cycle;
        cycle.atMs = atMs;
        cycle.number = number;
        cycle.intervalSeconds = step_;
        const double hour = static_cast<double>(atMs % kDay) / 3.6e6;
        const auto around = [this](double mean, double spread) {
            return std::round(10 * (mean + spread * normal_(random_))) / 10;
        };
        const bool gusty = static_cast<int>(hour * 2) % 2 == 1;
        auto& values = cycle.values;
        values[measured(Quantity::Cloud)] = around(-22, 4);
        values[measured(Quantity::Rain)] = around(2'600, 20);
        values[measured(Quantity::Brightness)] = around(12'000, 100);
        values[measured(Quantity::Wind)] = std::abs(around(9 + 4 * std::sin(hour / 4), 3));
        values[measured(Quantity::Gust)] = std::abs(around(gusty ? 25 : 13, 2));
        values[measured(Quantity::Temperature)] = around(8, 3);
        values[measured(Quantity::Dew)] = around(6, 1);
        values[measured(Quantity::Humidity)] = around(60, 8);
        values[MeasuredDirection] = std::fmod(std::abs(around(200, 40)), 360);
        for (std::int32_t& level : cycle.levels)
            level = 1;
        cycle.station = cycle.sensor = SourceState::Ok;
        cycle.verdict = gusty ? Verdict::Unsafe : Verdict::Safe;
        return cycle;
    }

    static HistoryEvent change(std::int64_t atMs, const QString& verdict) {
        QJsonArray causes;
        if (verdict == u"unsafe")
            causes.append(QJsonObject{{u"kind"_s, u"level"_s},
                                      {u"name"_s, u"gust"_s},
                                      {u"text"_s, u"Gust 25 km/h, above 20, since 05:09:30"_s}});
        return {atMs, u"verdict"_s, {}, verdict, {}, {{u"causes"_s, causes}}};
    }

    int step_;
    std::mt19937_64 random_{1};
    std::normal_distribution<double> normal_;
};

NightRecord read(const QString& path, std::int64_t lengthMs) {
    NightRecord record = readNight(path, {kEnd - lengthMs, kEnd}, kEnd, kMostPoints);
    require(record.fault.isEmpty() && record.points.size() >= 360, u"points are missing"_s);
    record.running = true;
    return record;
}

void run(int stepSeconds) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"history.db"_s);
    Week(stepSeconds).fill(path);
    std::printf("7 days, a cycle each %d s\n", stepSeconds);
    measure("thread: the last hour", [&] { read(path, kDay / 24); });
    measure("thread: 24 hours", [&] { read(path, kDay); });
    measure("thread: 7 days", [&] { read(path, 7 * kDay); });

    const NightRecord record = read(path, 7 * kDay);
    measure("  what is drawn of it", [&] { nightOf(record); });
    const auto night = std::make_shared<Night>(nightOf(record));
    std::printf("%zu points, %zu verdicts\n", record.points.size(), record.periods.size());

    for (const QSize size : {QSize(1280, 800), QSize(3840, 2160)}) {
        QWidget window;
        Timeline timeline(&window);
        NightLog log(&window);
        window.resize(size);
        log.setGeometry(size.width() * 3 / 4, size.height() / 2, size.width() / 4,
                        size.height() / 2);
        timeline.setGeometry(0, size.height() / 2, size.width() * 3 / 4, size.height() / 2);
        window.show();
        QCoreApplication::processEvents();
        std::printf("window of %d x %d\n", size.width(), size.height());
        const TimelineView week{
            .shown = record.range, .live = true, .atNow = true, .beginning = u"Mon"_s};
        measure("  window: the timeline of 7 days is painted", [&] {
            timeline.show(night, week);
            timeline.repaint();
        });
        measure("  window: a step of a drag over one day", [&, from = kStart]() mutable {
            from += kDay / 40;
            timeline.show(night, {.shown = {from, from + kDay},
                                  .live = true,
                                  .atNow = false,
                                  .beginning = u"Mon"_s});
            timeline.repaint();
        });
        measure("  window: pointing at a moment", [&] {
            timeline.pointAt(kEnd - kDay);
            timeline.repaint();
        });
        const std::vector<LogEntry> entries = logOf(record);
        measure("  window: the log is filled", [&] {
            log.show(logOf(record));
            log.repaint();
        });
        require(!entries.empty(), u"the log is empty"_s);
    }
}

} // namespace
} // namespace skyhold

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    skyhold::applyLook(application);
    const int wanted = argc > 1 ? std::atoi(argv[1]) : 0; // 0 for options of other benchmarks
    skyhold::run(wanted > 0 ? wanted : 10);
    return 0;
}
