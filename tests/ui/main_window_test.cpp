// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/clients.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/look/look.h"
#include "ui/widgets/readout.h"
#include "ui/window/tray.h"
#include "window_fixture.h"

#include <QAction>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabBar>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

class MainWindow : public WindowFixture {
  protected:
    QString health(const char* name) { return child(*window_, name)->accessibleName(); }
};

TEST_F(MainWindow, StartShowsTheVerdictAndStopLeavesNoneAndNoLiveColour) {
    // Grey readings are in the window's own colours.
    const auto grey = [this](const char* name) {
        return child<Readout>(*window_, name)->shownInk() == look::kDimText;
    };
    EXPECT_EQ(window_->windowTitle(), u"Kiv_Skyhold (v2.30.004)"_s);
    EXPECT_EQ(shown("LblStatus"), u"Not monitoring"_s);
    EXPECT_FALSE(visible("ButtStop"));
    EXPECT_TRUE(offered("mnuStart"));

    click(*window_, "ButtStart");
    EXPECT_EQ(shown("LblStatus"), u"Safe"_s);
    EXPECT_EQ(shown("LValWindSpeed"), u"5"_s);
    EXPECT_EQ(shown("LCondWind"), u"Calm"_s);
    EXPECT_TRUE(offered("mnuStop"));
    EXPECT_FALSE(child<QWidget>(*window_, "NBTimeout")->isEnabled());

    cycle({.wind = u"15"_s});
    cycle({.wind = u"15"_s}, 60);
    EXPECT_EQ(shown("LblStatus"), u"Unsafe"_s);
    EXPECT_EQ(child<Readout>(*window_, "LCondWind")->ink(), screenColour(kOrange));
    EXPECT_TRUE(shown("LblCause").startsWith(u"Wind 15.0 km/hr, above 10, since "_s));
    cycle({});
    cycle({});
    ASSERT_EQ(shown("LblStatus"), u"Safe"_s);
    constexpr std::array readings{"LValCloud", "LCondWind", "Label02", "LValSwitch"};
    for (const char* name : readings)
        EXPECT_FALSE(grey(name)) << name;
    click(*window_, "ButtStop");
    EXPECT_TRUE(visible("ButtStart"));
    EXPECT_EQ(shown("LblStatus"), u"Not monitoring"_s);
    EXPECT_TRUE(shown("LblVerdictNote").startsWith(u"stopped "_s));
    EXPECT_TRUE(shown("LblLastVerdict").startsWith(u"Last verdict: Safe. All conditions safe"_s));
    EXPECT_EQ(shown("Statusbar1"), u"Monitoring stopped"_s);
    EXPECT_EQ(status(), u"Weather Station Data - Refreshed"_s); // for clients
    EXPECT_EQ(shown("LValWindSpeed"), u"5"_s);
    EXPECT_TRUE(visible("LblLeftOpen"));
    openPage(Page::Sources); // the panel is compact
    EXPECT_TRUE(child<Readout>(*window_, "LValSwitch")->fitsWhole());
    EXPECT_TRUE(child<Readout>(*window_, "LblLeftOpen")->fitsWhole());
    for (const char* name : readings)
        EXPECT_TRUE(grey(name)) << name;

    // Still of then while a new session waits for its first data.
    sensor_.values[u"DataReady"_s] = false;
    clock_.onWait = [&] {
        EXPECT_TRUE(grey("LValWindSpeed"));
        sensor_.values[u"DataReady"_s] = true;
    };
    click(*window_, "ButtStart");
    EXPECT_FALSE(grey("LValWindSpeed"));
    EXPECT_EQ(shown("Statusbar1"), status());
}

TEST_F(MainWindow, ThePanelAloneComesAndGoesByItsKeyAndKeepsTheWindowsPlace) {
    window_->move(30, 40);
    QCoreApplication::processEvents();
    auto* entry = child<QAction>("mnuPanelOnly");
    for (const bool byEscape : {true, false}) {
        entry->trigger();
        QCoreApplication::processEvents();
        EXPECT_TRUE(window_->isFullScreen());
        EXPECT_TRUE(visible("WallPanel"));
        EXPECT_FALSE(visible("ButtStart"));
        if (byEscape)
            QTest::keyClick(child(*window_, "WallPanel"), Qt::Key_Escape);
        else
            entry->trigger();
        QCoreApplication::processEvents();
        EXPECT_FALSE(window_->isFullScreen());
        EXPECT_FALSE(visible("WallPanel"));
        EXPECT_TRUE(visible("ButtStart"));
        EXPECT_FALSE(entry->isChecked());
    }
    EXPECT_EQ(QPoint(records().window.Left, records().window.Top), QPoint(30, 40));
}

