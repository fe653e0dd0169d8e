// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/command_line.h"
#include "ctl/members.h"
#include "ctl/values.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const QString kXml =
    uR"(<!DOCTYPE node PUBLIC "-//freedesktop//DTD D-BUS Object Introspection 1.0//EN"
    "http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd">
<node>
  <interface name="Kiv.Automation.Dispatch"><method name="Release"/></interface>
  <interface name="Kiv_Skyhold._Nubilo">
    <annotation name="Kiv.Automation.ClassId" value="{1}"/>
    <property name="ReadCycle" type="i" access="readwrite">
      <annotation name="Kiv.Automation.DispId" value="0x68030093"/>
    </property>
    <property name="Version" type="s" access="read"/>
    <method name="Condition_Rain">
      <arg name="result" type="i" direction="out">
        <annotation name="Kiv.Automation.Enumeration" value="RainCond"/>
      </arg>
      <annotation name="Kiv.Automation.DispId" value="0x600300B5"/>
    </method>
    <method name="Kiv_AlarmStart">
      <arg name="vData" type="s" direction="in"/>
      <arg name="vData" type="s" direction="out"/>
    </method>
    <method name="GraphTemperatureMax">
      <arg name="iP" type="i" direction="in"/>
      <arg name="result" type="i" direction="out"/>
      <arg name="iP" type="i" direction="out"/>
    </method>
    <method name="Kiv_LocalControl">
      <arg name="vData" type="b" direction="in"/>
      <arg name="sLabel" type="s"/>
    </method>
    <method name="Device_Start"><arg name="result" type="v" direction="out"/></method>
    <method name="LastReading"><arg name="result" type="v" direction="out"/></method>
    <method name="RecordStop"/>
  </interface>
</node>
)"_s;

TEST(Members, theDescriptionTellsKindsAndTypes) {
    const struct {
        const char* line;
        bool reading, settable;
    } cases[] = {
        {"ReadCycle            property   integer", true, true},
        {"Version              read-only  text", true, false},
        {"Condition_Rain       method     () -> RainCond", true, false},
        {"Kiv_AlarmStart       method     (vData text)", false, false},
        {"GraphTemperatureMax  method     (iP integer) -> integer", false, false},
        {"Kiv_LocalControl     method     (vData boolean, sLabel text)", false, false},
        {"Device_Start         method     () -> any", false, false},
        {"LastReading          method     () -> any", true, false},
        {"RecordStop           method     ()", false, false},
    };
    const std::vector<Member> members = parseMembers(kXml);
    ASSERT_EQ(members.size(), std::size(cases));
    for (std::size_t i = 0; i < members.size(); ++i) {
        EXPECT_EQ(memberLine(members[i], 19), QLatin1String(cases[i].line));
        EXPECT_EQ(isReading(members[i]), cases[i].reading) << cases[i].line;
        EXPECT_EQ(members[i].settable, cases[i].settable) << cases[i].line;
    }
    EXPECT_TRUE(parseMembers(kXml.left(kXml.size() - 10)).empty()); // cut off
    EXPECT_TRUE(parseMembers(u"<node/>"_s).empty());
    EXPECT_TRUE(parseMembers({}).empty());
}

TEST(Members, areFoundByNameAndPattern) {
    const std::vector<Member> members = parseMembers(kXml);
    ASSERT_NE(findMember(members, u"readcycle"_s), nullptr);
    EXPECT_EQ(findMember(members, u"readcycle"_s)->name, u"ReadCycle"_s);
    EXPECT_EQ(findMember(members, u"ReadCycl"_s), nullptr);
    EXPECT_EQ(noSuchMember(members, u"ReadCycel"_s),
              u"there is no member ReadCycel; did you mean ReadCycle?"_s);
    EXPECT_EQ(noSuchMember(members, u"Temperature"_s),
              u"there is no member Temperature; skyholdctl list prints them"_s);

    const struct {
        QString pattern;
        std::size_t count;
    } cases[] = {{u""_s, 9},         {u"record"_s, 1}, {u"READ"_s, 2}, {u"Read*"_s, 1},
                 {u"*_[A-D]*"_s, 1}, {u"*_?ain"_s, 1}, {u"."_s, 0}};
    for (const auto& [pattern, count] : cases)
        EXPECT_EQ(matchingMembers(members, pattern).size(), count) << qPrintable(pattern);
}

