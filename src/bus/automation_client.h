// SPDX-License-Identifier: GPL-3.0-or-later
// The client side: automation objects of other programs.
#pragma once

#include "bus/automation_value.h"

#include <QDBusConnection>

#include <functional>
#include <memory>

namespace skyhold {

// How far an object can be called.
enum class ObjectState {
    Starting, // the bus starts the program: to be created again when this is over
    Creating, // the program has yet to answer with the object: the same
    Ready,
    Hanging, // a call had no answer in time, and none has come since
    Gone,    // the program has gone away or forgotten the object
};

// Real milliseconds that a span of calls may wait for answers: all plain calls together, and all
// that have consequences, which so have time left whatever the others took.
struct CallTime {
    int calls = 0;
    int commands = 0;
};

// One object of another program; its members are found by name with every call.
class DispatchObject {
  public:
    virtual ~DispatchObject() = default;

    // `use` is a MemberUse. `arguments` are by reference: they come back as the callee left them.
    // Never throws; a call that could not be made or was refused answers an error.
    virtual AutomationReply invoke(const QString& name, unsigned use, QVariantList& arguments) = 0;

    // A call that has consequences. It has time of its own, and a program that hangs or whose time
    // is spent is sent it all the same, so that it finds it when it goes on: once for each change
    // of the arguments, since a message cannot be recalled. Without an answer it is an error.
    virtual AutomationReply command(const QString& name, unsigned use, QVariantList arguments) = 0;

    // The object that a member answered with, to call its members; nothing when it is none.
    virtual std::unique_ptr<DispatchObject> object(const QVariant& answer) = 0;

    virtual ObjectState state() const = 0;

    // Sends reads of these members, without arguments, ahead of their turn: the program works on
    // one while another is on its way. `invoke` then takes their answers, in this order; any other
    // call drops those that are left. Not sent to a program whose last span of calls was slow.
    virtual void readAhead(const QStringList& /*names*/) {}

    // Begins a span of calls (a read cycle); what is asked for when its time is spent fails at
    // once.
    virtual void beginCalls(const CallTime& time) = 0;
};

// Creates the object of a program identifier; nothing when the program is not there. What is still
// Starting or Creating is created again when that is over, and let go after that; one that is let
// go before is released when it comes.
using CreateObject = std::function<std::unique_ptr<DispatchObject>(const QString& programId)>;

// Creation over the session bus, starting the program when the bus knows how to. It waits only a
// moment. A call waits at most 2 s. After one time-out every further call fails at once while an
// asynchronous probe asks the object; its answer ends that state.
CreateObject busObjectCreator(const QDBusConnection& bus);

constexpr int kCallTimeoutMs = 2000;
constexpr int kCreationMs = 500; // the longest that creating waits

} // namespace skyhold
