// SPDX-License-Identifier: GPL-3.0-or-later
#include "automation/automation_object.h"

#include "automation/all_members.h"
#include "automation/description.h"
#include "automation/form_members.h"
#include "automation/member_calls.h"
#include "automation/monitor_object.h"
#include "automation/object_safety.h"
#include "bus/typed_interface.h"
#include "core/clients.h"
#include "core/verdict.h"

#include <utility>

namespace skyhold {

namespace {

class AutomationObject : public AutomationServer {
  public:
    AutomationObject(const QDBusConnection& bus, MonitoringCore& core,
                     const std::shared_ptr<const MemberTable>& members)
        : AutomationServer(bus, QLatin1String(kProgramId), members,
                           [&core](int delta) { RegisterUsers(core.records, core.clock, delta); })
        , core_(core)
        , monitor_(bus, core) {
        for (InstanceInterface& interface :
             typedInterface(QLatin1String(kInterfaceName), nubiloInterfaceXml, members))
            addInterface(std::move(interface));
        addInterface(objectSafetyInterface({true, true}));
        addObject(QLatin1String(kFormName), formMembers(core));
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        core_.sensor.beginRequest();
        if (core_.TimerRead.overdue())
            distrustAfterGap(core_);
        // A call that serves events while it waits may have others within it.
        const QString client = message.service();
        const QString outer = std::exchange(core_.caller, client);
        const bool handled = AutomationServer::handleMessage(message, connection);
        core_.caller = outer;
        // It need not have an instance: the main window's members take control as well.
        if (hasControl(core_, client))
            watch(client);
        return handled;
    }

  protected:
    // A verdict must not stay frozen behind a client that took control of it and has gone.
    void clientLeft(const QString& client) override { loseControl(core_, client); }

  private:
    MonitoringCore& core_;
    MonitorObject monitor_;
};

} // namespace

std::unique_ptr<AutomationServer> makeAutomationObject(const QDBusConnection& bus,
                                                       MonitoringCore& core) {
    return std::make_unique<AutomationObject>(bus, core, memberCalls(core));
}

} // namespace skyhold
