#include "core/clients.h"

#include "core/alarms.h"
#include "core/session.h"

namespace skyhold {

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
    Records& records = core.records;
    records.safety.LocalControl = flag;
    records.session.LblControl.Caption = text;
    if (flag)
        releaseAlarm(alarmPlayer(core), records.readings);
    records.session.Frame3.Visible = !flag;
}

} // namespace skyhold
