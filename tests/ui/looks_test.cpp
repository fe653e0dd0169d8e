#include "window_fixture.h"

#include "core/clients.h"
#include "ui/dialogs/kiv_color.h"
#include "ui/dialogs/kiv_sound_form.h"
#include "ui/dialogs/kiv_unit_symbols.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/look/look.h"
#include "ui/look/shades.h"
#include "ui/pages/settings_pages.h"
#include "ui/window/age_text.h"

#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class Looks : public WindowFixture {
  protected:
    ~Looks() override { applyLook(*qApp); }

    // As a user does it: Alt with the letter of the menu, then the letter of the entry.
    void chooseByMenu(Qt::Key entry) {
        QMenu* view = window_->menuBar()->findChild<QMenu*>(u"mView"_s);
        view->popup({0, 0});
        QTest::keyClick(view, entry);
        QCoreApplication::processEvents();
    }
};

// The first pixel that shines in green or blue, as "x,y #rrggbb"; empty when all are red or black.
QString firstColdPixel(QWidget& widget) {
    const QImage shown = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb pixel = shown.pixel(x, y);
            if (qGreen(pixel) != 0 || qBlue(pixel) != 0)
                return u"%1,%2 %3"_s.arg(x).arg(y).arg(QColor(pixel).name());
        }
    }
    return {};
}

TEST_F(Looks, ChosenByMenuOrKeyAppliesAtOnceAndIsKept) {
    struct Case {
        Qt::Key letter;
        const char* entry;
        Look look;
    };
    for (const Case& tried : {Case{Qt::Key_N, "mnuLook1", Look::Night},
                              {Qt::Key_K, "mnuLook2", Look::Desktop},
                              {Qt::Key_D, "mnuLook0", Look::Panel},
                              {Qt::Key_N, "mnuLook1", Look::Night}}) {
        chooseByMenu(tried.letter);
        EXPECT_EQ(lookInForce(), tried.look);
        for (const char* entry : {"mnuLook0", "mnuLook1", "mnuLook2"})
            EXPECT_EQ(child<QAction>(entry)->isChecked(), std::string_view(entry) == tried.entry);
    }
    EXPECT_EQ(qApp->palette().color(QPalette::Window), QColor(Qt::black));

    // Over a restart.
    Unload(*core_);
    window_.reset();
    applyLook(*qApp);
    core_ = std::make_unique<MonitoringCore>(clock_, settings_, sensor_.creator(), media_,
                                             ProgramVersion{2, 30, 4});
    LoadMainWindow(*core_);
    window_ = std::make_unique<KivSHMainform>(*core_);
    EXPECT_EQ(lookInForce(), Look::Night);
    EXPECT_TRUE(child<QAction>("mnuLook1")->isChecked());
}

TEST_F(Looks, NightShinesInRedAloneAndLeavesWhatIsStoredAsItWas) {
    click(*window_, "ButtStart");
    cycle({.wind = u"15"_s});
    cycle({.wind = u"15"_s}, 60);
    QImage graph = records().pictures[0].Image;
    chooseByMenu(Qt::Key_N);
    auto* pages = window_->findChild<SettingsPages*>();
    for (int i = 0; i <= static_cast<int>(Page::Upload); ++i) {
        pages->open(static_cast<Page>(i));
        QCoreApplication::processEvents();
        EXPECT_EQ(firstColdPixel(*window_), u""_s) << "page " << i;
    }
    Records& r = records();
    KivColor colour(r.conditions.Color[Quantity::Wind][0], &r.conditions.Cond[Quantity::Wind][0],
                    window_.get());
    KivWindPars sector(r.conditions.Direction[Quantity::Wind][0], window_.get());
    KivUnitSymbols symbols(r.units, window_.get());
    KivSoundForm sound(r.alarms.Alarm[Quantity::Rain][0], r.alarms.LastMusicDir, media_,
                       window_.get());
    QFileDialog file(window_.get(), {}, folder_->path());
    for (QDialog* dialog :
         std::initializer_list<QDialog*>{&colour, &sector, &symbols, &sound, &file}) {
        dialog->show();
        QCoreApplication::processEvents();
        EXPECT_EQ(firstColdPixel(*dialog), u""_s) << qPrintable(dialog->objectName());
    }
    for (QMenu* menu : window_->menuBar()->findChildren<QMenu*>()) {
        menu->popup({0, 0});
        EXPECT_EQ(firstColdPixel(*menu), u""_s) << qPrintable(menu->title());
        menu->hide();
    }

    // The condition still stands in its word and its stated colour, the graph in its own colours.
    EXPECT_EQ(shown("LCondWind"), u"Windy"_s);
    EXPECT_EQ(child<Readout>(*window_, "LCondWind")->ink(), screenColour(kOrange));
    EXPECT_EQ(r.conditions.Color[Quantity::Wind][0].BackColor.value(), kSwatchGreen);
    r.pictures[0].Size = graph.deviceIndependentSize().toSize();
    EXPECT_GT(r.pictures[0].Image.pixelColor(1, 1).green(), 0);
}

