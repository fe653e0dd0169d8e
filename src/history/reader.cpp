// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/reader.h"

#include "history/rows.h"
#include "platform/files.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlError>

#include <algorithm>
#include <atomic>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kCycles = -1; // the tier of single cycles

QString nextConnection() {
    static std::atomic<int> number{0};
    return u"history-reader-%1"_s.arg(++number);
}

// At most `most` points; those of a stretch of time are taken together.
std::vector<HistoryPoint> fewer(const std::vector<HistoryPoint>& points, std::int64_t sinceMs,
                                std::int64_t untilMs, int most) {
    if (most <= 0 || points.size() <= static_cast<std::size_t>(most))
        return points;
    const std::int64_t span = std::max<std::int64_t>((untilMs - sinceMs + most - 1) / most, 1);
    std::vector<HistoryPoint> taken;
    PointSum sum;
    std::int64_t stretch = -1;
    for (const HistoryPoint& point : points) {
        const std::int64_t of =
            std::clamp<std::int64_t>((point.atMs - sinceMs) / span, 0, most - 1);
        if (!sum.empty() && of != stretch)
            taken.push_back(sum.take(sinceMs + stretch * span, span));
        stretch = of;
        sum.add(point);
    }
    if (!sum.empty())
        taken.push_back(sum.take(sinceMs + stretch * span, span));
    return taken;
}

// The coarsest tier that still has as many spans as there may be points.
int tierFor(std::int64_t rangeMs, int maxPoints) {
    int tier = kCycles;
    for (std::size_t i = 0; maxPoints > 0 && i < kTiers.size(); ++i) {
        if (kTiers[i].spanMs * maxPoints <= rangeMs)
            tier = static_cast<int>(i);
    }
    return tier;
}

} // namespace

QString historyPath() {
    return joinPath(userDataFolder(), QStringLiteral("history.db"));
}

HistoryReader::HistoryReader(const QString& path)
    : path_(path)
    , connection_(nextConnection()) {
    if (!QFileInfo::exists(path)) {
        fault_ = u"there is no history at "_s + path;
        return;
    }
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection_);
    database.setDatabaseName(path);
    database.setConnectOptions(u"QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=2000"_s);
    if (!database.open())
        fault_ = u"the history cannot be opened: "_s + database.lastError().text();
    else if (const std::int64_t version = number(u"PRAGMA user_version"_s);
             fault_.isEmpty() && version != kHistoryVersion)
        fault_ = version == 0 ? u"the history has not begun yet"_s
                              : u"the history was written by another version of the program"_s;
    if (!fault_.isEmpty())
        database.close();
}

HistoryReader::~HistoryReader() {
    QSqlDatabase::removeDatabase(connection_);
}

std::int64_t HistoryReader::number(const QString& statement) {
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    if (query.exec(statement) && query.next())
        return query.value(0).toLongLong();
    fault_ = u"the history cannot be read: "_s + query.lastError().databaseText();
    return 0;
}

HistoryRange HistoryReader::range() {
    HistoryRange range;
    if (!fault_.isEmpty())
        return range;
    range.cyclesFromMs = number(u"SELECT min(at) FROM cycles"_s);
    range.firstMs = number(u"SELECT min(at) FROM (SELECT min(at) AS at FROM cycles UNION ALL "
                           "SELECT min(at) FROM minutes UNION ALL SELECT min(at) FROM events)"_s);
    range.lastMs = number(u"SELECT max(at) FROM (SELECT max(at) AS at FROM cycles UNION ALL "
                          "SELECT max(at) FROM events)"_s);
    range.fileBytes = QFileInfo(path_).size() + QFileInfo(path_ + u"-wal"_s).size();
    return range;
}

bool HistoryReader::eachCycle(std::int64_t sinceMs, std::int64_t untilMs,
                              const std::function<bool(const KeptCycle&)>& take) {
    if (!fault_.isEmpty())
        return false;
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    query.setForwardOnly(true);
    bool more = query.exec(
        u"SELECT %1 FROM cycles WHERE at >= %2 AND at < %3 ORDER BY at"_s.arg(cycleColumns())
            .arg(sinceMs)
            .arg(untilMs));
    while (more && query.next())
        more = take(readCycle(query));
    if (!query.lastError().isValid())
        return true;
    fault_ = u"the history cannot be read: "_s + query.lastError().databaseText();
    return false;
}

