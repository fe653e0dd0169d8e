// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/desktop_notifier.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

const QString kServer = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;
const QString kOpen = u"default"_s; // what a click on the notification itself means
const QString kButton = u"button"_s;
constexpr int kPatienceMs = 5000;
constexpr int kAsTheServerLikes = -1;

QDBusMessage callOf(const QString& method) {
    return QDBusMessage::createMethodCall(kServer, kPath, kServer, method);
}

} // namespace

DesktopNotifier::DesktopNotifier(const SessionBus& bus)
    : bus_(bus) {}

// Of whichever program owns the name: to look that up would wait for the bus.
void DesktopNotifier::listen(QDBusConnection connection) {
    if (listening_ == connection.name())
        return;
    listening_ = connection.name();
    id_ = 0;
    connection.connect({}, kPath, kServer, u"ActionInvoked"_s, this, SLOT(onAction(QDBusMessage)));
    connection.connect({}, kPath, kServer, u"NotificationClosed"_s, this,
                       SLOT(onClosed(QDBusMessage)));
}

// One that comes before the server has given the last one its id waits for it: it could not take
// its place otherwise.
void DesktopNotifier::show(const DesktopNotification& notification) {
    closeNext_ = false;
    if (underWay_)
        next_ = notification;
    else
        send(notification);
}

void DesktopNotifier::send(const DesktopNotification& notification) {
    const QDBusConnection connection = bus_.connection();
    if (!connection.isConnected())
        return;
    listen(connection);
    QStringList actions;
    if (opened)
        actions += {kOpen, u"Open"_s};
    if (!notification.actionLabel.isEmpty())
        actions += {kButton, notification.actionLabel};
    QDBusMessage call = callOf(u"Notify"_s);
    call.setArguments(
        {u"Kiv_Skyhold"_s, id_, notification.icon, notification.title,
         notification.text.toHtmlEscaped(), actions,
         QVariantMap{{u"urgency"_s, QVariant::fromValue(static_cast<uchar>(notification.urgency))}},
         kAsTheServerLikes});
    underWay_ = true;
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(call, kPatienceMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        takeReply(watcher->reply());
    });
}

void DesktopNotifier::takeReply(const QDBusMessage& reply) {
    underWay_ = false;
    const bool shown = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty();
    id_ = shown ? reply.arguments().constFirst().toUInt() : 0;
    server_ = reply.service();
    if (std::exchange(closeNext_, false))
        close();
    else if (next_)
        send(*std::exchange(next_, std::nullopt));
}

void DesktopNotifier::close() {
    next_.reset();
    closeNext_ = underWay_;
    if (underWay_ || id_ == 0)
        return;
    QDBusMessage call = callOf(u"CloseNotification"_s);
    call.setArguments({std::exchange(id_, 0)});
    call.setAutoStartService(false);
    bus_.connection().send(call);
}

bool DesktopNotifier::isOurs(const QDBusMessage& signal) const {
    const QVariantList arguments = signal.arguments();
    return id_ != 0 && signal.service() == server_ && !arguments.isEmpty() &&
           arguments.constFirst().toUInt() == id_;
}

void DesktopNotifier::onAction(const QDBusMessage& signal) {
    if (!isOurs(signal))
        return;
    const QString which = signal.arguments().value(1).toString();
    if (which == kButton && action)
        action();
    if (which == kOpen && opened)
        opened();
}

void DesktopNotifier::onClosed(const QDBusMessage& signal) {
    if (isOurs(signal))
        id_ = 0;
}

} // namespace skyhold
