// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/all_members.h"
#include "automation/form_members.h"
#include "automation/sensor_calls.h"
#include "core/alarms.h"
#include "core/clients.h"
#include "core/recording.h"
#include "core/session.h"
#include "core/verdict.h"
#include "graphs/history.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AutomationType;
using Core = MonitoringCore;

// The messages of the safe delay, of the station alarm and of the sensor alarm.
QString safeDelayMessage(const Records& records) {
    QString text = records.conditions.SafeDelayMsg.Caption.value().trimmed();
    for (const Label* alarm : {&records.display.WSAlarmMsg, &records.display.NBAlarmMsg}) {
        const QString more = alarm->Caption.value().trimmed();
        if (!more.isEmpty())
            text += u" / "_s + more;
    }
    return text;
}

// Chooses the option whose letter is the whole text; any other text changes nothing.
template <class Codes>
void chooseByLetter(OptionGroup& options, const Codes& codes, const QString& text) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (text == letterOf(codes[i]))
            options.choose(static_cast<int>(i));
    }
}

template <class Codes>
QString chosenLetter(const OptionGroup& options, const Codes& codes) {
    const int index = options.Index;
    return index >= 0 && index < static_cast<int>(codes.size())
               ? letterOf(codes[static_cast<std::size_t>(index)])
               : QString();
}

// Graphs 1 to 4 are the sensor program's, any other number is the local history.
MemberAct graphElement(const QString& name, std::int32_t GraphHistory::*local) {
    return [name, local](Core& core, QVariantList& arguments) {
        const int graph = arguments[0].toInt();
        if (graph >= 1 && graph <= 4)
            return readFromSensor(core, name, I4, {graph});
        return answered(core.records.history.*local);
    };
}

AutomationReply setCloudAlarmDelay(Core& core, QVariantList& arguments) {
    writeToSensor(core, u"Kiv_CloudAlarmDelay"_s, arguments[0]); // it need not be there
    core.records.conditions.CloudAlarmDelay = arguments[0].toInt();
    return answered();
}

AutomationReply cloudAlarmDelay(Core& core, QVariantList&) {
    const AutomationReply reply = readFromSensor(core, u"Kiv_CloudAlarmDelay"_s, I4);
    return answered(reply.ok() ? reply.result : QVariant(0));
}

// True hands the switch over to clients, so that reading it back gives false.
AutomationReply setDeviceSwitchCtrl(Core& core, QVariantList& arguments) {
    AutomationReply role = readFromSensor(core, u"Kiv_DeviceRole"_s, Text);
    if (!role.ok())
        return role;
    if (role.result.toString() != u"MASTER"_s)
        return answered();
    SessionControls& session = core.records.session;
    session.SWRole.choose(arguments[0].toBool() ? 1 : 0);
    Disp_SwitchLabels(session, core.records.display);
    return answered();
}

AutomationReply setUnsafe(Core& core, QVariantList& arguments) {
    if (!clientDecides(core))
        return answered();
    const bool unsafe = arguments[0].toBool();
    core.decidedBy = core.caller;
    setVerdict(core, unsafe);
    if (!core.sensor.connected())
        return answered();
    return callSensor(core, u"SetUnSafe"_s, {unsafe});
}

AutomationReply sensorVersion(Core& core, QVariantList&) {
    if (!core.sensor.connected())
        return answered(u"0.00.000"_s);
    return readFromSensor(core, u"Version"_s, Text);
}

void addSafeDelay(MemberList& list) {
    list.property(
        u"Kiv_SafeDelayValue"_s,
        {I4, u"seconds for which a return to safe is held back"_s, Activity::None},
        answering([](Core& core) { return rounded(core.records.conditions.SafeDelayVal.Value); }),
        [](Core& core, QVariantList& arguments) {
            core.records.conditions.SafeDelayVal.set(arguments[0].toInt());
            return answered();
        });
    list.get(
        u"Kiv_SafeDelayMsg"_s,
        {Text, u"the window's text on the safe delay and on failing sources"_s, Activity::None},
        answering([](Core& core) { return safeDelayMessage(core.records); }));
    list.get(u"Kiv_SafeDelayWait"_s,
             {I4, u"seconds still to wait before safe is announced"_s, Activity::None},
             answering([](Core& core) { return core.result.memory.SafeDelayRemaining; }));
}

