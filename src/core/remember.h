// SPDX-License-Identifier: GPL-3.0-or-later
// What goes into the history: each cycle, and what has changed.
#pragma once

#include "history/writer.h"
#include "model/cycle_result.h"
#include "records/history_controls.h"

#include <QStringList>

namespace skyhold {

struct MonitoringCore;

// What the history was last given of each kind.
struct Remembered {
    bool running = false;
    Verdict verdict = Verdict::None;
    QString causes; // which, without their times and values
    SourceState station = SourceState::Ok;
    SourceState sensor = SourceState::Ok;
    QString alarm;
    double roof = 0;
    bool roofFaulty = false;
    std::optional<Rules> rules;
    QStringList labels;
    QString fault; // of the recording, as it was last shown
};

// A dead instrument makes a station that can be read unusable in part.
SourceState stationState(const StationObservation& station);

// Keeps what is typed for its ages and its size within what the history can do.
void historyRules(HistoryControls& controls);

// Records from now on to the user's data folder, for as long as the settings say.
void beginHistory(MonitoringCore& core);

// A cycle is over and shown.
void rememberCycle(MonitoringCore& core);

// Session or verdict have changed between two cycles.
void rememberState(MonitoringCore& core);

} // namespace skyhold
