// Automation clients: how many are attached, what they do, and who has control.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// delta +1 when an automation object is created, -1 when it is released.
void RegisterUsers(Records& records, const Clock& clock, int delta);

// Whether other programs can reach this one at all, shown in the place of the number of users.
void ShowAutomation(SessionControls& session, bool on);

// Shows one automation call; with showPeriod also the seconds since the last such call.
void BlinkLEDCOM(SessionControls& session, const Clock& clock, Colour colour, bool showPeriod);

// A client takes (flag true) or gives back control of the verdict. `text` says who.
void HasControl(MonitoringCore& core, bool flag, const QString& text);

} // namespace skyhold