TEST_F(MainWindow, ThePanelMakesRoomForSettingsAndGrowsWithTheWindow) {
    const auto top = [this] {
        return child(*window_, "SSTab1")->y();
    };
    const auto letters = [this] {
        return QFontInfo(child(*window_, "SSTab2")->findChild<QTabBar*>()->font()).pixelSize();
    };
    const auto settle = [] {
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    };
    window_->resize(1280, 800);
    openPage(Page::Tonight);
    settle();
    const int full = top();
    const int usual = letters();
    openPage(Page::Limits);
    settle();
    EXPECT_LE(top(), full - 100);
    EXPECT_TRUE(visible("LblStatus"));
    window_->resize(2560, 1600);
    settle();
    EXPECT_NEAR(letters(), 2 * usual, 1);
    openPage(Page::Tonight);
    settle();
    EXPECT_NEAR(top(), 2 * full, 40); // margins stay
    EXPECT_NEAR(child(*window_, "MenuClock")->font().pixelSize(), 2 * usual, 1);
}

TEST_F(MainWindow, ALostSourceLeavesNoLiveValueAndTimesCountBetweenCycles) {
    click(*window_, "ButtStart");
    EXPECT_EQ(shown("LValWindSpeedAt"), QString());
    clock_.advanceSeconds(4);
    window_->hide(); // nothing is counted where nobody sees it
    window_->show();
    const int interval = records().session.RefreshRead.chosenSeconds();
    EXPECT_TRUE(health("NextCycle").startsWith(u"Next cycle: %1 s, every "_s.arg(interval - 4)));
    EXPECT_TRUE(health("StationHealth").startsWith(u"Station: ok "_s));
    QFile::remove(stationPath());
    RunReadCycle(*core_);
    EXPECT_EQ(shown("LblVerdictNote"), u"station data file is missing"_s);
    EXPECT_EQ(shown("LValWindSpeed"), QString());
    EXPECT_TRUE(shown("LValWindSpeedAt").contains(u"5 at "_s));
    EXPECT_TRUE(health("StationHealth").startsWith(u"Station: absent"_s));
    sensor_.values[u"DeviceIsRunning"_s] = false;
    RunReadCycle(*core_);
    EXPECT_TRUE(health("SensorHealth").startsWith(u"Sensor: failed"_s));
    EXPECT_EQ(child<Readout>(*window_, "Label30")->shownInk(), look::kDimText); // of then
}

TEST_F(MainWindow, WhatIsLaidOverAGraphIsNotInItsPicture) {
    openPage(Page::Graphs);
    StartSession(*core_);
    cycle({.wind = u"5"_s});
    cycle({.wind = u"17.5"_s});
    EXPECT_EQ(shown("GraphNowWind"), u"17.5 km/hr"_s);
    auto* view = child(*window_, "GraphWind");
    const QImage picture = records().pictures[0].Image.copy();
    const QImage before = view->grab().toImage();
    QMouseEvent move(QEvent::MouseMove, {10, 10}, {10, 10}, Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(view, &move);
    EXPECT_NE(view->grab().toImage(), before); // time and value at the mouse
    EXPECT_EQ(records().pictures[0].Image, picture);
    cycleWithoutStation(600);
    EXPECT_EQ(shown("GraphNowWind"), u"–"_s);
}

TEST_F(MainWindow, SettingsOnThePagesReachTheRecords) {
    const auto type = [this](const char* name, const QString& number) {
        QWidget* box = child(*window_, name);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, number);
    };
    openPage(Page::Limits);
    type("LimitWind0", u"7.5"_s);
    EXPECT_EQ(records().conditions.Limit[Quantity::Wind][0].Value, 7.5);

    const int before = records().conditions.Cond[Quantity::Dew][2].Value;
    QTest::keyClick(child<QWidget>(*window_, "CondDew2"), Qt::Key_Space);
    EXPECT_EQ(records().conditions.Cond[Quantity::Dew][2].Value, 1 - before);

    // What has a rule waits until it is entered, at the latest by closing the window.
    openPage(Page::Graphs);
    type("GraphNoPoints", u"200"_s);
    EXPECT_EQ(records().graphs.GraphNoPoints.Value, 120);
    window_->close();
    EXPECT_EQ(records().graphs.GraphNoPoints.Value, 200);
}

TEST_F(MainWindow, ClosingIsRefusedWhileClientsAreAttached) {
    int closed = 0;
    QObject::connect(window_.get(), &KivSHMainform::closed, window_.get(), [&] { ++closed; });
    const auto closeItem = [this] {
        return window_->windowHandle()->flags().testFlag(Qt::WindowCloseButtonHint);
    };
    EXPECT_TRUE(closeItem());
    click(*window_, "ButtStart");
    RegisterUsers(records(), clock_, 1);
    EXPECT_EQ(records().session.LblUsers.Caption.value(), u"Attached Users: 1"_s);
    EXPECT_FALSE(visible("ButtStop"));
    EXPECT_FALSE(child<QAction>("MnuExit")->isEnabled());
    EXPECT_FALSE(closeItem());
    window_->close();
    EXPECT_TRUE(window_->isVisible());
    EXPECT_TRUE(messages_.contains(u"There are other users present - cannot UNLOAD"_s));
    EXPECT_TRUE(records().session.running());
    EXPECT_EQ(closed, 0);

    RegisterUsers(records(), clock_, -1);
    EXPECT_TRUE(closeItem());
    child<QAction>("MnuExit")->trigger();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(records().session.running());
    EXPECT_EQ(closed, 1);
}

