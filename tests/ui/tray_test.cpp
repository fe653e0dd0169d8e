#include "ui/window/tray.h"
#include "window_fixture.h"

#include "core/clients.h"

#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

TEST(TrayProtocol, EventCodesComeInPixelsAndTwips) {
    constexpr double kTwips = 15;
    struct Case {
        double coordinate, unitsPerPixel;
        WindowState state;
        bool active;
        TrayAction action;
    };
    const Case cases[]{
        {514, 1, WindowState::Normal, true, TrayAction::ShowWindow},
        {514 * kTwips, kTwips, WindowState::Minimized, false, TrayAction::ShowWindow},
        {515, 1, WindowState::Minimized, false, TrayAction::Restore},
        {515, 1, WindowState::Maximized, true, TrayAction::Restore},
        {515, 1, WindowState::Normal, true, TrayAction::Minimise},
        {515, 1, WindowState::Normal, false, TrayAction::None},
        {515 * kTwips, kTwips, WindowState::Normal, true, TrayAction::Minimise},
        {515, kTwips, WindowState::Normal, true, TrayAction::None},
        {517, 1, WindowState::Minimized, false, TrayAction::OpenMenu},
        {517 * kTwips, kTwips, WindowState::Normal, true, TrayAction::OpenMenu},
        {512, 1, WindowState::Normal, true, TrayAction::None},
        {513, 1, WindowState::Normal, true, TrayAction::None},
        {516, 1, WindowState::Normal, true, TrayAction::None},
    };
    for (const Case& c : cases)
        EXPECT_EQ(trayAction(c.coordinate, c.unitsPerPixel, c.state, c.active), c.action)
            << c.coordinate << " of " << c.unitsPerPixel;
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

// For eyes that do not tell the colours apart: the pictures without them.
TEST(VerdictIcons, ShapesDifferWithoutColour) {
    const auto grey = [](VerdictIcon which) {
        QImage ground(22, 22, QImage::Format_Grayscale8);
        ground.fill(Qt::black);
        const QImage icon = drawVerdictIcon(which).pixmap(22, 22).toImage();
        for (int y = 0; y < 22; ++y) {
            for (int x = 0; x < 22; ++x) {
                const QColor pixel = icon.pixelColor(x, y);
                // Light or dark on the shape, or beside it.
                const int tone = pixel.alpha() < 128 ? 0 : pixel.lightness() > 200 ? 255 : 128;
                ground.scanLine(y)[x] = static_cast<uchar>(tone);
            }
        }
        return ground;
    };
    const std::array all{VerdictIcon::None, VerdictIcon::Safe, VerdictIcon::Unsafe,
                         VerdictIcon::Fault};
    for (std::size_t a = 0; a < all.size(); ++a) {
        for (std::size_t b = a + 1; b < all.size(); ++b) {
            const QImage first = grey(all[a]);
            const QImage second = grey(all[b]);
            int different = 0;
            for (int i = 0; i < 22 * 22; ++i)
                different += first.scanLine(i / 22)[i % 22] != second.scanLine(i / 22)[i % 22];
            EXPECT_GT(different, 60) << a << " and " << b;
        }
    }
}

class TrayedWindow : public WindowFixture {
  protected:
    TrayedWindow()
        : tray_(std::make_unique<Tray>(*core_, *window_)) {}
    ~TrayedWindow() override { tray_.reset(); }

    QAction* entry(const char* name) {
        auto* found = child<QAction>(name);
        if (!found)
            qFatal("no entry %s", name);
        return found;
    }
    // No tray can be had here: as if one were there from now on.
    void giveTray() {
        tray_.reset();
        records().window.HasTrayIcon = true;
    }
    QStringList entries(const char* menu) {
        QStringList names;
        for (const QAction* action : child<QMenu>(menu)->actions())
            names.append(action->isSeparator() ? action->objectName()
                                               : action->objectName() + u' ' + action->text());
        return names;
    }

    std::unique_ptr<Tray> tray_;
};

TEST_F(TrayedWindow, MenusHaveTheirEntriesInOrder) {
    EXPECT_EQ(entries("Filemenu"), (QStringList{u"mnuStart &Start"_s, u"mnuStop S&top"_s,
                                                u"mSep0"_s, u"MnuExit E&xit"_s}));
    EXPECT_EQ(entries("mHelp"),
              (QStringList{u"mnuHelp1 &Contents"_s, u"mSpe0"_s, u"mnuUpdate Check &update"_s,
                           u"mSpe1"_s, u"mnuAbout &About"_s}));
    EXPECT_EQ(entries("mPopupSys"),
              (QStringList{u"mPopStart &Start"_s, u"mPopStop S&top"_s, u"mSep1"_s,
                           u"mPopRestore &Restore"_s, u"mPopMinimize &Minimize"_s, u"mSep2"_s,
                           u"mPopExit &Exit"_s}));
}

TEST_F(TrayedWindow, MenusOfferWhatCanBeDone) {
    struct Offer {
        const char *start, *stop, *separator, *exit;
    };
    const auto expectMenus = [this](bool start, bool stop, bool exit) {
        for (const Offer& menu : {Offer{"mnuStart", "mnuStop", "mSep0", "MnuExit"},
                                  Offer{"mPopStart", "mPopStop", "mSep1", "mPopExit"}}) {
            SCOPED_TRACE(menu.start);
            EXPECT_EQ(entry(menu.start)->isVisible(), start);
            EXPECT_EQ(entry(menu.stop)->isVisible(), stop);
            EXPECT_EQ(entry(menu.separator)->isVisible(), exit);
            EXPECT_EQ(entry(menu.exit)->isEnabled(), exit);
        }
        EXPECT_EQ(entry("mnuUpdate")->isEnabled(), start);
    };
    expectMenus(true, false, true);
    entry("mPopStart")->trigger();
    EXPECT_TRUE(records().session.running());
    expectMenus(false, true, true);
    RegisterUsers(records(), clock_, 1);
    expectMenus(false, false, false);
    RegisterUsers(records(), clock_, -1);
    expectMenus(false, true, true);
    entry("mnuStop")->trigger();
    EXPECT_FALSE(records().session.running());
    expectMenus(true, false, true);
}

TEST_F(TrayedWindow, UpdateIsOfferedWhereThereIsOne) {
    entry("mnuAbout")->trigger();
    EXPECT_TRUE(messages_.last().startsWith(u"Kiv_Skyhold (v2.30.004)"_s));

    auto* help = child<QMenu>("mHelp");
    Q_EMIT help->aboutToShow();
    EXPECT_FALSE(entry("mnuUpdate")->isVisible());
    int updates = 0;
    window_->onUpdate = [&updates] {
        ++updates;
    };
    Q_EMIT help->aboutToShow();
    EXPECT_TRUE(entry("mnuUpdate")->isVisible());
    entry("mnuUpdate")->trigger();
    EXPECT_EQ(updates, 1);
}

TEST_F(TrayedWindow, MinimisedItIsHiddenOnlyWhereATrayLeadsBack) {
    window_->minimise();
    EXPECT_TRUE(window_->isMinimized());
    EXPECT_TRUE(window_->isVisible());
    EXPECT_FALSE(entry("mPopMinimize")->isEnabled());
    entry("mPopRestore")->trigger();
    EXPECT_FALSE(window_->isMinimized());
    EXPECT_FALSE(entry("mPopRestore")->isEnabled());

    giveTray();
    const std::function<void()> waysDown[]{
        [this] { window_->minimise(); },
        [this] { window_->setWindowState(Qt::WindowMinimized); }, // its own button
        [this] {
            window_->showMaximized();
            window_->setWindowState(window_->windowState() | Qt::WindowMinimized);
        },
        [this] {
            records().window.State = WindowState::Minimized; // an automation client
            UpdateMenus(records());
        },
    };
    const std::function<void()> waysUp[]{
        [this] { window_->restore(); },
        [this] {
            records().window.State = WindowState::Normal;
            records().window.Visible = true;
            UpdateMenus(records());
        },
    };
    for (const auto& down : waysDown) {
        for (const auto& up : waysUp) {
            down();
            EXPECT_FALSE(window_->isVisible());
            EXPECT_FALSE(records().window.Visible);
            EXPECT_EQ(records().window.State, WindowState::Minimized);
            up();
            EXPECT_TRUE(window_->isVisible());
            EXPECT_FALSE(window_->isMinimized() || window_->isMaximized());
            EXPECT_EQ(records().window.State, WindowState::Normal);
            EXPECT_TRUE(records().window.Visible);
        }
    }
}

TEST_F(TrayedWindow, HiddenItCanStillBeClosed) {
    int closed = 0;
    QObject::connect(window_.get(), &KivSHMainform::closed, window_.get(), [&] { ++closed; });
    window_->minimise();
    records().window.HasTrayIcon = true;
    UpdateMenus(records());
    ASSERT_FALSE(window_->isVisible());
    RegisterUsers(records(), clock_, 1);
    entry("mPopExit")->trigger(); // disabled
    window_->close();
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(messages_, QStringList{u"There are other users present - cannot UNLOAD"_s});
    RegisterUsers(records(), clock_, -1);
    entry("mPopExit")->trigger();
    EXPECT_EQ(closed, 1);
}

TEST_F(TrayedWindow, IconFollowsTheVerdict) {
    const auto looksLike = [this](VerdictIcon which) {
        return window_->windowIcon().pixmap(22, 22).toImage() ==
               drawVerdictIcon(which).pixmap(22, 22).toImage();
    };
    EXPECT_TRUE(looksLike(VerdictIcon::None));
    entry("mPopStart")->trigger();
    EXPECT_TRUE(looksLike(VerdictIcon::Safe));
    cycle({.wind = u"15"_s});
    cycle({.wind = u"15"_s}, 60);
    EXPECT_TRUE(looksLike(VerdictIcon::Unsafe));
    QFile::remove(stationPath());
    RunReadCycle(*core_);
    EXPECT_TRUE(looksLike(VerdictIcon::Fault));
    entry("mPopStop")->trigger();
    EXPECT_TRUE(looksLike(VerdictIcon::None));
}

TEST_F(TrayedWindow, PlaceAndScrollPositionsComeBack) {
    openPage(Page::Sources);
    window_->resize(window_->minimumSize());
    QCoreApplication::processEvents();
    const auto sources = [this] {
        auto* pages = window_->findChild<SettingsPages*>();
        return static_cast<QAbstractScrollArea*>(pages->widget(0))->verticalScrollBar();
    };
    sources()->setRange(0, 200); // a page longer than its pane
    sources()->setValue(40);
    EXPECT_EQ(records().window.VScrollPos0, 40);
    sources()->setRange(0, 0); // a larger window
    EXPECT_EQ(sources()->value(), 0);
    EXPECT_EQ(records().window.VScrollPos0, 40);
    sources()->setRange(0, 25);
    sources()->setRange(0, 200);
    EXPECT_EQ(sources()->value(), 40);

    records().window.Left = 64; // by an automation client
    records().window.Top = 48;
    EXPECT_EQ(window_->pos(), QPoint(64, 48));
}

} // namespace

} // namespace skyhold
