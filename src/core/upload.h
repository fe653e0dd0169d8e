// SPDX-License-Identifier: GPL-3.0-or-later
// The upload of files in the course of a session: the uploader program is started when files are
// due and none is running.
#pragma once

#include "platform/tasks.h"
#include "records/file_controls.h"

#include <optional>

namespace skyhold {

struct MonitoringCore;

struct UploadHandOff {
    QString program;          // path of the uploader
    std::optional<Task> task; // the last started one
    bool reported = true;     // what became of it has been noted
    bool force = false;       // the next hand-off does not ask whether an uploader is busy
    bool stop = false;        // monitoring has stopped: a tick hands nothing off
};

// Ties the click rules of the upload list and the timer's tick to their operations.
void prepareUpload(MonitoringCore& core);

// At the start of a session, before the timer runs: the first hand-off waits for no file to change.
void StartUpload(MonitoringCore& core);

// Hands the due files off and starts the uploader, unless one is at work. Without uploader program
// the files stay due, so that the next tick tries again. The lamps blink green for a hand-off,
// yellow for one that waits for an uploader, red where none could be started.
void TriggerUpload(UploadControls& upload, UploadHandOff& handOff);

// Once the last uploader has ended: shows its report, and makes due again what did not arrive. An
// uploader that does not report has sent everything.
void TakeUploadReport(MonitoringCore& core);

// At the end of a session: stops the timer, unlocks the controls, and asks the uploader to end
// after its current file.
void StopUpload(MonitoringCore& core);

void SetUploadEditable(UploadControls& upload, bool enabled);

} // namespace skyhold
