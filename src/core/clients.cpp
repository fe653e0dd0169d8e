// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/clients.h"

#include "core/alarms.h"
#include "core/session.h"
#include "core/verdict.h"

#include <algorithm>

namespace skyhold {

namespace {

auto isOf(const QString& client) {
    return [&client](const ControlHolder& holder) {
        return holder.client == client;
    };
}

// `text` is shown when nobody has control.
void showControl(MonitoringCore& core, const QString& text) {
    const bool held = !core.controllers.empty();
    core.records.session.LblControl.Caption = held ? core.controllers.back().label : text;
    core.records.session.Frame3.Visible = !held;
    if (!held)
        core.decidedBy.clear();
}

// Without cycles nobody would decide again.
void distrust(MonitoringCore& core, const QString& cause) {
    if (core.TimerRead.enabled())
        distrustVerdict(core, cause);
}

} // namespace

void RegisterUsers(Records& records, const Clock& clock, int delta) {
    SessionControls& session = records.session;
    session.ClientCount += delta;
    ShowAutomation(session, true);
    if (session.ClientCount == 0) {
        session.FrameCOM.Visible = false;
        session.ButtStop.Visible = true;
        records.window.CloseItemEnabled = true;
    } else if (session.ClientCount == 1 && delta == 1) {
        session.LastTimedCall = clock.MsClock();
        session.CallCounter = 0;
        session.COMCalls.Caption = QStringLiteral(" ");
        session.COMPeriod.Caption = QStringLiteral(" ");
        session.ButtStop.Visible = false;
        session.FrameCOM.Visible = true;
        records.window.CloseItemEnabled = false;
    }
    UpdateMenus(records);
}

void ShowAutomation(SessionControls& session, bool on) {
    session.LblUsers.Caption =
        on ? QStringLiteral("Attached Users: ") + QString::number(session.ClientCount)
           : QStringLiteral("Automation is off");
}

void BlinkLEDCOM(SessionControls& session, const Clock& clock, Colour colour, bool showPeriod) {
    session.CallCounter = session.CallCounter >= 9999 ? 0 : session.CallCounter + 1;
    session.COMCalls.Caption = QString::number(session.CallCounter);
    session.LEDCOM.blink(colour);
    if (!showPeriod)
        return;
    const std::int64_t now = clock.MsClock();
    session.COMPeriod.Caption =
        QString::number((now - session.LastTimedCall) / 1000) + QStringLiteral("s");
    session.LastTimedCall = now;
}

void HasControl(MonitoringCore& core, bool flag, const QString& text) {
    std::erase_if(core.controllers, isOf(core.caller));
    if (flag) {
        core.controllers.push_back({core.caller, text});
        releaseAlarm(alarmPlayer(core), core.records.readings);
    }
    showControl(core, text);
}

bool hasControl(const MonitoringCore& core, const QString& client) {
    return std::ranges::any_of(core.controllers, isOf(client));
}

void loseControl(MonitoringCore& core, const QString& client) {
    const auto holder = std::ranges::find_if(core.controllers, isOf(client));
    if (holder == core.controllers.end())
        return;
    const QString who = holder->label.isEmpty() ? QStringLiteral("A client") : holder->label;
    core.controllers.erase(holder);
    const bool decided = core.controllers.empty() || core.decidedBy == client;
    showControl(core, QString());
    if (decided)
        distrust(core, who + QStringLiteral(" had control and has disconnected"));
}

void TakeBackControl(MonitoringCore& core) {
    if (core.controllers.empty())
        return;
    core.controllers.clear();
    showControl(core, QString());
    distrust(core, QStringLiteral("Control has been taken back"));
}

} // namespace skyhold
