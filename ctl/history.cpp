// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/history.h"

#include "ctl/output.h"
#include "ctl/times.h"
#include "ctl/values.h"
#include "ctl/verdict.h"
#include "history/json.h"
#include "history/short_cause.h"
#include "platform/text_forms.h"

#include <QJsonArray>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kDayMs = 86'400'000;
constexpr int kTableRows = 48; // of readings for people

int fail(const QString& text) {
    printFault(text);
    return kStatusFailed;
}

std::int64_t seconds(const VerdictPeriod& period) {
    return (period.toMs - period.fromMs + 500) / 1'000;
}

// What stood at its beginning, then what came while it lasted; each once.
QStringList causesOf(const VerdictPeriod& period) {
    QStringList texts;
    QStringList known;
    for (const HistoryEvent& change : period.changes) {
        const QJsonArray causes = change.detail[u"causes"_s].toArray();
        for (const auto& value : causes) {
            const QJsonObject cause = value.toObject();
            const QString what = cause[u"kind"_s].toString() + cause[u"name"_s].toString();
            if (known.contains(what) || cause[u"kind"_s] == u"delay"_s)
                continue;
            known += what;
            texts += shortCause(cause);
        }
    }
    return texts;
}

QString periodLine(const VerdictPeriod& period) {
    const QString end = period.lasts ? u"now     "_s : clockText(period.toMs);
    QString line = clockText(period.fromMs) + u" \u2013 "_s + end + u"  "_s +
                   period.verdict.leftJustified(7) + u"  "_s +
                   durationText(seconds(period)).leftJustified(12) + u"  "_s +
                   causesOf(period).join(u", "_s);
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

QString eventLine(const HistoryEvent& event) {
    QString text = event.text.isEmpty() ? (event.name + u' ' + event.state).trimmed() : event.text;
    if (event.kind == u"verdict")
        text = event.state + (event.text.isEmpty() ? QString() : u": "_s + event.text);
    return clockText(event.atMs) + u"  "_s + plainLine(text);
}

// Lines below the dates that they are of.
class DatedLines {
  public:
    void add(std::int64_t atMs, const QString& line) {
        const QDate date = QDateTime::fromMSecsSinceEpoch(atMs).date();
        if (date != date_)
            text_ += date.toString(Qt::ISODate) + u'\n';
        date_ = date;
        text_ += line + u'\n';
    }
    QString text() const { return text_; }

  private:
    QDate date_;
    QString text_;
};

QString quoted(QString text) {
    return u'"' + plainLine(text.replace(u'"', u"\"\""_s)) + u'"';
}

QString rounded(double value) {
    return numberText(std::round(value * 100) / 100, {});
}

int writePeriods(const Command& command, HistoryReader& reader, std::int64_t sinceMs,
                 std::int64_t untilMs) {
    std::vector<VerdictPeriod> periods = reader.readPeriods(sinceMs, untilMs);
    std::vector<HistoryEvent> events = reader.readEvents(sinceMs, untilMs);
    std::erase_if(events, [](const HistoryEvent& event) { return event.kind == u"verdict"; });
    const HistoryRange range = reader.range();
    if (!reader.fault().isEmpty())
        return fail(reader.fault());
    // A monitor that was killed has not written the end of its last verdict.
    constexpr std::int64_t kLatestMs = 300'000;
    if (!periods.empty() && QDateTime::currentMSecsSinceEpoch() - range.lastMs > kLatestMs)
        periods.back().lasts = false;
    if (command.json) {
        QJsonArray periodArray;
        for (const VerdictPeriod& period : periods)
            periodArray.append(toJson(period));
        QJsonArray eventArray;
        for (const HistoryEvent& event : events)
            eventArray.append(toJson(event));
        writeLine(QJsonObject{{u"periods"_s, periodArray},
                              {u"events"_s, eventArray},
                              {u"file_bytes"_s, static_cast<qint64>(range.fileBytes)}});
        return 0;
    }
    if (command.has(u"csv"_s)) {
        write(u"from,to,verdict,seconds,causes\n"_s);
        for (const VerdictPeriod& period : periods)
            write(u"%1,%2,%3,%4,%5\n"_s.arg(isoTime(period.fromMs), isoTime(period.toMs),
                                            period.verdict, QString::number(seconds(period)),
                                            quoted(causesOf(period).join(u", "_s))));
        return 0;
    }
    write(historyText(periods, events));
    const auto date = [](std::int64_t atMs) {
        return QDateTime::fromMSecsSinceEpoch(atMs).date().toString(Qt::ISODate);
    };
    QString foot = u"History of %1 MB since %2"_s.arg(
        numberText(std::round(static_cast<double>(range.fileBytes) / 1e5) / 10, {}),
        date(range.firstMs));
    if (range.cyclesFromMs > 0)
        foot += u", single cycles since "_s + date(range.cyclesFromMs);
    writeLine(u'\n' + foot);
    return 0;
}

int writeEvents(const Command& command, HistoryReader& reader, std::int64_t sinceMs,
                std::int64_t untilMs) {
    const std::vector<HistoryEvent> events = reader.readEvents(sinceMs, untilMs);
    if (!reader.fault().isEmpty())
        return fail(reader.fault());
    if (command.json) {
        QJsonArray array;
        for (const HistoryEvent& event : events)
            array.append(toJson(event));
        writeLine(array);
    } else if (command.has(u"csv"_s)) {
        write(u"time,kind,name,state,text\n"_s);
        for (const HistoryEvent& event : events)
            write(u"%1,%2,%3,%4,%5\n"_s.arg(isoTime(event.atMs), event.kind, quoted(event.name),
                                            event.state, quoted(event.text)));
    } else {
        DatedLines lines;
        for (const HistoryEvent& event : events)
            lines.add(event.atMs, eventLine(event));
        write(lines.text());
    }
    return 0;
}

QString pointCsv(const HistoryPoint& point) {
    QStringList fields{isoTime(point.atMs), verdictName(point.verdict),
                       QString::number(point.cycles), QString(QLatin1Char(point.units.temperature)),
                       QString(QLatin1Char(point.units.speed))};
    for (const std::optional<Extent>& extent : point.values)
        fields += extent ? rounded(extent->mean) : QString();
    return fields.join(u',') + u'\n';
}

// Every point on a line of its own, as it is read: ten years are many.
int writeEveryPoint(bool json, HistoryReader& reader, std::int64_t sinceMs, std::int64_t untilMs) {
    if (!json) {
        QStringList names{u"time"_s, u"verdict"_s, u"cycles"_s, u"temperature_unit"_s,
                          u"speed_unit"_s};
        for (std::size_t i = 0; i < kMeasuredCount; ++i)
            names += QLatin1String(measuredName(i));
        write(names.join(u',') + u'\n');
    }
    bool written = true;
    reader.eachPoint(sinceMs, untilMs, [&](const HistoryPoint& point) {
        written = json ? writeLine(toJson(point)) : write(pointCsv(point));
        return written;
    });
    return reader.fault().isEmpty() ? 0 : fail(reader.fault());
}

int writeReadings(const Command& command, HistoryReader& reader, std::int64_t sinceMs,
                  std::int64_t untilMs) {
    if (command.json || command.has(u"csv"_s))
        return writeEveryPoint(command.json, reader, sinceMs, untilMs);
    const std::vector<HistoryPoint> points = reader.readCycles(sinceMs, untilMs, kTableRows);
    if (!reader.fault().isEmpty())
        return fail(reader.fault());
    constexpr int kWidth = 12;
    QString head = u"        "_s;
    for (std::size_t i = 0; i < kQuantityCount; ++i)
        head += QString(QLatin1String(measuredName(i))).rightJustified(kWidth);
    write(head + u"  verdict\n"_s);
    DatedLines lines;
    for (const HistoryPoint& point : points) {
        QString line = clockText(point.atMs);
        for (std::size_t i = 0; i < kQuantityCount; ++i)
            line +=
                (point.values[i] ? rounded(point.values[i]->mean) : u"-"_s).rightJustified(kWidth);
        lines.add(point.atMs, line + u"  "_s + verdictName(point.verdict));
    }
    write(lines.text());
    return 0;
}

} // namespace

