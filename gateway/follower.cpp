// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/follower.h"

#include "gateway/bus_call.h"

#include <QDBusVariant>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kService = QString::fromLatin1(kMonitorName);
const QString kPath = u"/Kiv_Skyhold/Monitor"_s;
const QString kInterface = u"Kiv.Skyhold.Monitor1"_s;
const QString kBus = u"org.freedesktop.DBus"_s;
constexpr int kProbeMs = 1000;
constexpr int kPatienceMs = 10'000;

QDBusMessage get(const QString& property) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, kPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << kInterface << property;
    return call;
}

QString variantText(const QDBusMessage& reply) {
    return reply.arguments().value(0).value<QDBusVariant>().variant().toString();
}

} // namespace

Follower::Follower(StateBoard& board, std::function<void()> changed)
    : board_(board)
    , changed_(std::move(changed)) {
    bus_.lost = [this] {
        lose(u"The session bus is gone"_s);
    };
    bus_.found = [this] {
        begin();
    };
    probes_.setInterval(kProbeMs);
    connect(&probes_, &QTimer::timeout, this, [this] { probe(); });
    probes_.start();
    begin();
}

void Follower::begin() {
    QDBusConnection bus = bus_.connection();
    if (!bus.isConnected()) {
        lose(u"There is no session bus"_s);
        return;
    }
    for (const QString& signal : {u"CycleDone"_s, u"StateChanged"_s})
        bus.connect(kService, kPath, kInterface, signal, this, SLOT(onDocument(QString)));
    bus.connect(kBus, u"/org/freedesktop/DBus"_s, kBus, u"NameOwnerChanged"_s, {kService},
                QString(), this, SLOT(onOwnerChange(QString, QString, QString)));
    lose(u"The monitor is not running"_s);
    readState();
}

void Follower::lose(const QString& why) {
    present_ = false;
    last_ = {};
    board_.publish({.document = {}, .text = {}, .fault = why});
    changed_();
}

void Follower::onOwnerChange(const QString& name, const QString&, const QString& after) {
    if (name != kService)
        return;
    lose(u"The monitor is not running"_s);
    if (!after.isEmpty())
        readState();
}

void Follower::onDocument(const QString& text) {
    take(text.toUtf8());
}

void Follower::take(const QByteArray& text) {
    const std::int64_t now = bootMs();
    present_ = true;
    board_.answered(now);
    // What changes between two cycles does not make the readings any younger.
    Snapshot snapshot = snapshotOf(text, now);
    const bool sameCycle = !last_.isEmpty() && last_[u"cycle"_s] == snapshot.document[u"cycle"_s] &&
                           last_[u"time"_s] == snapshot.document[u"time"_s];
    if (sameCycle)
        snapshot.heardMs = lastMs_;
    last_ = snapshot.document;
    lastMs_ = snapshot.heardMs;
    board_.publish(std::move(snapshot));
    changed_();
}

void Follower::readState() {
    ask(bus_.connection(), get(u"State"_s), this, kPatienceMs, [this](const QDBusMessage& reply) {
        // A cycle that ended meanwhile is newer.
        if (answers(reply) && last_.isEmpty())
            take(variantText(reply).toUtf8());
    });
}

// The monitor's own thread answers, so that one that hangs is seen between two cycles.
void Follower::probe() {
    if (probing_)
        return;
    if (!bus_.connection().isConnected()) {
        endRound();
        return;
    }
    probing_ = true;
    ask(bus_.connection(), get(u"Version"_s), this, kPatienceMs, [this](const QDBusMessage& reply) {
        probing_ = false;
        if (answers(reply)) {
            board_.answered(bootMs());
            if (!present_)
                readState();
        }
        endRound();
    });
}

void Follower::endRound() {
    roundDone(present_ ? u"Follows the monitor"_s : u"Does not hear the monitor: says unsafe"_s);
}

} // namespace skyhold
