#include "ui/main_window.h"

#include "core/session.h"
#include "core/start_up.h"
#include "ui/bind.h"
#include "ui/look.h"
#include "ui/monitor_panel.h"
#include "ui/pages/ccdap_page.h"
#include "ui/pages/limits_page.h"
#include "ui/pages/sources_page.h"
#include "ui/pages/unsafe_page.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr QSize kUsualSize(1280, 800);
constexpr QSize kSmallestSize(1024, 700);

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
    follow(this, window.Caption, [this](const QString& text) { setWindowTitle(text); });

    auto* content = new QWidget(this);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new MonitorPanel(core_, content));
    makePages();
    column->addWidget(pages_, 1);
    column->addWidget(new StatusStrip(core_.records.session, content));
    setCentralWidget(content);
    makeMenus();
    setMinimumSize(kSmallestSize);
    resize(kUsualSize);
    follow(this, window.CloseItemEnabled, [this](bool on) { enableCloseItem(on); });
}

void KivSHMainform::makeMenus() {
    WindowControls& window = core_.records.window;
    const auto add = [this](QMenu* menu, const QString& name, const QString& text,
                            MenuEntry& record) {
        QAction* action = text.isEmpty() ? menu->addSeparator() : menu->addAction(text);
        action->setObjectName(name);
        bind(action, record);
        return action;
    };
    QMenu* file = menuBar()->addMenu(u"&File"_s);
    file->setObjectName(u"Filemenu"_s);
    connect(add(file, u"mnuStart"_s, u"&Start"_s, window.mnuStart), &QAction::triggered, this,
            [this] { StartSession(core_); });
    connect(add(file, u"mnuStop"_s, u"S&top"_s, window.mnuStop), &QAction::triggered, this,
            [this] { StopSession(core_); });
    add(file, u"mSep0"_s, {}, window.mSep0);
    connect(add(file, u"MnuExit"_s, u"E&xit"_s, window.MnuExit), &QAction::triggered, this,
            [this] { close(); });

    QMenu* help = menuBar()->addMenu(u"&Help"_s);
    help->setObjectName(u"mHelp"_s);
    QAction* about = help->addAction(u"&About"_s, this, [this] { showAbout(); });
    about->setObjectName(u"mnuAbout"_s);
}

void KivSHMainform::makePages() {
    pages_ = new QTabWidget(this);
    pages_->setObjectName(u"SSTab1"_s);
    pages_->setDocumentMode(true);
    Records& records = core_.records;
    addPage(u"S&ources"_s, [this](QWidget* parent) { return makeSourcesPage(core_, parent); });
    addPage(u"&Limits"_s, [&records](QWidget* parent) {
        return makeLimitsPage(records.conditions, records.units, parent);
    });
    addPage(u"&Unsafe levels"_s,
            [&records](QWidget* parent) { return makeUnsafePage(records.conditions, parent); });
    addPage(u"&CCDAutopilot file"_s,
            [&records](QWidget* parent) { return makeCcdapPage(records.ccdap, parent); });

    WindowControls& window = records.window;
    follow(pages_, window.SSTab1, [this](int index) {
        if (index >= 0 && index < pages_->count())
            pages_->setCurrentIndex(index);
    });
    connect(pages_, &QTabWidget::currentChanged, this, [this, &window](int index) {
        window.SSTab1 = index;
        buildPage(index);
    });
    buildPage(pages_->currentIndex());
}

void KivSHMainform::addPage(const QString& title, std::function<QWidget*(QWidget*)> make) {
    auto* pane = new QScrollArea(pages_);
    pane->setWidgetResizable(true);
    pane->setFrameShape(QFrame::NoFrame);
    makePage_.push_back(std::move(make));
    pages_->addTab(pane, title);
}

void KivSHMainform::buildPage(int index) {
    auto& make = makePage_[static_cast<std::size_t>(index)];
    if (!make)
        return;
    auto* pane = static_cast<QScrollArea*>(pages_->widget(index));
    pane->setWidget(make(pane));
    make = nullptr;
}

void KivSHMainform::restore() {
    showNormal();
    raise();
    activateWindow();
}

void KivSHMainform::closeEvent(QCloseEvent* event) {
    event->setAccepted(RequestClose(core_));
    if (event->isAccepted())
        Q_EMIT closed();
}

void KivSHMainform::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    core_.records.window.State = stateOf(*this);
    UpdateMenus(core_.records);
}

void KivSHMainform::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (!placed_ || stateOf(*this) != WindowState::Normal)
        return;
    WindowControls& window = core_.records.window;
    window.Left = x();
    window.Top = y();
    window.Placed = true;
}

void KivSHMainform::showEvent(QShowEvent* event) {
    if (!placed_) {
        placeOnScreen();
        placed_ = true;
    }
    QMainWindow::showEvent(event);
    enableCloseItem(core_.records.window.CloseItemEnabled);
}

// At its saved position when its title bar can be reached there, else in the middle.
void KivSHMainform::placeOnScreen() {
    const WindowControls& window = core_.records.window;
    const QPoint saved(window.Left, window.Top);
    const QScreen* savedScreen = QGuiApplication::screenAt(saved + QPoint(40, 10));
    const QScreen* on = window.Placed && savedScreen ? savedScreen : screen();
    const QRect room = on->availableGeometry();
    // The frame around the window is only known once it stands; leave room for a usual one.
    const QSize inside = room.size() - QSize(8, 40);
    resize(kUsualSize.boundedTo(inside).expandedTo(kSmallestSize));
    if (on == savedScreen && window.Placed)
        move(saved);
    else
        move(room.topLeft() +
             QPoint(std::max(0, room.width() - width()), std::max(0, room.height() - height())) /
                 2);
}

void KivSHMainform::enableCloseItem(bool on) {
    // Through the window itself: the widget's own flag would hide the window and show it anew.
    if (QWindow* handle = windowHandle())
        handle->setFlag(Qt::WindowCloseButtonHint, on);
}

void KivSHMainform::showAbout() {
    core_.showMessage({core_.version.title() +
                           u"\n\nA monitor of sky and weather conditions for an observatory."_s,
                       MessageStyle::Ok, u"About"_s});
}

} // namespace skyhold
