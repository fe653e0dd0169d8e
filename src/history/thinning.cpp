// SPDX-License-Identifier: GPL-3.0-or-later
// The part of the store that takes cycles together and lets go of what is old.
#include "history/rows.h"
#include "history/store.h"

#include <QSqlError>

#include <algorithm>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::int64_t kDayMs = 86'400'000;

} // namespace

bool HistoryStore::tidy(std::int64_t nowMs, const HistoryKeep& keep) {
    if (!isOpen())
        return false;
    for (std::size_t tier = 0; tier < kTiers.size(); ++tier) {
        if (!takeTogether(tier, nowMs))
            return false;
    }
    bool more = false;
    const std::int64_t thinBefore =
        std::min(beginOfSpan(nowMs - keep.cycleDays * kDayMs, kTiers[0].spanMs), takenTo_[0]);
    const std::int64_t forgetBefore = nowMs - keep.eventYears * 366LL * kDayMs;
    if (!deleteOlder(u"cycles"_s, thinBefore, kDayMs, more) ||
        !deleteOlder(u"events"_s, forgetBefore, 30 * kDayMs, more))
        return false;
    for (const Tier& tier : kTiers) {
        if (!deleteOlder(QLatin1String(tier.table), forgetBefore, 30 * kDayMs, more))
            return false;
    }
    return boundFile(keep, more) && more;
}

// Adds the spans of the tier that have passed since its last row.
bool HistoryStore::takeTogether(std::size_t tier, std::int64_t nowMs) {
    const std::int64_t spanMs = kTiers[tier].spanMs;
    const QString table = QLatin1String(kTiers[tier].table);
    const QString source = tier == 0 ? u"cycles"_s : QLatin1String(kTiers[tier - 1].table);
    if (takenTo_[tier] == 0) {
        const std::optional<std::int64_t> last = number(u"SELECT max(at) FROM "_s + table);
        const std::optional<std::int64_t> first = number(u"SELECT min(at) FROM "_s + source);
        if (!last || !first)
            return false;
        takenTo_[tier] = *last > 0 ? *last + spanMs : beginOfSpan(*first, spanMs);
    }
    const std::int64_t end =
        beginOfSpan(tier == 0 ? nowMs : std::min(nowMs, takenTo_[tier - 1]), spanMs);
    if (end <= takenTo_[tier])
        return true;
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT %1 FROM %2 WHERE at >= %3 AND at < %4 ORDER BY at"_s
                        .arg(tier == 0 ? cycleColumns() : pointColumns(), source)
                        .arg(takenTo_[tier])
                        .arg(end)))
        return failed(query);
    PointSum sum;
    std::int64_t begin = 0;
    std::vector<HistoryPoint> spans;
    while (query.next()) {
        const HistoryPoint point =
            tier == 0 ? pointOf(readCycle(query)) : readPoint(query, kTiers[tier - 1].spanMs);
        const std::int64_t of = beginOfSpan(point.atMs, spanMs);
        if (!sum.empty() && of != begin)
            spans.push_back(sum.take(begin, spanMs));
        begin = of;
        sum.add(point);
    }
    if (query.lastError().isValid())
        return failed(query);
    query.finish();
    if (!sum.empty())
        spans.push_back(sum.take(begin, spanMs));
    const bool put = inTransaction([&] {
        QSqlQuery insert(QSqlDatabase::database(connection_, false));
        if (!insert.prepare(pointInsert(kTiers[tier])))
            return failed(insert);
        for (const HistoryPoint& span : spans) {
            bindPoint(insert, span);
            if (!insert.exec())
                return failed(insert);
        }
        return true;
    });
    if (put)
        takenTo_[tier] = end;
    return put;
}

// A step at a time, so that readers and the disk have their turn.
bool HistoryStore::deleteOlder(const QString& table, std::int64_t beforeMs, std::int64_t stepMs,
                               bool& more) {
    const std::optional<std::int64_t> first =
        number(u"SELECT coalesce(min(at), %1) FROM %2"_s.arg(beforeMs).arg(table));
    if (!first)
        return false;
    if (*first >= beforeMs)
        return true;
    const std::int64_t to = std::min(beforeMs, *first + stepMs);
    more = more || to < beforeMs;
    return run(u"DELETE FROM %1 WHERE at < %2"_s.arg(table).arg(to));
}

bool HistoryStore::boundFile(const HistoryKeep& keep, bool& more) {
    const std::optional<std::int64_t> free = number(u"PRAGMA freelist_count"_s);
    const std::optional<std::int64_t> pages = number(u"PRAGMA page_count"_s);
    const std::int64_t pageBytes = number(u"PRAGMA page_size"_s).value_or(4'096);
    if (!free || !pages)
        return false;
    constexpr std::int64_t kFreeKept = 512; // pages, which the next days fill again
    if (*free > kFreeKept) {
        more = true;
        return run(u"PRAGMA incremental_vacuum(%1)"_s.arg(kFreeKept));
    }
    if ((*pages - *free) * pageBytes <= static_cast<std::int64_t>(keep.megabytes) << 20)
        return true;
    for (const QString& table : {u"minutes"_s, u"cycles"_s, u"hours"_s, u"events"_s}) {
        const std::optional<std::int64_t> first = number(u"SELECT min(at) FROM "_s + table);
        const std::optional<std::int64_t> last = number(u"SELECT max(at) FROM "_s + table);
        if (!first || !last)
            return false;
        // The latest day of each stays, whatever the bound.
        if (*last - *first <= kDayMs)
            continue;
        more = true;
        const std::int64_t to = *first + std::min(30 * kDayMs, (*last - *first) / 2);
        return run(u"DELETE FROM %1 WHERE at < %2"_s.arg(table).arg(to));
    }
    return true;
}

} // namespace skyhold
