// The shape of the public interface: how many members, their numbers, names and types, and that the
// checked-in descriptions say the same.
#include "automation/description.h"
#include "automation/nubilo_table.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(MemberTable, holdsEveryMemberOnce) {
    const std::vector<NubiloMember> table = nubiloTable();
    EXPECT_EQ(table.size(), 342U);

    QMap<QString, std::int32_t> ids;
    QSet<std::int32_t> taken;
    QSet<QString> halves;
    for (const NubiloMember& member : table) {
        const QString key = member.name.toLower();
        EXPECT_EQ(ids.value(key, member.id), member.id) << qPrintable(member.name);
        if (!ids.contains(key)) {
            EXPECT_FALSE(taken.contains(member.id)) << qPrintable(member.name);
        }
        ids[key] = member.id;
        taken.insert(member.id);
        const QString half = key + QString::number(member.use);
        EXPECT_FALSE(halves.contains(half)) << qPrintable(member.name);
        halves.insert(half);
        EXPECT_FALSE(member.help.isEmpty()) << qPrintable(member.name);
        EXPECT_EQ(member.use == kPropertyPut, member.result == AutomationType::Empty &&
                                                  !member.parameters.empty() &&
                                                  member.parameters[0].name == u"value"_s)
            << qPrintable(member.name);
    }
    EXPECT_EQ(ids.size(), 208);
    EXPECT_FALSE(taken.contains(0x600300D1));
}

TEST(MemberTable, numbersRunAsPublished) {
    QMap<QString, std::int32_t> ids;
    for (const NubiloMember& member : nubiloTable())
        ids[member.name] = member.id;
    // First and last of every run, and the members around each change between the runs.
    const QMap<QString, std::int32_t> published{
        {u"Kiv_SafeDelayValue"_s, 0x68030093},
        {u"Kiv_SafeDelayMsg"_s, 0x68030092},
        {u"Kiv_SafeDelayWait"_s, 0x68030091},
        {u"Kiv_GraphArrayFirstElem"_s, 0x60030096},
        {u"Kiv_GraphArrayLastElem"_s, 0x60030097},
        {u"Kiv_GraphArrayCloud"_s, 0x60030098},
        {u"Kiv_GraphArrayTemp"_s, 0x6003009B},
        {u"MForm"_s, 0x6003009D},
        {u"Kiv_AlarmStop"_s, 0x6003009F},
        {u"Kiv_CloudAlarmDelay"_s, 0x68030090},
        {u"Kiv_DeviceSwitchCtrl"_s, 0x6803008E},
        {u"Kiv_LocalControl"_s, 0x600300A0},
        {u"Kiv_TemperatureUnits"_s, 0x6803008C},
        {u"Kiv_XFERFileErr"_s, 0x600300A2},
        {u"WindowMinimize"_s, 0x600300A8},
        {u"WindowLeft"_s, 0x6803008B},
        {u"WindowTop"_s, 0x6803008A},
        {u"BlinkLEDCOM"_s, 0x600300A9},
        {u"Kiv_TotalNoUsers"_s, 0x600300AE},
        {u"Name"_s, 0x68030089},
        {u"VersionNB"_s, 0x68030087},
        {u"AmbientTemperature"_s, 0x600300AF},
        {u"DataReady"_s, 0x600300BA},
        {u"Safe"_s, 0x600300C5},
        {u"TemperatureAmb"_s, 0x600300CA},
        {u"UnitTemp"_s, 0x68030086},
        {u"UnitSpeed"_s, 0x68030085},
        {u"WindDir"_s, 0x600300CB},
        {u"UnitsBarometricPressure"_s, 0x600300CE},
        {u"ThreshBrightnessDark"_s, 0x68030084},
        {u"ReadCycle"_s, 0x68030000},
        {u"GetGraphCycle"_s, 0x600300CF},
        {u"GetGraphFreq"_s, 0x600300D0},
        {u"Kiv_DataDisplayed"_s, 0x600300D2},
    };
    for (auto row = published.cbegin(); row != published.cend(); ++row)
        EXPECT_EQ(ids.value(row.key()), row.value()) << qPrintable(row.key());
}

