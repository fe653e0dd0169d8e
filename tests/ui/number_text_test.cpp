#include "ui/widgets/number_text.h"

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
        // without separator
        {kDefault, "", {0, 0}, u'1', true},
        {kDefault, "123", {3, 0}, u'4', true}, // the change rule cuts it
        {kDefault, "1234", {4, 0}, u'5', false},
        {kDefault, "1234", {0, 1}, u'5', true},
        {kSigned, "-12", {3, 0}, u'3', true},
        {kSigned, "-123", {4, 0}, u'4', false},
        // before the separator, directly behind it, and further on
        {kDefault, "123.4", {0, 0}, u'9', true},
        {kDefault, "1234.5", {4, 0}, u'9', false},
        {kDefault, "1234.5", {1, 2}, u'9', true},
        {kDefault, "1234.56", {5, 0}, u'9', true},
        {kDefault, "12.34", {5, 0}, u'9', true}, // and is cut
        {kDefault, "123.456", {7, 0}, u'9', false},
        {kDefault, "123.456", {5, 1}, u'9', true},
        // the sign: first and once
        {kDefault, "", {0, 0}, u'-', false},
        {kSigned, "", {0, 0}, u'-', true},
        {kSigned, "5", {0, 0}, u'-', true},
        {kSigned, "5", {1, 0}, u'-', false},
        {kSigned, "-5", {0, 0}, u'-', false},
        {kSigned, "-5", {0, 2}, u'-', false},
        // the separator: once, unless the first and something before it are replaced
        {kDefault, "12", {2, 0}, u'.', true},
        {kDefault, "1.2", {3, 0}, u'.', false},
        {kDefault, "1.2", {0, 3}, u'.', true},
        {kDefault, "1.2", {0, 2}, u'.', true},
        {kDefault, "1.2", {1, 2}, u'.', false},
        {kDefault, "123.4", {0, 2}, u'.', false}, // the first would stay
        {kSigned, "12", {2, 0}, u'.', false},
        {kDefault, "12", {2, 0}, u',', false},
        {kGerman, "12", {2, 0}, u',', true},
        {kGerman, "12", {2, 0}, u'.', false},
        // everything else
        {kDefault, "1", {1, 0}, u'a', false},
        {kDefault, "1", {1, 0}, u' ', false},
        {kDefault, "", {0, 0}, u'+', false},
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

TEST(NumberText, AChangedTextIsCutToItsDigits) {
    struct Case {
        NumberEntry entry;
        const char *text, *after;
    };
    const Case cases[]{
        {kDefault, "1234", "123"},
        {kDefault, "123", "123"},
        {kDefault, "12.345", "12.34"},
        {kDefault, "1234.5", "123.5"},
        {kDefault, "999.5", "999.5"},
        {kDefault, "0012.5", "0012.5"},
        {kDefault, "12.", "12."},
        {kDefault, ".5", ".5"},
        {kDefault, "", ""},
        {kSigned, "-", "-"},
        {kSigned, "-1234", "-123"},
        {kGerman, "1234,567", "123,56"},
        {{.AllowNegative = true, .forms = kPoint}, "-1234.567", "-123.56"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(textAfterChange(QString::fromLatin1(c.text), c.entry).toStdString(), c.after);
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
        {kComma, u"1.234,5"_s, 1234.5, true},
        {{u","_s, u"\u202f"_s}, u"1\u202f234,5"_s, 1234.5, true},
        {kPoint, u"12.5abc"_s, 12.5, true},
        {kPoint, u"1.2.3"_s, 1.2, true},
        {kPoint, u"-.5"_s, -0.5, true},
        {kPoint, u"-0"_s, 0, true},
        {kPoint, u"5."_s, 5, true},
        {kPoint, u""_s, 0, false},
        {kPoint, u"-"_s, 0, false},
        {kPoint, u"-."_s, 0, false},
        {kPoint, u"abc"_s, 0, false},
        {kPoint, u"nan"_s, 0, false},
        {kPoint, u"inf"_s, 0, false},
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
        {kDefault, 2.5, u"0.00"_s, u"2.50"_s},
        {kDefault, 2.5, {}, u"2.5"_s},
        {kDefault, 2.5, u"  "_s, u"2.5"_s},
        {kGerman, 2.5, u"0.00"_s, u"2,50"_s},
        {oneDecimal, 10 / 3.6, {}, u"2.78"_s},
        {kSigned, -5, {}, u"-5"_s},
        {kSigned, -7.5, {}, u"-7.5"_s},
        {kSigned, -75, {}, u"-75"_s},
        {kDefault, 12345, {}, u"12345"_s},
        {oneDecimal, -1.5e-7, {}, u"0"_s},
        {oneDecimal, 1.5e16, {}, u"15000000000000000"_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(textOfNumber(c.value, c.format, c.entry), c.text) << c.value;
}

} // namespace

} // namespace skyhold
