#include "ui/widgets/kiv_get_number.h"

#include "ui/widgets/bind.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class NumberBoxWidget : public testing::Test {
  protected:
    // Two boxes in a window that takes mouse and keys; the second has the focus.
    void open() {
        for (auto& [box, record] : {std::pair{&box_, &record_}, {&other_, &otherRecord_}}) {
            *box = new KivGetNumber(&window_);
            bind(*box, *record);
            layout_.addWidget(*box);
        }
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
        other_->setFocus();
    }
    void enter() { QTest::keyClick(other_, Qt::Key_Backtab); }
    void leave() { QTest::keyClick(box_, Qt::Key_Tab); }
    void type(const QString& keys) { QTest::keyClicks(box_, keys); }

    NumberBox record_, otherRecord_;
    QWidget window_;
    QVBoxLayout layout_{&window_};
    KivGetNumber* box_ = nullptr;
    KivGetNumber* other_ = nullptr;
};

TEST_F(NumberBoxWidget, TypedTextReachesTheRecordWhileItIsANumber) {
    open();
    record_.Value = 10;
    const auto typed = [this](Qt::Key key) {
        QTest::keyClick(box_, key);
        return std::pair{box_->text(), record_.Value.value()};
    };
    using Seen = std::pair<QString, double>;
    enter();
    EXPECT_EQ(box_->selectedText(), u"10"_s);
    EXPECT_EQ(box_->cursorPosition(), 0);
    EXPECT_EQ(typed(Qt::Key_Delete), Seen(u""_s, 10)); // not 0
    EXPECT_EQ(typed(Qt::Key_Period), Seen(u"."_s, 10));
    EXPECT_EQ(typed(Qt::Key_5), Seen(u".5"_s, 0.5));
    EXPECT_EQ(typed(Qt::Key_Home), Seen(u".5"_s, 0.5));
    EXPECT_EQ(typed(Qt::Key_1), Seen(u"1.5"_s, 1.5));
    EXPECT_EQ(typed(Qt::Key_X), Seen(u"1.5"_s, 1.5));
    EXPECT_EQ(typed(Qt::Key_End), Seen(u"1.5"_s, 1.5));
    EXPECT_EQ(typed(Qt::Key_2), Seen(u"1.52"_s, 1.52));
    EXPECT_EQ(typed(Qt::Key_3), Seen(u"1.52"_s, 1.52));
    EXPECT_EQ(typed(Qt::Key_Period), Seen(u"1.52"_s, 1.52));
    QTest::keyClick(box_, Qt::Key_A, Qt::ControlModifier);
    for (const Qt::Key key : {Qt::Key_1, Qt::Key_2, Qt::Key_3})
        typed(key);
    EXPECT_EQ(typed(Qt::Key_4), Seen(u"123"_s, 123));
    EXPECT_EQ(box_->cursorPosition(), 3);
}

