// SPDX-License-Identifier: GPL-3.0-or-later
// A weather station's program that keeps the station file up to date, from the simulated weather
// or from a log.
#include "platform/clock_options.h"
#include "platform/files.h"
#include "platform/quit_signals.h"
#include "simulators/station_text.h"
#include "simulators/station_writer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

constexpr char kDescription[] =
    R"(Rewrites a weather-station file at intervals.

A log for --replay is comma-separated text with the header
  time_utc,temperature_f,dew_point_f,humidity_pct,wind_direction_deg,wind_mph,gust_mph,
  precipitation_in,pressure_hpa,visibility_mi
in one line; the columns are found by their names. Times are like 2013-02-01T05:00:00Z. The record
in force is the last one not later than the simulated time. An empty field becomes an empty cell, an
impossible value is written as it stands. Nothing is written before the first record.

Faults (--fault, or the text of the --control file, which is read before each write):
  stop       no more writing
  delete     the file is deleted
  halves=MS  written in place in two halves with that real pause between them (1000)
  rubbish    random bytes
  empty      no bytes
  huge       200 MB
  none       as it should be)";

constexpr std::int64_t kMaxLogBytes = std::int64_t{256} * 1024 * 1024;
constexpr std::int64_t kMaxControlBytes = 4096;
constexpr double kMinIntervalMs = 5; // real time between two writes

int refuse(const QString& reason) {
    std::fprintf(stderr, "Kiv_StationSim: %s\n", qUtf8Printable(reason));
    return 1;
}

ReplayLog readLog(const QString& path) {
    const FileContents file = readFile(path, kMaxLogBytes);
    if (file.result == ReadResult::Ok)
        return parseReplayLog(file.bytes);
    ReplayLog log;
    log.error = u"it cannot be read"_s;
    return log;
}

int listTimes(const QString& path) {
    const ReplayLog log = readLog(path);
    if (!log.error.isEmpty())
        return refuse(path + u": "_s + log.error);
    for (const LogRecord& record : {log.records.front(), log.records.back()})
        std::printf("%s\n",
                    qUtf8Printable(record.time.toLocalTime().toString(u"yyyy-MM-ddThh:mm:ss"_s)));
    return 0;
}

// The value of an option that is one of a few texts; nothing for any other.
std::optional<QString> choice(const QCommandLineParser& parser, const QString& option,
                              const QStringList& choices) {
    const QString value = parser.value(option);
    if (choices.contains(value))
        return value;
    refuse(u"--%1 takes one of %2"_s.arg(option, choices.join(u' ')));
    return std::nullopt;
}

struct Station {
    const Clock& clock;
    Scenario scenario;
    QDateTime scenarioStart;
    std::optional<ReplayLog> log; // instead of the scenario
    bool once = false;
    StationForm form;
    QString controlPath; // empty for none
    Faults faults;
    StationWriter& writer;
};

void readControl(Station& station) {
    if (station.controlPath.isEmpty())
        return;
    const FileContents control = readFile(station.controlPath, kMaxControlBytes);
    if (control.result != ReadResult::Ok)
        return; // the fault in force stays
    const QString text = QString::fromUtf8(control.bytes).trimmed();
    station.faults.clear();
    if (!text.isEmpty() && !station.faults.set(text))
        refuse(u"the control file does not name a fault: "_s + text);
}

