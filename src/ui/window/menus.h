// SPDX-License-Identifier: GPL-3.0-or-later
// The menus of the main window and the menu of its tray icon.
#pragma once

class QMenu;

namespace skyhold {

class KivSHMainform;
struct MonitoringCore;

void makeMenuBar(KivSHMainform& window, MonitoringCore& core);

// Pops up at the tray icon; it stands on no menu bar.
QMenu* makePopupSys(KivSHMainform& window, MonitoringCore& core);

} // namespace skyhold
