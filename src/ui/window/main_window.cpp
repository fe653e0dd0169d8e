// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/main_window.h"

#include "core/session.h"
#include "core/start_up.h"
#include "ui/dialogs/help_window.h"
#include "ui/look/look.h"
#include "ui/look/window_unit.h"
#include "ui/pages/settings_pages.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/window/menu_clock.h"
#include "ui/window/menus.h"
#include "ui/window/monitor_panel.h"
#include "ui/window/status_strip.h"
#include "ui/window/wall_panel.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr QSize kUsualSize(1280, 800);
constexpr QSize kSmallestSize(1024, 700);
constexpr int kFrameMs = 200;

WindowState stateOf(const QWidget& window) {
    if (window.isMinimized())
        return WindowState::Minimized;
    return window.isMaximized() ? WindowState::Maximized : WindowState::Normal;
}

} // namespace

KivSHMainform::KivSHMainform(MonitoringCore& core)
    : core_(core) {
    setObjectName(u"KivSHMainform"_s);
    WindowControls& window = core_.records.window;
    follow(this, window.Look, [](int chosen) {
        const auto look = static_cast<Look>(chosen);
        if (look != lookInForce())
            applyLook(*qApp, look);
    });
    follow(this, window.Caption, [this](const QString& text) { setWindowTitle(text); });

    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* panel = new MonitorPanel(core_, content);
    column->addWidget(panel);
    pages_ = new SettingsPages(core_, content);
    pages_->onHelp = [this] {
        explainPage();
    };
    column->addWidget(pages_, 1);
    const auto makeRoom = [this, panel] {
        panel->setCompact(pages_->shownPage() != Page::Tonight);
    };
    connect(pages_, &QTabWidget::currentChanged, panel, makeRoom);
    makeRoom();
    column->addWidget(new StatusStrip(core_.records.session, content));
    views_ = new QStackedWidget(this);
    views_->addWidget(content);
    setCentralWidget(views_);
    makeMenuBar(*this, core_);
    menuClock_ = new MenuClock(core_, menuBar());
    menuBar()->setCornerWidget(menuClock_);
    connect(panel, &MonitorPanel::counted, menuClock_, &MenuClock::showTime);
    setMinimumSize(kSmallestSize);
    resize(kUsualSize);
    frameDrawn_.setSingleShot(true);
    frameDrawn_.setInterval(kFrameMs);
    connect(&frameDrawn_, &QTimer::timeout, this, &KivSHMainform::notePosition);
    followRecords();
}

// What automation clients and the rules of the menus do to the window.
void KivSHMainform::followRecords() {
    WindowControls& window = core_.records.window;
    follow(this, window.CloseItemEnabled, [this](bool on) { enableCloseItem(on); });
    follow(this, window.State, [this](WindowState state) { showState(state); });
    follow(this, window.Visible, [this](bool visible) {
        if (placed_ && isVisible() != visible)
            KivSHMainform::setVisible(visible);
    });
    follow(this, window.Left, [this](int left) {
        if (placed_ && x() != left)
            move(left, y());
    });
    follow(this, window.Top, [this](int top) {
        if (placed_ && y() != top)
            move(x(), top);
    });
}

void KivSHMainform::showState(WindowState state) {
    if (!placed_ || stateOf(*this) == state)
        return;
    if (state == WindowState::Minimized)
        setWindowState(windowState() | Qt::WindowMinimized);
    else if (state == WindowState::Maximized)
        showMaximized();
    else
        showNormal();
}

void KivSHMainform::restore() {
    showNormal();
    raise();
    activateWindow();
    // Hidden and shown at once it never lost the display's focus, and nothing makes it take up
    // its keys again.
    if (QGuiApplication::focusWindow() == windowHandle() && !isActiveWindow())
        QApplication::setActiveWindow(this);
}

