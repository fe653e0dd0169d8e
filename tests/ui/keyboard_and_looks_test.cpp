// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_color.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_legend.h"
#include "ui/dialogs/kiv_setup_form.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/dialogs/news_window.h"
#include "ui/look/look.h"
#include "ui/look/shades.h"
#include "ui/pages/settings_pages.h"
#include "ui/window/age_text.h"
#include "ui/window/simulators.h"
#include "window_fixture.h"

#include <QAbstractItemView>
#include <QButtonGroup>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSet>
#include <QSlider>
#include <QTabBar>
#include <QTextEdit>

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

    EXPECT_EQ(records().window.Look, static_cast<int>(Look::Night)); // which is stored
}

TEST_F(Looks, NightShinesInRedAloneAndLeavesWhatIsStoredAsItWas) {
    click(*window_, "ButtStart");
    cycle({.wind = u"15"_s});
    cycle({.wind = u"15"_s}, 60);
    QImage graph = records().pictures[0].Image;
    chooseByMenu(Qt::Key_N);
    auto* pages = window_->findChild<SettingsPages*>();
    for (int i = 0; i <= static_cast<int>(Page::Network); ++i) {
        pages->open(static_cast<Page>(i));
        QCoreApplication::processEvents();
        EXPECT_EQ(firstColdPixel(*window_), u""_s) << "page " << i;
    }
    Records& r = records();
    KivColor colour(r.conditions.Color[Quantity::Wind][0], &r.conditions.Cond[Quantity::Wind][0],
                    window_.get());
    KivWindPars sector(r.conditions.Direction[Quantity::Wind][0], window_.get());
    QFileDialog file(window_.get(), {}, folder_->path());
    for (QDialog* dialog : std::initializer_list<QDialog*>{&colour, &sector, &file}) {
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

TEST(AgeText, NeverSaysLessThanTheAgeAtItsNextRenewal) {
    const QDateTime now(QDate(2026, 11, 16), QTime(22, 0));
    struct Case {
        qint64 age;
        int stands;
        const char* text;
    };
    for (const Case& tried : {Case{2, 10, "12 s ago"},
                              {39, 60, "99 s ago"},
                              {170, 10, "3 min ago"},
                              {171, 10, "4 min ago"},
                              {90 * 60, 10, "2 h ago"},
                              {2 * 86400, 10, "3 days ago"},
                              {-60, 10, "10 s ago"},
                              {-61, 10, "61 s ahead"}})
        EXPECT_EQ(ageText(now.addSecs(-tried.age), now, tried.stands), QLatin1String(tried.text))
            << tried.age;
    EXPECT_EQ(ageText(QDateTime(), now, 10), u""_s);
}

// The window and its dialogs for hands that never leave the keyboard.

std::string nameOf(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return widget->objectName().toStdString() + " \"" +
           (button ? button->text().toStdString() : widget->metaObject()->className()) + "\"";
}

// A pencil is for the mouse; its item answers the keys.
bool belongsToItsItem(const QWidget* widget) {
    return widget->parentWidget() && (widget->parentWidget()->focusPolicy() & Qt::TabFocus);
}

// Tab stops at the chosen one of a group of which one is chosen; the arrow keys reach the others.
bool belongsToItsGroup(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return button && !button->isChecked() &&
           (button->autoExclusive() || (button->group() && button->group()->exclusive()));
}

void expectAllReached(const QWidget* within) {
    for (const QWidget* widget : within->findChildren<QWidget*>()) {
        const bool takesInput = qobject_cast<const QAbstractButton*>(widget) ||
                                qobject_cast<const QLineEdit*>(widget) ||
                                qobject_cast<const QComboBox*>(widget) ||
                                qobject_cast<const QAbstractSlider*>(widget) ||
                                qobject_cast<const QAbstractItemView*>(widget);
        if (takesInput && widget->isVisible() && !qobject_cast<const QScrollBar*>(widget)) {
            EXPECT_TRUE((widget->focusPolicy() & Qt::TabFocus) || belongsToItsItem(widget) ||
                        belongsToItsGroup(widget))
                << nameOf(widget) << " is never reached";
        }
    }
}

// The keys that Alt takes in a window: each leads to one place.
void expectMnemonicsOnce(const QWidget* window) {
    QMap<QString, std::string> taken;
    const auto take = [&taken](const QString& text, const std::string& whose) {
        const QString key = QKeySequence::mnemonic(text).toString();
        if (key.isEmpty())
            return;
        EXPECT_FALSE(taken.contains(key))
            << key.toStdString() << ": " << taken[key] << " and " << whose;
        taken[key] = whose;
    };
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->window() != window)
            continue;
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
            take(button->text(), nameOf(button));
        else if (const auto* label = qobject_cast<const QLabel*>(widget); label && label->buddy())
            take(label->text(), label->text().toStdString());
        else if (const auto* bar = qobject_cast<const QMenuBar*>(widget))
            for (const QAction* action : bar->actions())
                take(action->text(), "menu " + action->text().toStdString());
        else if (const auto* tabs = qobject_cast<const QTabBar*>(widget))
            for (int i = 0; i < tabs->count(); ++i)
                take(tabs->tabText(i), "page " + tabs->tabText(i).toStdString());
    }
}

