// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/log.h"

namespace skyhold {

Q_LOGGING_CATEGORY(programLog, "skyhold.program")
Q_LOGGING_CATEGORY(settingsLog, "skyhold.settings")
Q_LOGGING_CATEGORY(automationLog, "skyhold.automation")
Q_LOGGING_CATEGORY(soundLog, "skyhold.sound")
Q_LOGGING_CATEGORY(recordingLog, "skyhold.recording")
Q_LOGGING_CATEGORY(historyLog, "skyhold.history")
Q_LOGGING_CATEGORY(verdictLog, "skyhold.verdict", QtWarningMsg)
Q_LOGGING_CATEGORY(updateLog, "skyhold.update")
Q_LOGGING_CATEGORY(networkLog, "skyhold.network")
Q_LOGGING_CATEGORY(uploadLog, "skyhold.upload")

} // namespace skyhold
