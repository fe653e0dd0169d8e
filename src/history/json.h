// SPDX-License-Identifier: GPL-3.0-or-later
// The history as JSON, wherever it leaves the program. Times are UTC, ISO 8601.
#pragma once

#include "history/reader.h"

#include <QJsonObject>

namespace skyhold {

// "2026-11-23T05:12:40Z"
QString isoTime(std::int64_t utcMs);

// "none", "safe", "waiting", "unsafe"
QString verdictName(Verdict verdict);

// {"time", "span_s" (0: a cycle), "cycles", "unsafe_cycles", "verdict" (the worst), and each
// measured value by its name: a number, [lowest, mean, highest] where they differ, or null}. Values
// are in the units "temperature_unit" and "speed_unit", by their codes.
QJsonObject toJson(const HistoryPoint& point);

// {"time", "kind", "name", "state", "text", "detail"}
QJsonObject toJson(const HistoryEvent& event);

// {"from", "to", "lasts", "verdict", "changes": [{"time", "causes"}]}
QJsonObject toJson(const VerdictPeriod& period);

} // namespace skyhold
