#include "ctl/members.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

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

TEST(Members, theNearestNameIsALikelySlip) {
    const QStringList names{u"Safe"_s, u"SafeRain"_s, u"SafeDry"_s, u"RainValue"_s, u"Name"_s};
    const std::pair<QString, std::optional<QString>> cases[] = {
        {u"saef"_s, names[0]},
        {u"SafeRian"_s, names[1]},
        {u"SafeDr"_s, names[2]},
        {u"RainVlaues"_s, names[3]},
        {u"Nmae"_s, names[4]},
        {u"Frobnicate"_s, {}},
        {u"S"_s, {}},
        {u""_s, {}},
    };
    for (const auto& [name, nearest] : cases)
        EXPECT_EQ(nearestName(name, names), nearest) << qPrintable(name);
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

} // namespace
} // namespace skyhold
