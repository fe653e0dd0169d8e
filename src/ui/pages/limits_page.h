// SPDX-License-Identifier: GPL-3.0-or-later
// All that makes the sky unsafe: limits, levels, sectors and alarms of the quantities in one table,
// and beside it what else counts.
#pragma once

#include "core/monitoring_core.h"

class QWidget;

namespace skyhold {

class SettingsChanges;

// `core` and `changes` outlive the page.
QWidget* makeLimitsPage(MonitoringCore& core, SettingsChanges& changes, QWidget* parent);

} // namespace skyhold
