// SPDX-License-Identifier: GPL-3.0-or-later
// The recorder: while it is on, a line of current values goes to the user data file every n-th
// read cycle.
#pragma once

#include "datafiles/data_items.h"
#include "platform/line_file.h"
#include "records/messages.h"

namespace skyhold {

struct UserDataRecorder {
    LineFile file;
    bool recording = false;
    std::int32_t cycleCounter = 0; // cycles since the last line; neither start nor stop resets it
    bool switching = false;        // Record_Start or Record_Stop moves RecOption itself
    std::uint32_t switches = 0;    // how often they did
    QString path;                  // of the file, since recording began
    std::int64_t lines = 0;        // of values, likewise
    std::int64_t lost = 0;         // lines, likewise
};

// The user chose 0 record or 1 stop. Asks whether to append to a file that exists, whatever the
// case of its name. False when recording could not begin (code d13); it is stopped then.
bool RecOption_Click(int index, UserDataRecorder& recorder, DataFileControls& controls,
                     const ShowMessage& showMessage);

// The same for other programs, without a question: `append` keeps what an existing file holds. An
// empty file name is not a failure; it only leaves the recorder stopped.
bool Record_Start(bool append, UserDataRecorder& recorder, DataFileControls& controls);
void Record_Stop(UserDataRecorder& recorder, DataFileControls& controls);

// Ends recording with the program; the controls stay as they are.
void CloseUserDataFile(UserDataRecorder& recorder);

// Once per read cycle: writes a line when one is due. A line that cannot be written is lost
// (false), and recording goes on. A file that has been deleted meanwhile is created again, with a
// header.
bool WriteUserDataLine(UserDataRecorder& recorder, const DataFileControls& controls,
                       const DataItemSource& source);

// Unlocks or locks name, folder, columns and interval; they are locked while recording.
void SetRecorderEditable(DataFileControls& controls, bool enabled);

// The number box SaveFreq has changed: its value is corrected to a whole number of at least 1.
void SetSaveFreq(NumberBox& saveFreq);

// Whether the file name box takes a key: letters A-Z, digits, the underscore and Backspace.
bool dataFileNameAccepts(QChar key);

} // namespace skyhold