void writeOnce(Station& station) {
    readControl(station);
    const QDateTime now = station.clock.now();
    const std::optional<StationCells> cells =
        station.log
            ? cellsOf(*station.log, now, station.form)
            : cellsOf(weatherAt(station.scenario, station.scenarioStart, now), station.form);
    if (cells)
        station.writer.write(stationText(*cells, now, station.form), station.faults);
    if (station.once && station.log && now > station.log->records.back().time)
        QCoreApplication::quit();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(kDescription));
    parser.addHelpOption();
    parser.addOptions(clockOptions());
    parser.addOptions({
        {u"file"_s, u"The station file."_s, u"PATH"_s},
        {u"format"_s, u"html (default) or csv."_s, u"FORMAT"_s, u"html"_s},
        {u"every"_s, u"Simulated seconds between writes (5)."_s, u"SECONDS"_s, u"5"_s},
        {u"speed-unit"_s, u"K km/h (default), M mph, m m/s or k knots."_s, u"UNIT"_s, u"K"_s},
        {u"temp-unit"_s, u"C (default) or F."_s, u"UNIT"_s, u"C"_s},
        {u"date-format"_s, u"dmy (default) or mdy."_s, u"FORMAT"_s, u"dmy"_s},
        {u"scenario"_s, u"The weather: night (default) or quick."_s, u"NAME"_s, u"night"_s},
        {u"replay"_s, u"Plays a log instead of a scenario."_s, u"FILE"_s},
        {u"once"_s, u"Ends after the last record of the log."_s},
        {u"list-times"_s, u"Prints the first and the last local time of a log and ends."_s,
         u"FILE"_s},
        {u"fault"_s, u"A fault from the list above."_s, u"NAME[=VALUE]"_s},
        {u"control"_s, u"A file that names the fault to simulate."_s, u"FILE"_s},
    });
    parser.process(application);
    if (parser.isSet(u"list-times"_s))
        return listTimes(parser.value(u"list-times"_s));
    if (!parser.isSet(u"file"_s))
        return refuse(u"--file is missing"_s);

    const auto format = choice(parser, u"format"_s, {u"html"_s, u"csv"_s});
    const auto speedUnit = choice(parser, u"speed-unit"_s, {u"K"_s, u"M"_s, u"m"_s, u"k"_s});
    const auto temperatureUnit = choice(parser, u"temp-unit"_s, {u"C"_s, u"F"_s});
    const auto dateFormat = choice(parser, u"date-format"_s, {u"dmy"_s, u"mdy"_s});
    const auto scenario = choice(parser, u"scenario"_s, {u"night"_s, u"quick"_s});
    if (!format || !speedUnit || !temperatureUnit || !dateFormat || !scenario)
        return 1;
    bool number = false;
    const double every = parser.value(u"every"_s).toDouble(&number);
    if (!number || !(every > 0 && every < 1e6))
        return refuse(u"--every takes seconds"_s);

    const ClockStart start = clockStartFromArguments(QCoreApplication::arguments());
    const SystemClock clock(start);
    StationWriter writer(parser.value(u"file"_s));
    Station station{.clock = clock,
                    .scenario = *scenarioNamed(*scenario),
                    .scenarioStart = start.origin.isValid() ? start.origin : clock.now(),
                    .log = std::nullopt,
                    .once = parser.isSet(u"once"_s),
                    .form = {.csv = *format == u"csv"_s,
                             .speedUnit = speedUnit->front(),
                             .temperatureUnit = temperatureUnit->front(),
                             .monthFirst = *dateFormat == u"mdy"_s},
                    .controlPath = parser.value(u"control"_s),
                    .faults = Faults(StationWriter::faultNames()),
                    .writer = writer};
    if (parser.isSet(u"replay"_s)) {
        station.log = readLog(parser.value(u"replay"_s));
        if (!station.log->error.isEmpty())
            return refuse(parser.value(u"replay"_s) + u": "_s + station.log->error);
    }
    for (const QString& fault : parser.values(u"fault"_s)) {
        if (!station.faults.set(fault))
            return refuse(u"there is no fault "_s + fault);
    }

    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(static_cast<int>(
        std::lround(std::clamp(every * 1000 / clock.scale(), kMinIntervalMs, 2e9))));
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { writeOnce(station); });
    onQuitSignal([] { QCoreApplication::quit(); });
    timer.start();
    QTimer::singleShot(0, &timer, [&] { writeOnce(station); });
    return QCoreApplication::exec();
}