bool HistoryReader::eachSpan(int tier, std::int64_t sinceMs, std::int64_t untilMs,
                             const std::function<bool(const HistoryPoint&)>& take) {
    if (tier == kCycles)
        return eachCycle(sinceMs, untilMs,
                         [&take](const KeptCycle& cycle) { return take(pointOf(cycle)); });
    if (!fault_.isEmpty())
        return false;
    const Tier& row = kTiers[static_cast<std::size_t>(tier)];
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    query.setForwardOnly(true);
    bool more = query.exec(u"SELECT %1 FROM %2 WHERE at >= %3 AND at < %4 ORDER BY at"_s
                               .arg(pointColumns(), QLatin1String(row.table))
                               .arg(sinceMs)
                               .arg(untilMs));
    while (more && query.next())
        more = take(readPoint(query, row.spanMs));
    if (!query.lastError().isValid())
        return true;
    fault_ = u"the history cannot be read: "_s + query.lastError().databaseText();
    return false;
}

bool HistoryReader::eachMinute(std::int64_t sinceMs, std::int64_t untilMs,
                               const std::function<bool(const HistoryPoint&)>& take) {
    return eachSpan(0, sinceMs, untilMs, take);
}

// Of the tier, with the next finer one where it has nothing yet: the span that is not over.
std::vector<HistoryPoint> HistoryReader::readSpans(int tier, std::int64_t sinceMs,
                                                   std::int64_t untilMs) {
    std::vector<HistoryPoint> points;
    std::int64_t restMs = sinceMs;
    eachSpan(tier,
             tier == kCycles ? sinceMs
                             : beginOfSpan(sinceMs, kTiers[static_cast<std::size_t>(tier)].spanMs),
             untilMs, [&](const HistoryPoint& point) {
                 points.push_back(point);
                 restMs = point.atMs + point.spanMs;
                 return true;
             });
    if (tier != kCycles) {
        const std::vector<HistoryPoint> rest = readSpans(tier - 1, restMs, untilMs);
        points.insert(points.end(), rest.begin(), rest.end());
    }
    return points;
}

std::vector<HistoryPoint> HistoryReader::readCycles(std::int64_t sinceMs, std::int64_t untilMs,
                                                    int maxPoints) {
    const HistoryRange known = range();
    sinceMs = std::max(sinceMs, known.firstMs);
    untilMs = std::min(untilMs, known.lastMs + 1);
    if (!fault_.isEmpty() || sinceMs >= untilMs)
        return {};
    const int tier = tierFor(untilMs - sinceMs, maxPoints);
    std::vector<HistoryPoint> points;
    if (tier != kCycles)
        points = readSpans(tier, sinceMs, untilMs);
    else
        eachPoint(sinceMs, untilMs, [&points](const HistoryPoint& point) {
            points.push_back(point);
            return true;
        });
    return fewer(points, sinceMs, untilMs, maxPoints);
}

bool HistoryReader::eachPoint(std::int64_t sinceMs, std::int64_t untilMs,
                              const std::function<bool(const HistoryPoint&)>& take) {
    const std::int64_t first = range().cyclesFromMs;
    // What is thinned is thinned by whole minutes.
    const std::int64_t cyclesFrom =
        first > 0 ? beginOfSpan(first, kTiers[0].spanMs) : std::max(sinceMs, untilMs);
    bool more = true;
    const auto give = [&](const HistoryPoint& point) {
        more = take(point);
        return more;
    };
    eachMinute(sinceMs, std::min(cyclesFrom, untilMs), give);
    if (more && cyclesFrom < untilMs)
        eachSpan(kCycles, std::max(sinceMs, cyclesFrom), untilMs, give);
    return fault_.isEmpty();
}

std::vector<HistoryEvent> HistoryReader::readEvents(std::int64_t sinceMs, std::int64_t untilMs,
                                                    const QString& kind) {
    std::vector<HistoryEvent> events;
    if (!fault_.isEmpty())
        return events;
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    query.setForwardOnly(true);
    query.prepare(u"SELECT %1 FROM events WHERE at >= ? AND at < ? %2 ORDER BY at, id"_s.arg(
        eventColumns(), kind.isEmpty() ? QString() : u"AND kind = ?"_s));
    query.addBindValue(static_cast<qlonglong>(sinceMs));
    query.addBindValue(static_cast<qlonglong>(untilMs));
    if (!kind.isEmpty())
        query.addBindValue(kind);
    query.exec();
    while (query.next())
        events.push_back(readEvent(query));
    if (query.lastError().isValid())
        fault_ = u"the history cannot be read: "_s + query.lastError().databaseText();
    return events;
}

