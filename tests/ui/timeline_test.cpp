// SPDX-License-Identifier: GPL-3.0-or-later
// What the page Tonight draws: a band, a curve or a log that says more than the history knows would
// be believed at night.
#include "ui/widgets/timeline_data.h"

#include "conditions/rule_values.h"
#include "ui/widgets/night_log.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QListWidget>
#include <QScrollBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kStart = 1'763'000'000'000; // all times below are seconds from here

std::int64_t at(int seconds) {
    return kStart + seconds * std::int64_t{1'000};
}

HistoryEvent change(int seconds, const QJsonArray& causes) {
    return {.atMs = at(seconds),
            .kind = u"verdict"_s,
            .name = {},
            .state = {},
            .text = {},
            .detail = {{u"causes"_s, causes}}};
}

QJsonObject cause(const QString& kind, const QString& name, const QString& text) {
    return {{u"kind"_s, kind}, {u"name"_s, name}, {u"text"_s, text}};
}

VerdictPeriod period(int from, int to, const QString& verdict, std::vector<HistoryEvent> changes,
                     bool lasts = false) {
    return {at(from), at(to), lasts, verdict, std::move(changes)};
}

// "0-100 Safe | 100-160 Unsafe: station [Station data old]"
QString shown(const std::vector<BandSegment>& band) {
    QStringList all;
    for (const BandSegment& segment : band) {
        QString text = u"%1-%2 %3"_s.arg((segment.time.fromMs - kStart) / 1'000)
                           .arg((segment.time.toMs - kStart) / 1'000)
                           .arg(titleOf(segment));
        if (!segment.causes.isEmpty())
            text += u" [%1]"_s.arg(segment.causes.join(u", "_s));
        all += text + (segment.lasts ? u" …"_s : QString());
    }
    return all.join(u" | "_s);
}

TEST(Timeline, BandSaysWhatTheHistoryKnowsAndNoMore) {
    const QJsonObject rain = cause(u"level"_s, u"rain"_s, u"Rain: Wet at 900, since 22:10:00"_s);
    const QJsonObject old = cause(u"source"_s, u"station"_s, u"Station data 200 s old"_s);
    const QJsonObject hung = cause(u"source"_s, u"sensor"_s, u"Kiv_Nubilo has failed"_s);
    const VerdictPeriod safe = period(10, 100, u"safe"_s, {change(10, {})});
    struct Case {
        const char* what;
        std::vector<VerdictPeriod> periods;
        bool running;
        QString band;
    };
    const Case cases[]{
        {"nothing is known", {}, true, u"0-300 Not monitoring …"_s},
        {"a session that has ended does not go on as safe",
         {period(10, 100, u"safe"_s, {change(10, {})}, true)},
         false,
         u"0-10 Not monitoring | 10-100 Safe | 100-300 Not monitoring …"_s},
        {"one that runs goes on",
         {period(10, 100, u"safe"_s, {change(10, {})}, true)},
         true,
         u"0-10 Not monitoring | 10-300 Safe …"_s},
        {"a hole between two sessions is not bridged",
         {safe, period(150, 300, u"safe"_s, {change(150, {})})},
         false,
         u"0-10 Not monitoring | 10-100 Safe | 100-150 Not monitoring | 150-300 Safe"_s},
        {"sources alone are a failed source, each named; with weather beside them it is the "
         "weather",
         {safe, period(100, 300, u"unsafe"_s,
                       {change(100, {old}), change(150, {old, hung}), change(200, {old, rain})})},
         false,
         u"0-10 Not monitoring | 10-100 Safe | 100-200 Unsafe: sources [Station data 200 s old, "
         "Kiv_Nubilo has failed] | 200-300 Unsafe [Station data 200 s old, Rain: Wet at 900]"_s},
        {"waiting is not yet safe",
         {period(0, 60, u"unsafe"_s, {change(0, {rain})}),
          period(60, 300, u"waiting"_s, {change(60, {})})},
         false,
         u"0-60 Unsafe [Rain: Wet at 900] | 60-300 Waiting"_s},
    };
    for (const Case& c : cases) {
        NightRecord record;
        record.range = {at(0), at(300)};
        record.running = c.running;
        record.periods = c.periods;
        EXPECT_EQ(shown(bandOf(record)), c.band) << c.what;
    }
}

HistoryPoint point(int seconds, std::optional<double> wind) {
    HistoryPoint point;
    point.atMs = at(seconds);
    point.cycles = 1;
    if (wind)
        point.values[measured(Quantity::Wind)] = Extent{*wind, *wind, *wind};
    return point;
}

HistoryEvent limits(int seconds, double calm, bool beyond) {
    Rules rules;
    rules.levels[Quantity::Wind].limits = {calm, 20, 40};
    rules.levels[Quantity::Wind].unsafe = {false, true, true};
    rules.beyondIsUnsafe = beyond;
    return {.atMs = at(seconds),
            .kind = u"limits"_s,
            .name = {},
            .state = {},
            .text = {},
            .detail = {{u"rules"_s, rulesObject(rules)}}};
}

const TimelineRow& windRow(const std::vector<TimelineRow>& rows) {
    return *std::ranges::find(rows, measured(Quantity::Wind), &TimelineRow::index);
}

TEST(Timeline, CurvesHaveTheirGapsAndAreMarkedByTheLimitsOfTheirTime) {
    NightRecord record;
    record.range = {at(0), at(200)};
    record.stepMs = 5'000;
    record.events = {limits(-50, 10, false), limits(100, 30, true)};
    // A value that is missing, a silence, and the same 15 before and after the limits were changed.
    for (const auto& [seconds, wind] : {std::pair{0, std::optional(5.0)},
                                        {5, {15.0}},
                                        {10, {}},
                                        {15, {20.0}},
                                        {20, {20.5}},
                                        {90, {41.0}},
                                        {95, {5.0}},
                                        {100, {15.0}},
                                        {105, {41.0}}})
        record.points.push_back(point(seconds, wind));
    const std::vector<TimelineRow> rows = rowsOf(record);
    const TimelineRow& wind = windRow(rows);
    QStringList runs;
    for (const std::vector<Sample>& run : wind.runs) {
        QStringList samples;
        for (const Sample& sample : run)
            samples += QString::number(sample.mean) + (sample.beyond ? u"!"_s : QString());
        runs += samples.join(u' ');
    }
    // 41 lies beyond the last limit, which counts by the second rules alone. The first limits are
    // in no order from 100 on: 30 does not lie below 20, and nothing is marked by them.
    EXPECT_EQ(runs.join(u" | "_s), u"5 15! | 20! 20.5! | 41 5 15 41"_s);
    // Unsafe is one zone from 10 to 40 until the rules change, however many levels make it up.
    ASSERT_EQ(wind.zones.size(), 1U);
    EXPECT_EQ(wind.zones[0], (Zone{{at(0), at(100)}, 10, 40}));
    // Where nothing was read there is no value to be shown.
    const std::vector<BandSegment> band = bandOf(record);
    const std::size_t place = static_cast<std::size_t>(&wind - rows.data());
    EXPECT_FALSE(momentAt(at(60), band, rows).values[place]);
    EXPECT_EQ(momentAt(at(7), band, rows).values[place]->value, 15);
    EXPECT_TRUE(momentAt(at(7), band, rows).values[place]->beyond);
}

TEST(Timeline, LogIsNewestFirstAndItsCsvKeepsQuotes) {
    NightRecord record;
    record.range = {at(0), at(300)};
    record.periods = {
        period(100, 200, u"safe"_s, {change(100, {})}),
        period(200, 300, u"unsafe"_s,
               {change(200, {cause(u"level"_s, u"gust"_s, u"Gust \"strong\", 50 km/h"_s)})})};
    const std::vector<LogEntry> log = logOf(record);
    ASSERT_EQ(log.size(), 2U); // not the time before the first verdict
    EXPECT_EQ(log[0].title, u"Unsafe"_s);
    EXPECT_EQ(log[1].cause, u"All conditions safe"_s);
    EXPECT_TRUE(matches(log[0], u"STRONG gust"_s));
    EXPECT_FALSE(matches(log[0], u"gust rain"_s));
    const QStringList lines = logCsv(log).split(u"\r\n"_s);
    EXPECT_TRUE(lines[1].endsWith(u",100,\"Unsafe\",\"Gust \"\"strong\"\", 50 km/hr\""_s));
}

TEST(Timeline, LogShrinksWithItsWindowAndStaysWhereItIs) {
    QWidget window;
    auto* log = new NightLog(&window);
    (new QVBoxLayout(&window))->addWidget(log);
    std::vector<LogEntry> entries(100);
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i].segment.time.fromMs = at(-static_cast<int>(i));
    log->show(entries);
    const auto* list = log->findChild<QListWidget*>();
    const auto heightIn = [&](QSize size) {
        window.resize(size);
        QCoreApplication::processEvents();
        return list->visualItemRect(list->item(0)).height();
    };
    window.show();
    const int large = heightIn({3840, 2160});
    EXPECT_LT(heightIn({1280, 800}), large / 2);
    // What a user has scrolled to stays when a cycle adds an entry.
    list->verticalScrollBar()->setValue(20);
    entries.insert(entries.begin(), LogEntry{})->segment.time.fromMs = at(10);
    log->show(entries);
    QCoreApplication::processEvents();
    EXPECT_EQ(list->row(list->itemAt(2, 2)), 21);
}

} // namespace
} // namespace skyhold
