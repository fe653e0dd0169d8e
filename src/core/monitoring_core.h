// SPDX-License-Identifier: GPL-3.0-or-later
// The one owner of all monitoring state: the records, the link to the sensor program, the timers.
//
// Its operations are free functions, each in the header of its subject: start_up.h, session.h,
// read_cycle.h, recording.h, upload.h, clients.h. Everything runs on the user-interface thread.
#pragma once

#include "bus/automation_client.h"
#include "core/remember.h"
#include "core/upload.h"
#include "datafiles/station_file.h"
#include "datafiles/user_data_file.h"
#include "graphs/render.h"
#include "model/cycle_result.h"
#include "platform/clock.h"
#include "platform/file_watch.h"
#include "platform/image_library.h"
#include "platform/media_control.h"
#include "platform/settings_store.h"
#include "platform/text_forms.h"
#include "platform/timer.h"
#include "records/messages.h"
#include "records/records.h"
#include "sensor/sensor_link.h"

#include <functional>
#include <vector>

namespace skyhold {

struct ProgramVersion {
    int major = 0;
    int minor = 0;
    int revision = 0;
    QString text() const;    // "2.30.004"
    QString title() const;   // "Kiv_Skyhold (v2.30.004)", the main window's caption
    QString trayTip() const; // "Kiv Skyhold (v2.30.004)", at most 63 characters
};

// An automation client that has control of the verdict.
struct ControlHolder {
    QString client; // its name on the bus
    QString label;  // who it says it is
};

struct MonitoringCore {
    MonitoringCore(Clock& clock, SettingsStore& settings, CreateObject createObject,
                   MediaControl& media, const ProgramVersion& version);

    Clock& clock;
    SettingsStore& settings;
    MediaControl& media;
    ProgramVersion version;
    Records records;
    SensorLink sensor;
    ImageLibrary images;
    ImageWriter imageWriter{images};

    Timer TimerRead;   // one read cycle a tick
    Timer TimerUpload; // the upload hand-off when due
    Timer TimerPlayer; // notices the end of an alarm's sound
    Timer TimerLook;   // a look at the sensor program between two cycles
    FileWatch stationWatch;
    Timer Timer6; // news and last update status, once after loading

    // Set by the face of the program.
    ShowMessage showMessage;
    std::function<void(const QString&)> showNews;   // unless set, a message like any other
    std::function<void(const Message&)> showNotice; // a message that does not wait for an answer;
                                                    // unless set, one like any other
    std::function<void()> closeNotices;             // those that are still shown
    std::function<void()> closeWindow;              // asks for the window to be closed
    // Session or verdict have changed between two cycles.
    std::function<void()> stateChanged = [] {
    };

    CycleResult result; // of the last cycle
    NumberForms forms;  // the locale's separators, re-read by every cycle
    StationFileMemory stationMemory;
    UserDataRecorder recorder;
    RenderedGraphs renderedGraphs;
    HistoryWriter history;
    Remembered remembered;
    UploadHandOff handOff;
    bool closeWanted = false;   // a close was asked for while a session start was waiting
    bool recordAtStart = false; // recording begins with the next session
    bool ending = false;        // the program ends: messages are not answered any more

    QString caller; // the automation client whose call is at work; empty while none is
    std::vector<ControlHolder> controllers; // the latest last; none: the rules decide
    QString decidedBy;                      // the client that set the verdict last
};

} // namespace skyhold