QString checkedIn(const QString& name) {
    const QString here = QFileInfo(QString::fromLocal8Bit(__FILE__)).absolutePath();
    QFile file(here + u"/../../docs/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

TEST(Description, CheckedInFilesAreUpToDate) {
    EXPECT_EQ(checkedIn(u"automation.md"_s), automationReference()) << "rebuild it with ./dev docs";
    EXPECT_EQ(checkedIn(u"Kiv_Skyhold.Nubilo.xml"_s), interfaceDescription())
        << "rebuild it with ./dev docs";
}

// What a reader of the installed description finds in it.
TEST(Description, NamesIdentifiersEnumerationsAndMembers) {
    QXmlStreamReader xml(interfaceDescription());
    QMap<QString, QString> annotations; // of the typed interface itself
    QStringList interfaces;
    int members = 0;
    int numbered = 0;
    int depth = 0;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::EndElement)
            --depth;
        if (token != QXmlStreamReader::StartElement)
            continue;
        ++depth;
        const QXmlStreamAttributes attributes = xml.attributes();
        const QString name = attributes.value(u"name"_s).toString();
        if (xml.name() == u"interface"_s)
            interfaces.append(name);
        if (interfaces.isEmpty() || interfaces.constLast() != u"Kiv_Skyhold._Nubilo"_s)
            continue;
        if (xml.name() == u"annotation"_s && depth == 3)
            annotations[name] = attributes.value(u"value"_s).toString();
        if (xml.name() == u"method"_s)
            ++members;
        if (xml.name() == u"property"_s)
            members += attributes.value(u"access"_s) == u"readwrite"_s ? 2 : 1;
        if (name == u"Kiv.Automation.DispId"_s)
            ++numbered;
    }
    EXPECT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
    EXPECT_EQ(interfaces,
              (QStringList{u"Kiv.Automation.ClassFactory"_s, u"Kiv.Automation.Dispatch"_s,
                           u"Kiv_Skyhold._Nubilo"_s, u"Kiv.Automation.IObjectSafety"_s}));
    EXPECT_EQ(members, 342);
    EXPECT_EQ(numbered, 208);
    const QMap<QString, QString> expected{
        {u"Kiv.Automation.ProgramId"_s, u"Kiv_Skyhold.Nubilo"_s},
        {u"Kiv.Automation.InterfaceId"_s, u"{01B5312C-19B2-4625-A5FA-9422B298B627}"_s},
        {u"Kiv.Automation.ClassId"_s, u"{A19EFED7-FC84-46E3-B954-5D8A4504FD32}"_s},
        {u"Kiv.Automation.Enumeration.CloudCond"_s,
         u"CloudUnknown=0 CloudClear=1 CloudCloudy=2 CloudVeryCloudy=3"_s},
        {u"Kiv.Automation.Enumeration.BrightnessCond"_s,
         u"BrightnessUnknown=0 BrightnessDark=1 BrightnessLight=2 BrightnessVerylight=3"_s},
        {u"Kiv.Automation.Enumeration.RainCond"_s,
         u"RainUnknown=0 RainDry=1 RainWet=2 RainRain=3"_s},
        {u"Kiv.Automation.Enumeration.WindCond"_s,
         u"WindUnknown=0 WindCalm=1 WindWindy=2 WindVeryWindy=3"_s},
        {u"Kiv.Automation.Enumeration.SkyCond"_s,
         u"SkyUnknown=0 SkyClear=1 SkyCloudy=2 SkyVeryCloudy=3 SkyWet=4"_s},
        {u"Kiv.Automation.Enumeration.TemperatureCond"_s,
         u"TemperatureUnknown=0 TemperatureLow=1 TemperatureMedium=2 TemperatureHigh=3"_s},
        {u"Kiv.Automation.Enumeration.DewCond"_s, u"DewUnknown=0 DewLow=1 DewMedium=2 DewHigh=3"_s},
        {u"Kiv.Automation.Enumeration.HumidityCond"_s,
         u"HumidityUnknown=0 HumidityLow=1 HumidityMedium=2 HumidityHigh=3"_s},
        {u"org.freedesktop.DBus.Property.EmitsChangedSignal"_s, u"false"_s}};
    EXPECT_EQ(annotations, expected);
}

} // namespace
} // namespace skyhold
