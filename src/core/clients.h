// SPDX-License-Identifier: GPL-3.0-or-later
// Automation clients: how many are attached, what they do, and who has control.
#pragma once

#include "core/monitoring_core.h"

namespace skyhold {

// delta +1 when an automation object is created, -1 when it is released.
void RegisterUsers(Records& records, const Clock& clock, int delta);

// Whether other programs can reach this one at all, shown in place of the number of users.
void ShowAutomation(SessionControls& session, bool on);

// Shows one automation call; with showPeriod also the seconds since the last such call.
void BlinkLEDCOM(SessionControls& session, const Clock& clock, Colour colour, bool showPeriod);

// The calling client takes (flag true) or gives back control of the verdict. `text` says who.
// Several may have it; the rules decide again when the last one has given it back.
void HasControl(MonitoringCore& core, bool flag, const QString& text);
bool hasControl(const MonitoringCore& core, const QString& client);

// The client has disconnected without giving control back. Its verdict no longer counts as safe,
// and when no other client has control, safe waits for the whole safe delay.
void loseControl(MonitoringCore& core, const QString& client);

// The user lets the rules decide again, whichever client has control. Safe waits for the whole safe
// delay.
void TakeBackControl(MonitoringCore& core);

} // namespace skyhold
