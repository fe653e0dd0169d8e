// SPDX-License-Identifier: GPL-3.0-or-later
// An instance of the monitor's automation object, and the bus connection that it belongs to.
#pragma once

#include "bus/automation_value.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>

namespace skyhold {

enum class WhenAbsent { Fail, Start };

// While it lives, the monitor counts an attached user. It has a connection of its own, so that even
// an instance that a hung monitor makes too late goes with it. Nothing but WhenAbsent::Start ever
// starts the program.
class MonitorConnection {
  public:
    // Attaches; calls may be made when `lost()` is empty afterwards.
    explicit MonitorConnection(WhenAbsent absent = WhenAbsent::Fail);
    ~MonitorConnection();
    Q_DISABLE_COPY_MOVE(MonitorConnection)

    // Why no calls can be made any more, with a hint; empty while they can.
    const QString& lost() const { return lost_; }

    // From now on the next calls together may take as long as this; at first 5 s, with attaching.
    void allow(int ms) { deadline_ = QDeadlineTimer(ms); }

    // `arguments` come back as the call left them.
    AutomationReply invoke(const QString& name, unsigned use, QVariantList& arguments);

    // The instance's introspection data as text.
    AutomationReply introspection();

  private:
    void attach(WhenAbsent absent);
    QDBusMessage createInstance();
    bool startProgram();
    QDBusMessage send(QDBusMessage call);
    // The answer as an error; it ends the attachment unless a member itself refused the call.
    AutomationReply failure(const QDBusMessage& reply);

    QDBusConnection bus_;
    QDeadlineTimer deadline_;
    QString owner_; // the unique name of the program that made the instance
    QString path_;  // of the instance
    QString lost_;
};

inline constexpr int kPatienceMs = 5000;

} // namespace skyhold
