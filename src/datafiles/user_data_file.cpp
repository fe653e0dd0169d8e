// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/user_data_file.h"

#include "platform/files.h"

#include <algorithm>

namespace skyhold {

namespace {

constexpr int kRecord = 0;
constexpr int kStop = 1;

QString trimmedName(const DataFileControls& controls) {
    return controls.FileName.Text.value().trimmed();
}

QString dataFilePath(const DataFileControls& controls) {
    return joinPath(controls.LblPathName.Caption, trimmedName(controls) + QStringLiteral(".csv"));
}

double linesInterval(const NumberBox& saveFreq) {
    return std::max(1.0, roundHalfEven(saveFreq.Value));
}

void stop(UserDataRecorder& recorder, DataFileControls& controls) {
    CloseUserDataFile(recorder);
    SetRecorderEditable(controls, true);
}

void stopAndShowIt(UserDataRecorder& recorder, DataFileControls& controls) {
    stop(recorder, controls);
    controls.RecOption.choose(kStop);
}

bool openWithHeader(const QString& path, bool append, UserDataRecorder& recorder,
                    const DataFileControls& controls) {
    return recorder.file.open(path, append) &&
           recorder.file.addLine(dataHeaderLine(controls.Columns));
}

bool begin(const QString& path, bool append, UserDataRecorder& recorder,
           DataFileControls& controls) {
    SetRecorderEditable(controls, false);
    recorder.path = path;
    recorder.lines = 0;
    recorder.lost = 0;
    recorder.recording = openWithHeader(path, append, recorder, controls);
    if (!recorder.recording)
        stopAndShowIt(recorder, controls);
    return recorder.recording;
}

} // namespace

bool RecOption_Click(int index, UserDataRecorder& recorder, DataFileControls& controls,
                     const ShowMessage& showMessage) {
    if (recorder.switching)
        return true;
    if (index != kRecord) {
        stop(recorder, controls);
        return true;
    }
    recorder.recording = false;
    if (trimmedName(controls).isEmpty()) {
        stopAndShowIt(recorder, controls);
        return true;
    }
    if (controls.LblPathName.Caption.value().trimmed().isEmpty()) {
        stopAndShowIt(recorder, controls);
        showMessage({QStringLiteral("Define the PATH for User Data File"), MessageStyle::Ok, {}});
        return true;
    }
    const QString path = dataFilePath(controls);
    const std::optional<QString> existing = findFile(path);
    if (!existing)
        return begin(path, false, recorder, controls);

    const std::uint32_t switches = recorder.switches;
    const MessageAnswer answer =
        showMessage({QStringLiteral("Append to existing file"), MessageStyle::YesNoCancel, {}});
    // Another program started or stopped the recorder meanwhile: the question has been answered.
    if (recorder.switches != switches)
        return true;
    if (answer == MessageAnswer::Yes || answer == MessageAnswer::No)
        return begin(*existing, answer == MessageAnswer::Yes, recorder, controls);
    stopAndShowIt(recorder, controls);
    return true;
}

bool Record_Start(bool append, UserDataRecorder& recorder, DataFileControls& controls) {
    recorder.switching = true;
    ++recorder.switches;
    bool done = true;
    if (controls.RecOption.Index == kStop)
        controls.RecOption.choose(kRecord);
    if (trimmedName(controls).isEmpty()) {
        stopAndShowIt(recorder, controls);
    } else {
        const QString path = dataFilePath(controls);
        done = begin(findFile(path).value_or(path), append, recorder, controls);
    }
    recorder.switching = false;
    return done;
}

void Record_Stop(UserDataRecorder& recorder, DataFileControls& controls) {
    recorder.switching = true;
    ++recorder.switches;
    stopAndShowIt(recorder, controls);
    recorder.switching = false;
}

void CloseUserDataFile(UserDataRecorder& recorder) {
    recorder.recording = false;
    recorder.file.close();
}

bool WriteUserDataLine(UserDataRecorder& recorder, const DataFileControls& controls,
                       const DataItemSource& source) {
    if (!recorder.recording)
        return true;
    if (recorder.cycleCounter >= linesInterval(controls.SaveFreq))
        recorder.cycleCounter = 0;
    bool written = true;
    if (recorder.cycleCounter == 0) {
        // What is written to a deleted file would be lost without notice.
        if (!recorder.file.isThere())
            openWithHeader(dataFilePath(controls), true, recorder, controls);
        written = recorder.file.addLine(dataLine(controls.Columns, source));
        ++(written ? recorder.lines : recorder.lost);
    }
    ++recorder.cycleCounter;
    return written;
}

void SetRecorderEditable(DataFileControls& controls, bool enabled) {
    controls.FileName.Enabled = enabled;
    controls.ButtPATH.Enabled = enabled;
    controls.ButtFileStructure.Enabled = enabled;
    controls.SaveFreq.Enabled = enabled;
}

void SetSaveFreq(NumberBox& saveFreq) {
    saveFreq.Value = linesInterval(saveFreq);
}

bool dataFileNameAccepts(QChar key) {
    return (key >= u'A' && key <= u'Z') || (key >= u'a' && key <= u'z') ||
           (key >= u'0' && key <= u'9') || key == u'_' || key == u'\b';
}

} // namespace skyhold
