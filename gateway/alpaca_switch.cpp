// SPDX-License-Identifier: GPL-3.0-or-later
// Alpaca's Switch: the roof's switch, and the verdict for clients that know switches only.
#include "gateway/alpaca_members.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using enum AlpacaType;

struct SwitchRow {
    const char* name;
    const char* description;
};

constexpr SwitchRow kSwitches[] = {
    {"Roof", "The roof: on is open"},
    {"Safe", "On while it is safe"},
    {"Monitoring", "On while Kiv_Skyhold monitors"},
};
constexpr int kCount = static_cast<int>(std::size(kSwitches));
constexpr int kRoof = 0;

// Nothing where it is not known.
std::optional<bool> stateOf(int id, const View& view) {
    if (id == 1)
        return view.safe();
    if (id == 2)
        return view.live() && view.snapshot->document[u"session"_s] == u"running"_s;
    if (!view.live())
        return std::nullopt;
    const QString state = view.snapshot->document[u"roof"_s][u"state"_s].toString();
    if (state == u"open" || state == u"closed")
        return state == u"open";
    return std::nullopt;
}

bool writable(int id, const AlpacaServer& server) {
    return id == kRoof && server.allowSwitch;
}

// Calls with the number of a switch that there is.
template <AlpacaOutcome (*withId)(const AlpacaCall& call, int id)>
AlpacaOutcome checked(const AlpacaCall& call) {
    const int id = call.integer("Id");
    if (id < 0 || id >= kCount)
        return alpacaError(AlpacaError::InvalidValue,
                           u"Id %1 is not from 0 to %2"_s.arg(id).arg(kCount - 1));
    return withId(call, id);
}

AlpacaOutcome maxSwitch(const AlpacaCall&) {
    return alpacaNumber(kCount);
}

AlpacaOutcome canWrite(const AlpacaCall& call, int id) {
    return alpacaBool(writable(id, call.server));
}

AlpacaOutcome canAsync(const AlpacaCall&, int) {
    return alpacaBool(false);
}

AlpacaResult unknownState(int id) {
    return alpacaError(
        AlpacaError::InvalidOperation,
        u"The state of switch %1 is not known now"_s.arg(QLatin1String(kSwitches[id].name)));
}

AlpacaOutcome getSwitch(const AlpacaCall& call, int id) {
    const std::optional<bool> state = stateOf(id, call.view);
    return state ? alpacaBool(*state) : unknownState(id);
}

AlpacaOutcome getSwitchValue(const AlpacaCall& call, int id) {
    const std::optional<bool> state = stateOf(id, call.view);
    return state ? alpacaNumber(*state ? 1 : 0) : unknownState(id);
}

AlpacaOutcome switchName(const AlpacaCall&, int id) {
    return alpacaText(QLatin1String(kSwitches[id].name));
}

AlpacaOutcome switchDescription(const AlpacaCall&, int id) {
    return alpacaText(QLatin1String(kSwitches[id].description));
}

AlpacaOutcome zero(const AlpacaCall&, int) {
    return alpacaNumber(0);
}

AlpacaOutcome one(const AlpacaCall&, int) {
    return alpacaNumber(1);
}

AlpacaOutcome notAsynchronous(const AlpacaCall& call, int id) {
    return alpacaError(AlpacaError::NotImplemented,
                       u"Switch %1 is not asynchronous"_s.arg(id) +
                           (call.put() ? u"; use SetSwitch"_s : QString()));
}

AlpacaOutcome setName(const AlpacaCall&, int id) {
    return alpacaError(AlpacaError::NotImplemented, u"The name of switch %1 is fixed"_s.arg(id));
}

