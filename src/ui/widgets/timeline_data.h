// SPDX-License-Identifier: GPL-3.0-or-later
// What the timeline of a night shows, computed from what the history holds; nothing is painted
// here. Times are milliseconds since 1970, UTC.
#pragma once

#include "history/reader.h"

#include <limits>

namespace skyhold {

struct TimeRange {
    std::int64_t fromMs = 0;
    std::int64_t toMs = 0; // not in it
    bool operator==(const TimeRange&) const = default;
    std::int64_t lengthMs() const { return toMs - fromMs; }
    bool holds(std::int64_t atMs) const { return atMs >= fromMs && atMs < toMs; }
};

// What the history says of a stretch of time, as it was read.
struct NightRecord {
    TimeRange range;         // what is known of it; its end is at most the present
    bool running = false;    // the monitor's session runs: the last period goes on to the end
    std::int64_t stepMs = 0; // from one cycle to the next; 0: not known
    std::vector<HistoryPoint> points;
    std::vector<VerdictPeriod> periods;
    // Of the sessions, the roof and the limits, with the limits that were in force at its
    // beginning.
    std::vector<HistoryEvent> events;
    QString fault; // why it could not be read
};

// At most `maxPoints`; what lies after `nowMs` is left out.
NightRecord readNight(const QString& path, TimeRange range, std::int64_t nowMs, int maxPoints);

// When the night began that lasts or was last: at the first verdict after the last noon at which no
// session ran. `noonMs` is the last one. An hour ago when nothing is known of two days.
std::int64_t beginOfNight(const std::vector<VerdictPeriod>& periods, std::int64_t noonMs,
                          std::int64_t nowMs);
// From there to `nowMs`, a quarter of an hour at the least.
TimeRange nightUntil(const QString& path, std::int64_t nowMs);

// ---- The band ----

enum class BandState : std::uint8_t { NotMonitored, Safe, Waiting, Unsafe, SourceFailed };

struct BandSegment {
    TimeRange time;
    BandState state = BandState::NotMonitored;
    bool lasts = false;
    QString source;     // of SourceFailed "station", "sensor" or "sources"
    QStringList causes; // each once, in the order in which they came; empty: none is known
    bool operator==(const BandSegment&) const = default;
};

// By time, from the record's beginning to its end without holes. It is a failed source while
// sources are the only causes.
std::vector<BandSegment> bandOf(const NightRecord& record);

// "Safe", "Waiting", "Unsafe", "Unsafe: station", "Not monitoring"
QString titleOf(const BandSegment& segment);

// ---- The rows ----

inline constexpr double kNoBound = std::numeric_limits<double>::infinity();

struct Sample {
    TimeRange time; // of a cycle without an end of its own
    double low = 0;
    double mean = 0;
    double high = 0;
    bool beyond = false; // at a level, or past a limit, that counts as unsafe
};

// Values above `low` up to `high` count as unsafe.
struct Zone {
    TimeRange time;
    double low = -kNoBound;
    double high = kNoBound;
    bool operator==(const Zone&) const = default;
};

struct LimitLine {
    TimeRange time;
    double value = 0;
    bool unsafe = false;   // the end of a zone
    bool observed = false; // no limit that is known: the mildest value that was judged unsafe
    bool operator==(const LimitLine&) const = default;
};

struct TimelineRow {
    std::size_t index = 0; // Measured
    QString title;
    QString unit;
    int decimals = 1;
    bool logarithmic = false;
    double low = 0; // of the scale
    double high = 1;
    std::vector<std::vector<Sample>> runs; // by time; there is a gap between two of them
    std::vector<Zone> zones;
    std::vector<LimitLine> lines;

    // 0 at the scale's low end, 1 at its high one; outside of them beyond.
    double shareOf(double value) const;
    QString text(double value) const;
};

inline constexpr std::size_t kTimelineRowCount = kQuantityCount + 1; // the wind's direction
std::vector<TimelineRow> rowsOf(const NightRecord& record);

// ---- A moment ----

struct MomentThen {
    std::int64_t atMs = 0;
    BandSegment segment;
    std::int64_t readMs = 0; // of its readings; 0: nothing was read then
    struct Value {
        double value = 0;
        bool beyond = false;
    };
    std::array<std::optional<Value>, kTimelineRowCount> values;
};
MomentThen momentAt(std::int64_t atMs, const std::vector<BandSegment>& band,
                    const std::vector<TimelineRow>& rows);
// "23:28:20 Unsafe  Cloud -2.3 °C, above -5, since 23:07:40 · …"
QString headLine(const MomentThen& moment);

// ---- The log ----

struct LogEntry {
    BandSegment segment;
    QString title;
    QString cause;
};
// Newest first, from the record's first verdict on.
std::vector<LogEntry> logOf(const NightRecord& record);
bool matches(const LogEntry& entry, const QString& filter);
QString logLine(const LogEntry& entry); // for a person, on one line
// "from,to,seconds,state,causes", times local with their distance from UTC; lines end in CR LF.
QString logCsv(const std::vector<LogEntry>& entries);

} // namespace skyhold
