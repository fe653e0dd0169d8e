// SPDX-License-Identifier: GPL-3.0-or-later
// A number box: what is typed, pasted into and shown by it.
#include "target.h"

#include "ui/widgets/number_text.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

NumberEntry entryOf(Input& input) {
    static const NumberForms forms[]{
        {u"."_s, u","_s}, {u","_s, u"."_s}, {u","_s, u"\u202f"_s}, {u"\u066b"_s, u"\u066c"_s}};
    const std::uint8_t digits = input.byte();
    const std::uint8_t rest = input.byte();
    return {.DigitsMostSignificant = 1 + digits % 5,
            .DigitsDecimal = digits / 5 % 4,
            .AllowNegative = rest % 2 == 1,
            .forms = forms[rest / 2 % std::size(forms)]};
}

void requireSoundTyped(const QString& text, const NumberEntry& entry) {
    const double value = numberOfText(text, entry.forms);
    require(canBeTyped(text, entry), "what was typed can be typed");
    require(textAfterChange(text, entry) == text, "the change rule cuts at once");
    require(std::abs(value) < std::pow(10, entry.DigitsMostSignificant),
            "a typed number has no more digits than allowed");
    require(entry.AllowNegative || value >= 0, "only a box with a sign is negative");
    require(text.count(u'-') <= 1 && text.count(entry.forms.decimal) <= 1,
            "one sign, one separator");
}

// Keys, carets and selections one after the other, as a user's hand or a cat's paw would.
void type(Input& input, const NumberEntry& entry) {
    QString text;
    while (!input.atEnd()) {
        constexpr char16_t keys[]{u'0', u'1',  u'9',      u'5', u'-', u'.',
                                  u',', u'\b', u'\u066b', u'+', u'e', u'\u0663'};
        const QChar key = keys[input.byte() % std::size(keys)];
        const qsizetype start = input.byte() % (text.size() + 1);
        const qsizetype length = std::min<qsizetype>(input.byte() % 4, text.size() - start);
        if (!keyPasses(key, text, {start, length}, entry))
            continue;
        QString changed = text;
        if (key == u'\b') {
            const qsizetype first = length > 0 ? start : std::max<qsizetype>(start - 1, 0);
            changed.remove(first, length > 0 ? length : start - first);
        } else {
            changed.replace(start, length, key);
        }
        if (!canBeTyped(changed, entry))
            continue; // the box undoes it
        const QString cut = textAfterChange(changed, entry);
        require(cut.size() <= changed.size(), "the change rule only cuts");
        text = cut;
        requireSoundTyped(text, entry);
    }
}

void numberBox(QByteArrayView bytes) {
    Input input(bytes);
    const NumberEntry entry = entryOf(input);

    const auto value = input.number<double>();
    if (std::isfinite(value)) {
        const QString shown = textOfNumber(value, {}, entry);
        const double read = numberOfText(shown, entry.forms);
        const double precision = std::pow(10, -entry.DigitsDecimal);
        require(std::abs(read - value) < std::max(precision, 1e-14 * std::abs(value)),
                "what is shown reads as what was set, but for decimals without room");
        const QString formatted = textOfNumber(value, u"0.00"_s, entry);
        require(std::isfinite(numberOfText(formatted, entry.forms)) && formatted.size() < 330,
                "a formatted number is a number");
    }

    // Whatever text gets into the box.
    const QString pasted = input.shortText();
    require(std::isfinite(numberOfText(pasted, entry.forms)), "the number of any text is finite");
    require(beginsWithNumber(pasted, entry.forms) || numberOfText(pasted, entry.forms) == 0,
            "a text without a digit in front is 0");
    require(textAfterChange(pasted, entry).size() <= pasted.size(), "the change rule only cuts");
    if (canBeTyped(pasted, entry))
        requireSoundTyped(textAfterChange(pasted, entry), entry);

    type(input, entry);
}

} // namespace

const Target kNumberBox{"number_box", numberBox};

} // namespace skyhold::fuzz
