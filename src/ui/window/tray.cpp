// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/tray.h"

#include "ui/widgets/bind.h"
#include "ui/window/main_window.h"
#include "ui/window/menus.h"

#include <QApplication>
#include <QEvent>
#include <QMenu>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

TrayAction trayAction(double coordinate, double unitsPerPixel, WindowState state, bool active) {
    switch (static_cast<int>(roundHalfEven(coordinate / unitsPerPixel))) {
    case kLeftReleased:
        return TrayAction::ShowWindow;
    case kLeftDoubleClick:
        if (state != WindowState::Normal)
            return TrayAction::Restore;
        return active ? TrayAction::Minimise : TrayAction::None;
    case kRightReleased:
        return TrayAction::OpenMenu;
    default:
        return TrayAction::None;
    }
}

Tray::Tray(MonitoringCore& core, KivSHMainform& window)
    : core_(core)
    , window_(window) {
    icon_.setToolTip(core.version.trayTip());
    icon_.setContextMenu(makePopupSys(window, core));
    connect(&icon_, &QSystemTrayIcon::activated, this, &Tray::takeActivation);
    secondClick_.setSingleShot(true);
    connect(&secondClick_, &QTimer::timeout, this, [this] { answer(kLeftReleased); });
    followVerdict();
    window.installEventFilter(this);
    core.records.window.HasTrayIcon = QSystemTrayIcon::isSystemTrayAvailable();
    icon_.show(); // also in a tray that comes later
}

void Tray::followVerdict() {
    Records& records = core_.records;
    follow(this, records.session.State, [this](SessionState) { showVerdict(); });
    follow(this, records.session.verdict, [this](Verdict) { showVerdict(); });
    // The health of the sources may change while the verdict does not.
    follow(this, records.session.CyclesDone, [this](std::int64_t) { showVerdict(); });
    followLook(this, [this] { showVerdict(); });
}

// The program, and below it what it says and why.
QString Tray::tip() const {
    const Records& records = core_.records;
    const QString verdict = records.conditions.LblStatus.Caption;
    if (!records.session.running() || verdict.isEmpty())
        return core_.version.trayTip();
    return core_.version.trayTip() + u'\n' + verdict + u": "_s +
           records.display.LblCause.Caption.value();
}

void Tray::showVerdict() {
    const Records& records = core_.records;
    icon_.setToolTip(tip());
    const VerdictIcon verdict =
        verdictIcon(records.session.State, records.session.verdict, records.readings);
    const std::pair shown(verdict, lookInForce());
    if (shown_ == shown)
        return;
    shown_ = shown;
    const QIcon icon = drawVerdictIcon(verdict);
    icon_.setIcon(icon);
    window_.setWindowIcon(icon);
}

// A desktop's panel may have come or gone since the icon was added. A window that a dialog holds up
// stays in sight below it.
bool Tray::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::WindowStateChange)
        core_.records.window.HasTrayIcon =
            QSystemTrayIcon::isSystemTrayAvailable() && !QApplication::activeModalWidget();
    return false;
}

// A single click is only known as one when no second follows; some trays never report a double
// click and send two single ones.
void Tray::takeActivation(QSystemTrayIcon::ActivationReason reason) {
    const bool second = secondClick_.isActive();
    switch (reason) {
    case QSystemTrayIcon::Trigger:
        secondClick_.stop();
        if (second)
            answer(kLeftDoubleClick);
        else
            secondClick_.start(QApplication::doubleClickInterval());
        break;
    case QSystemTrayIcon::DoubleClick:
        secondClick_.stop();
        answer(kLeftDoubleClick);
        break;
    case QSystemTrayIcon::Context:
        answer(kRightReleased);
        break;
    default:
        break;
    }
}

void Tray::answer(TrayEvent event) {
    const bool shown = window_.isVisible() && !window_.isMinimized();
    const bool active = shown && QGuiApplication::focusWindow() == window_.windowHandle();
    switch (trayAction(event, 1, core_.records.window.State, active)) {
    case TrayAction::Restore:
        window_.restore();
        break;
    case TrayAction::Minimise:
        window_.minimise();
        break;
    case TrayAction::ShowWindow:
        if (!shown)
            window_.restore();
        [[fallthrough]];
    case TrayAction::OpenMenu: // the icon opens its menu by itself
        if (shown) {
            window_.raise();
            window_.activateWindow();
        }
        break;
    case TrayAction::None:
        break;
    }
}

} // namespace skyhold
