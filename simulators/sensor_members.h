#pragma once

#include "bus/automation_server.h"
#include "simulators/sensor_device.h"

namespace skyhold {

// The public members of the sensor program. `form` is the object that "MForm" answers with. The
// faults "nan" and "wrong-types" spoil every answer while they are in force.
std::shared_ptr<MemberTable> sensorMembers(SensorDevice& device, const Faults& faults,
                                           const QDBusObjectPath& form);

// Adds the object "MForm" with the controls below it to the server.
void addSensorForm(AutomationServer& server, SensorDevice& device);

} // namespace skyhold