void addGraphArrays(MemberList& list) {
    const std::vector<AutomationParameter> graphNo{{u"GraphNo"_s, I4, false}};
    const MemberKind element{
        I4, u"index of the %1 point: graphs 1 to 4 of Kiv_Nubilo, any other of the local history"_s,
        Activity::None, Source::SensorUnchecked};
    const auto which = [&element](const QString& end) {
        MemberKind kind = element;
        kind.help = element.help.arg(end);
        return kind;
    };
    const QString first = u"Kiv_GraphArrayFirstElem"_s;
    list.method(first, graphNo, which(u"oldest"_s), graphElement(first, &GraphHistory::FirstElem));
    const QString last = u"Kiv_GraphArrayLastElem"_s;
    list.method(last, graphNo, which(u"newest"_s), graphElement(last, &GraphHistory::LastElem));
    for (const char* kind : {"Cloud", "Rain", "Day", "Temp"}) {
        const QString name = u"Kiv_GraphArray"_s + QLatin1String(kind);
        list.method(name,
                    {Variant, u"array of Kiv_Nubilo, unchanged"_s, Activity::Signal,
                     Source::SensorUnchecked},
                    forwardedRead(name, Variant));
    }
    list.method(u"Kiv_GraphArray"_s,
                {Variant,
                 u"the local history: fields 0 to 7 (1 date, 2 wind, 3 gust, 4 direction, "
                 "5 temperature minus dew point, 6 humidity, 7 temperature), each with its "
                 "points"_s},
                answering([](Core& core) { return historyArray(core.records.history); }));
}

void addAlarms(MemberList& list) {
    list.method(u"MForm"_s, {Object, u"the main window"_s, Activity::None},
                answering([](Core&) { return QVariant::fromValue(formPath()); }));
    list.method(u"Kiv_AlarmStart"_s, {{u"vData"_s, Text, true}},
                {Empty, u"plays a sound file; with \"|repeat\" behind its name again and again"_s},
                [](Core& core, QVariantList& arguments) {
                    startAlarm(core, arguments[0].toString());
                    return answered();
                });
    list.method(u"Kiv_AlarmStop"_s, {Empty, u"stops the sound"_s}, [](Core& core, QVariantList&) {
        stopAlarm(core);
        return answered();
    });
    list.property(u"Kiv_CloudAlarmDelay"_s,
                  {I4,
                   u"seconds for which a cloudy sky must last before it counts; read from and "
                   "also kept in Kiv_Nubilo (0 without it)"_s,
                   Activity::None, Source::SensorUnchecked},
                  cloudAlarmDelay, setCloudAlarmDelay);
}

void addSwitch(MemberList& list) {
    list.get(u"Kiv_DeviceRole"_s, {Text, u"role of Kiv_Nubilo"_s, Activity::Signal, Source::Sensor},
             forwardedRead(u"Kiv_DeviceRole"_s, Text));
    list.property(u"Kiv_DeviceSwitchCtrl"_s,
                  {Bool,
                   u"whether this program drives the roof switch; setting true hands it over to "
                   "clients, false takes it back (role MASTER only)"_s,
                   Activity::Signal, Source::Sensor},
                  answering([](Core& core) { return core.records.session.SWRole.Index == 0; }),
                  setDeviceSwitchCtrl);
    list.method(
        u"Kiv_LocalControl"_s, {{u"vData"_s, Bool, false}, {u"sLabel"_s, Text, false}},
        {Empty,
         u"takes (true) or gives back the caller's control of the verdict; the label names the "
         "caller; the rules decide again when no client has control; a caller that disconnects "
         "without giving it back leaves the verdict unsafe for the safe delay"_s},
        [](Core& core, QVariantList& arguments) {
            HasControl(core, arguments[0].toBool(), arguments[1].toString());
            return answered();
        });
    list.method(u"Kiv_SetSwitch"_s, {{u"vData"_s, I4, false}},
                {Empty, u"roof switch: 1 opens, 2 closes; while clients drive it"_s},
                [](Core& core, QVariantList& arguments) {
                    SetSwitch(core.sensor, core.records.session, arguments[0].toInt());
                    return answered();
                });
}

void addUnits(MemberList& list) {
    list.property(u"Kiv_SpeedUnits"_s,
                  {Text, u"unit of speeds: \"K\" km/h, \"M\" mph, \"m\" m/s, \"k\" knots"_s},
                  answering([](Core& core) {
                      return chosenLetter(core.records.units.UnitsSpeed, kSpeedCodes);
                  }),
                  [](Core& core, QVariantList& arguments) {
                      chooseByLetter(core.records.units.UnitsSpeed, kSpeedCodes,
                                     arguments[0].toString());
                      return answered();
                  });
    list.property(u"Kiv_TemperatureUnits"_s, {Text, u"unit of temperatures: \"C\" or \"F\""_s},
                  answering([](Core& core) {
                      return chosenLetter(core.records.units.UnitsTemp, kTemperatureCodes);
                  }),
                  [](Core& core, QVariantList& arguments) {
                      chooseByLetter(core.records.units.UnitsTemp, kTemperatureCodes,
                                     arguments[0].toString());
                      return answered();
                  });
}

