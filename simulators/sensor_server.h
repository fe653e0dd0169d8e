// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor program on the bus, with the ways in which a program can fail to answer.
#pragma once

#include "bus/automation_server.h"
#include "simulators/faults.h"

#include <QDBusMessage>
#include <QStringList>

#include <deque>

namespace skyhold {

// Besides the members of the sensor program there are two for tests, always answered at once, on
// every object and on the class factory's path too:
//   Sim_Fault(text)     adds a fault, "none" ends them all and answers what was kept back;
//   Sim_Calls() -> text the calls since it was last asked, oldest first, one a line.
class SensorServer : public AutomationServer {
  public:
    SensorServer(const QDBusConnection& bus, std::shared_ptr<const MemberTable> members,
                 Faults& faults);

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    struct Call {
        QString object; // "MForm.RainLimit2" for a further object, empty for an instance
        QString member;
        unsigned use = 0;
        QVariantList arguments; // as they came off the bus
    };
    std::optional<Call> callOf(const QDBusMessage& message) const;
    void answerSimulatorCall(const Call& call, const QDBusMessage& message,
                             const QDBusConnection& connection);
    void log(const QString& line);
    int lateness(const QString& member) const; // milliseconds
    void answer(const QDBusMessage& message, const QDBusConnection& connection);
    void dieWhenTold(const QString& member) const;

    std::shared_ptr<const MemberTable> members_;
    Faults& faults_;
    std::deque<QString> calls_;
    QList<QDBusMessage> keptBack_;
};

} // namespace skyhold
