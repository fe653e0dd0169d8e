// SPDX-License-Identifier: GPL-3.0-or-later
// What is known of one public member, and a list that numbers members in interface order.
#pragma once

#include "bus/automation_server.h"
#include "core/monitoring_core.h"

#include <functional>
#include <vector>

namespace skyhold {

// What a call shows on the window: nothing, a call, or a call and the time since the last such one.
enum class Activity { None, Signal, SignalWithPeriod };

// Where a member's answer comes from: this program; the sensor program, with nothing done and a
// default answered while it is not connected; or the sensor program, with an error then.
enum class Source { Local, Sensor, SensorUnchecked };

using MemberAct = std::function<AutomationReply(MonitoringCore& core, QVariantList& arguments)>;

// A method, or one of the two halves of a property (get, let), which share name and id.
struct PublicMember {
    QString name;
    std::int32_t id = 0;
    MemberUse use = kMethod;
    AutomationType result = AutomationType::Empty;
    std::vector<AutomationParameter> parameters;
    Activity activity = Activity::Signal;
    Source source = Source::Local;
    QString help;
    MemberAct act;
    QString enumeration = {}; // of the result
};

// What most members of a kind have in common.
struct MemberKind {
    AutomationType type = AutomationType::Empty; // of a method's result or of a property
    QString help;
    Activity activity = Activity::Signal;
    Source source = Source::Local;
    QString enumeration = {};
};

class MemberList {
  public:
    void method(const QString& name, std::vector<AutomationParameter> parameters,
                const MemberKind& kind, MemberAct act);
    void method(const QString& name, const MemberKind& kind, MemberAct act) {
        method(name, {}, kind, std::move(act));
    }
    void get(const QString& name, const MemberKind& kind, MemberAct get);
    // The let's new value is arguments[0].
    void property(const QString& name, const MemberKind& kind, MemberAct get, MemberAct let,
                  bool letByReference = false);
    // The next method id stays unused.
    void skipMethodId() { ++nextMethod_; }

    std::vector<PublicMember> take() { return std::move(members_); }

  private:
    void add(const QString& name, std::int32_t id, MemberUse use, const MemberKind& kind,
             MemberAct act);

    std::vector<PublicMember> members_;
    std::int32_t nextMethod_ = 0x60030096;   // upwards
    std::int32_t nextProperty_ = 0x68030093; // downwards
};

inline AutomationReply answered(const QVariant& result = {}) {
    return {result, AutomationError::None, {}};
}

inline AutomationReply failed(const QString& text) {
    return {{}, AutomationError::Exception, text};
}

// To the nearest integer that 32 bits hold, halves to even.
std::int32_t rounded(double value);

// A member that answers what a function of the core gives.
template <typename Get>
MemberAct answering(Get get) {
    return [get](MonitoringCore& core, QVariantList&) {
        return answered(QVariant(get(core)));
    };
}

} // namespace skyhold
