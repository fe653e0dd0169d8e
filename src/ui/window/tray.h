// SPDX-License-Identifier: GPL-3.0-or-later
// The tray icon: it shows the verdict, and lets the program live without its window.
#pragma once

#include "ui/look/look.h"
#include "ui/look/verdict_icon.h"

#include "core/monitoring_core.h"

#include <QSystemTrayIcon>
#include <QTimer>

namespace skyhold {

class KivSHMainform;

// What the tray reports, by its event codes.
enum TrayEvent { kLeftReleased = 514, kLeftDoubleClick = 515, kRightReleased = 517 };

enum class TrayAction { None, ShowWindow, Restore, Minimise, OpenMenu };

// The answer to an event. `coordinate` carries its code, in a window that measures in units of
// which `unitsPerPixel` make a pixel: 1, or the screen's twips per pixel. `active` says whether
// the main window is the one that the user works in.
TrayAction trayAction(double coordinate, double unitsPerPixel, WindowState state, bool active);

// There from load to unload. It knows at every minimising whether it leads back to the window.
class Tray : public QObject {
    Q_OBJECT

  public:
    Tray(MonitoringCore& core, KivSHMainform& window);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void followVerdict();
    QString tip() const;
    void showVerdict();
    void takeActivation(QSystemTrayIcon::ActivationReason reason);
    void answer(TrayEvent event);

    MonitoringCore& core_;
    KivSHMainform& window_;
    QSystemTrayIcon icon_;
    QTimer secondClick_; // runs while a click may still become a double click
    std::optional<std::pair<VerdictIcon, Look>> shown_;
};

} // namespace skyhold
