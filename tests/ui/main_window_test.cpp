#include "window_fixture.h"

#include "core/clients.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_legend.h"
#include "ui/look/look.h"
#include "ui/widgets/readout.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class MainWindow : public WindowFixture {};

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
    EXPECT_EQ(child<LampWidget>(*window_, "LEDUnsafe")->colour(), screenColour(kGreen));
    EXPECT_FALSE(visible("ButtStart"));
    EXPECT_FALSE(visible("LblVerdictNote"));
    EXPECT_TRUE(offered("mnuStop"));
    EXPECT_FALSE(child<QWidget>(*window_, "NBTimeout")->isEnabled());

    cycle({.wind = u"15"_s});
    cycle({.wind = u"15"_s}, 60);
    EXPECT_EQ(shown("LblStatus"), u"Unsafe"_s);
    EXPECT_EQ(child<Readout>(*window_, "LCondWind")->ink(), screenColour(kOrange));
    EXPECT_TRUE(shown("LblCause").startsWith(u"Wind 15.0 km/h, above 10, since "_s));

    EXPECT_FALSE(visible("LblLeftOpen"));

    cycle({});
    cycle({});
    ASSERT_EQ(shown("LblStatus"), u"Safe"_s);
    const auto hasGreen = [&] {
        const QImage picture = window_->grab(QRect(0, 0, window_->width(), 320)).toImage();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.saturation() > 100 && pixel.hue() > 40 && pixel.hue() < 190)
                    return true; // yellow to cyan
            }
        }
        return false;
    };
    EXPECT_TRUE(hasGreen());
    constexpr std::array readings{"LValCloud", "LCondCloud", "LValWindSpeed", "LCondWind",
                                  "Label02",   "LValSwitch", "Label30",       "Label32"};
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
    for (const char* name : readings)
        EXPECT_TRUE(grey(name)) << name;
    EXPECT_FALSE(hasGreen());

    // Still of then while a new session waits for its first data.
    sensor_.values[u"DataReady"_s] = false;
    clock_.onWait = [&] {
        EXPECT_TRUE(grey("LValWindSpeed"));
        sensor_.values[u"DataReady"_s] = true;
    };
    click(*window_, "ButtStart");
    EXPECT_FALSE(grey("LValWindSpeed"));
    EXPECT_EQ(shown("Statusbar1"), status());

    // The words of a start that failed are no leftovers.
    click(*window_, "ButtStop");
    sensor_.values[u"DataReady"_s] = false;
    clock_.onWait = nullptr;
    click(*window_, "ButtStart");
    EXPECT_EQ(shown("Statusbar1"), u"Problem with Kiv_Nubilo"_s);
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

    openPage(Page::Unsafe);
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

TEST_F(MainWindow, LegendOpensFromTheStatusCodesAndItsOkClosesIt) {
    QWidget* codes = child<QWidget>(*window_, "Statusbar2");
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(codes, Qt::RightButton);
    ASSERT_EQ(window_->findChildren<KivLegend*>().size(), 1);
    auto* legend = window_->findChild<KivLegend*>();
    EXPECT_TRUE(legend->isVisible());
    EXPECT_EQ(child<QLabel>(*legend, "LblLegend")->text().count(u'\n'), 13);
    click(*legend, "ButtOK");
    EXPECT_FALSE(legend->isVisible());
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
    EXPECT_FALSE(closeItem());
    EXPECT_FALSE(visible("ButtStop"));
    EXPECT_TRUE(visible("FrameCOM"));
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

TEST_F(MainWindow, MessagesRestoreAMinimisedWindow) {
    const ShowMessage ask = makeMessageDialog(*window_);
    window_->showMinimized();
    QCoreApplication::processEvents();
    EXPECT_EQ(records().window.State, WindowState::Minimized);
    MessageAnswer answer{};
    EXPECT_TRUE(duringDialog(
        [&] {
            answer = ask({u"Overwrite?"_s, MessageStyle::YesNo, {}});
        },
        [this](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), window_->windowTitle());
            EXPECT_FALSE(window_->isMinimized());
            click(dialog, "Butt0");
        }));
    EXPECT_EQ(answer, MessageAnswer::Yes);
    EXPECT_EQ(records().window.State, WindowState::Normal);
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

TEST_F(MainWindow, ClientsLeaveStartAndStopApartAndControlToTheUser) {
    records().display.LblSwitch.Visible = true;
    records().display.LValSwitch.Visible = true;
    for (const int delta : {+1, -1})
        RegisterUsers(records(), clock_, delta);
    QCoreApplication::processEvents();
    const auto place = [this](const char* name) {
        EXPECT_TRUE(visible(name));
        return child(*window_, name)->geometry();
    };
    EXPECT_FALSE(place("ButtStart").intersects(place("ButtStop")));
    EXPECT_FALSE(place("ButtStart").intersects(place("LValSwitch")));

    HasControl(*core_, true, u"dome script"_s);
    QCoreApplication::processEvents();
    EXPECT_FALSE(place("ButtTakeBack").intersects(place("LblControl")));
    click(*window_, "ButtTakeBack");
    EXPECT_FALSE(clientDecides(*core_));
    EXPECT_FALSE(visible("ButtTakeBack"));
}

TEST_F(MainWindow, OpensWhereItWasLeftUnlessThatIsOffTheScreen) {
    const auto noted = [this] {
        return QPoint(records().window.Left, records().window.Top);
    };
    records().window.Placed = false;
    records().window.Left = 777;
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    // Clients may ask before it has been moved. The frame around it comes a little later.
    EXPECT_TRUE(QTest::qWaitFor([&] { return noted() == window_->pos(); }));
    window_->move(30, 40);
    QCoreApplication::processEvents();
    EXPECT_EQ(noted(), QPoint(30, 40));
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    EXPECT_EQ(window_->pos(), QPoint(30, 40));

    records().window.Left = -5000;
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    EXPECT_GE(window_->x(), 0);
}

} // namespace

} // namespace skyhold
