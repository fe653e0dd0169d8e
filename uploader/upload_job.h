// SPDX-License-Identifier: GPL-3.0-or-later
// What the monitor has handed off.
#pragma once

#include "platform/upload_report.h"
#include "uploader/server_address.h"

#include <QStringList>

#include <optional>

namespace skyhold {

struct UploadJob {
    ServerAddress server; // with the remote folder
    QString userName;     // empty: anonymous
    QString password;
    QStringList files;
    int timeoutSeconds = 60; // for one file, all in all
};

// Seconds for one file: 1 to 999; any other text counts as 60, so that no server is
// ever waited for without end.
int readTimeout(const SettingsStore& area);
QStringList readFiles(const SettingsStore& area);

// The whole hand-off. Nothing, and the fault, when it cannot be transferred as it stands.
std::optional<UploadJob> readUploadJob(const SettingsStore& area, QString& fault);

// A line break or the like: such a text would end a command to the server before its time.
bool hasControlCharacter(const QString& text);

} // namespace skyhold
