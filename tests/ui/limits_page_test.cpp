#include "window_fixture.h"

#include "ui/kiv_get_number.h"

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
    double limit(std::size_t i) { return records().conditions.LimitWind[i].Value; }

    KivGetNumber* calm_ = nullptr;
    KivGetNumber* windy_ = nullptr;
};

TEST_F(LimitsPage, ALimitOutOfOrderHoldsTheFocusUntilItIsCorrected) {
    for (int i = 0; i < 2; ++i) {
        enter(calm_, u"20"_s, tab(calm_));
        EXPECT_EQ(messages_, QStringList{kCalmTooHigh});
        EXPECT_TRUE(calm_->hasFocus());
        EXPECT_EQ(calm_->text(), u"20"_s);
        EXPECT_EQ(limit(0), 20); // in force all the same
    }
    enter(calm_, u"19.5"_s, tab(calm_));
    EXPECT_EQ(messages_, QStringList());
    EXPECT_FALSE(calm_->hasFocus());

    // A renamed level goes by its new name; an attempt to go back counts too.
    records().conditions.ColorWind[1].Caption = u"breezy"_s;
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

TEST_F(LimitsPage, ARefusedClickDoesNothing) {
    auto* start = child(*window_, "ButtStart");
    const auto clickStart = [start] {
        QTest::mouseClick(start, Qt::LeftButton);
    };
    enter(calm_, u"30"_s, clickStart);
    EXPECT_EQ(messages_, QStringList{kCalmTooHigh});
    EXPECT_TRUE(calm_->hasFocus());
    EXPECT_FALSE(records().session.Running);

    auto* gust = child<KivGetNumber>(*window_, "LimitGust2");
    enter(calm_, u"30"_s, [gust] { QTest::mouseClick(gust, Qt::LeftButton); });
    EXPECT_EQ(messages_, QStringList{kCalmTooHigh});
    EXPECT_TRUE(calm_->hasFocus());

    auto* tabs = window_->findChild<SettingsPages*>();
    const int conditions = tabs->currentIndex();
    QTabBar* bar = tabs->tabBar();
    enter(calm_, u"30"_s,
          [bar] { QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(0).center()); });
    EXPECT_EQ(messages_, QStringList{kCalmTooHigh});
    EXPECT_EQ(tabs->currentIndex(), conditions);
    EXPECT_TRUE(calm_->hasFocus());

    enter(calm_, u"3"_s, clickStart);
    EXPECT_EQ(messages_, QStringList());
    EXPECT_TRUE(records().session.Running);
}

TEST_F(LimitsPage, AnotherWindowAndOtherProgramsAreNotAsked) {
    enter(calm_, u"30"_s, [this] {
        QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QApplication::sendEvent(calm_, &away);
        records().conditions.LimitWind[1].set(5);
    });
    EXPECT_EQ(messages_, QStringList());
    window_.reset(); // with the focus in a limit that would be refused
    QCoreApplication::processEvents();
    EXPECT_EQ(messages_, QStringList());
}

} // namespace

} // namespace skyhold
