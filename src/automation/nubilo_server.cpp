#include "automation/nubilo_server.h"

#include "automation/description.h"
#include "automation/form_members.h"
#include "automation/nubilo_members.h"
#include "automation/nubilo_table.h"
#include "automation/object_safety.h"
#include "core/clients.h"
#include "platform/typed_interface.h"

namespace skyhold {

namespace {

void registerClient(MonitoringCore& core, int delta) {
    RegisterUsers(core.records, core.clock, delta);
    if (core.records.session.ClientCount == 0 && core.records.safety.LocalControl)
        HasControl(core, false, QString());
}

class NubiloServer : public AutomationServer {
  public:
    NubiloServer(const QDBusConnection& bus, MonitoringCore& core,
                 const std::shared_ptr<const MemberTable>& members)
        : AutomationServer(bus, QLatin1String(kProgramId), members,
                           [&core](int delta) { registerClient(core, delta); })
        , core_(core) {
        for (InstanceInterface& interface :
             typedInterface(QLatin1String(kInterfaceName), nubiloInterfaceXml(), members))
            addInterface(std::move(interface));
        addInterface(objectSafetyInterface({true, true}));
        addObject(QLatin1String(kFormName), formMembers(core));
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        core_.sensor.beginRequest();
        return AutomationServer::handleMessage(message, connection);
    }

  private:
    MonitoringCore& core_;
};

} // namespace

std::unique_ptr<AutomationServer> makeNubiloServer(const QDBusConnection& bus,
                                                   MonitoringCore& core) {
    return std::make_unique<NubiloServer>(bus, core, nubiloMembers(core));
}

} // namespace skyhold
