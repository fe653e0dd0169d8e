// SPDX-License-Identifier: GPL-3.0-or-later
// The state document: one JSON object that says what the monitor knows after a cycle: safe or not,
// why, since when, how old the data is, and what works. Everything that shows a verdict outside the
// window shows this one.
#pragma once

#include "core/monitoring_core.h"

#include <QJsonObject>

namespace skyhold {

inline constexpr int kStateSchema = 1;

// Values are in the units in force, and null when they are not known; times are UTC.
QJsonObject stateDocument(const MonitoringCore& core);

// The same as one line of text.
QString stateDocumentText(const MonitoringCore& core);

} // namespace skyhold
