// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/all_members.h"
#include "automation/description.h"
#include "automation/object_safety.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

// The shape of the public interface: how many members, their numbers, names and types, and that the
// checked-in descriptions say the same.

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

TEST(ObjectSafety, optionsPerInterface) {
    const QString dispatch = u"{00020400-0000-0000-c000-000000000046}"_s;
    const QString unknown = u"{00000000-0000-0000-C000-000000000046}"_s;
    const QStringList persistence{u"{0000010A-0000-0000-C000-000000000046}"_s,
                                  u"{00000109-0000-0000-C000-000000000046}"_s,
                                  u"{37D84F60-42CB-11CE-8135-00AA004BB851}"_s};
    const ObjectSafety on{true, true};
    const ObjectSafety off;
    const auto expectEnabled = [&](const QString& id, std::uint32_t whenOn) {
        for (const ObjectSafety& safety : {on, off}) {
            const auto options = GetInterfaceSafetyOptions(safety, id).value_or(SafetyOptions{});
            EXPECT_EQ(options.supported, 3U);
            EXPECT_EQ(options.enabled, safety.forScripting ? whenOn : 0U);
        }
    };
    expectEnabled(dispatch, 1);
    for (const QString& id : persistence)
        expectEnabled(id, 2);
    EXPECT_FALSE(GetInterfaceSafetyOptions(on, unknown));

    const struct {
        QString id;
        std::uint32_t mask, enabled;
        AutomationError error;
        ObjectSafety safety = {true, true};
    } cases[] = {
        {dispatch, 1, 1, AutomationError::None},
        {dispatch, 0xFFFFFFFF, 1, AutomationError::None},
        {dispatch, 3, 3, AutomationError::Fail},
        {dispatch, 2, 2, AutomationError::Fail},
        {dispatch, 1, 1, AutomationError::Fail, off},
        {persistence[2], 2, 3, AutomationError::None},
        {persistence[1], 2, 2, AutomationError::Fail, off},
        {unknown, 1, 1, AutomationError::NoInterface},
    };
    for (const auto& [id, mask, options, error, safety] : cases)
        EXPECT_EQ(SetInterfaceSafetyOptions(safety, id, mask, options), error)
            << qPrintable(id) << mask << options;
}

} // namespace
} // namespace skyhold
