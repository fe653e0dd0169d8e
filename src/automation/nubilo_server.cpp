#include "automation/nubilo_server.h"

#include "automation/nubilo_members.h"
#include "core/clients.h"

namespace skyhold {

std::unique_ptr<AutomationServer> makeNubiloServer(const QDBusConnection& bus,
                                                   MonitoringCore& core) {
    return std::make_unique<AutomationServer>(
        bus, QStringLiteral("Kiv_Skyhold.Nubilo"), nubiloMembers(core), [&core](int delta) {
            RegisterUsers(core.records, core.clock, delta);
            if (core.records.session.ClientCount == 0 && core.records.safety.LocalControl)
                HasControl(core, false, QString());
        });
}

} // namespace skyhold
