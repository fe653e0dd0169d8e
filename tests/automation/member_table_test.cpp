// The shape of the public interface: how many members, their numbers, names and types, and that the
// checked-in descriptions say the same.
#include "automation/all_members.h"
#include "automation/description.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(MemberTable, holdsEveryMemberOnce) {
    const std::vector<PublicMember> table = allMembers();
    EXPECT_EQ(table.size(), 342U);

    QMap<QString, std::int32_t> ids;
    QSet<std::int32_t> taken;
    QSet<QString> halves;
    for (const PublicMember& member : table) {
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
    for (const PublicMember& member : allMembers())
        ids[member.name] = member.id;
    // First and last of every run, and the members around each change between the runs.
    const QStringList published =
        QStringLiteral("Kiv_SafeDelayValue 68030093 Kiv_SafeDelayMsg 68030092 "
                       "Kiv_SafeDelayWait 68030091 Kiv_GraphArrayFirstElem 60030096 "
                       "Kiv_GraphArrayLastElem 60030097 Kiv_GraphArrayCloud 60030098 "
                       "Kiv_GraphArrayTemp 6003009B MForm 6003009D Kiv_AlarmStop 6003009F "
                       "Kiv_CloudAlarmDelay 68030090 Kiv_DeviceSwitchCtrl 6803008E "
                       "Kiv_LocalControl 600300A0 Kiv_TemperatureUnits 6803008C "
                       "Kiv_XFERFileErr 600300A2 WindowMinimize 600300A8 WindowLeft 6803008B "
                       "WindowTop 6803008A BlinkLEDCOM 600300A9 Kiv_TotalNoUsers 600300AE "
                       "Name 68030089 VersionNB 68030087 AmbientTemperature 600300AF "
                       "DataReady 600300BA Safe 600300C5 TemperatureAmb 600300CA "
                       "UnitTemp 68030086 UnitSpeed 68030085 WindDir 600300CB "
                       "UnitsBarometricPressure 600300CE ThreshBrightnessDark 68030084 "
                       "ReadCycle 68030000 GetGraphCycle 600300CF GetGraphFreq 600300D0 "
                       "Kiv_DataDisplayed 600300D2")
            .split(u' ');
    for (qsizetype i = 0; i < published.size(); i += 2)
        EXPECT_EQ(ids.value(published[i]), published[i + 1].toInt(nullptr, 16))
            << qPrintable(published[i]);
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

TEST(Description, IsWellFormedAndNamesItsInterfacesAndIdentifiers) {
    const QString description = interfaceDescription();
    QXmlStreamReader xml(description);
    QStringList interfaces;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"interface"_s)
            interfaces += xml.attributes().value(u"name"_s).toString();
    }
    EXPECT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
    EXPECT_EQ(interfaces,
              (QStringList{u"Kiv.Automation.ClassFactory"_s, u"Kiv.Automation.Dispatch"_s,
                           u"Kiv_Skyhold._Nubilo"_s, u"Kiv.Automation.IObjectSafety"_s}));
    for (const QString& published :
         {u"Kiv_Skyhold.Nubilo"_s, u"{01B5312C-19B2-4625-A5FA-9422B298B627}"_s,
          u"{A19EFED7-FC84-46E3-B954-5D8A4504FD32}"_s,
          u"SkyUnknown=0 SkyClear=1 SkyCloudy=2 SkyVeryCloudy=3 SkyWet=4"_s,
          u"BrightnessUnknown=0 BrightnessDark=1 BrightnessLight=2 BrightnessVerylight=3"_s})
        EXPECT_TRUE(description.contains(u"value=\""_s + published + u'"'))
            << qPrintable(published);
}

} // namespace
} // namespace skyhold