void addRecorderAndVerdict(MemberList& list) {
    list.method(u"Kiv_XFERFileErr"_s,
                {Bool, u"whether the transfer file of Kiv_Nubilo failed"_s, Activity::Signal,
                 Source::Sensor},
                forwardedRead(u"XFERFileErr"_s, Bool));
    list.method(
        u"RecordStart"_s, {{u"flgAppendToFile"_s, Bool, false}},
        {Empty, u"starts recording to the user data file; appends to it, or overwrites it"_s},
        [](Core& core, QVariantList& arguments) {
            startRecording(core, arguments[0].toBool());
            return answered();
        });
    list.method(u"RecordStop"_s, {Empty, u"stops recording to the user data file"_s},
                [](Core& core, QVariantList&) {
                    stopRecording(core);
                    return answered();
                });
    list.method(u"SetUnSafe"_s, {{u"iP"_s, Bool, false}},
                {Empty, u"sets the verdict, while a client has control of it"_s}, setUnsafe);
    list.method(u"DeviceIsRunning"_s, {Bool, u"whether a monitoring session runs"_s},
                answering([](Core& core) { return core.records.session.running(); }));
}

void addWindow(MemberList& list) {
    list.method(u"WindowNormal"_s, {Empty, u"shows the main window in its normal size"_s},
                [](Core& core, QVariantList&) {
                    setWindowState(core.records, WindowState::Normal);
                    return answered();
                });
    list.method(u"WindowMinimize"_s, {Empty, u"minimises the main window"_s},
                [](Core& core, QVariantList&) {
                    setWindowState(core.records, WindowState::Minimized);
                    return answered();
                });
    const auto position = [&list](const QString& name, const QString& edge,
                                  QProperty<int> WindowControls::*field) {
        list.property(
            name, {I4, edge + u" edge of the main window, in screen units"_s, Activity::None},
            answering([field](Core& core) { return (core.records.window.*field).value(); }),
            [field](Core& core, QVariantList& arguments) {
                // The settings hold no other, and the next start would forget it.
                const int position = arguments[0].toInt();
                if (position != static_cast<std::int16_t>(position))
                    return failed(u"a position is -32768 to 32767"_s);
                core.records.window.*field = position;
                core.records.window.Placed = true;
                return answered();
            });
    };
    position(u"WindowLeft"_s, u"left"_s, &WindowControls::Left);
    position(u"WindowTop"_s, u"top"_s, &WindowControls::Top);
    list.method(u"BlinkLEDCOM"_s, {Empty, u"does nothing but show activity"_s},
                [](Core&, QVariantList&) { return answered(); });
}

void addSession(MemberList& list) {
    list.method(u"Device_Start"_s,
                {Variant, u"starts monitoring if it does not run"_s, Activity::None},
                [](Core& core, QVariantList&) {
                    Device_Start(core);
                    return answered();
                });
    list.method(u"Device_Stop"_s, {Variant, u"stops monitoring if it runs"_s, Activity::None},
                [](Core& core, QVariantList&) {
                    Device_Stop(core);
                    return answered();
                });
    list.method(u"Kiv_DeviceStop"_s,
                {Empty, u"stops monitoring if the caller is the only client"_s, Activity::None},
                [](Core& core, QVariantList&) {
                    if (core.records.session.ClientCount == 1)
                        Device_Stop(core);
                    return answered();
                });
    list.method(u"LastReading"_s,
                {Variant, u"date and time of the last reading of Kiv_Nubilo"_s, Activity::None},
                answering([](Core& core) {
                    const QDateTime last = core.records.readings.LastReading;
                    return QVariant::fromValue(
                        AutomationDate{last.isValid() ? daySerial(last) : 0});
                }));
    list.method(u"Kiv_TotalNoUsers"_s, {I4, u"number of attached clients"_s, Activity::None},
                answering([](Core& core) { return core.records.session.ClientCount; }));
    list.get(u"Name"_s, {Text, u"\"Kiv_Skyhold\""_s, Activity::None},
             answering([](Core&) { return u"Kiv_Skyhold"_s; }));
    list.get(u"Version"_s,
             {Text, u"version of this program, such as \"2.30.004\""_s, Activity::None},
             answering([](Core& core) { return core.version.text(); }));
    list.get(
        u"VersionNB"_s,
        {Text, u"version of Kiv_Nubilo, \"0.00.000\" while it is not connected"_s, Activity::None},
        sensorVersion);
}

} // namespace

void addControlMembers(MemberList& list) {
    addSafeDelay(list);
    addGraphArrays(list);
    addAlarms(list);
    addSwitch(list);
    addUnits(list);
    addRecorderAndVerdict(list);
    addWindow(list);
    addSession(list);
}

} // namespace skyhold
