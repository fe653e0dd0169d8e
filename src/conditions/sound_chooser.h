// SPDX-License-Identifier: GPL-3.0-or-later
// The sound chooser of an alarm box: what it opens with and what its buttons do.
#pragma once

#include "platform/media_control.h"
#include "records/controls.h"

namespace skyhold {

struct SoundChooser {
    QString folder;          // shown in the folder and file lists
    QString selected;        // name in the file list, empty for none
    QString FileName;        // full path
    bool CheckPlay1 = false; // repeat
};

// What the chooser of `box` opens with: folder and file of its tag, else the folder last used, else
// `currentFolder`. A folder that is gone is passed over.
SoundChooser Def_Label(const CheckBox& box, const QString& lastMusicDir,
                       const QString& currentFolder);

// The names in the file list: "*wav", "*.mp3", "*.mid" and "*.wma", in any case of letters.
QStringList soundFiles(const QString& folder);

// A click in the file list.
void selectSoundFile(SoundChooser& chooser, const QString& name);

// Play: replaces whatever sounds. Stop, and closing the dialog in any way: stopSound.
void previewSound(MediaControl& media, const SoundChooser& chooser);

// OK: writes the choice into the box, an empty one as no sound, and remembers the folder.
void acceptSound(const SoundChooser& chooser, CheckBox& box, QString& lastMusicDir);

} // namespace skyhold
