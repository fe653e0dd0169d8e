// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/recording.h"

#include "core/wording.h"
#include "records/status_lines.h"

namespace skyhold {

namespace {

// The lamp and what stands beside it.
void showRecorder(MonitoringCore& core, bool good) {
    const UserDataRecorder& recorder = core.recorder;
    DataFileControls& controls = core.records.dataFile;
    controls.LEDRecord.FillColor = !good ? kRed : recorder.recording ? kGreen : kGrey;
    controls.LblRecorded.Caption =
        recordedText(recorder.recording, recorder.path, recorder.lines, recorder.lost);
}

void report(bool started, MonitoringCore& core) {
    if (!started)
        SetErrorCodes(core.records.session.Statusbar2, QStringLiteral("d13"), kRed);
    showRecorder(core, started);
}

} // namespace

void chooseRecording(MonitoringCore& core, int index) {
    report(RecOption_Click(index, core.recorder, core.records.dataFile, core.showMessage), core);
}

void startRecording(MonitoringCore& core, bool append) {
    report(Record_Start(append, core.recorder, core.records.dataFile), core);
}

void stopRecording(MonitoringCore& core) {
    Record_Stop(core.recorder, core.records.dataFile);
    showRecorder(core, true);
}

bool recordLine(MonitoringCore& core) {
    const Records& records = core.records;
    const DescribeLevel describe = [&core](Quantity quantity, std::int32_t) {
        return levelLabel(quantity, core.result, core.records.conditions);
    };
    const UserDataRecorder& recorder = core.recorder;
    const std::int64_t before = recorder.lines + recorder.lost;
    const bool written = WriteUserDataLine(core.recorder, records.dataFile,
                                           {records.readings, core.forms, describe});
    if (recorder.lines + recorder.lost != before) // one was due
        showRecorder(core, written);
    return written;
}

} // namespace skyhold
