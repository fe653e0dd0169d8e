// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/upload.h"

#include "core/monitoring_core.h"
#include "core/session.h"
#include "datafiles/upload_list.h"
#include "platform/files.h"
#include "records/status_lines.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The uploader says "Running" and holds its lock meanwhile. One that was killed has left the word,
// but no lock.
bool uploaderIsBusy(const SettingsStore& area) {
    const QString running = area.GetSetting(u"Window"_s, u"Running"_s, u"0"_s);
    return running != u"0"_s && isLocked(taskLockPath(area));
}

// An upload that failed, and that one has succeeded after it. An error of the readings stays.
void showInStatusLine(Label& line, const UploadReport& report) {
    const QString failed = u"Upload failed "_s;
    const bool failedBefore = line.Caption.value().startsWith(failed);
    if (report.notArrived.empty()) {
        if (failedBefore)
            SetStatusText(line, u"Uploaded "_s + report.lastSuccess, kDarkGreen);
    } else if (line.ForeColor != kRed || failedBefore) {
        const UploadFault& first = report.notArrived.front();
        const QString timeOfDay = first.time.section(u' ', 1);
        const QString name = first.file.section(u'/', -1);
        SetStatusText(line, failed + u"%1, %2: %3"_s.arg(timeOfDay, name, first.reason), kRed);
    }
}

void uploadTick(MonitoringCore& core) {
    if (core.handOff.stop)
        return;
    TakeUploadReport(core);
    const UploadControls& upload = core.records.upload;
    if (IsUploadDue(upload) || IsRetryDue(upload))
        TriggerUpload(core.records.upload, core.handOff);
}

} // namespace

void prepareUpload(MonitoringCore& core) {
    UploadControls& upload = core.records.upload;
    core.handOff.program = joinPath(programFolder(), u"Kiv_Uploader.exe"_s);
    core.TimerUpload.Tick = [&core] {
        uploadTick(core);
    };
    upload.UploadOnce.Click = [&upload] {
        UploadOnce_Click(upload);
    };
    upload.DispFileNameOnly.Click = [&upload] {
        RefreshFileList(upload);
    };
}

void StartUpload(MonitoringCore& core) {
    TakeUploadReport(core);
    core.handOff.force = true;
    TriggerUpload(core.records.upload, core.handOff);
}

void TriggerUpload(UploadControls& upload, UploadHandOff& handOff) {
    handOff.stop = false;
    SetUploadEditable(upload, false);
    SettingsStore area(kUploaderArea);
    if ((handOff.task && isRunning(*handOff.task)) || (!handOff.force && uploaderIsBusy(area))) {
        upload.LEDUpload.blink(kYellow);
        return;
    }
    const std::vector<FileItem> before = upload.Files;
    const bool due = handOff.force || IsUploadDue(upload);
    WriteUploadList(upload, area, due ? HandOff::Due : HandOff::Retry);
    handOff.task = startTask(handOff.program);
    upload.LEDUpload.blink(handOff.task ? kGreen : kRed);
    if (handOff.task) {
        handOff.force = false;
        handOff.reported = false;
    } else {
        upload.Files = before; // nothing has been handed off
    }
}

void TakeUploadReport(MonitoringCore& core) {
    UploadHandOff& handOff = core.handOff;
    if (handOff.reported || isRunning(*handOff.task))
        return;
    const SettingsStore area(kUploaderArea);
    if (isLocked(taskLockPath(area)))
        return; // its worker, which outlives it for a moment when it is killed
    handOff.reported = true;
    const UploadReport report = readUploadReport(area);
    UploadControls& upload = core.records.upload;
    ShowUploadReport(upload, report);
    if (report.processId != handOff.task->processId)
        return;
    NoteUploadFaults(upload, report.notArrived);
    showInStatusLine(core.records.session.Statusbar1, report);
}

void StopUpload(MonitoringCore& core) {
    Records& records = core.records;
    core.handOff.stop = true;
    core.TimerUpload.disarm();
    SetIdleControls(records, true);
    records.session.ButtStop.Enabled = true;
    SetUploadEditable(records.upload, true);
    if (core.handOff.task)
        sendKeyF6(*core.handOff.task);
}

void SetUploadEditable(UploadControls& upload, bool enabled) {
    for (TextBox* box :
         {&upload.ServerAddress, &upload.ServerPath, &upload.UserName, &upload.PassWord})
        box->Enabled = enabled;
    upload.RefreshUpload.Enabled = enabled;
    for (NumberBox* box : {&upload.UploadOnSec, &upload.TimeoutUPLOAD})
        box->Enabled = enabled;
    upload.ButtFileADD.Enabled = enabled;
    upload.ButtFileDEL.Enabled = enabled;
    upload.UploadOnce.Enabled = enabled;
}

} // namespace skyhold
