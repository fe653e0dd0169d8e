// SPDX-License-Identifier: GPL-3.0-or-later
// How the history lies in its database: tables, their columns, and rows to and from values.
#pragma once

#include "history/kept.h"

#include <QSqlQuery>

namespace skyhold {

inline constexpr int kHistoryVersion = 1; // of the tables, as the database's user_version

// A span of time that has a table of its own. Cycles are taken together in minutes, those in hours,
// those in days (UTC).
struct Tier {
    const char* table;
    std::int64_t spanMs;
};
inline constexpr std::array<Tier, 3> kTiers{
    {{"minutes", 60'000}, {"hours", 3'600'000}, {"days", 86'400'000}}};

constexpr std::int64_t beginOfSpan(std::int64_t atMs, std::int64_t spanMs) {
    return atMs - (atMs % spanMs + spanMs) % spanMs;
}

// The statements that make all tables.
QStringList createStatements();

QString cycleColumns();
QString cycleInsert();
void bindCycle(QSqlQuery& query, const KeptCycle& cycle);
KeptCycle readCycle(const QSqlQuery& query); // of a row with cycleColumns()

QString pointColumns();
QString pointInsert(const Tier& tier);
void bindPoint(QSqlQuery& query, const HistoryPoint& point);
HistoryPoint readPoint(const QSqlQuery& query, std::int64_t spanMs);

QString eventColumns();
QString eventInsert();
void bindEvent(QSqlQuery& query, const HistoryEvent& event);
HistoryEvent readEvent(const QSqlQuery& query);

} // namespace skyhold
