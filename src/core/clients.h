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

// The calling client takes (flag true) or gives back control of the verdict. `text` says who.
// Several may have it; the rules decide again when the last one has given it back.
void HasControl(MonitoringCore& core, bool flag, const QString& text);
bool hasControl(const MonitoringCore& core, const QString& client);

// The client has gone without giving control back. What it said no longer counts as safe, and when
// nobody else has control the way back to safe has to be earned from the start.
void loseControl(MonitoringCore& core, const QString& client);

// The user lets the rules decide again, whoever has control. The way back to safe has to be earned.
void TakeBackControl(MonitoringCore& core);

} // namespace skyhold
