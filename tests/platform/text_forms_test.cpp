#include "platform/clock.h"
#include "platform/text_encoding.h"
#include "platform/text_forms.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const NumberForms kPoint{u"."_s, u","_s};
const NumberForms kComma{u","_s, u"."_s};

TEST(TextForms, numbersByPattern) {
    const struct {
        double value;
        QString pattern, text;
    } cases[] = {
        {-25.25, u"0.0"_s, u"-25.3"_s}, {2.5, u"0"_s, u"3"_s},
        {-2.5, u"0"_s, u"-3"_s},        {1.005, u"0.00"_s, u"1.01"_s},
        {-0.04, u"0.0"_s, u"0.0"_s},    {0.25, u"#0.0"_s, u"0.3"_s},
        {1e4, u"#0.0"_s, u"10000.0"_s}, {3, u"00000"_s, u"00003"_s},
        {1000, u"00000"_s, u"01000"_s}, {46342.916666, u"000000.00000"_s, u"046342.91667"_s},
        {0, u"#0"_s, u"0"_s},           {9.96, u"0.0"_s, u"10.0"_s},
        {-7, u"000"_s, u"-007"_s},      {0.5, u"#.0"_s, u".5"_s},
    };
    for (const auto& [value, pattern, text] : cases) {
        EXPECT_EQ(formatNumber(value, pattern, kPoint), text);
        EXPECT_EQ(formatNumber(value, pattern, kComma), QString(text).replace(u'.', u','));
    }
}

TEST(TextForms, textsThatAreNumbersAndOthers) {
    const struct {
        QString text;
        const NumberForms& forms;
        std::optional<double> value;
    } cases[] = {
        {u" 12.5 "_s, kPoint, 12.5}, {u"1,234.5"_s, kPoint, 1234.5},
        {u"-.5"_s, kPoint, -0.5},    {u"1.234,5"_s, kComma, 1234.5},
        {u"12,5"_s, kComma, 12.5},   {u"+3"_s, kPoint, 3},
        {u"1e3"_s, kPoint, 1000},    {u"1e999"_s, kPoint, {}},
        {u"nan"_s, kPoint, {}},      {u"-inf"_s, kPoint, {}},
        {u""_s, kPoint, {}},         {u"--"_s, kPoint, {}},
        {u"-"_s, kPoint, {}},        {u"12a"_s, kPoint, {}},
        {u"0x10"_s, kPoint, {}},     {u"٣"_s, kPoint, {}},
    };
    for (const auto& [text, forms, value] : cases)
        EXPECT_EQ(numberFromText(text, forms), value) << qPrintable(text);
    EXPECT_EQ(numberText(2.0 / 3, kComma), u"0,666666666666667"_s);
    EXPECT_EQ(leadingNumber(u"5.20."), 5.2);
    EXPECT_EQ(leadingNumber(u"12.5abc"), 12.5);
    EXPECT_EQ(leadingNumber(u"abc"), 0);
}

TEST(TextForms, decimalSeparatorIsOneThatFilesCanHold) {
    const QLocale before;
    for (const auto& [locale, decimal] :
         {std::pair{"de_DE", u","_s}, {"en_US", u"."_s}, {"ar_EG", u"."_s}, {"fa_IR", u"."_s}}) {
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        EXPECT_EQ(localeNumberForms().decimal, decimal) << locale;
    }
    QLocale::setDefault(before);
}

TEST(TextForms, datesAndDayNumbers) {
    const QDateTime time(QDate(2026, 11, 6), QTime(9, 5, 7));
    EXPECT_EQ(formatDate(time, u"dd/mm hh:mm:ss"), u"06/11 09:05:07"_s);
    EXPECT_EQ(formatDate(time, u"mm/dd hh:mm:ss"), u"11/06 09:05:07"_s);
    EXPECT_EQ(formatDate(time, u"hh:mm:ss.ss"), u"09:05:07.07"_s);
    EXPECT_EQ(formatDate(time, u"yyyy-mm-dd"), u"2026-11-06"_s);
    EXPECT_DOUBLE_EQ(daySerial(QDateTime(QDate(1900, 1, 1), QTime(12, 0))), 2.5);
    EXPECT_EQ(fromDaySerial(daySerial(time)), time);
    EXPECT_FALSE(fromDaySerial(std::numeric_limits<double>::quiet_NaN()).isValid());
}

TEST(TextEncoding, bothEncodingsAreRead) {
    EXPECT_EQ(decodeText("\xEF\xBB\xBF"
                         "12 \xC2\xB0"
                         "C"),
              u"12 °C"_s);
    EXPECT_EQ(decodeText("12 \xB0"
                         "C \x80"),
              u"12 °C €"_s);
    // A sequence that the end breaks off is none of UTF-8.
    EXPECT_EQ(decodeText("12 \xB0\xC2"), u"12 °Â"_s);
    EXPECT_EQ(decodeText("12 \xE2\x82"), u"12 â‚"_s);
    EXPECT_EQ(encodeAnsi(u"12 °C € ☂"_s), "12 \xB0"
                                          "C \x80 ?");
}

} // namespace
} // namespace skyhold
