// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/roof_mover.h"

#include "bus/automation_value.h"
#include "gateway/bus_call.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kPatienceMs = 3000;
constexpr qsizetype kMostOrders = 8;
constexpr int kOpen = 1;
constexpr int kClosed = 2;

QDBusMessage callOf(const QString& path, const QString& interface, const QString& member) {
    return QDBusMessage::createMethodCall(QLatin1String(kMonitorName), path, interface, member);
}

} // namespace

RoofMover::RoofMover(const Follower& follower, const StateBoard& board)
    : follower_(follower)
    , board_(board) {
    registerAutomationTypes();
}

MoveRoof RoofMover::mover() {
    return [this](bool open, std::function<void(const QString&)> done) {
        QMetaObject::invokeMethod(
            this,
            [this, open, done = std::move(done)] {
                if (!open)
                    dropOpenings();
                if (orders_.size() >= kMostOrders) {
                    done(u"The switch is asked for too often"_s);
                    return;
                }
                orders_.append({open, done});
                if (orders_.size() == 1)
                    next();
            },
            Qt::QueuedConnection);
    };
}

// Whoever closes does not wait for those that would open.
void RoofMover::dropOpenings() {
    for (qsizetype i = orders_.size() - 1; i > 0; --i) {
        if (orders_[i].open)
            orders_.takeAt(i).done(u"The roof is closed at the same time"_s);
    }
}

// The reason why the first order is not carried out; empty while it can be.
QString RoofMover::refusal() const {
    if (!orders_.constFirst().open)
        return {};
    if (!board_.look(bootMs()).safe())
        return u"The roof is not opened while it is not safe"_s;
    if (std::any_of(orders_.begin() + 1, orders_.end(), [](const Order& o) { return !o.open; }))
        return u"The roof is closed at the same time"_s;
    return {};
}

// What was safe when the request came need not be safe when its turn has come.
void RoofMover::next() {
    if (orders_.isEmpty())
        return;
    if (const QString reason = refusal(); !reason.isEmpty())
        end({}, reason);
    else
        create();
}

void RoofMover::create() {
    ask(follower_.bus(),
        callOf(u"/Kiv_Skyhold/Nubilo"_s, u"Kiv.Automation.ClassFactory"_s, u"CreateInstance"_s),
        this, kPatienceMs, [this](const QDBusMessage& reply) {
            const QString instance = reply.arguments().value(0).value<QDBusObjectPath>().path();
            if (answers(reply) && !instance.isEmpty())
                checkRole(instance);
            else
                end({}, u"The monitor does not answer"_s);
        });
}

void RoofMover::invoke(const QString& instance, const QString& member, unsigned use,
                       const QVariantList& arguments,
                       const std::function<void(const QDBusMessage&)>& then) {
    QDBusMessage call = callOf(instance, u"Kiv.Automation.Dispatch"_s, u"InvokeByName"_s);
    call << member << use << QVariant(arguments);
    ask(follower_.bus(), call, this, kPatienceMs, then);
}

// The monitor passes a call over in silence where the sensor program does not let it.
void RoofMover::checkRole(const QString& instance) {
    invoke(instance, u"Kiv_DeviceRole"_s, kRead, {}, [this, instance](const QDBusMessage& reply) {
        const QString role = reply.arguments().value(0).value<QDBusVariant>().variant().toString();
        if (!answers(reply) || role != u"MASTER") {
            end(instance, u"Kiv_Nubilo does not let the roof's switch be moved"_s);
            return;
        }
        if (const QString reason = refusal(); !reason.isEmpty()) {
            end(instance, reason);
            return;
        }
        const bool open = orders_.constFirst().open;
        invoke(instance, u"Kiv_SetSwitch"_s, kMethod, {open ? kOpen : kClosed},
               [this, instance](const QDBusMessage& moved) {
                   end(instance, answers(moved)
                                     ? QString()
                                     : u"The monitor refused: "_s + moved.errorMessage());
               });
    });
}

void RoofMover::end(const QString& instance, const QString& fault) {
    if (!instance.isEmpty())
        follower_.bus().send(callOf(instance, u"Kiv.Automation.Dispatch"_s, u"Release"_s));
    const Order order = orders_.takeFirst();
    order.done(fault);
    next();
}

} // namespace skyhold
