#include "ui/widgets/bind.h"

#include "ui/look/look.h"
#include "ui/widgets/readout.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class Bind : public testing::Test {
  protected:
    // A shown window, so that widgets take mouse and keys.
    template <class Widget>
    Widget* make() {
        auto* widget = new Widget(&window_);
        window_.layout()->addWidget(widget);
        return widget;
    }
    void show() {
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }

    QWidget window_;
    QVBoxLayout layout_{&window_};
    int rule_ = 0; // how often the click rule ran
};

TEST_F(Bind, CheckBoxRunsItsRuleOncePerClickAndShowsWhatTheRuleMadeOfIt) {
    CheckBox record;
    record.Click = [&] {
        ++rule_;
        if (record.Tag.value().isEmpty())
            record.Value = 0; // refused
    };
    record.Caption = u"Fog & mist"_s;
    auto* box = make<QCheckBox>();
    bind(box, record);
    show();
    EXPECT_EQ(box->text(), u"Fog && mist"_s);

    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
    EXPECT_EQ(rule_, 1);
    EXPECT_FALSE(box->isChecked());

    record.Tag = u"bell.wav"_s;
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
    EXPECT_EQ(rule_, 2);
    EXPECT_TRUE(box->isChecked());
    EXPECT_TRUE(record.checked());

    record.Value = 0; // by the core
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(rule_, 2);
    record.Enabled = false;
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
    EXPECT_EQ(rule_, 2);
}

// A second conversion of limits that are in the chosen unit already would spoil them.
TEST_F(Bind, OptionsChooseOnceAndNotTheChosenOneAgain) {
    OptionGroup record;
    record.Click = [&](int) {
        ++rule_;
    };
    QButtonGroup group;
    std::array<QRadioButton*, 3> buttons{};
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        buttons[i] = make<QRadioButton>();
        group.addButton(buttons[i], static_cast<int>(i));
    }
    bind(&group, record);
    show();
    EXPECT_EQ(group.checkedId(), -1);

    const auto clickOn = [&](std::size_t i) {
        QTest::mouseClick(buttons[i], Qt::LeftButton, {}, QPoint(6, buttons[i]->height() / 2));
    };
    clickOn(1);
    EXPECT_EQ(record.Index, 1);
    EXPECT_EQ(rule_, 1);
    clickOn(1);
    EXPECT_EQ(rule_, 1);

    record.Index = 2;
    EXPECT_TRUE(buttons[2]->isChecked());
    record.Index = -1;
    EXPECT_EQ(group.checkedId(), -1);
    EXPECT_EQ(rule_, 1);
    clickOn(0);
    EXPECT_EQ(record.Index, 0);
    EXPECT_EQ(rule_, 2);
}

TEST_F(Bind, ComboBoxChoosesByKey) {
    ComboBox record;
    record.Entries = {u"5  secs"_s, u"10 secs"_s, u"30 secs"_s};
    record.ListIndex = 1;
    record.Click = [&] {
        ++rule_;
    };
    auto* box = make<QComboBox>();
    bind(box, record);
    show();
    EXPECT_EQ(box->currentText(), u"10 secs"_s);
    QTest::keyClick(box, Qt::Key_Down);
    EXPECT_EQ(record.ListIndex, 2);
    EXPECT_EQ(rule_, 1);
    record.ListIndex = 0;
    EXPECT_EQ(box->currentIndex(), 0);
    EXPECT_EQ(rule_, 1);
}

TEST_F(Bind, LabelsShowTextAsItStandsWithColourAndVisibility) {
    Label record;
    record.Caption = u"<b>12</b>"_s;
    auto* label = make<QLabel>();
    auto* readout = make<Readout>();
    readout->setInk(Qt::cyan);
    bind(label, record);
    bind(readout, record);
    show();
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
    EXPECT_EQ(readout->ink(), QColor(Qt::cyan));

    record.ForeColor = kOrange;
    record.Caption = u"Windy"_s;
    EXPECT_EQ(label->text(), u"Windy"_s);
    EXPECT_EQ(readout->text(), u"Windy"_s);
    for (const QColor& ink : {readout->ink(), label->palette().color(QPalette::WindowText)})
        EXPECT_EQ(ink, QColor(255, 128, 0));
    record.Visible = false;
    EXPECT_FALSE(readout->isVisible());
    record.ForeColor = 0;
    EXPECT_EQ(readout->ink(), QColor(Qt::cyan));
}

TEST_F(Bind, EitherSideMayGoFirst) {
    auto record = std::make_unique<Label>();
    auto* early = make<Readout>();
    auto* late = make<Readout>();
    bind(early, *record);
    bind(late, *record);
    delete early;
    record->Caption = u"still here"_s;
    EXPECT_EQ(late->text(), u"still here"_s);
    record.reset();
    EXPECT_EQ(late->text(), u"still here"_s);
}

} // namespace

} // namespace skyhold
