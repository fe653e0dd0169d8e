// SPDX-License-Identifier: GPL-3.0-or-later
// Every public member with any arguments, with and without the sensor program.
#include "target.h"
#include "variants.h"

#include "automation/all_members.h"
#include "automation/member_calls.h"
#include "core/start_up.h"
#include "settings/key_table.h"
#include "settings/stored_text.h"
#include "support/manual_clock.h"
#include "support/scripted_media.h"
#include "support/scripted_sensor.h"

#include <QDBusObjectPath>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold::fuzz {

namespace {

// A monitor whose folders are its own, with a clock that stands still and a sensor program that
// is played.
struct Monitor {
    Monitor()
        : store((qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit()), u"Kiv_Skyhold"_s))
        , core(clock, store, sensor.creator(), media, ProgramVersion{2, 30, 4})
        , members(memberCalls(core)) {
        core.showMessage = [](const Message&) {
            return MessageAnswer::Ok;
        };
        LoadMainWindow(core);
        const QString here = folder.path();
        core.records.ccdap.LblPathNameCCDAP4.Caption = here;
        core.records.dataFile.LblPathName.Caption = here;
        core.records.graphs.GraphImagePath.Caption = here;
        core.handOff.program = folder.filePath(u"no uploader"_s);
    }

    QTemporaryDir folder;
    ManualClock clock;
    ScriptedSensor sensor;
    ScriptedMedia media;
    SettingsStore store;
    MonitoringCore core;
    std::shared_ptr<const MemberTable> members;
};

void requireSoundSettings(Records& records) {
    const NumberForms forms{u"."_s, u","_s};
    for (const KeyRow& row : keyTable(records)) {
        const QString text = row.text(forms);
        bool sound = true;
        switch (row.type) {
        case KeyType::Number:
            sound = storedNumber(text, forms).has_value();
            break;
        case KeyType::CheckBox:
            sound = text == u"0"_s || text == u"1"_s;
            break;
        case KeyType::Integer:
        case KeyType::Colour:
            sound = text.isEmpty() || (text.toInt() >= row.lowest && text.toInt() <= row.highest);
            break;
        default:
            break;
        }
        if (!sound)
            broken(qPrintable(u"the setting %1 holds what it can: %2"_s.arg(row.key, text)));
    }
}

void automationMembers(QByteArrayView bytes) {
    static const std::vector<PublicMember> table = allMembers();
    Input input(bytes);
    Monitor monitor;
    Records& records = monitor.core.records;
    const std::uint8_t choice = input.byte();
    monitor.sensor.present = choice % 2 == 1;
    monitor.sensor.answering = choice / 2 % 2 == 0;
    while (!input.atEnd()) {
        const PublicMember& member = table[input.number<std::uint16_t>() % table.size()];
        // What the sensor program answers next, whether it makes sense or not.
        monitor.sensor.values.insert(member.name, arrivedValue(input));
        QVariantList arguments;
        for (std::size_t i = 0; i < member.parameters.size(); ++i)
            arguments.append(arrivedValue(input));
        const AutomationReply reply = monitor.members->invoke(member.id, member.use, arguments);
        if (reply.ok())
            require(hasType(reply.result, member.result), "an answer has the member's type");
        require(arguments.size() == static_cast<qsizetype>(member.parameters.size()),
                "arguments stay as many");
        const CurrentReadings& readings = records.readings;
        for (const std::int32_t level :
             {readings.Condition[Quantity::Cloud], readings.Condition[Quantity::Rain],
              readings.Condition[Quantity::Brightness], readings.Condition[Quantity::Wind],
              readings.Condition[Quantity::Gust], readings.Condition[Quantity::Temperature],
              readings.Condition[Quantity::Dew], readings.Condition[Quantity::Humidity]})
            require(level >= 0 && level <= 3, "a level is one of four");
        monitor.clock.advanceSeconds(input.byte());
    }
    requireSoundSettings(records);
}

} // namespace

const Target kAutomationMembers{"automation_members", automationMembers};

} // namespace skyhold::fuzz
