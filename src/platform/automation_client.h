// The client side of automation objects of other programs.
#pragma once

#include "platform/automation_value.h"

#include <QDBusConnection>

#include <functional>
#include <memory>

namespace skyhold {

// One object of another program; its members are found by name with every call.
class DispatchObject {
  public:
    virtual ~DispatchObject() = default;

    // `use` is a MemberUse. `arguments` are by reference: they come back as the callee left them.
    // Never throws; a call that could not be made or was refused answers an error.
    virtual AutomationReply invoke(const QString& name, unsigned use, QVariantList& arguments) = 0;

    // The object that a member answered with, to call its members; nothing when it is none.
    virtual std::unique_ptr<DispatchObject> object(const QVariant& answer) = 0;

    // False once the other program has gone away or forgotten the object.
    virtual bool alive() const = 0;

    // True while the bus starts the program: there is nothing to call yet, and the object is to be
    // created again when this is over.
    virtual bool starting() const { return false; }

    // Begins a span of calls (a read cycle) that together may take no longer than `ms` of real
    // time; what is asked for after that fails at once.
    virtual void beginCalls(int ms) = 0;
};

// Creates the object of a program identifier; nothing when the program is not there.
using CreateObject = std::function<std::unique_ptr<DispatchObject>(const QString& programId)>;

// Creation over the session bus, starting the program when the bus knows how to, without waiting
// for it. A call waits at most 2 s. After one time-out every further call fails at once while an
// asynchronous probe asks the object; its answer ends that state.
CreateObject busObjectCreator(const QDBusConnection& bus);

constexpr int kCallTimeoutMs = 2000;

} // namespace skyhold
