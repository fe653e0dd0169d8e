#include "gateway/roof_mover.h"

#include "bus/automation_value.h"
#include "gateway/bus_call.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

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

// What was safe when the request came need not be safe when its turn has come.
void RoofMover::next() {
    if (orders_.isEmpty())
        return;
    if (orders_.constFirst().open && !board_.look(bootMs()).safe())
        end({}, u"The roof is not opened while it is not safe"_s);
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
        const bool open = orders_.constFirst().open;
        if (open && !board_.look(bootMs()).safe()) {
            end(instance, u"The roof is not opened while it is not safe"_s);
            return;
        }
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
