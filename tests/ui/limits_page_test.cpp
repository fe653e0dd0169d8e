// SPDX-License-Identifier: GPL-3.0-or-later
#include "window_fixture.h"

#include "core/clients.h"
#include "core/remember.h"
#include "support/eventually.h"
#include "ui/pages/limits_table.h"
#include "ui/widgets/kiv_get_number.h"

#include <QLabel>
#include <QTabBar>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

const QString kCalmTooHigh = u"CALM value CANNOT be greater or equal than WINDY value"_s;
const QString kWindyTooLow = u"WINDY value CANNOT be smaller or equal than CALM value"_s;

class LimitsPage : public WindowFixture {
  protected:
    LimitsPage() {
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        openPage(Page::Limits);
        calm_ = child<KivGetNumber>(*window_, "LimitWind0");
        windy_ = child<KivGetNumber>(*window_, "LimitWind1");
    }

    // Types over what the box holds, then moves on as the user does.
    void enter(KivGetNumber* box, const QString& text, const std::function<void()>& moveOn) {
        messages_.clear();
        box->setFocus();
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
        moveOn();
        QCoreApplication::processEvents();
    }
    std::function<void()> tab(KivGetNumber* box) {
        return [box] {
            QTest::keyClick(box, Qt::Key_Tab);
        };
    }
    double limit(std::size_t i) { return records().conditions.Limit[Quantity::Wind][i].Value; }

    KivGetNumber* calm_ = nullptr;
    KivGetNumber* windy_ = nullptr;
};

TEST_F(LimitsPage, ALimitOutOfOrderHoldsTheFocusUntilItIsCorrected) {
    QStringList about; // which quantity: several have a level of the same name
    core_->showMessage = [&, show = core_->showMessage](const Message& message) {
        about.append(message.about);
        return show(message);
    };
    for (int i = 0; i < 2; ++i) {
        enter(calm_, u"20"_s, tab(calm_));
        EXPECT_EQ(messages_, QStringList{kCalmTooHigh});
        EXPECT_TRUE(calm_->hasFocus());
        EXPECT_EQ(calm_->text(), u"20"_s);
        EXPECT_EQ(limit(0), 20); // in force all the same
    }
    EXPECT_EQ(about, (QStringList{u"Wind"_s, u"Wind"_s}));
    enter(calm_, u"19.5"_s, tab(calm_));
    EXPECT_EQ(messages_, QStringList());
    EXPECT_FALSE(calm_->hasFocus());

    // A renamed level goes by its new name; an attempt to go back counts too.
    records().conditions.Color[Quantity::Wind][1].Caption = u"breezy"_s;
    enter(windy_, u"3"_s, [this] { QTest::keyClick(windy_, Qt::Key_Backtab); });
    EXPECT_EQ(messages_, QStringList{u"BREEZY value CANNOT be smaller or equal than CALM value"_s});
    EXPECT_TRUE(windy_->hasFocus());
}

TEST_F(LimitsPage, AnEmptyLimitIsNoLimitOfZeroUntilItIsLeft) {
    enter(windy_, {}, [] {});
    EXPECT_EQ(limit(1), 20);
    tab(windy_)();
    QCoreApplication::processEvents();
    EXPECT_EQ(messages_, QStringList{kWindyTooLow});
    EXPECT_EQ(limit(1), 20);
    EXPECT_EQ(windy_->text(), QString());
    EXPECT_TRUE(windy_->hasFocus());
    enter(windy_, u"20"_s, tab(windy_));
    enter(calm_, {}, tab(calm_));
    EXPECT_EQ(messages_, QStringList());
    EXPECT_EQ(limit(0), 0);
    EXPECT_EQ(calm_->text(), u"0"_s);
}

