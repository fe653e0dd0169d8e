// SPDX-License-Identifier: GPL-3.0-or-later
// Where recorded cycles come from, as observations that the judge takes.
#pragma once

#include "history/kept.h"
#include "model/observation.h"
#include "platform/text_forms.h"
#include "records/records.h"

#include <functional>

namespace skyhold {

struct ReplayStep {
    Observation observation; // values in the units that were asked for
    std::int64_t utcMs = 0;
    int intervalSeconds = 0;
    bool newSession = false;
};

// Takes a step; false: no more of them.
using TakeStep = std::function<bool(const ReplayStep&)>;

struct ReplaySource {
    std::int64_t firstMs = 0;
    std::int64_t lastMs = 0;
    bool thinned = false; // some of it are minutes, each with its highest and its lowest values
    QString fault;        // why there is nothing; empty: all is well
    // Gives every step, by time. Answers what went wrong, or nothing. On any thread.
    std::function<QString(const TakeStep&)> each;
};

// The database of the monitor. Cycles that a client decided are judged by the rules.
ReplaySource fromHistory(const QString& path, std::int64_t sinceMs, std::int64_t untilMs,
                         KeptUnits units);

// A text with commas: a log of observations (its header has the column "time_utc") or a user data
// file. The log's columns are named for what they hold and its unit, "temperature_f" or
// "temperature_c", "wind_mph", "wind_kmh", "wind_ms" or "wind_kn". A field that is empty is a
// missing value; but a gust that was not reported is no more than the wind. Columns of a user data
// file are known by their headings in `records`, or by those of a fresh store; it holds no
// temperature of the station, so that of the sensor program stands for it.
ReplaySource fromText(const QByteArray& text, const Records& records, std::int64_t sinceMs,
                      std::int64_t untilMs, KeptUnits units);

} // namespace skyhold
