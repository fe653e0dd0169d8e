// SPDX-License-Identifier: GPL-3.0-or-later
// What the uploader reports to the monitor in the hand-off area, section "Result".
#pragma once

#include "platform/settings_store.h"

#include <cstdint>
#include <vector>

namespace skyhold {

// The application whose settings are the hand-off area.
inline const QString kUploaderArea = QStringLiteral("Kiv_Uploader");

struct UploadFault {
    QString file; // full path
    QString reason;
    QString time; // "2026-11-16 22:00:05", local
};

struct UploadReport {
    std::int64_t processId = 0; // of the uploader that reports
    std::vector<UploadFault> notArrived;
    // Of the last hand-off that had some, each with its time; empty: there was none yet.
    QString lastSuccess;
    QString lastError;
};

// Not on disk until the area is flushed.
void writeUploadReport(SettingsStore& area, const UploadReport& report);
UploadReport readUploadReport(const SettingsStore& area);

} // namespace skyhold
