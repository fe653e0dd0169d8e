// SPDX-License-Identifier: GPL-3.0-or-later
// Alarm boxes, their sounds and the controls around them.
#pragma once

#include "records/condition_controls.h"

namespace skyhold {

struct AlarmControls {
    // Checked: the alarm of level i + 1 is enabled. Tag: empty, a sound file, or a sound file
    // followed by "|repeat".
    PerQuantity<ThreeChecks> Alarm;
    CheckBox AlarmWS;          // station data old or missing
    CheckBox AlarmNB;          // sensor program failed
    CheckBox AlarmRoof;        // the roof is not where it was told to be
    Label TimeoutAlarmCaption; // over AlarmNB: "Timeout Alarm", or blank when it is hidden

    CheckBox SuspendSoundAlarm;
    Button ButtStopAlarm;
    std::array<QProperty<bool>, 11> PlayAlarm; // which indicator shows that it plays
    Label SoundFault;                          // why the last sound was not heard; empty: it was
    QString LastMusicDir;                      // folder last used in the sound chooser
};

} // namespace skyhold
