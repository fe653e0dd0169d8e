// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/timeline_data.h"

#include "platform/text_forms.h"
#include "units/unit_text.h"

#include <QJsonArray>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kMinuteMs = 60'000;
constexpr std::int64_t kDayMs = 86'400'000;

// The one that was in force at a time; it may be long ago.
std::optional<HistoryEvent> lastLimitsBefore(HistoryReader& reader, std::int64_t atMs) {
    for (const std::int64_t back : {kDayMs, 30 * kDayMs, atMs}) {
        std::vector<HistoryEvent> events =
            reader.readEvents(std::max(atMs - back, kBeginning), atMs, u"limits"_s);
        if (!events.empty())
            return std::move(events.back());
    }
    return std::nullopt;
}

// A cause without the time that the log and the band show by themselves.
QString withoutSince(const QJsonValue& cause) {
    QString text = cause[u"text"_s].toString();
    const qsizetype since = text.lastIndexOf(u", since "_s);
    return withShownUnits(since > 0 ? text.first(since) : text);
}

BandState stateOf(const QString& verdict, const QJsonArray& causes) {
    if (verdict == u"safe")
        return BandState::Safe;
    if (verdict == u"waiting")
        return BandState::Waiting;
    const bool sourcesAlone =
        !causes.isEmpty() && std::all_of(causes.begin(), causes.end(), [](const QJsonValue& cause) {
            return cause[u"kind"_s].toString() == u"source";
        });
    return sourcesAlone ? BandState::SourceFailed : BandState::Unsafe;
}

// What a verdict's causes were, each by its kind and name once: the first words for it stay.
struct Gathered {
    BandSegment segment;
    QStringList keys;

    void add(const QJsonArray& causes) {
        for (const auto& cause : causes) {
            const QString name = cause[u"name"_s].toString();
            const QString key = cause[u"kind"_s].toString() + u' ' + name;
            if (segment.state == BandState::SourceFailed)
                segment.source =
                    segment.source.isEmpty() || segment.source == name ? name : u"sources"_s;
            if (keys.contains(key))
                continue;
            keys += key;
            segment.causes += withoutSince(cause);
        }
    }
};

std::vector<BandSegment> segmentsOf(const VerdictPeriod& period, std::int64_t endMs) {
    std::vector<Gathered> parts;
    for (const HistoryEvent& change : period.changes) {
        const QJsonArray causes = change.detail[u"causes"_s].toArray();
        const BandState state = stateOf(period.verdict, causes);
        if (parts.empty() || parts.back().segment.state != state) {
            if (!parts.empty())
                parts.back().segment.time.toMs = change.atMs;
            parts.push_back({{.time = {change.atMs, endMs},
                              .state = state,
                              .lasts = false,
                              .source = {},
                              .causes = {}},
                             {}});
        }
        parts.back().add(causes);
    }
    std::vector<BandSegment> segments;
    segments.reserve(parts.size());
    for (Gathered& part : parts)
        segments.push_back(std::move(part.segment));
    if (!segments.empty())
        segments.back().lasts = period.lasts;
    return segments;
}

// What the last event of the sessions before the end of a segment without one says.
QString whyNotMonitored(const NightRecord& record, const TimeRange& time) {
    QString text;
    for (const HistoryEvent& event : record.events) {
        if (event.kind == u"session" && event.state != u"started" && event.atMs < time.toMs)
            text = event.text;
    }
    return text;
}

// What the roof was commanded when it became safe.
QString roofCommand(const NightRecord& record, std::int64_t atMs) {
    for (const HistoryEvent& event : record.events) {
        if (event.kind == u"roof" && event.name == u"command" && event.state == u"open" &&
            event.atMs >= atMs - 1'000 && event.atMs < atMs + 2 * kMinuteMs)
            return event.text;
    }
    return {};
}

QString causeOf(const BandSegment& segment, const NightRecord& record) {
    if (segment.state == BandState::NotMonitored)
        return whyNotMonitored(record, segment.time);
    if (segment.state == BandState::Safe) {
        const QString roof = roofCommand(record, segment.time.fromMs);
        return roof.isEmpty() ? u"All conditions safe"_s : roof;
    }
    return segment.causes.join(u" · "_s);
}

BandSegment notMonitored(TimeRange time, bool lasts) {
    return {
        .time = time, .state = BandState::NotMonitored, .lasts = lasts, .source = {}, .causes = {}};
}

QString isoLocal(std::int64_t atMs) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(atMs);
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate);
}

