// SPDX-License-Identifier: GPL-3.0-or-later
// Controls as plain records. Their fields can be observed, so that a view follows them and writes
// into them, while the core, the tests and the automation server need neither view nor display.
//
// A click rule (`Click`) runs whenever the value is set through `choose`/`set`, whoever sets it:
// the user, the settings loader or an automation client.
#pragma once

#include "model/colours.h"

#include <QProperty>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace skyhold {

struct Label {
    QProperty<QString> Caption;
    QProperty<Colour> ForeColor{0};
    QProperty<Colour> BackColor{0};
    QProperty<bool> Visible{true};
};

// A check box: Value 1 is checked, 0 is not. An alarm box keeps its sound in Tag.
struct CheckBox {
    QProperty<int> Value{0};
    QProperty<QString> Caption;
    QProperty<QString> Tag;
    QProperty<bool> Enabled{true};
    QProperty<bool> Visible{true};
    QProperty<bool> HasIcons{false};
    std::function<void()> Click;

    bool checked() const { return Value == 1; }
    void set(int value) {
        Value = value;
        if (Click)
            Click();
    }
};

// What the user types into a number box and has neither entered nor left yet.
struct NumberEdit {
    double before = 0; // the number that it replaces
    double typed = 0;  // what the text stands for, 0 for none
};

// A number box; the digit limits are those of its text entry.
struct NumberBox {
    QProperty<double> Value{0};
    QProperty<bool> Enabled{true};
    int DigitsMostSignificant = 3;
    int DigitsDecimal = 2;
    bool AllowNegative = false;
    std::optional<NumberEdit> Edit;
    std::function<void()> Change;

    void set(double value) {
        Value = value;
        if (Change)
            Change();
    }
};

// Option buttons of which one is chosen; -1 is none.
struct OptionGroup {
    QProperty<int> Index{-1};
    QProperty<bool> Enabled{true};
    QProperty<bool> Visible{true};
    std::function<void(int index)> Click;

    void choose(int index) {
        Index = index;
        if (Click)
            Click(index);
    }
};

struct ComboBox {
    QProperty<int> ListIndex{-1};
    QProperty<bool> Enabled{true};
    QStringList Entries;
    std::function<void()> Click;

    void choose(int index) {
        ListIndex = index;
        if (Click)
            Click();
    }
    QString chosen() const { return Entries.value(ListIndex); }
    // Of an interval list: the whole number in the first two characters ("5  secs"); 0 for none.
    int chosenSeconds() const { return chosen().left(2).trimmed().toInt(); }
};

struct TextBox {
    QProperty<QString> Text;
    QProperty<bool> Enabled{true};
};

struct Button {
    QProperty<QString> Caption;
    QProperty<bool> Enabled{true};
    QProperty<bool> Visible{true};
};

struct Lamp {
    QProperty<Colour> FillColor{kGrey};
    QProperty<bool> Visible{true};
};

struct Frame {
    QProperty<bool> Visible{true};
};

struct MenuEntry {
    QProperty<bool> Enabled{true};
    QProperty<bool> Visible{true};
    QProperty<bool> Checked{false};
};

// A pair of lamps that alternate: the lamp that was grey takes the colour, the other turns grey.
struct LampPair {
    Lamp first;
    Lamp second;
    QProperty<bool> Visible{true};

    void blink(Colour colour) {
        const bool firstWasGrey = first.FillColor == kGrey;
        first.FillColor = firstWasGrey ? colour : kGrey;
        second.FillColor = firstWasGrey ? kGrey : colour;
    }
};

} // namespace skyhold