TEST_F(MainWindow, AClientsFailedStartIsToldBesideAWindowThatCanBeUsed) {
    const Notices notices = makeNotices(*window_);
    core_->showNotice = notices.show;
    core_->closeNotices = notices.close;
    const auto notice = [this] {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return window_->findChild<KivError*>();
    };
    sensor_.present = false;
    Device_Start(*core_);
    ASSERT_NE(notice(), nullptr);
    EXPECT_TRUE(notice()->isVisible());
    EXPECT_FALSE(notice()->isModal());
    EXPECT_EQ(shown("LblCause"), u"Cannot read Kiv_Nubilo"_s);
    sensor_.present = true;
    click(*window_, "ButtStart");
    EXPECT_EQ(notice(), nullptr);
    EXPECT_TRUE(running());
}

TEST_F(MainWindow, OpensWhereItWasLeftUnlessThatIsOffTheScreen) {
    window_->move(30, 40);
    QCoreApplication::processEvents();
    EXPECT_EQ(QPoint(records().window.Left, records().window.Top), QPoint(30, 40));
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    EXPECT_EQ(window_->pos(), QPoint(30, 40));

    records().window.Left = -5000;
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    EXPECT_GE(window_->x(), 0);
}

TEST(TrayProtocol, EventCodesHaveTheirActions) {
    struct Case {
        double coordinate;
        WindowState state;
        bool active;
        TrayAction action;
    };
    const Case cases[]{
        {514, WindowState::Normal, true, TrayAction::ShowWindow},
        {515, WindowState::Minimized, false, TrayAction::Restore},
        {515, WindowState::Normal, true, TrayAction::Minimise},
        {515, WindowState::Normal, false, TrayAction::None},
        {517, WindowState::Minimized, false, TrayAction::OpenMenu},
        {512, WindowState::Normal, true, TrayAction::None},
    };
    for (const Case& c : cases)
        EXPECT_EQ(trayAction(c.coordinate, 1, c.state, c.active), c.action) << c.coordinate;
}

TEST(VerdictIcons, AFailingSourceNeverLooksSafe) {
    using enum Verdict;
    constexpr SessionState kRunning = SessionState::Running;
    CurrentReadings healthy;
    EXPECT_EQ(verdictIcon(SessionState::Idle, Unsafe, healthy), VerdictIcon::None);
    EXPECT_EQ(verdictIcon(SessionState::Starting, None, healthy), VerdictIcon::None);
    EXPECT_EQ(verdictIcon(kRunning, Safe, healthy), VerdictIcon::Safe);
    EXPECT_EQ(verdictIcon(kRunning, Waiting, healthy), VerdictIcon::Unsafe);
    EXPECT_EQ(verdictIcon(kRunning, Unsafe, healthy), VerdictIcon::Unsafe);
    for (bool CurrentReadings::*fault :
         {&CurrentReadings::SensorError, &CurrentReadings::StationDataOld,
          &CurrentReadings::StationFileMissing}) {
        CurrentReadings failing;
        failing.*fault = true;
        for (const Verdict verdict : {Safe, Waiting, Unsafe})
            EXPECT_EQ(verdictIcon(kRunning, verdict, failing), VerdictIcon::Fault);
    }
}

TEST_F(MainWindow, IconFollowsTheVerdict) {
    const Tray tray(*core_, *window_);
    const auto looksLike = [this](VerdictIcon which) {
        return window_->windowIcon().pixmap(22, 22).toImage() ==
               drawVerdictIcon(which).pixmap(22, 22).toImage();
    };
    EXPECT_TRUE(looksLike(VerdictIcon::None));
    child<QAction>("mPopStart")->trigger();
    EXPECT_TRUE(looksLike(VerdictIcon::Safe));
    cycle({.wind = u"15"_s});
    cycle({.wind = u"15"_s}, 60);
    EXPECT_TRUE(looksLike(VerdictIcon::Unsafe));
    QFile::remove(stationPath());
    RunReadCycle(*core_);
    EXPECT_TRUE(looksLike(VerdictIcon::Fault));
    child<QAction>("mPopStop")->trigger();
    EXPECT_TRUE(looksLike(VerdictIcon::None));
}

} // namespace
} // namespace skyhold