std::optional<HistoryEvent> HistoryReader::oneEvent(const QString& condition,
                                                    const QVariantList& values) {
    if (!fault_.isEmpty())
        return std::nullopt;
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    query.setForwardOnly(true);
    query.prepare(u"SELECT %1 FROM events WHERE %2 LIMIT 1"_s.arg(eventColumns(), condition));
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (query.exec() && query.next())
        return readEvent(query);
    if (query.lastError().isValid())
        fault_ = u"the history cannot be read: "_s + query.lastError().databaseText();
    return std::nullopt;
}

std::optional<HistoryEvent> HistoryReader::lastEvent(const QString& kind, std::int64_t atMs) {
    return oneEvent(u"kind = ? AND at <= ? ORDER BY at DESC, id DESC"_s,
                    {kind, static_cast<qlonglong>(atMs)});
}

std::int64_t HistoryReader::verdictSince(const HistoryEvent& verdict) {
    const std::optional<HistoryEvent> other =
        oneEvent(u"kind = 'verdict' AND at <= ? AND state <> ? ORDER BY at DESC, id DESC"_s,
                 {static_cast<qlonglong>(verdict.atMs), verdict.state});
    const std::optional<HistoryEvent> first =
        oneEvent(u"kind = 'verdict' AND at >= ? AND state = ? ORDER BY at, id"_s,
                 {static_cast<qlonglong>(other ? other->atMs : kBeginning), verdict.state});
    return first ? first->atMs : verdict.atMs;
}

std::vector<VerdictPeriod> HistoryReader::readPeriods(std::int64_t sinceMs, std::int64_t untilMs) {
    std::vector<VerdictPeriod> periods;
    const std::int64_t lastMs = range().lastMs;
    const std::optional<HistoryEvent> before = lastEvent(u"verdict"_s, sinceMs);
    const std::int64_t fromMs = before ? verdictSince(*before) : sinceMs;
    for (HistoryEvent& event : readEvents(fromMs, untilMs, u"verdict"_s)) {
        if (!periods.empty() && periods.back().verdict == event.state) {
            periods.back().changes.push_back(std::move(event));
            continue;
        }
        if (!periods.empty())
            periods.back().toMs = event.atMs;
        VerdictPeriod period{
            .fromMs = event.atMs, .toMs = lastMs, .verdict = event.state, .changes = {}};
        period.changes.push_back(std::move(event));
        periods.push_back(std::move(period));
    }
    if (!periods.empty()) {
        VerdictPeriod& last = periods.back();
        const std::optional<HistoryEvent> end =
            oneEvent(u"kind = 'verdict' AND at >= ? AND state <> ? ORDER BY at, id"_s,
                     {static_cast<qlonglong>(last.changes.back().atMs), last.verdict});
        last.lasts = !end;
        if (end)
            last.toMs = end->atMs;
    }
    std::erase_if(periods, [sinceMs](const VerdictPeriod& period) {
        return period.verdict == u"none" || period.toMs < sinceMs;
    });
    return periods;
}

std::optional<KeptCycle> HistoryReader::cycleBefore(std::int64_t atMs) {
    constexpr std::int64_t kLongestGapMs = 600'000; // no interval is that long
    std::optional<KeptCycle> found;
    const auto newest = [&](const QString& columns, const QString& table, auto read) {
        QSqlQuery query(QSqlDatabase::database(connection_, false));
        query.setForwardOnly(true);
        if (query.exec(u"SELECT %1 FROM %2 WHERE at <= %3 AND at > %4 ORDER BY at DESC LIMIT 1"_s
                           .arg(columns, table)
                           .arg(atMs)
                           .arg(atMs - kLongestGapMs)) &&
            query.next())
            found = read(query);
        else if (query.lastError().isValid())
            fault_ = u"the history cannot be read: "_s + query.lastError().databaseText();
    };
    newest(cycleColumns(), u"cycles"_s, [](const QSqlQuery& query) { return readCycle(query); });
    if (!found)
        newest(pointColumns(), QLatin1String(kTiers[0].table), [](const QSqlQuery& query) {
            return cycleOf(readPoint(query, kTiers[0].spanMs), Extreme::Mean);
        });
    return found;
}

} // namespace skyhold
