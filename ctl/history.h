// SPDX-License-Identifier: GPL-3.0-or-later
// The command "history": verdicts, events and readings that the monitor has kept.
#pragma once

#include "ctl/command_line.h"

#include "history/reader.h"

namespace skyhold {

int runHistory(const Command& command);

// The history of the options: --database, or the monitor's.
QString historyPathOf(const Command& command);

// --since and --until where they stand. False when one is no time; `fault` says so.
struct TimeRange {
    std::optional<std::int64_t> sinceMs, untilMs;
};
bool timeRangeOf(const Command& command, TimeRange& range, QString& fault);

// Periods and other events by time, a line each below their dates:
// "23:41:10 – 00:12:40  unsafe   31 min 30 s  gust 34.2 > 20 km/h".
QString historyText(const std::vector<VerdictPeriod>& periods,
                    const std::vector<HistoryEvent>& events);

} // namespace skyhold