constexpr Page kAllPages[]{Page::Tonight, Page::Sources,  Page::Limits, Page::Caution,
                           Page::Graphs,  Page::DataFile, Page::Ccdap,  Page::Images,
                           Page::Upload,  Page::Network};

class Keyboard : public WindowFixture {
  protected:
    Keyboard() {
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    SettingsPages* pages() { return window_->findChild<SettingsPages*>(); }
    // A dialog that is open, with the focus in it.
    void walk(QDialog& dialog) {
        expectAllReached(&dialog);
        expectMnemonicsOnce(&dialog);
        constexpr QSize kSmallScreen(1024 - 8, 768 - 40);
        EXPECT_EQ(dialog.size().boundedTo(kSmallScreen), dialog.size());
        const auto buttons = dialog.findChildren<QPushButton*>();
        EXPECT_EQ(std::count_if(buttons.begin(), buttons.end(),
                                [](const QPushButton* button) { return button->isDefault(); }),
                  1);
        EXPECT_FALSE(dialog.windowFlags() & Qt::WindowMinMaxButtonsHint);
    }
};

TEST_F(Keyboard, EveryControlOfEveryPageIsReached) {
    records().alarms.AlarmWS.Tag = u"bell.wav"_s;
    for (const Page page : kAllPages) {
        openPage(page);
        SCOPED_TRACE(pages()->tabText(pages()->currentIndex()).toStdString());
        expectAllReached(pages()->currentWidget());
        expectMnemonicsOnce(window_.get());
    }
}

TEST_F(Keyboard, TabGoesFromTheStripThroughItsPageToTheStatus) {
    const std::pair<Page, const char*> cases[]{{Page::Tonight, "ButtSpanHour"},
                                               {Page::Sources, "flgReadStation"},
                                               {Page::Network, "GatewayServe"}};
    for (const auto& [page, first] : cases) {
        openPage(page); // made after all that stands around it
        pages()->tabBar()->setFocus(Qt::TabFocusReason);
        QStringList met;
        while (!met.contains(u"Status"_s) && met.size() < 60) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCoreApplication::processEvents();
            const QWidget* at = QApplication::focusWidget();
            met += at->accessibleName() == u"Status" ? u"Status"_s : at->objectName();
            EXPECT_TRUE(met.back() == u"Status" || pages()->isAncestorOf(at)) << nameOf(at);
        }
        EXPECT_EQ(met.first().toStdString(), first);
    }
}

TEST_F(Keyboard, EveryControlOfEveryDialogIsReachedAndEscapeLeavesIt) {
    for (const Page page : kAllPages)
        openPage(page); // makes it
    const auto menuKey = [this](const char* name) {
        return std::function<void()>(
            [this, name] { QTest::keyClick(child(*window_, name), Qt::Key_Menu); });
    };
    SettingsStore& settings = settings_;
    const std::function<void()> dialogs[]{
        menuKey("ColorDew1"),
        menuKey("DirectionGust0"),
        menuKey("SoundAlarmWS"),
        menuKey("ButtUnits"),
        menuKey("ButtCardinal"),
        menuKey("ButtFileStructure"),
        [this] {
            makeMessageDialog (*window_)({u"Overwrite?"_s, MessageStyle::YesNoCancel, {}});
        },
        [this] { KivLegend(window_.get()).exec(); },
        [this] { NewsWindow(u"A new version"_s, window_.get()).exec(); },
    };
    for (const auto& open : dialogs) {
        EXPECT_TRUE(duringDialog(open, [this](QDialog& dialog) {
            SCOPED_TRACE(dialog.objectName().toStdString());
            walk(dialog);
            QTest::keyClick(&dialog, Qt::Key_Escape);
            EXPECT_FALSE(dialog.isVisible());
        }));
    }
    Simulators& simulators = Simulators::of(window_.get());
    EXPECT_TRUE(duringDialog(
        [&] { KivSetupForm(settings, simulators, nullptr, clock_, u"Title"_s).exec(); },
        [this](QDialog& dialog) {
            auto* next = child<QPushButton>(dialog, "ButtNext");
            child<QLineEdit>(dialog, "HTMFile")->setText(stationPath());
            for (int step = 0; step < 5; ++step) {
                SCOPED_TRACE(step);
                walk(dialog);
                EXPECT_EQ(next->isEnabled(), step < 4);
                EXPECT_EQ(next->isDefault(), step < 4);
                if (step < 4)
                    QTest::keyClick(&dialog, Qt::Key_Return);
            }
            QTest::keyClick(&dialog, Qt::Key_Escape);
        }));
}

TEST_F(Keyboard, CtrlTabGoesThroughAllPagesAndTheLastComesBackAfterARestart) {
    pages()->open(Page::Limits);
    QSet<Page> seen;
    for (std::size_t i = 0; i < std::size(kAllPages); ++i) {
        seen += pages()->shownPage();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(seen.size(), std::ssize(kAllPages));
    openPage(Page::Images);
    window_ = std::make_unique<KivSHMainform>(*core_);
    window_->show();
    EXPECT_TRUE(child(*window_, "GraphImageDew")->isVisible());
    EXPECT_EQ(window_->findChild<QWidget*>(u"LimitWind0"_s), nullptr); // not before it is shown
}

} // namespace
} // namespace skyhold