QString quoted(QString text) {
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

} // namespace

NightRecord readNight(const QString& path, TimeRange range, std::int64_t nowMs, int maxPoints) {
    HistoryReader reader(path);
    NightRecord record;
    record.range = {range.fromMs, std::clamp(nowMs, range.fromMs, range.toMs)};
    record.points = reader.readCycles(record.range.fromMs, record.range.toMs, maxPoints);
    record.periods = reader.readPeriods(record.range.fromMs, record.range.toMs);
    for (HistoryEvent& event : reader.readEvents(record.range.fromMs - kDayMs, record.range.toMs)) {
        const bool before = event.atMs < record.range.fromMs;
        if (event.kind == u"session" ||
            (!before && (event.kind == u"limits" || event.kind == u"roof")))
            record.events.push_back(std::move(event));
    }
    if (std::optional<HistoryEvent> limits = lastLimitsBefore(reader, record.range.fromMs))
        record.events.insert(record.events.begin(), std::move(*limits));
    for (const HistoryEvent& event : record.events) {
        if (event.kind == u"session" && event.state == u"started")
            record.stepMs = 1'000 * event.detail[u"interval_s"_s].toInteger();
    }
    record.fault = reader.fault();
    return record;
}

std::int64_t beginOfNight(const std::vector<VerdictPeriod>& periods, std::int64_t noonMs,
                          std::int64_t nowMs) {
    for (const std::int64_t noon : {noonMs, noonMs - kDayMs}) {
        const bool ran = std::ranges::any_of(periods, [noon](const VerdictPeriod& period) {
            return period.fromMs <= noon && period.toMs > noon;
        });
        const auto first = std::ranges::find_if(
            periods, [noon](const VerdictPeriod& period) { return period.fromMs > noon; });
        if (!ran && first != periods.end())
            return first->fromMs;
    }
    const auto first = std::ranges::find_if(
        periods, [nowMs](const VerdictPeriod& period) { return period.toMs > nowMs - kDayMs; });
    return first == periods.end() ? nowMs - 60 * kMinuteMs
                                  : std::max(first->fromMs, nowMs - kDayMs);
}

TimeRange nightUntil(const QString& path, std::int64_t nowMs) {
    constexpr std::int64_t kLeastMs = 900'000;
    constexpr std::int64_t kTwoDaysMs = 172'800'000;
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(nowMs);
    const QDateTime noon(now.date(), QTime(12, 0));
    const std::int64_t lastNoonMs = (noon > now ? noon.addDays(-1) : noon).toMSecsSinceEpoch();
    HistoryReader reader(path);
    const std::int64_t from =
        beginOfNight(reader.readPeriods(nowMs - kTwoDaysMs, nowMs), lastNoonMs, nowMs);
    return {std::min(from, nowMs - kLeastMs), nowMs};
}

std::vector<BandSegment> bandOf(const NightRecord& record) {
    std::vector<BandSegment> band;
    std::int64_t reached = record.range.fromMs;
    const auto add = [&](BandSegment segment) {
        if (segment.time.toMs <= segment.time.fromMs || segment.time.toMs <= reached)
            return;
        if (segment.time.fromMs > reached)
            band.push_back(notMonitored({reached, segment.time.fromMs}, false));
        reached = segment.time.toMs;
        band.push_back(std::move(segment));
    };
    for (const VerdictPeriod& period : record.periods) {
        const bool goesOn = period.lasts && record.running;
        const std::int64_t end =
            std::min(goesOn ? record.range.toMs : period.toMs, record.range.toMs);
        for (BandSegment& segment : segmentsOf(period, end)) {
            segment.lasts = segment.lasts && record.running;
            add(std::move(segment));
        }
    }
    if (reached < record.range.toMs)
        band.push_back(notMonitored({reached, record.range.toMs}, true));
    return band;
}