TEST(Shades, OfNightGetBrighterTowardsRedAndCanBeRead) {
    const Colour colours[]{kGreen, kYellow, kOrange, kRed};
    for (auto* shade : {nightInk, nightLight, nightGround}) {
        int last = -1;
        for (const Colour colour : colours) {
            const QColor shown = shade(screenColour(colour));
            EXPECT_GT(shown.red(), last);
            EXPECT_EQ(shown.green() + shown.blue(), 0);
            last = shown.red();
        }
    }
    const QColor card(0x18, 0, 0);
    for (const Colour colour : {kGreen, kYellow, kOrange, kRed, kCyan, kNavy, kGrey, kDarkGreen}) {
        EXPECT_GT(contrast(nightInk(screenColour(colour)), card), 2.8) << colour;
        EXPECT_GT(contrast(Qt::red, nightGround(screenColour(colour))), 3) << colour;
        for (const QColor& ground : {QColor(Qt::white), QColor(0xef, 0xf0, 0xf1), card}) {
            EXPECT_GE(contrast(readableInk(screenColour(colour), ground), ground), 4.5) << colour;
        }
    }
    EXPECT_EQ(readableInk(screenColour(kNavy), Qt::white), screenColour(kNavy));
}

TEST_F(Looks, NoLabelOfTheNowPanelIsClippedInTheSmallestWindow) {
    records().conditions.SafeDelayVal.Value = 5;
    click(*window_, "ButtStart");
    cycle({.wind = u"75"_s, .gust = u"120"_s, .direction = u"NNW"_s, .humidity = u"100 %"_s});
    cycle({.wind = u"75"_s, .gust = u"120"_s, .direction = u"NNW"_s, .humidity = u"100 %"_s}, 60);
    records().conditions.SafeDelayMsg.Caption = u"Safe in 00 h 04 m 50 s"_s;
    RegisterUsers(records(), clock_, 1);
    records().alarms.SoundFault.Caption = u"No sound: no audio device"_s;
    window_->resize(1024, 700);
    for (const auto& [look, running] : {std::pair{Look::Panel, true},
                                        {Look::Night, true},
                                        {Look::Desktop, true},
                                        {Look::Panel, false}}) {
        if (!running)
            StopSession(*core_);
        records().window.Look = static_cast<int>(look);
        QCoreApplication::processEvents();
        int seen = 0;
        for (const Readout* readout : window_->findChildren<Readout*>()) {
            if (!readout->isVisible() || readout->text().isEmpty())
                continue;
            ++seen;
            EXPECT_TRUE(readout->fitsWhole())
                << static_cast<int>(look) << ' ' << qPrintable(readout->objectName()) << ' '
                << qPrintable(readout->text());
            const QWidget* holder = readout->parentWidget();
            EXPECT_TRUE(holder->rect().contains(readout->geometry()))
                << qPrintable(readout->objectName());
            for (const Readout* other :
                 holder->findChildren<Readout*>(QString(), Qt::FindDirectChildrenOnly)) {
                if (other != readout && other->isVisible() && !other->text().isEmpty()) {
                    EXPECT_FALSE(other->geometry().intersects(readout->geometry()))
                        << qPrintable(readout->objectName() + u' ' + other->objectName());
                }
            }
        }
        EXPECT_GT(seen, 40);
    }
}