TEST(Members, argumentsTakeTheTypesOfTheParameters) {
    const std::vector<Member> members = parseMembers(kXml);
    const Member& control = *findMember(members, u"Kiv_LocalControl"_s);
    QString fault;
    EXPECT_EQ(parseArguments(control, {u"TRUE"_s, u"1"_s}, fault), (QVariantList{true, u"1"_s}));
    EXPECT_EQ(fault, QString());
    EXPECT_FALSE(parseArguments(control, {u"true"_s}, fault));
    EXPECT_EQ(fault, u"Kiv_LocalControl takes 2 arguments: "
                     "Kiv_LocalControl(vData boolean, sLabel text)"_s);
    EXPECT_FALSE(parseArguments(control, {u"on"_s, u"x"_s}, fault));
    EXPECT_EQ(fault, u"Kiv_LocalControl: \"on\" is not the boolean that vData takes"_s);
}

TEST(CommandLine, understoodLines) {
    struct Expected {
        const char* line;
        QStringList words; // the command's name and its arguments
        bool json = false;
        double every = 1;
    };
    const Expected cases[] = {
        {"status", {u"status"_s}},
        {"--json status", {u"status"_s}, true},
        {"get Safe --json", {u"get"_s, u"Safe"_s}, true},
        {"set ColorWindCalm -5", {u"set"_s, u"ColorWindCalm"_s, u"-5"_s}},
        {"call -- SetX --json", {u"call"_s, u"SetX"_s, u"--json"_s}},
        {"set X -- --", {u"set"_s, u"X"_s, u"--"_s}},
        {"watch A B --every 2.5 --json", {u"watch"_s, u"A"_s, u"B"_s}, true, 2.5},
        {"watch --every=0.1", {u"watch"_s}, false, 0.1},
        {"list Cond*", {u"list"_s, u"Cond*"_s}},
        {"why --json 23:41", {u"why"_s, u"23:41"_s}, true},
        {"history --since 12h --csv --until=2026-11-23", {u"history"_s}},
        {"replay --set A=1 --set B=2", {u"replay"_s}},
        {"--help", {u"help"_s}},
        {"--version", {u"version"_s}},
    };
    for (const auto& [line, words, json, every] : cases) {
        QString fault = u"of an earlier line"_s;
        const auto command = parseCommandLine(QString::fromLatin1(line).split(u' '), fault);
        ASSERT_TRUE(command) << line << ": " << qPrintable(fault);
        EXPECT_EQ(QStringList{command->name} + command->arguments, words) << line;
        EXPECT_EQ(command->json, json) << line;
        EXPECT_EQ(command->everySeconds, every) << line;
    }
}

TEST(CommandLine, refusedLinesSayWhy) {
    const std::pair<const char*, const char*> cases[] = {
        {"stauts", "did you mean status?"},
        {"get", "usage: skyholdctl get NAME"},
        {"get A B", "usage: skyholdctl get NAME"},
        {"status now", "usage: skyholdctl status"},
        {"set A 1 --json", "set has no option --json"},
        {"status --every 2", "status has no option --every"},
        {"status --help", "no option --help"}, // would end with the status of "safe"
        {"watch --every", "--every takes"},
        {"watch --every 0", "--every takes"},
        {"watch --every 1,5", "--every takes"},
        {"history --since", "--since takes a time"},
        {"history --set A=1", "history has no option --set"},
        {"history --csv=1", "no option --csv=1"},
        {"why a b", "usage: skyholdctl why [TIME]"},
        {"--json", "which command?"},
        {"--", "which command?"},
    };
    for (const auto& [line, part] : cases) {
        QString fault;
        EXPECT_FALSE(parseCommandLine(QString::fromLatin1(line).split(u' '), fault)) << line;
        EXPECT_TRUE(fault.contains(QLatin1String(part))) << line << ": " << qPrintable(fault);
    }
}

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
        {u"0x80FFFF"_s, I4, 0x80FFFF},
        {u"2147483647"_s, I4, 2147483647},
        {u"1.5"_s, R8, 1.5},
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
