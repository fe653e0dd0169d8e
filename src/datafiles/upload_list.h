// SPDX-License-Identifier: GPL-3.0-or-later
// The list of files to publish, and its hand-off to the uploader program.
#pragma once

#include "platform/upload_report.h"
#include "records/file_controls.h"

namespace skyhold {

// The full path of an item.
QString ItemPathName(const FileItem& item);

// Appends an item, without looking for its like.
void Add(UploadControls& upload, const QString& name, const QString& path, bool uploadOnce);
// Removes the item with that index from 1, and forgets about one that there is not.
void Remove(UploadControls& upload, int index);

// Rebuilds the lines: "*** " before an upload-once item, else five blanks; the full path, or the
// name alone with DispFileNameOnly. The selected position is kept as long as there is an item.
void RefreshFileList(UploadControls& upload);

// Editing, while the buttons for it are enabled.
// Appends each file whose full path (compared with regard to case) is not in the list yet.
void AddChosenFiles(UploadControls& upload, const QStringList& paths);
void DeleteSelectedFile(UploadControls& upload);
void ToggleUploadOnce(UploadControls& upload);

// Selects an item (-1: none) and shows its flag in the check box UploadOnce.
void SelectFile(UploadControls& upload, int listIndex);
// Gives the selected item the flag that the check box shows.
void UploadOnce_Click(UploadControls& upload);

// On leaving the box, a text that is not empty gets a "/" at its end; the server's folder loses one
// at its beginning.
void ServerAddress_LostFocus(TextBox& box);
void ServerPath_LostFocus(TextBox& box);

// Every file is there and, unless it is uploaded once only, modified since its last hand-off.
bool IsUploadDue(const UploadControls& upload);

// A file that is there did not arrive the last time.
bool IsRetryDue(const UploadControls& upload);

enum class HandOff {
    Due,  // what is not uploaded once, what has been modified since, and what did not arrive
    Retry // what did not arrive
};

// Writes server, user, time-out and the wanted files into the hand-off area and stamps those
// files with their modification times. A missing file is not handed off. What cannot be written is
// lost without a word.
void WriteUploadList(UploadControls& upload, SettingsStore& area, HandOff wanted = HandOff::Due);

// Notes which files did not arrive.
void NoteUploadFaults(UploadControls& upload, const std::vector<UploadFault>& faults);
// Shows the last success and the last error.
void ShowUploadReport(UploadControls& upload, const UploadReport& report);

} // namespace skyhold