// Every way out of the box by the user ends in the same message, with the box as it was.
TEST_F(LimitsPage, ARefusedLimitIsNeitherEnteredNorStartedWithNorClosedWith) {
    const std::pair<const char*, std::function<void()>> ways[]{
        {"Return",
         [this] {
             QTest::keyClick(calm_, Qt::Key_Return);
         }},
        {"Start by its key",
         [this] {
             QTest::keyClick(window_.get(), Qt::Key_S, Qt::AltModifier);
             // The button is seen to go down first.
             EXPECT_TRUE(QTest::qWaitFor([this] { return running() || !messages_.isEmpty(); }));
         }},
        {"Start in the menu",
         [this] {
             child<QAction>("mnuStart")->trigger();
         }},
        {"Exit in the menu",
         [this] {
             child<QAction>("MnuExit")->trigger();
         }},
        {"close",
         [this] {
             window_->close();
         }},
        {"another page by its tab",
         [this] {
             QTabBar* bar = window_->findChild<SettingsPages*>()->tabBar();
             QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center());
         }},
    };
    for (const QString& typed : {u"99"_s, u"20"_s}) {
        for (const auto& [what, leave] : ways) {
            SCOPED_TRACE(what);
            enter(calm_, typed, leave);
            EXPECT_EQ(messages_, QStringList{kCalmTooHigh});
            EXPECT_TRUE(window_->isVisible());
            EXPECT_TRUE(calm_->isVisible() && calm_->hasFocus());
            EXPECT_EQ(calm_->text(), typed);
            EXPECT_FALSE(running());
        }
    }
    enter(windy_, {}, ways[1].second); // an empty one stands for 0
    EXPECT_EQ(messages_, QStringList{kWindyTooLow});
}

// Where nobody can be asked the limit before stays in force.
TEST_F(LimitsPage, AClientsStartAndTheEndDropARefusedLimit) {
    for (const QString& typed : {u"99"_s, QString()}) {
        KivGetNumber* box = typed.isEmpty() ? windy_ : calm_;
        const QString before = typed.isEmpty() ? u"20"_s : u"10"_s;
        enter(box, typed, [this] { Device_Start(*core_); });
        EXPECT_EQ(box->text(), before);
        EXPECT_TRUE(running());
        enter(box, typed, [this] { Unload(*core_); });
        EXPECT_EQ(box->text(), before);
        StopSession(*core_);
        EXPECT_EQ(messages_, QStringList());
    }
    const SettingsStore saved(u"Kiv_Skyhold"_s);
    EXPECT_EQ(saved.GetSetting(u"Limit"_s, u"WindCalm"_s, {}), u"10"_s);
    EXPECT_EQ(limit(1), 20);
}

// Settings, units and clients are not asked; a session runs with what they set.
TEST_F(LimitsPage, LimitsOutOfOrderAreMarked) {
    const auto marked = [this] {
        QString rows;
        for (const char* mark : {"FaultWind0", "FaultWind1", "FaultWind2"})
            rows += visible(mark) ? u'!' : u'.';
        return rows;
    };
    EXPECT_EQ(marked(), u"..."_s);
    records().conditions.Limit[Quantity::Wind][0].set(99);
    EXPECT_EQ(marked(), u"!!!"_s);
    EXPECT_EQ(child(*window_, "FaultWind0")->toolTip(), kCalmTooHigh);
    records().conditions.Limit[Quantity::Wind][2].set(120);
    EXPECT_EQ(marked(), u"!!."_s);
    click(*window_, "ButtStart");
    EXPECT_TRUE(running());
    EXPECT_EQ(messages_, QStringList());
    records().conditions.Limit[Quantity::Wind][0].set(10);
    EXPECT_EQ(marked(), u"..."_s);
}

TEST_F(LimitsPage, AnotherWindowAndOtherProgramsAreNotAsked) {
    enter(calm_, u"30"_s, [this] {
        QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QApplication::sendEvent(calm_, &away);
        records().conditions.Limit[Quantity::Wind][1].set(5);
    });
    EXPECT_EQ(messages_, QStringList());
    window_.reset(); // with the focus in a limit that would be refused
    QCoreApplication::processEvents();
    EXPECT_EQ(messages_, QStringList());
}