// Open while it is safe, closed always; whether it takes effect is the monitor's to say, which
// takes it only where clients drive the switch.
AlpacaOutcome move(const AlpacaCall& call, int id, bool open) {
    if (id != kRoof)
        return alpacaError(AlpacaError::NotImplemented,
                           u"Switch %1 can only be read"_s.arg(QLatin1String(kSwitches[id].name)));
    if (!writable(id, call.server))
        return alpacaError(
            AlpacaError::NotImplemented,
            u"The roof's switch can only be read; --allow-switch lets it be moved"_s);
    if (!call.view.live())
        return alpacaError(AlpacaError::Driver, call.view.fault);
    if (call.view.word() == Word::Unknown)
        return alpacaError(AlpacaError::Driver, u"No monitoring session is running"_s);
    if (open && !call.view.safe())
        return alpacaError(AlpacaError::Driver, u"The roof is not opened while it is not safe"_s);
    if (call.view.snapshot->document[u"roof"_s][u"driven"_s] == true)
        return alpacaError(AlpacaError::Driver,
                           u"Kiv_Skyhold drives the roof's switch itself, by its verdict"_s);
    return AlpacaLater([move = call.server.moveRoof, open](AlpacaDone done) {
        move(open, [done = std::move(done)](const QString& fault) {
            done(fault.isEmpty() ? AlpacaResult() : alpacaError(AlpacaError::Driver, fault));
        });
    });
}

AlpacaOutcome setSwitch(const AlpacaCall& call, int id) {
    return move(call, id, call.boolean("State"));
}

AlpacaOutcome setSwitchValue(const AlpacaCall& call, int id) {
    const double value = call.number("Value");
    if (id == kRoof && writable(id, call.server) && value != 0 && value != 1)
        return alpacaError(AlpacaError::InvalidValue,
                           u"Value %1 of switch %2 is neither 0 nor 1"_s.arg(value).arg(id));
    return move(call, id, value == 1);
}

constexpr AlpacaParameter kId{"Id", Integer};

constexpr AlpacaMember kMembers[] = {
    {"maxswitch", false, Integer, maxSwitch},
    {"canasync", false, Bool, checked<canAsync>, {kId}},
    {"canwrite", false, Bool, checked<canWrite>, {kId}},
    {"getswitch", false, Bool, checked<getSwitch>, {kId}},
    {"getswitchdescription", false, Text, checked<switchDescription>, {kId}},
    {"getswitchname", false, Text, checked<switchName>, {kId}},
    {"getswitchvalue", false, Number, checked<getSwitchValue>, {kId}},
    {"maxswitchvalue", false, Number, checked<one>, {kId}},
    {"minswitchvalue", false, Number, checked<zero>, {kId}},
    {"statechangecomplete", false, Bool, checked<notAsynchronous>, {kId}},
    {"switchstep", false, Number, checked<one>, {kId}},
    {"cancelasync", true, None, checked<notAsynchronous>, {kId}},
    {"setasync", true, None, checked<notAsynchronous>, {kId, {"State", Bool}}},
    {"setasyncvalue", true, None, checked<notAsynchronous>, {kId, {"Value", Number}}},
    {"setswitch", true, None, checked<setSwitch>, {kId, {"State", Bool}}},
    {"setswitchname", true, None, checked<setName>, {kId, {"Name"}}},
    {"setswitchvalue", true, None, checked<setSwitchValue>, {kId, {"Value", Number}}},
};

} // namespace

std::span<const AlpacaMember> switchMembers() {
    return kMembers;
}

AlpacaState switchState(const AlpacaCall& call) {
    static constexpr const char* kNames[] = {"GetSwitch0", "GetSwitch1", "GetSwitch2"};
    static constexpr const char* kValues[] = {"GetSwitchValue0", "GetSwitchValue1",
                                              "GetSwitchValue2"};
    AlpacaState state;
    for (int id = 0; id < kCount; ++id) {
        if (const std::optional<bool> on = stateOf(id, call.view)) {
            state.emplaceBack(kNames[id], *on ? "true" : "false");
            state.emplaceBack(kValues[id], *on ? "1" : "0");
        }
    }
    return state;
}

} // namespace skyhold