void KivSHMainform::showPanelOnly(bool only) {
    if (only == (views_->currentIndex() == 1))
        return;
    if (only) {
        if (views_->count() == 1) {
            auto* wall = new WallPanel(core_, views_);
            connect(wall, &WallPanel::left, this, [this] { showPanelOnly(false); });
            views_->addWidget(wall);
        }
        before_ = windowState() & ~Qt::WindowMinimized;
        views_->setCurrentIndex(1);
        menuBar()->hide();
        setWindowState(windowState() | Qt::WindowFullScreen);
        views_->currentWidget()->setFocus();
    } else {
        views_->setCurrentIndex(0);
        menuBar()->show();
        setWindowState(before_ & ~Qt::WindowFullScreen);
    }
    Q_EMIT panelOnlyChanged(only);
}

void KivSHMainform::explainPage() {
    showHelp(core_, this, helpFolders(), guidePage(pages_->shownPage()));
}

void KivSHMainform::minimise() {
    core_.records.window.State = WindowState::Minimized;
}

void KivSHMainform::closeEvent(QCloseEvent* event) {
    event->setAccepted(RequestClose(core_));
    if (!event->isAccepted())
        return;
    // The window closes with the focus in the box that was typed into last.
    if (auto* box = qobject_cast<KivGetNumber*>(focusWidget()))
        box->enterNumber();
    Q_EMIT closed();
}

void KivSHMainform::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    WindowControls& window = core_.records.window;
    window.State = stateOf(*this);
    if (window.State != WindowState::Minimized)
        window.Visible = true;
    UpdateMenus(core_.records);
}

void KivSHMainform::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    // After the layouts that are at work.
    QMetaObject::invokeMethod(
        this, [this] { growLetters(); }, Qt::QueuedConnection);
}

// Of the menus; what stands on the panel and the pages grows by itself.
void KivSHMainform::growLetters() {
    const qreal unit = std::max(windowUnit(*this), 1.0);
    if (unit == unit_)
        return;
    unit_ = unit;
    const auto grow = [unit](QWidget* widget) {
        QFont letters = QApplication::font(widget);
        letters.setPointSizeF(letters.pointSizeF() * unit);
        widget->setFont(letters);
    };
    grow(menuBar());
    for (QMenu* menu : menuBar()->findChildren<QMenu*>())
        grow(menu);
    menuClock_->grow();
}

void KivSHMainform::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    notePosition();
    frameDrawn_.start();
}

// Of the frame's corner, which is what a window is moved to. Without the frame, which comes after
// the first moves and is not announced, every start would move the window by the frame's width.
void KivSHMainform::notePosition() {
    if (!placed_ || !isVisible() || isFullScreen() || stateOf(*this) != WindowState::Normal)
        return;
    WindowControls& window = core_.records.window;
    window.Left = x();
    window.Top = y();
    window.Placed = true;
}

// Placed before the desktop knows of it: a frame of unknown size is reckoned with then.
void KivSHMainform::setVisible(bool visible) {
    if (visible && !placed_)
        placeOnScreen();
    QMainWindow::setVisible(visible);
}

void KivSHMainform::showEvent(QShowEvent* event) {
    placed_ = true;
    QMainWindow::showEvent(event);
    frameDrawn_.start();
    enableCloseItem(core_.records.window.CloseItemEnabled);
}

// At its saved position when its title bar can be reached there, else in the middle.
void KivSHMainform::placeOnScreen() {
    WindowControls& window = core_.records.window;
    const QPoint saved(window.Left, window.Top);
    const QScreen* savedScreen = QGuiApplication::screenAt(saved + QPoint(40, 10));
    const QScreen* on = window.Placed && savedScreen ? savedScreen : screen();
    const QRect room = on->availableGeometry();
    // The frame around the window is only known once it stands; leave room for a usual one.
    const QSize inside = room.size() - QSize(8, 40);
    resize(kUsualSize.boundedTo(inside).expandedTo(kSmallestSize));
    if (on != savedScreen || !window.Placed) {
        window.Left = room.left() + std::max(0, room.width() - width()) / 2;
        window.Top = room.top() + std::max(0, room.height() - height()) / 2;
    }
    move(window.Left, window.Top);
}

void KivSHMainform::enableCloseItem(bool on) {
    // Through the window itself: the widget's own flag would hide the window and show it again.
    if (QWindow* handle = windowHandle())
        handle->setFlag(Qt::WindowCloseButtonHint, on);
}

} // namespace skyhold