// Marked is only what a working source says in a session that runs.
TEST_F(LimitsPage, TheTableMarksTheLevelOfEachValueAndSaysHowFarItIsFromUnsafe) {
    auto* table = child<LimitsTable>(*window_, "LimitsTable");
    records().conditions.Cond[Quantity::Wind][1].set(0);
    const auto wind = [&] {
        return u"%1 %2 %3"_s.arg(shown("NowWind"), shown("LeftWind"))
            .arg(table->markedLevel(Quantity::Wind))
            .toStdString();
    };
    EXPECT_EQ(wind(), "–  0");
    StartSession(*core_);
    const std::pair<StationPage, std::string> cycles[]{
        {{.wind = u"5"_s}, "5.0 15.0 to unsafe 1"},
        {{.wind = u"17.5"_s}, "17.5 2.5 to unsafe 2"},
        {{.wind = u"20"_s}, "20.0 0.0 to unsafe 2"},
        {{.wind = u"20.1"_s}, "20.1 unsafe level 3"},
        {{.wind = u"---"_s}, "–  0"},
        {{.wind = u"5"_s}, "5.0 15.0 to unsafe 1"},
    };
    for (const auto& [station, row] : cycles) {
        cycle(station);
        EXPECT_EQ(wind(), row);
    }
    EXPECT_EQ(shown("DirectionWind0"), u"all directions, after 1 min"_s);
    sensor_.answering = false;
    cycle();
    EXPECT_EQ(table->markedLevel(Quantity::Rain), 0);
    cycleWithoutStation(600); // old
    EXPECT_EQ(table->markedLevel(Quantity::Wind), 0);
    StopSession(*core_);
    EXPECT_EQ(table->markedLevel(Quantity::Humidity), 0);
}

TEST_F(LimitsPage, GrowsWithItsWindowAndShrinksAgain) {
    const auto sizesIn = [this](QSize size) {
        window_->resize(size);
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        return std::array{calm_->width(), calm_->height(), QFontInfo(calm_->font()).pixelSize(),
                          child(*window_, "ColorWind0")->height(),
                          child(*window_, "LimitsTable")->minimumSizeHint().width()};
    };
    const auto usual = sizesIn({1280, 800});
    const auto large = sizesIn({2560, 1600});
    EXPECT_EQ(large[0], 2 * usual[0]);
    EXPECT_EQ(large[2], 2 * usual[2]);
    EXPECT_EQ(large[3], 2 * usual[3]);
    EXPECT_EQ(sizesIn({1280, 800}), usual);
    openPage(Page::Caution); // not in sight while it grows
    sizesIn({2560, 1600});
    sizesIn({1280, 800});
    openPage(Page::Limits);
    EXPECT_EQ(sizesIn({1280, 800}), usual);
}

TEST_F(LimitsPage, WhatIfJudgesTheRecordedWeekAgain) {
    qputenv("XDG_DATA_HOME", folder_->path().toLocal8Bit());
    const auto cell = [this](const char* name) {
        const auto* label = child<QLabel>(*window_, name);
        return label->isVisible() ? label->text() : u"hidden"_s;
    };
    const auto again = [this] {
        openPage(Page::Caution);
        openPage(Page::Limits);
    };
    again();
    EXPECT_TRUE(
        eventually([&] { return cell("LblWhatIf").contains(u"there is no history at "_s); }));

    beginHistory(*core_);
    StartSession(*core_);
    for (const QString& wind : {u"5"_s, u"15"_s, u"5"_s}) {
        for (int i = 0; i < 9; ++i)
            cycle({.wind = wind});
    }
    StopSession(*core_);
    // How long each level lasted tonight, read whenever the page is shown.
    EXPECT_TRUE(eventually([&] {
        again();
        return shown("TonightWind1") == u"1 min 30 s"_s;
    }));
    EXPECT_EQ(shown("TonightWind2"), u"–"_s);
    ASSERT_TRUE(core_->history.end());
    again();
    EXPECT_TRUE(eventually([&] { return cell("WhatIfWeekClosures0") == u"1"_s; }));
    EXPECT_EQ(cell("WhatIfWeekClosures1"), u"hidden"_s); // nothing is edited
    const QString unsafe = cell("WhatIfDayUnsafe0");
    records().conditions.Limit[Quantity::Wind][0].Value = 16;
    EXPECT_TRUE(eventually([&] { return cell("WhatIfWeekClosures1") == u"0"_s; }));
    EXPECT_EQ(cell("WhatIfDayUnsafe1"), u"0 s"_s);
    EXPECT_EQ(cell("WhatIfDayUnsafe0"), unsafe);
    EXPECT_EQ(cell("WhatIfDayClosures0"), u"1"_s);
}

} // namespace

} // namespace skyhold
