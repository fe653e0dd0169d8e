// SPDX-License-Identifier: GPL-3.0-or-later
// Start-up, the end of the program, and what happens once after loading.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// The setting "Emulator" is absent: the program has never been set up.
bool isFirstStart(const SettingsStore& settings);

// Puts a downloaded updater ("Kiv_Updater_net.exe") in place of the installed one, which is
// kept as "Kiv_Updater_exe.old". Whatever fails is left as it is, and so is everything when the
// file or the folder is not the user's or others may write to it: they could have put the file
// there.
void swapUpdater(const QString& folder);

// Help file, caption, all settings, then the one-shot timer for news and the last update status.
void LoadMainWindow(MonitoringCore& core);

// A request to close the window. False while automation clients are attached or a limit is refused
// that is being typed (a message says so), or while a session start waits (the close follows it).
// Otherwise the session has been stopped and the window may unload.
bool RequestClose(MonitoringCore& core);

// Saves the settings, without a refused limit, gives back control of the sensor program, shuts the
// image library down and closes the user data file. The tray icon is gone by then. Reports when
// settings were not saved.
void Unload(MonitoringCore& core);

} // namespace skyhold
