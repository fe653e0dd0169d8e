// SPDX-License-Identifier: GPL-3.0-or-later
// What a comparison and a suggestion come to, as text.
#pragma once

#include "replay/compare.h"

#include <QString>

namespace skyhold {

// "gust 34.2 > 20 km/h"
QString shortCause(const ReplayCause& cause, KeptUnits units);

// "4 closures instead of 11, unsafe 2 h 10 min instead of 6 h 30 min"; of equal rules
// "11 closures, unsafe 6 h 30 min".
QString comparisonSummary(const Comparison& comparison);

// Side by side: how often and how long, by cause, and the differences. `changes`: what was changed,
// empty when nothing was.
QString comparisonText(const Comparison& comparison, const QString& changes, KeptUnits units);
QJsonObject comparisonJson(const Comparison& comparison, KeptUnits units);

// For each quantity what was seen, and how far each limit is from it.
QString suggestionText(const Suggestion& suggestion, const Rules& inForce, KeptUnits units);
QJsonObject suggestionJson(const Suggestion& suggestion, const Rules& inForce, KeptUnits units);

// "2013-02-08 23:41:10 – 00:12:40", local; the second date only when it is another.
QString periodText(std::int64_t fromUtcMs, std::int64_t toUtcMs);

} // namespace skyhold
