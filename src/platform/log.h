// SPDX-License-Identifier: GPL-3.0-or-later
// The categories of logged messages. Messages go to standard
// error, or to the journal where Qt was built for it; QT_LOGGING_RULES chooses among them.
#pragma once

#include <QLoggingCategory>

namespace skyhold {

Q_DECLARE_LOGGING_CATEGORY(programLog)    // start, options, display, end
Q_DECLARE_LOGGING_CATEGORY(settingsLog)   // the settings file and its folder
Q_DECLARE_LOGGING_CATEGORY(automationLog) // the session bus and the name on it
Q_DECLARE_LOGGING_CATEGORY(soundLog)      // the sound player
Q_DECLARE_LOGGING_CATEGORY(recordingLog)  // the user data file
Q_DECLARE_LOGGING_CATEGORY(historyLog)    // the history and its database
Q_DECLARE_LOGGING_CATEGORY(verdictLog)    // each change of the verdict; off but in the journal
Q_DECLARE_LOGGING_CATEGORY(updateLog)     // the updater
Q_DECLARE_LOGGING_CATEGORY(networkLog)    // the gateway that the monitor runs
Q_DECLARE_LOGGING_CATEGORY(uploadLog)     // the uploader's work

} // namespace skyhold
