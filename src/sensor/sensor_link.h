// SPDX-License-Identifier: GPL-3.0-or-later
// The client of the sensor program: the program with the cloud sensor, rain sensor and roof
// switch, reached through its automation object "Kiv_Nubilo.Nubilo".
#pragma once

#include "bus/automation_client.h"
#include "model/current_readings.h"
#include "platform/clock.h"
#include "records/alarm_controls.h"
#include "records/messages.h"
#include "records/reading_display.h"
#include "records/session_controls.h"

#include <QElapsedTimer>

namespace skyhold {

// The records that opening the link reads and settles.
struct SensorLinkRecords {
    CurrentReadings& readings;
    SessionControls& session;
    AlarmControls& alarms;
    ConditionControls& conditions;
    ReadingDisplay& display;
};

class SensorLink {
  public:
    SensorLink(CreateObject createObject, Clock& clock);

    // Creates the object, checks its version, settles who drives the switch, claims control,
    // starts its device and waits up to NBTimeout seconds for its first data. True when data is
    // there. Events are served in every wait, and between calls that are slow; a program that
    // hangs or has gone meanwhile is taken up as soon as it is back. A second start must not begin
    // meanwhile.
    bool OpenSensor(const SensorLinkRecords& records, const ShowMessage& showMessage);

    // Gives control back and lets the object go; its device is not stopped. Ends a start's waits.
    void CloseSensor(CurrentReadings& readings);

    bool connected() const { return object_ != nullptr; }

    // Marks the beginning of a read cycle: its calls together take at most a bounded time, and a
    // sensor program that has come back is taken up again. Until it has its first data this counts
    // as a call that failed. A role that could not be read is asked for again.
    void beginCycle(const SensorLinkRecords& records);
    // Marks the beginning of an automation client's request outside of a cycle; its calls together
    // are bounded in the same way.
    void beginRequest();
    // True when a call has failed since this was last asked. Asked once in each cycle, so that a
    // failure lasts until as much as a whole cycle has passed without one.
    bool consumeCallFailure();

    // Calls of members by name. Without a value when there is no object, the call failed, or the
    // answer does not convert.
    std::optional<QVariant> read(const QString& name, QVariantList arguments = {});
    // Sends these reads ahead; they are to be asked for in this order.
    void readAhead(const QStringList& names);
    std::optional<double> readReal(const QString& name);
    std::optional<bool> readBoolean(const QString& name);
    std::optional<QString> readText(const QString& name); // one line of at most 255 characters
    // Cloud, rain or brightness as a level 0..3; any other number is none.
    std::optional<std::int32_t> readLevel(const QString& name);
    bool write(const QString& name, const QVariant& value);
    bool call(const QString& name);

    // A call that has consequences: it has time of its own, and a sensor program that hangs is sent
    // it without waiting. What `Opens` the roof is not sent to one that hangs: the sky may
    // be different when it goes on. It is sent with the first cycle in which the program
    // answers.
    enum class Effect { Opens, Other };
    bool command(const QString& name, const QVariantList& arguments, Effect effect = Effect::Other);

    // As read, but with the error for a client that is to receive it.
    AutomationReply forward(const QString& name, unsigned use, QVariantList& arguments);
    // The object that a member answered with, for calls of its own members; nothing when it is none
    // or the link has ended.
    std::unique_ptr<DispatchObject> object(const QVariant& answer);

    // Description of level 1..3 of cloud, rain or brightness as the sensor program names it, asked
    // for once in a cycle; empty when it does not answer.
    QString levelDescription(Quantity quantity, std::int32_t level);

  private:
    enum class Progress {
        Done,
        Absent,  // there is no such program
        Refused, // too old, or it does not say its version
        Starting,
        Awaited, // it has yet to answer
    };
    Progress takeUp(const SensorLinkRecords& records, const ShowMessage& showMessage);
    Progress create();
    bool awaitTakeUp(const SensorLinkRecords& records, const ShowMessage& showMessage);
    void serveEvents();
    bool beginStartCall();
    void prepare(const SensorLinkRecords& records);
    Progress CheckSensorVersion(const ShowMessage& showMessage);
    void settleRole(const SensorLinkRecords& records);
    bool waitForData(const SensorLinkRecords& records, const ShowMessage& showMessage);
    void letGo();
    bool sendCommand(const QString& name, unsigned use, const QVariantList& arguments);

    CreateObject createObject_;
    Clock& clock_;
    std::unique_ptr<DispatchObject> awaited_; // stands for the object that is still to come
    std::unique_ptr<DispatchObject> object_;
    QElapsedTimer held_;      // since events were last served by a start
    bool wanted_ = false;     // between OpenSensor and CloseSensor
    bool opening_ = false;    // within OpenSensor
    bool accepted_ = false;   // the object's version is good
    bool roleSettled_ = true; // of the accepted object
    bool callFailed_ = false;
    bool dataAwaited_ = false; // of a sensor program that was taken up again

    struct Description {
        std::int32_t level = 0;
        QString text;
    };
    PerQuantity<Description> descriptions_; // of this cycle
};

// Shows or hides the switch labels and sets whether this program drives the switch.
void Disp_SwitchLabels(SessionControls& session, ReadingDisplay& display);

// Passes an automation client's switch value on: only while a session runs, this program does not
// drive the switch itself, and the sensor program's role is "MASTER".
void SetSwitch(SensorLink& sensor, const SessionControls& session, std::int32_t value);

} // namespace skyhold