TEST_F(Looks, TilesDrawTheLastHourWithItsGaps) {
    records().graphs.GraphFreq.set(1);
    for (auto* boxes : {&records().graphs.GraphImage, &records().graphs.GraphGenerate}) {
        for (CheckBox& box : *boxes)
            box.set(0);
    }
    records().session.RefreshRead.choose(3); // every minute
    window_->resize(1280, 800);
    QCoreApplication::processEvents();
    auto* tile = child<QWidget>(*window_, "LValWindSpeed")->parentWidget();
    // In each twelfth of the strip, "-" where something is drawn.
    const auto drawn = [tile] {
        const QImage shown = tile->grab().toImage();
        const int wide = shown.width() - 16;
        QString twelfths;
        for (int twelfth = 0; twelfth < 12; ++twelfth) {
            bool any = false; // in the middle of the twelfth
            const int x = 8 + (2 * twelfth + 1) * wide / 24;
            for (int y = 84; y < 105; ++y)
                any = any || shown.pixelColor(x, y) != look::kCard;
            twelfths += any ? u'-' : u'.';
        }
        return twelfths;
    };
    const auto readFor = [this](int minutes, const StationPage& page) {
        for (int i = 0; i < minutes; ++i) {
            sensor_.values[u"LastReading"_s] =
                QVariant::fromValue(AutomationDate{daySerial(clock_.now())});
            cycle(page, 60);
        }
    };
    click(*window_, "ButtStart");
    EXPECT_EQ(drawn(), u"............"_s);
    readFor(30, {.wind = u"7"_s});
    EXPECT_EQ(drawn(), u"......------"_s);
    clock_.advanceSeconds(600); // nothing was read
    readFor(5, {.wind = u"9"_s});
    EXPECT_EQ(drawn(), u"...------..-"_s);
    readFor(5, {.wind = u"no number"_s}); // the station cannot be read, the sensor can
    readFor(5, {});
    EXPECT_EQ(drawn(), u".------..-.-"_s);
    readFor(60, {});
    EXPECT_EQ(drawn(), u"------------"_s);
}

TEST(AgeText, NeverSaysLessThanTheAgeAtItsNextRenewal) {
    const QDateTime now(QDate(2026, 11, 16), QTime(22, 0));
    struct Case {
        qint64 age;
        int stands;
        const char* text;
    };
    for (const Case& tried : {Case{2, 10, "12 s ago"},
                              {0, 5, "5 s ago"},
                              {39, 60, "99 s ago"},
                              {40, 60, "2 min ago"},
                              {170, 10, "3 min ago"},
                              {171, 10, "4 min ago"},
                              {90 * 60 - 10, 10, "90 min ago"},
                              {90 * 60, 10, "2 h ago"},
                              {2 * 86400, 10, "3 days ago"},
                              {-60, 10, "10 s ago"},
                              {-61, 10, "61 s ahead"},
                              {-7200, 10, "2 h ahead"}})
        EXPECT_EQ(ageText(now.addSecs(-tried.age), now, tried.stands), QLatin1String(tried.text))
            << tried.age;
    EXPECT_EQ(ageText(QDateTime(), now, 10), u""_s);
}

TEST_F(Looks, AgesGoWithTheSessionAndWhatIsToldCanBeCopied) {
    EXPECT_EQ(shown("Label32Age"), u""_s);
    click(*window_, "ButtStart");
    cycle();
    EXPECT_EQ(shown("Label32Age"), u"10 s ago"_s);
    clock_.advanceSeconds(130);
    RunReadCycle(*core_); // the station has not written since
    EXPECT_EQ(shown("Label32Age"), u"3 min ago"_s);

    records().session.Statusbar1.Caption = u"No weather station file"_s;
    QTest::mouseClick(child<QWidget>(*window_, "Statusbar1"), Qt::LeftButton);
    auto* line = child<QWidget>(*window_, "Statusbar1")->findChild<QLineEdit*>();
    ASSERT_NE(line, nullptr);
    QTest::keyClick(line, Qt::Key_Home);
    QTest::keyClick(line, Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(line, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"No "_s);
    // It goes on telling the truth while it is selected.
    records().session.Statusbar1.Caption = u"Reading"_s;
    EXPECT_EQ(line->text(), u"Reading"_s);

    auto* cause = child<Readout>(*window_, "LblCause");
    const QString told = cause->text();
    EXPECT_FALSE(told.isEmpty());
    QTest::mouseClick(cause, Qt::LeftButton);
    auto* words = qobject_cast<QLabel*>(QApplication::focusWidget());
    ASSERT_TRUE(words && words->parentWidget() == cause);
    QTest::keyClick(words, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), told);
    records().display.LblCause.Caption = u"Rain: rain"_s;
    QTest::keyClick(words, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Rain: rain"_s);
    EXPECT_FALSE((cause->focusPolicy() | words->focusPolicy()) & Qt::TabFocus);

    click(*window_, "ButtStop");
    EXPECT_EQ(shown("Label32Age"), u""_s);
}

} // namespace

} // namespace skyhold