QString titleOf(const BandSegment& segment) {
    switch (segment.state) {
    case BandState::Safe:
        return u"Safe"_s;
    case BandState::Waiting:
        return u"Waiting"_s;
    case BandState::Unsafe:
        return u"Unsafe"_s;
    case BandState::SourceFailed:
        return u"Unsafe: "_s + segment.source;
    case BandState::NotMonitored:
        break;
    }
    return u"Not monitoring"_s;
}

MomentThen momentAt(std::int64_t atMs, const std::vector<BandSegment>& band,
                    const std::vector<TimelineRow>& rows) {
    MomentThen moment{
        .atMs = atMs, .segment = notMonitored({atMs, atMs}, false), .readMs = 0, .values = {}};
    for (const BandSegment& segment : band) {
        if (segment.time.holds(atMs))
            moment.segment = segment;
    }
    for (std::size_t i = 0; i < rows.size() && i < moment.values.size(); ++i) {
        for (const std::vector<Sample>& run : rows[i].runs) {
            if (run.empty() || atMs < run.front().time.fromMs || atMs >= run.back().time.toMs)
                continue;
            const auto after = std::ranges::upper_bound(
                run, atMs, {}, [](const Sample& s) { return s.time.fromMs; });
            const Sample& then = *std::prev(after);
            double value = then.mean;
            // Of a stretch of time, the value that made it unsafe.
            for (const Zone& zone : rows[i].zones) {
                if (!then.beyond || !zone.time.holds(then.time.fromMs))
                    continue;
                if (zone.high == kNoBound && then.high > zone.low)
                    value = then.high;
                else if (zone.low == -kNoBound && then.low <= zone.high)
                    value = then.low;
            }
            moment.values[i] = {value, then.beyond};
            moment.readMs = std::max(moment.readMs, then.time.fromMs);
        }
    }
    return moment;
}

QString headLine(const MomentThen& moment) {
    const QString text = clockText(moment.atMs) + u' ' + titleOf(moment.segment);
    return moment.segment.causes.isEmpty() ? text
                                           : text + u"   "_s + moment.segment.causes.join(u" · "_s);
}

std::vector<LogEntry> logOf(const NightRecord& record) {
    std::vector<LogEntry> log;
    for (BandSegment& segment : bandOf(record)) {
        if (log.empty() && segment.state == BandState::NotMonitored)
            continue; // before the first verdict
        const QString cause = causeOf(segment, record);
        const QString title = titleOf(segment);
        log.push_back({std::move(segment), title, cause});
    }
    std::ranges::reverse(log);
    return log;
}

bool matches(const LogEntry& entry, const QString& filter) {
    const QStringList words = filter.split(u' ', Qt::SkipEmptyParts);
    const QString text = logLine(entry);
    return std::ranges::all_of(
        words, [&text](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

QString logLine(const LogEntry& entry) {
    const QDateTime from = QDateTime::fromMSecsSinceEpoch(entry.segment.time.fromMs);
    return QStringList{from.toString(u"yyyy-MM-dd HH:mm:ss"_s), entry.title,
                       durationText(entry.segment.time.lengthMs() / 1'000), entry.cause}
        .join(u'\t');
}

QString logCsv(const std::vector<LogEntry>& entries) {
    QString text = u"from,to,seconds,state,causes\r\n"_s;
    for (const LogEntry& entry : entries) {
        const TimeRange& time = entry.segment.time;
        text += QStringList{isoLocal(time.fromMs),
                            entry.segment.lasts ? QString() : isoLocal(time.toMs),
                            QString::number(time.lengthMs() / 1'000), quoted(entry.title),
                            quoted(entry.cause)}
                    .join(u',') +
                u"\r\n"_s;
    }
    return text;
}

} // namespace skyhold
