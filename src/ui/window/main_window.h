// SPDX-License-Identifier: GPL-3.0-or-later
// The main window: what is always in view, the pages of settings, and the menus.
#pragma once

#include "core/monitoring_core.h"

#include <QMainWindow>
#include <QTimer>

class QStackedWidget;

namespace skyhold {

class MenuClock;
class SettingsPages;

class KivSHMainform : public QMainWindow {
    Q_OBJECT

  public:
    // Shows and changes the records of `core`, which outlives the window.
    explicit KivSHMainform(MonitoringCore& core);

    // Back from minimised or maximised to its normal size, and to the front.
    void restore();
    // With a tray icon the window is hidden, else it is an icon like any other.
    void minimise();

    // The panel alone on the whole screen, and back to the window as it was.
    void showPanelOnly(bool only);

    // The page of the user guide about the page that is shown.
    void explainPage();

    // What the menu's update entry does; the entry is only offered when this is set.
    std::function<void()> onUpdate;

    void setVisible(bool visible) override;

  Q_SIGNALS:
    void panelOnlyChanged(bool only);
    // A close request has been granted: the session is stopped, the program may unload.
    void closed();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void followRecords();
    void showState(WindowState state);
    void placeOnScreen();
    void notePosition();
    void enableCloseItem(bool on);
    void growLetters();

    MonitoringCore& core_;
    SettingsPages* pages_ = nullptr;
    MenuClock* menuClock_ = nullptr;
    QStackedWidget* views_ = nullptr; // the window's usual content, and the panel alone
    Qt::WindowStates before_;         // the panel was alone
    bool placed_ = false;
    qreal unit_ = 1;    // of the letters of menus
    QTimer frameDrawn_; // runs while the desktop may still put its frame around the window
};

} // namespace skyhold
