// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/session.h"

#include "conditions/threshold_rules.h"
#include "core/alarms.h"
#include "core/present.h"
#include "core/read_cycle.h"
#include "core/recording.h"
#include "core/roof.h"
#include "core/upload.h"
#include "platform/files.h"
#include "records/status_lines.h"

#include <vector>

namespace skyhold {

namespace {

void setSession(MonitoringCore& core, SessionState state) {
    if (core.records.session.State == state)
        return;
    core.records.session.State = state;
    rememberState(core);
    core.stateChanged();
}

void resetForSession(MonitoringCore& core) {
    Records& records = core.records;
    core.result.number = 0;
    core.result.distrusted.clear();
    core.result.roof = {};
    records.readings.SessionStart = core.clock.now();
    records.readings.StationDataOld = false;
    records.readings.SensorError = false;
    presentNoVerdict(records);
    SetIdleControls(records, false);
    SetStatusText(records.session.Statusbar1, QString(), kNavy);
}

// Makes a missing folder; the code says whether that worked, and is empty when the folder was
// there.
QString checkFolder(Label& statusbar1, const QString& what, const QString& folder,
                    const QString& created, const QString& notCreated) {
    SetStatusText(statusbar1, what + folder, kDarkGreen);
    if (folderExists(folder))
        return {};
    return createFolder(folder) ? created : notCreated;
}

void checkFolders(Records& records) {
    GraphControls& graphs = records.graphs;
    Label& status = records.session.Statusbar1;
    // The direction graph's own image does not ask for the check.
    bool images = false;
    for (std::size_t i = 0; i < graphs.GraphImage.size(); ++i)
        images = images || (i != kDirectionGraph && graphs.GraphImage[i].checked());

    QString codes;
    if (images)
        codes = checkFolder(status, QStringLiteral("Checking Image File Path : "),
                            graphs.GraphImagePath.Caption, QStringLiteral("i21 "),
                            QStringLiteral("i22 "));
    codes += checkFolder(status, QStringLiteral("Checking Data File Path : "),
                         records.dataFile.LblPathName.Caption, QStringLiteral("d11"),
                         QStringLiteral("d12"));
    if (!codes.isEmpty())
        SetErrorCodes(records.session.Statusbar2, codes, kRed);
}

// False when the session cannot go on; it has been stopped then, and `messages` say why.
bool startReading(MonitoringCore& core, std::vector<Message>& messages) {
    Records& records = core.records;
    SessionControls& session = records.session;
    checkFolders(records);
    if (core.recordAtStart) {
        core.recordAtStart = false;
        startRecording(core, true);
    }
    SetStatusText(session.Statusbar1, QStringLiteral("Waiting for Kiv_Nubilo"), kNavy);
    const SensorLinkRecords link{records.readings, session, records.alarms, records.conditions,
                                 records.display};
    const bool open = core.sensor.OpenSensor(link, [&messages](const Message& message) {
        messages.push_back(message);
        return MessageAnswer::Ok;
    });
    if (session.StartCancelled) {
        SetStatusText(session.Statusbar1, QString(), kNavy);
        messages.clear();
        return false;
    }
    if (!open) {
        SetStatusText(session.Statusbar1, QStringLiteral("Problem with Kiv_Nubilo"), kRed);
        messages.push_back({QStringLiteral("Cannot read Kiv_Nubilo"), MessageStyle::Ok, {}});
        StopSession(core);
        records.display.LblCause.Caption = messages.front().text;
        return false;
    }
    StartReading(core);
    return true;
}

void start(MonitoringCore& core, std::vector<Message>& messages) {
    Records& records = core.records;
    SessionControls& session = records.session;
    resetForSession(core);
    if (session.flgReadStation.checked() && !startReading(core, messages))
        return;
    if (session.flgUpload.checked()) {
        StartUpload(core);
        core.TimerUpload.arm(1000 * records.upload.RefreshUpload.chosenSeconds());
    }
    if (!session.flgReadStation.checked() && !session.flgUpload.checked()) {
        StopSession(core);
        return;
    }
    setSession(core, SessionState::Running);
    UpdateMenus(records);
}

// What is to be said of a start that failed. It is over by then: Start is offered beside the
// message, and a client's start never waits for the user to read it.
std::vector<Message> begin(MonitoringCore& core) {
    SessionControls& session = core.records.session;
    std::vector<Message> messages;
    core.closeNotices(); // of the last start
    session.StartCancelled = false;
    setSession(core, SessionState::Starting);
    start(core, messages);
    if (session.State == SessionState::Starting) // it has failed
        setSession(core, SessionState::Idle);
    if (core.closeWanted && core.closeWindow) {
        core.closeWanted = false;
        core.closeWindow();
    }
    return messages;
}

} // namespace

void StartSession(MonitoringCore& core) {
    const SessionControls& session = core.records.session;
    if (session.begun() || !acceptLimits(core.records.conditions, core.showMessage))
        return;
    for (const Message& message : begin(core)) {
        if (!session.begun()) // a client may have started again while one was read
            core.showMessage(message);
    }
}

void StopSession(MonitoringCore& core) {
    Records& records = core.records;
    SessionControls& session = records.session;
    // A start that waits unwinds by itself.
    session.StartCancelled = session.State == SessionState::Starting;
    session.ButtStop.Enabled = false;
    closeRoofAtStop(core);
    if (session.flgReadStation.checked()) {
        StopReading(core);
        core.sensor.CloseSensor(records.readings);
    }
    if (session.flgUpload.checked()) {
        StopUpload(core);
    } else {
        SetIdleControls(records, true);
        session.ButtStop.Enabled = true;
    }
    releaseAlarm(alarmPlayer(core), records.readings);
    if (session.running())
        setSession(core, SessionState::Idle);
    UpdateMenus(records);
}

void StopByUser(MonitoringCore& core) {
    if (askAboutRoof(core))
        StopSession(core);
}

void Device_Start(MonitoringCore& core) {
    SessionControls& session = core.records.session;
    if (session.begun())
        return;
    dropRefusedLimits(core.records.conditions); // a client must not wait for the user
    QStringList texts;
    for (const Message& message : begin(core))
        texts.append(message.text);
    session.ButtStop.Visible = false;
    if (!texts.isEmpty())
        core.showNotice({texts.join(u'\n'), MessageStyle::Ok, {}});
}

void Device_Stop(MonitoringCore& core) {
    SessionControls& session = core.records.session;
    if (!session.begun())
        return;
    StopSession(core);
    session.ButtStop.Visible = false;
}

void SetIdleControls(Records& records, bool idle) {
    SessionControls& session = records.session;
    GraphControls& graphs = records.graphs;
    session.ButtStart.Visible = idle;
    session.ButtStop.Visible = !idle;

    for (CheckBox* box :
         {&session.flgReadStation, &session.flgUpload, &session.EmulatorFlag,
          &records.alarms.AlarmWS, &records.alarms.AlarmNB, &records.conditions.QuickReaction,
          &records.conditions.EarnFirstSafe, &records.conditions.WSDataOldUnsafe,
          &records.conditions.NBDataOldUnsafe, &graphs.ImageType})
        box->Enabled = idle;
    for (CheckBox& box : graphs.GraphGenerate)
        box.Enabled = idle;
    for (CheckBox& box : graphs.GraphImage)
        box.Enabled = idle;
    records.conditions.RoofAtStop.Enabled = idle;
    for (NumberBox* box : {&records.conditions.FlapClosures, &records.conditions.FlapLongest,
                           &records.conditions.RoofCheck, &records.conditions.SafeDelayVal,
                           &session.NBTimeout, &graphs.GraphNoPoints, &graphs.GraphFreq})
        box->Enabled = idle;
    for (OptionGroup* group : {&session.SWRole, &graphs.ImageQuality, &records.units.UnitsTemp,
                               &records.units.UnitsSpeed, &records.units.DateFormat})
        group->Enabled = idle;
    for (Button* button : {&records.ccdap.ButtCCDAP4, &graphs.ButtGraphImagePath,
                           &records.units.ButtCardinal, &records.units.ButtUnits})
        button->Enabled = idle;
    records.ccdap.FileNameCCDAP4.Enabled = idle;

    records.display.LEDRead.Visible = session.flgReadStation.checked();
    records.upload.LEDUpload.Visible = session.flgUpload.checked();
}

void UpdateMenus(Records& records) {
    WindowControls& window = records.window;
    const bool minimised = window.State == WindowState::Minimized;
    window.mPopRestore.Enabled = minimised;
    window.mPopMinimize.Enabled = !minimised;
    if (minimised && window.HasTrayIcon)
        window.Visible = false;

    const bool clients = records.session.ClientCount > 0;
    const bool running = records.session.running();
    for (MenuEntry* entry : {&window.mPopStart, &window.mnuStart})
        entry->Visible = !clients && !running;
    for (MenuEntry* entry : {&window.mPopStop, &window.mnuStop})
        entry->Visible = !clients && running;
    window.mSep0.Visible = !clients;
    window.mSep1.Visible = !clients;
    window.mnuUpdate.Enabled = !clients && !running;
    window.MnuExit.Enabled = !clients;
    window.mPopExit.Enabled = !clients;
}

} // namespace skyhold
