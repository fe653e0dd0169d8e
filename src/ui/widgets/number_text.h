// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of a number box over plain texts: how a text is read, which typed characters pass, what
// a changed text is cut to, and how a number is shown.
#pragma once

#include "platform/text_forms.h"

namespace skyhold {

// What a number box takes. The digits are counted before and after the decimal separator; without
// decimals the separator is refused.
struct NumberEntry {
    int DigitsMostSignificant = 3;
    int DigitsDecimal = 2;
    bool AllowNegative = false;
    NumberForms forms;
};

// Of a text box, in characters from the start of its text.
struct TextSelection {
    qsizetype SelStart = 0; // the caret, when nothing is selected
    qsizetype SelLength = 0;
};

// The leading number of the text, thousands separators ignored; 0 when there is none.
double numberOfText(const QString& text, const NumberForms& forms);

// A text that is still being typed, such as "" or "-", has no digit to begin with.
bool beginsWithNumber(const QString& text, const NumberForms& forms);

// Whether a typed character, backspace ('\b') among them, goes into the text. A digit too many may
// pass: the rule of a changed text cuts it.
bool keyPasses(QChar key, QStringView text, TextSelection selection, const NumberEntry& entry);

// Why such a character does not pass, for the user: "Whole numbers only".
QString refusalText(QChar key, QStringView text, TextSelection selection, const NumberEntry& entry);
// What the box takes at most: "At most 3 digits, and 1 after the separator".
QString digitsText(const NumberEntry& entry);

// The text after a change: no more digits than allowed.
QString textAfterChange(const QString& text, const NumberEntry& entry);

// Whether the text consists of what can be typed, whatever its length; by this a pasted text
// is checked.
bool canBeTyped(QStringView text, const NumberEntry& entry);

// The plain text of a number, or formatted when a format is given. It is shown whole, whatever can
// be typed; only the third and further decimals that could not be typed are rounded away.
QString textOfNumber(double value, const QString& displayFormat, const NumberEntry& entry);

} // namespace skyhold
