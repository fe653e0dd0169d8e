#include "ctl/values.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;

// The user's decimal separator is a comma: values have a point all the same.
class Values : public testing::Test {
  protected:
    Values() { QLocale::setDefault(QLocale(QLocale::German)); }
    ~Values() override { QLocale::setDefault(QLocale::c()); }
};

TEST_F(Values, textsBecomeValuesOfTheType) {
    const struct {
        QString text;
        AutomationType type;
        QVariant value;
    } cases[] = {
        {u"10"_s, I4, 10},
        {u"-5"_s, I4, -5},
        {u"010"_s, I4, 10},
        {u"0x80FFFF"_s, I4, 0x80FFFF},
        {u"2147483647"_s, I4, 2147483647},
        {u"1.5"_s, R8, 1.5},
        {u"-3"_s, R8, -3.0},
        {u"1e3"_s, R8, 1000.0},
        {u"true"_s, Bool, true},
        {u"False"_s, Bool, false},
        {u" 1,5 "_s, Text, u" 1,5 "_s},
        {u""_s, Text, u""_s},
    };
    for (const auto& [text, type, value] : cases)
        EXPECT_EQ(parseValue(text, type), value) << qPrintable(text);
    const std::pair<AutomationType, QString> refused[] = {
        {I4, u"2147483648 1.5 true ten "_s},
        {R8, u"1,5 1.234,5 nan inf 1e999 "_s},
        {Bool, u"1 yes"_s},
        {Date, u"2026-11-16"_s},
        {Object, u"/path"_s},
    };
    for (const auto& [type, texts] : refused) {
        for (const QString& text : texts.split(u' '))
            EXPECT_EQ(parseValue(text, type), std::nullopt)
                << qPrintable(text) << " as " << qPrintable(typeName(type));
    }
}

TEST_F(Values, valuesBecomeTextAndJson) {
    const auto table =
        QVariant::fromValue(QList<QVariantList>{{1, QVariantList()}, {u"a\tb"_s, true}});
    const struct {
        QVariant value;
        QString text;
        const char* json;
    } cases[] = {
        {{}, u""_s, "null"},
        {QVariantList(), u""_s, "null"},
        {true, u"true"_s, "true"},
        {-7, u"-7"_s, "-7"},
        {0.1, u"0.1"_s, "0.1"},
        {-1234.5, u"-1234.5"_s, "-1234.5"},
        {std::nan(""), u"nan"_s, "null"},
        {HUGE_VAL, u"inf"_s, "null"},
        {u"Wind \"N\"\n\x1b[2J"_s, u"Wind \"N\"  [2J"_s, R"("Wind \"N\"\n\u001b[2J")"},
        {QVariant::fromValue(AutomationDate{46342.75}), u"2026-11-16 18:00:00"_s,
         R"("2026-11-16T18:00:00")"},
        {QVariant::fromValue(AutomationDate{std::nan("")}), u""_s, "null"},
        {QVariant::fromValue(QDBusObjectPath(u"/a/b"_s)), u"/a/b"_s, R"("/a/b")"},
        {QVariantList{1, u"x"_s}, u"1\nx"_s, R"([1,"x"])"},
        {table, u"1\t\na b\ttrue"_s, R"([[1,null],["a\tb",true]])"},
    };
    for (const auto& [value, text, json] : cases) {
        EXPECT_EQ(valueText(value), text);
        const QJsonDocument document(QJsonArray{valueJson(value)});
        EXPECT_EQ(document.toJson(QJsonDocument::Compact), '[' + QByteArray(json) + ']');
    }
    EXPECT_EQ(plainLine(u"a\r\nb\u2028c\u0085d \u00b0C"_s), u"a  b c d \u00b0C"_s);
}

} // namespace
} // namespace skyhold
