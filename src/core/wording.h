// SPDX-License-Identifier: GPL-3.0-or-later
// What a cycle came to, in sentences that a person can read aloud. Each is composed here and
// nowhere else.
#pragma once

#include "model/cycle_result.h"
#include "model/session_state.h"
#include "platform/text_forms.h"
#include "records/condition_controls.h"
#include "units/unit_text.h"

namespace skyhold {

// "Wind 23.4 km/h, above 20, since 05:09:30". Clock times are local; numbers have the separators of
// `forms`.
QString causeText(const Cause& cause, const CycleResult& result, const NumberForms& forms);

// The name of a quantity's level in force: "Unknown" for none, the user's or the sensor program's
// words for 1..3, else empty.
QString levelLabel(Quantity quantity, const CycleResult& result, const ConditionControls& controls);

// The verdict as the title of a notification: "Unsafe"; with a source that has just failed "Safe,
// but a source has failed".
QString noticeTitle(Verdict verdict, bool sourceFailed);

// What is wrong with the sources, "Kiv_Nubilo has failed"; empty while both are good.
QStringList sourceFaults(const CycleResult& result, const NumberForms& forms);

// The same of one source in few words, "station data 195 s old"; the station's age has grown by
// `later` seconds since that cycle. Empty while both are good.
QString sourceFaultInShort(const CycleResult& result, std::int64_t later);

// Whose alarm sounds, by its id: "Alarm: Wind, Very Windy". A client's has no id.
QString alarmText(const QString& id, const CycleResult& result, const ConditionControls& controls);

// What comes closest to being unsafe: "nearest: humidity 86 of 90 %"; empty when nothing has a
// limit that counts.
QString nearestText(const CycleResult& result, const NumberForms& forms);

// "Roof still open 45 s after it was told to close"; empty while it is where it was told to be.
QString roofText(const CycleResult& result);

// Why the verdict is what it is, in one line: its causes; while it is held back how long it still
// is; when it is safe what is nearest to its limit.
QString causeLine(const CycleResult& result, const ConditionControls& controls,
                  const NumberForms& forms);

// What is recorded: "/data/Skyhold.csv: 12 lines"; in the end how many it were; empty before.
QString recordedText(bool recording, const QString& path, std::int64_t lines, std::int64_t lost);

// "Safe in 2 min 10 s; last reset by Gust at 23:52:30"; while it is lengthened also how long the
// whole delay is.
QString delayText(const CycleResult& result);

} // namespace skyhold
