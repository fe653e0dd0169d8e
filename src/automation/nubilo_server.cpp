#include "automation/nubilo_server.h"

#include "automation/description.h"
#include "automation/form_members.h"
#include "automation/nubilo_members.h"
#include "automation/nubilo_table.h"
#include "automation/object_safety.h"
#include "core/clients.h"
#include "core/observation.h"
#include "platform/typed_interface.h"

namespace skyhold {

namespace {

class NubiloServer : public AutomationServer {
  public:
    NubiloServer(const QDBusConnection& bus, MonitoringCore& core,
                 const std::shared_ptr<const MemberTable>& members)
        : AutomationServer(bus, QLatin1String(kProgramId), members,
                           [&core](int delta) { RegisterUsers(core.records, core.clock, delta); })
        , core_(core) {
        for (InstanceInterface& interface :
             typedInterface(QLatin1String(kInterfaceName), nubiloInterfaceXml(), members))
            addInterface(std::move(interface));
        addInterface(objectSafetyInterface({true, true}));
        addObject(QLatin1String(kFormName), formMembers(core));
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        core_.sensor.beginRequest();
        if (core_.TimerRead.overdue())
            distrustAfterGap(core_);
        const bool controlled = core_.records.safety.LocalControl;
        const bool handled = AutomationServer::handleMessage(message, connection);
        if (!controlled && core_.records.safety.LocalControl)
            controller_ = message.service();
        return handled;
    }

  protected:
    // A verdict must not stay frozen behind a client that took control of it and has gone.
    void clientLeft(const QString& client) override {
        if (core_.records.safety.LocalControl && client == controller_)
            HasControl(core_, false, QString());
    }

  private:
    MonitoringCore& core_;
    QString controller_; // the client that took local control
};

} // namespace

std::unique_ptr<AutomationServer> makeNubiloServer(const QDBusConnection& bus,
                                                   MonitoringCore& core) {
    return std::make_unique<NubiloServer>(bus, core, nubiloMembers(core));
}

} // namespace skyhold
