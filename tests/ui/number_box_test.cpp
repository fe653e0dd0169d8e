// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/number_text.h"

#include <QApplication>
#include <QButtonGroup>
#include <QClipboard>
#include <QRadioButton>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const NumberForms kPoint{u"."_s, u","_s};
const NumberForms kComma{u","_s, u"."_s};
const NumberEntry kDefault{.forms = kPoint}; // 3 and 2 digits, no sign
const NumberEntry kSigned{.DigitsDecimal = 0, .AllowNegative = true, .forms = kPoint};
const NumberEntry kGerman{.forms = kComma};

TEST(NumberText, KeysPassByCaretSelectionAndDigitLimits) {
    struct Case {
        NumberEntry entry;
        const char* text;
        TextSelection at; // caret, selected characters
        char16_t key;
        bool passes;
    };
    const Case cases[]{
        // before the separator, behind it, and without one
        {kDefault, "123", {3, 0}, u'4', true}, // the change rule cuts it
        {kDefault, "1234", {4, 0}, u'5', false},
        {kDefault, "1234.5", {4, 0}, u'9', false},
        {kDefault, "1234.56", {5, 0}, u'9', true},
        {kDefault, "123.456", {7, 0}, u'9', false},
        // the sign: first and once
        {kDefault, "", {0, 0}, u'-', false},
        {kSigned, "5", {1, 0}, u'-', false},
        {kSigned, "-5", {0, 0}, u'-', false},
        // the separator: once, unless the first and something before it are replaced
        {kDefault, "1.2", {3, 0}, u'.', false},
        {kDefault, "1.2", {0, 2}, u'.', true},
        {kDefault, "1.2", {1, 2}, u'.', false},
        {kDefault, "123.4", {0, 2}, u'.', false}, // the first would stay
        {kSigned, "12", {2, 0}, u'.', false},
        {kGerman, "12", {2, 0}, u',', true},
        {kGerman, "12", {2, 0}, u'.', false},
        // everything else
        {kDefault, "1", {1, 0}, u'a', false},
        {kDefault, "", {0, 0}, u'\u0663', false}, // a digit of another script
        {kDefault, "1234.567", {8, 0}, u'\b', true},
    };
    for (const Case& c : cases) {
        const QString text = QString::fromLatin1(c.text);
        EXPECT_EQ(keyPasses(c.key, text, c.at, c.entry), c.passes)
            << c.text << " caret " << c.at.SelStart << " selected " << c.at.SelLength << " key "
            << static_cast<int>(c.key);
    }
}

TEST(NumberText, TheLeadingNumberIsReadInTheLocalesForm) {
    struct Case {
        NumberForms forms;
        QString text;
        double value;
        bool number;
    };
    const Case cases[]{
        {kPoint, u"1,234.5"_s, 1234.5, true},
        {{u","_s, u"\u202f"_s}, u"1\u202f234,5"_s, 1234.5, true},
        {kPoint, u"12.5abc"_s, 12.5, true},
        {kPoint, u"-.5"_s, -0.5, true},
        {kPoint, u"-0"_s, 0, true},
        {kPoint, u"-"_s, 0, false},
        {kPoint, u"nan"_s, 0, false},
    };
    for (const Case& c : cases) {
        const double value = numberOfText(c.text, c.forms);
        EXPECT_EQ(value, c.value) << c.text.toStdString();
        EXPECT_FALSE(std::signbit(value) && value == 0) << c.text.toStdString();
        EXPECT_EQ(beginsWithNumber(c.text, c.forms), c.number) << c.text.toStdString();
    }
}

TEST(NumberText, ANumberIsShownPlainOrFormattedAndNeverAsAnother) {
    struct Case {
        NumberEntry entry;
        double value;
        QString format, text;
    };
    const NumberEntry oneDecimal{.DigitsDecimal = 1, .forms = kPoint};
    const Case cases[]{
        {kDefault, 2.5, u"0.00"_s, u"2.50"_s}, {kDefault, 2.5, {}, u"2.5"_s},
        {oneDecimal, 10 / 3.6, {}, u"2.78"_s}, {kDefault, 12345, {}, u"12345"_s},
        {oneDecimal, -1.5e-7, {}, u"0"_s},     {oneDecimal, 1.5e16, {}, u"15000000000000000"_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(textOfNumber(c.value, c.format, c.entry), c.text) << c.value;
}

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
    typed(Qt::Key_Home);
    EXPECT_EQ(typed(Qt::Key_1), Seen(u"1.5"_s, 1.5));
    EXPECT_EQ(typed(Qt::Key_X), Seen(u"1.5"_s, 1.5));
    typed(Qt::Key_End);
    typed(Qt::Key_2);
    EXPECT_EQ(typed(Qt::Key_3), Seen(u"1.52"_s, 1.52));
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
    const auto enterNumber = [&](const QString& typed) {
        enter();
        type(typed);
        EXPECT_EQ(box_->text(), typed);
        leave();
        return box_->text();
    };
    for (int i = 0; i < 2; ++i) { // no change, no rule
        EXPECT_EQ(enterNumber(u"130"_s), u"130"_s);
        EXPECT_EQ(record_.Value, 130);
        EXPECT_EQ(rule, 1);
    }
    EXPECT_EQ(enterNumber(u"5"_s), u"20"_s);
    EXPECT_EQ(rule, 2);
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

// A second conversion of limits that are in the chosen unit already would spoil them.
TEST(Bind, OptionsChooseOnceAndNotTheChosenOneAgain) {
    OptionGroup record;
    int rule = 0;
    record.Click = [&](int) {
        ++rule;
    };
    QWidget window;
    QButtonGroup group;
    for (int i = 0; i < 3; ++i)
        group.addButton(new QRadioButton(&window), i);
    bind(&group, record);
    EXPECT_EQ(group.checkedId(), -1);
    for (int i = 0; i < 2; ++i) {
        group.button(1)->click();
        EXPECT_EQ(record.Index, 1);
        EXPECT_EQ(rule, 1);
    }
    record.Index = 2;
    EXPECT_TRUE(group.button(2)->isChecked());
    record.Index = -1;
    EXPECT_EQ(group.checkedId(), -1);
    EXPECT_EQ(rule, 1);
}

} // namespace
} // namespace skyhold