QString historyPathOf(const Command& command) {
    return command.has(u"database"_s) ? command.option(u"database"_s) : historyPath();
}

bool timeRangeOf(const Command& command, TimeRange& range, QString& fault) {
    const QDateTime now = QDateTime::currentDateTime();
    for (const auto& [name, place] :
         {std::pair{u"since"_s, &range.sinceMs}, std::pair{u"until"_s, &range.untilMs}}) {
        if (!command.has(name))
            continue;
        *place = parseTime(command.option(name), now);
        if (!*place) {
            fault = u"--%1: \"%2\" is no time; try 2026-11-23T05:12, 23:41, 12h or 7d"_s.arg(
                name, plainLine(command.option(name)));
            return false;
        }
    }
    return true;
}

QString historyText(const std::vector<VerdictPeriod>& periods,
                    const std::vector<HistoryEvent>& events) {
    struct Line {
        std::int64_t atMs;
        QString text;
    };
    std::vector<Line> all;
    all.reserve(events.size() + periods.size());
    for (const HistoryEvent& event : events)
        all.push_back({event.atMs, eventLine(event)});
    for (const VerdictPeriod& period : periods)
        all.push_back({period.fromMs, periodLine(period)});
    std::ranges::stable_sort(all, {}, &Line::atMs);
    DatedLines lines;
    for (const Line& line : all)
        lines.add(line.atMs, line.text);
    return lines.text();
}

int runHistory(const Command& command) {
    QString fault;
    TimeRange wanted;
    if (!timeRangeOf(command, wanted, fault))
        return fail(fault);
    HistoryReader reader(historyPathOf(command));
    const HistoryRange range = reader.range();
    if (!reader.fault().isEmpty())
        return fail(reader.fault());
    // The last day that there is, of a monitor that does not run as well.
    const std::int64_t untilMs = wanted.untilMs.value_or(kEndOfTime);
    const std::int64_t sinceMs = wanted.sinceMs.value_or(std::min(untilMs, range.lastMs) - kDayMs);
    if (command.has(u"readings"_s))
        return writeReadings(command, reader, sinceMs, untilMs);
    if (command.has(u"events"_s))
        return writeEvents(command, reader, sinceMs, untilMs);
    return writePeriods(command, reader, sinceMs, untilMs);
}

} // namespace skyhold