TEST_F(NumberBoxWidget, LeftEmptyItStandsForZeroAndShowsIt) {
    record_.AllowNegative = true;
    record_.Value = -5;
    open();
    enter();
    QTest::keyClick(box_, Qt::Key_Backspace);
    type(u"-"_s);
    EXPECT_EQ(box_->text(), u"-"_s);
    EXPECT_EQ(record_.Value, -5);
    QFocusEvent toAnotherWindow(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(box_, &toAnotherWindow);
    EXPECT_EQ(box_->text(), u"-"_s); // still being typed
    EXPECT_EQ(record_.Value, -5);
    leave();
    EXPECT_EQ(box_->text(), u"0"_s);
    EXPECT_EQ(record_.Value, 0);
}

// A limit that a unit change has converted keeps its digits, whatever the box has room for.
TEST_F(NumberBoxWidget, PassingThroughWritesNothingBack) {
    record_.DigitsDecimal = 1;
    open();
    record_.Value = 10 / 3.6;
    EXPECT_EQ(box_->text(), u"2.78"_s);
    enter();
    leave();
    enter();
    QTest::keyClick(box_, Qt::Key_Return);
    EXPECT_EQ(record_.Value, 10 / 3.6);

    QTest::keyClick(box_, Qt::Key_End);
    QTest::keyClick(box_, Qt::Key_Backspace);
    EXPECT_EQ(box_->text(), u"2.7"_s);
    EXPECT_EQ(record_.Value, 2.7);
    record_.Value = 36; // by others, in the middle of it
    EXPECT_EQ(box_->text(), u"36"_s);
    record_.Value = 12345; // more than can be typed: shown whole
    EXPECT_EQ(box_->text(), u"12345"_s);
    leave();
    EXPECT_EQ(record_.Value, 12345);
}

TEST_F(NumberBoxWidget, ARuleSeesTheNumberOnceItIsEntered) {
    int rule = 0;
    record_.DigitsMostSignificant = 4;
    record_.DigitsDecimal = 0;
    record_.Value = 120;
    record_.Change = [&] {
        ++rule;
        record_.Value = std::clamp(record_.Value.value(), 20.0, 2000.0);
    };
    open();
    const auto enterNumber = [&](const QString& typed, const auto& finish) {
        enter();
        type(typed);
        EXPECT_EQ(box_->text(), typed);
        finish();
        return box_->text();
    };
    const auto tab = [this] {
        leave();
    };
    EXPECT_EQ(enterNumber(u"130"_s, tab), u"130"_s);
    EXPECT_EQ(record_.Value, 130);
    EXPECT_EQ(rule, 1);
    EXPECT_EQ(enterNumber(u"130"_s, tab), u"130"_s); // no change, no rule
    EXPECT_EQ(rule, 1);
    EXPECT_EQ(enterNumber(u"5"_s, tab), u"20"_s);
    EXPECT_EQ(enterNumber(u"9999"_s, [this] { QTest::keyClick(box_, Qt::Key_Enter); }), u"2000"_s);
    EXPECT_EQ(rule, 3);
}

TEST_F(NumberBoxWidget, WhatItRefusesOrCutsOffIsShown) {
    struct Case {
        int decimals;
        const char *typed, *text, *tip;
    };
    const Case cases[]{
        {1, "12.5", "12.5", ""}, // first: a tip stays for a while
        {0, "12.5", "125", "Whole numbers only: \".\" was left out"},
        {0, "1234", "123", "At most 3 digits"},
        {1, "1.23", "1.2", "At most 3 digits before the separator, 1 after it"},
        {1, "1,5", "15", "The decimal separator here is \".\""},
        {1, "1.5.", "1.5", "There is a decimal separator already"},
        {1, "-4", "4", "No negative numbers"},
        {1, "4a", "4", "A number goes here"},
    };
    const auto edge = [this] {
        const QPixmap shot = box_->grab();
        return shot.toImage().pixelColor(shot.width() / 2, 1);
    };
    open();
    enter();
    const QColor quiet = edge();
    for (const Case& c : cases) {
        box_->setDigitsDecimal(c.decimals);
        box_->selectAll();
        QTest::keyClick(box_, Qt::Key_Delete);
        type(QString::fromLatin1(c.typed));
        EXPECT_EQ(box_->text(), QString::fromLatin1(c.text));
        EXPECT_EQ(QToolTip::text(), QString::fromLatin1(c.tip)) << c.typed;
        EXPECT_EQ(edge() == quiet, c.tip == QByteArray()) << c.typed;
    }
}

TEST_F(NumberBoxWidget, PastingTakesOnlyWhatCouldBeTyped) {
    open();
    record_.Value = 7;
    const auto paste = [this](const QString& text) {
        QApplication::clipboard()->setText(text);
        box_->selectAll();
        QTest::keyClick(box_, Qt::Key_V, Qt::ControlModifier);
        return box_->text();
    };
    for (const QString& text : {u"abc"_s, u"1e3"_s, u"-4"_s, u"1,234.5"_s, u"1.2.3"_s})
        EXPECT_EQ(paste(text), u"7"_s) << text.toStdString();
    EXPECT_EQ(record_.Value, 7);
    EXPECT_EQ(paste(u"12.345"_s), u"12.34"_s);
    EXPECT_EQ(record_.Value, 12.34);
}

TEST_F(NumberBoxWidget, SeparatorsAreThoseOfTheLocaleWhenItIsMade) {
    QLocale::setDefault(QLocale(QLocale::German));
    open();
    QLocale::setDefault(QLocale::c());
    record_.Value = 2.5;
    EXPECT_EQ(box_->text(), u"2,5"_s);
    enter();
    type(u"12.,3"_s);
    EXPECT_EQ(box_->text(), u"12,3"_s);
    EXPECT_EQ(record_.Value, 12.3);
    box_->setText(u"1.234,5"_s); // cut, and read
    EXPECT_EQ(box_->text(), u"1.2,5"_s);
    EXPECT_EQ(box_->value(), 12.5);
}

TEST_F(NumberBoxWidget, AFormatAppliesWhenAValueIsSetAndWhenTheFocusLeaves) {
    open();
    ASSERT_TRUE(box_->setProperty("DisplayFormat", u"0.00"_s));
    ASSERT_TRUE(box_->setProperty("Value", 2.5));
    EXPECT_EQ(box_->text(), u"2.50"_s);
    enter();
    type(u"3.5"_s);
    EXPECT_EQ(box_->text(), u"3.5"_s);
    leave();
    EXPECT_EQ(box_->text(), u"3.50"_s);
    EXPECT_EQ(box_->property("Value"), 3.5);
    EXPECT_EQ(record_.Value, 3.5);
}

TEST_F(NumberBoxWidget, ItsContainerHearsOfKeysChangesAndClicks) {
    open();
    QStringList heard;
    const auto note = [&heard](const QString& event) {
        return [&heard, event] {
            heard.append(event);
        };
    };
    QObject::connect(box_, &KivGetNumber::KeyDown, box_, note(u"down"_s));
    QObject::connect(box_, &KivGetNumber::KeyPress, box_, [&heard](QChar key) {
        heard.append(key.isNull() ? u"cleared"_s : QString(key));
    });
    QObject::connect(box_, &KivGetNumber::KeyUp, box_, note(u"up"_s));
    QObject::connect(box_, &KivGetNumber::Change, box_, note(u"change"_s));
    QObject::connect(box_, &KivGetNumber::MouseDown, box_, note(u"press"_s));
    QObject::connect(box_, &KivGetNumber::MouseMove, box_, note(u"move"_s));
    QObject::connect(box_, &KivGetNumber::MouseUp, box_, note(u"release"_s));
    QObject::connect(box_, &KivGetNumber::Click, box_, note(u"click"_s));
    QObject::connect(box_, &KivGetNumber::DblClick, box_, note(u"double"_s));

    // The click that gives the focus selects the whole, a trembling hand or not.
    QTest::mousePress(box_, Qt::LeftButton);
    EXPECT_TRUE(box_->hasFocus());
    const QPointF near = box_->rect().center() + QPointF(1, 0);
    QMouseEvent move(QEvent::MouseMove, near, box_->mapToGlobal(near), Qt::LeftButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(box_, &move);
    QTest::mouseRelease(box_, Qt::LeftButton);
    EXPECT_EQ(box_->selectedText(), box_->text());
    EXPECT_EQ(heard, (QStringList{u"press"_s, u"move"_s, u"release"_s, u"click"_s}));

    heard.clear();
    type(u"4x"_s);
    EXPECT_EQ(heard, (QStringList{u"down"_s, u"4"_s, u"change"_s, u"change"_s, u"up"_s, u"down"_s,
                                  u"cleared"_s, u"up"_s}));
    heard.clear();
    QTest::mouseDClick(box_, Qt::LeftButton);
    EXPECT_TRUE(heard.contains(u"double"_s));
}

} // namespace

} // namespace skyhold
