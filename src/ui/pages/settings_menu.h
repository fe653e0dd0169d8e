// SPDX-License-Identifier: GPL-3.0-or-later
// The menu Settings: undo, find, and all settings as a file.
#pragma once

class QMainWindow;
class QString;

namespace skyhold {

class SettingsPages;
struct MonitoringCore;

// On the menu bar of `window`, for its pages.
void addSettingsMenu(QMainWindow& window, SettingsPages& pages, MonitoringCore& core);

// Asks before it takes over what can be taken over, and lists what is refused. Nothing while a
// session runs: settings are locked then.
void importSettings(const QString& path, SettingsPages& pages, MonitoringCore& core);

} // namespace skyhold
