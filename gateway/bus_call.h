// SPDX-License-Identifier: GPL-3.0-or-later
// Calls on the bus that do not wait.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QObject>

#include <utility>

namespace skyhold {

inline constexpr char kMonitorName[] = "Kiv_Skyhold.Nubilo";

// Calls `then` with the reply, or with an error, as long as `owner` lives. Never starts a program.
template <class Then>
void ask(const QDBusConnection& bus, QDBusMessage call, QObject* owner, int patienceMs, Then then) {
    call.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, patienceMs), owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner,
                     [then = std::move(then)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         then(finished->reply());
                     });
}

inline bool answers(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage;
}

} // namespace skyhold
