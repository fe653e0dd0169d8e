// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop's notifications (org.freedesktop.Notifications). Nothing here waits: without a
// server, or with one that hangs, nothing is shown and nothing happens.
#pragma once

#include "bus/session_bus.h"

#include <QDBusMessage>
#include <QObject>

#include <optional>

namespace skyhold {

struct DesktopNotification {
    QString title;
    QString text;        // plain
    QString icon;        // by the names that desktops share
    int urgency = 1;     // 0 low, 1 normal, 2 critical
    QString actionLabel; // of a button; empty: none
};

class DesktopNotifier : public QObject {
    Q_OBJECT

  public:
    // `bus` outlives it; the connection is taken anew for each notification.
    explicit DesktopNotifier(const SessionBus& bus);

    // In the place of the last one, whatever became of it.
    void show(const DesktopNotification& notification);
    // Takes the last one back.
    void close();

    std::function<void()> action; // the button was pressed
    std::function<void()> opened; // the notification itself was clicked

  private Q_SLOTS:
    void onAction(const QDBusMessage& signal);
    void onClosed(const QDBusMessage& signal);

  private:
    void listen(QDBusConnection connection);
    void send(const DesktopNotification& notification);
    void takeReply(const QDBusMessage& reply);
    bool isOurs(const QDBusMessage& signal) const;

    const SessionBus& bus_;
    QString listening_; // the connection whose signals come here
    QString server_;    // that showed the last one; only its signals count
    quint32 id_ = 0;    // of the one that is shown; 0: none
    bool underWay_ = false;
    bool closeNext_ = false;                  // once its id is known
    std::optional<DesktopNotification> next_; // likewise
};

} // namespace skyhold
