// SPDX-License-Identifier: GPL-3.0-or-later
// The rule that opens a roof: what must be known of the monitor before "safe" is said.
#pragma once

#include <QJsonObject>
#include <QString>

namespace skyhold {

enum class StatusVerdict { Safe = 0, Unsafe = 1, Unknown = 2 };

// Of a state document. Safe only when it says so in every place that could deny it; unknown where
// nothing is monitored, where a source fails, whether or not that counts, and where an entry is
// missing or makes no sense.
StatusVerdict verdictOf(const QJsonObject& document);

// Why it is not safe, a sentence each. Never empty unless the verdict is safe.
QStringList causesOf(const QJsonObject& document);

inline constexpr int kStatusFailed = 2;
// 0 safe, 1 unsafe, 2 unknown.
int exitStatus(StatusVerdict verdict);

} // namespace skyhold
