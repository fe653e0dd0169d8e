// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/session_bus.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kRetryMs = 5000;

QString connectionName(int number) {
    return u"kiv_skyhold_%1"_s.arg(number);
}

} // namespace

// A connection under a name of its own: the shared one of the process stays broken once it broke.
SessionBus::SessionBus()
    : connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName(0))) {
    retry_.setInterval(kRetryMs);
    QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] {
        if (connectAgain() && found)
            found();
    });
    watch();
}

SessionBus::~SessionBus() {
    QDBusConnection::disconnectFromBus(connectionName(connections_));
}

bool SessionBus::connectAgain() {
    QDBusConnection::disconnectFromBus(connectionName(connections_));
    ++connections_;
    connection_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName(connections_));
    watch();
    return connection_.isConnected();
}

void SessionBus::watch() {
    if (!connection_.isConnected()) {
        retry_.start();
        return;
    }
    retry_.stop();
    // The connection calls a slot when it breaks; this one's end is what is listened to.
    auto* link = new QObject(&retry_);
    QObject::connect(link, &QObject::destroyed, &retry_, [this] {
        retry_.start();
        if (lost)
            lost();
    });
    connection_.connect(QString(), u"/org/freedesktop/DBus/Local"_s,
                        u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, link,
                        SLOT(deleteLater()));
}

} // namespace skyhold
