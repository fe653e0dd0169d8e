// SPDX-License-Identifier: GPL-3.0-or-later
// Session, status lines, automation activity, menus and the window's own state.
#pragma once

#include "model/session_state.h"
#include "records/controls.h"

#include <cstdint>

namespace skyhold {

struct SessionControls {
    CheckBox flgReadStation;
    CheckBox flgUpload;
    CheckBox EmulatorFlag;
    ComboBox RefreshRead;
    NumberBox NBTimeout;        // seconds to wait for the sensor program's first data
    OptionGroup SWRole;         // 0 "Enabled": this program drives the switch; 1 "Disable"
    bool SwitchControl = false; // this program drives the switch itself

    bool running() const { return State == SessionState::Running; }
    bool begun() const { return State != SessionState::Idle; }

    Button ButtStart, ButtStop;
    Label Statusbar1; // status line
    Label Statusbar2; // status codes
    QProperty<SessionState> State{SessionState::Idle};
    bool StartCancelled = false;           // a start was stopped while it waited
    QProperty<std::int64_t> CyclesDone{0}; // since the program began; for those who follow cycles
    QProperty<Verdict> verdict{Verdict::None}; // of the last cycle, while there is a session

    std::int32_t ClientCount = 0;
    Label LblUsers;
    Frame FrameCOM;
    Label COMCalls, COMPeriod;
    LampPair LEDCOM;
    std::int32_t CallCounter = 0;   // 0..9999
    std::int64_t LastTimedCall = 0; // MsClock
    Label LblControl;               // text of the client that holds local control
    Frame Frame3;                   // shown unless a client holds local control
};

enum class WindowState { Normal, Minimized, Maximized };

struct WindowControls {
    QProperty<QString> Caption;
    QProperty<WindowState> State{WindowState::Normal};
    QProperty<bool> Visible{true};
    QProperty<bool> CloseItemEnabled{true};
    // Position in screen units; invalid until loaded or placed, then the window is centred.
    QProperty<int> Left{0}, Top{0};
    bool Placed = false;
    QProperty<int> SSTab1{0}, SSTab2{1}, SSTab3{0};
    QProperty<int> VScrollPos0{0}, VScrollPos1{0}, VScrollPos3{15}, HScrollPos2{15};
    QProperty<int> Look{0};   // 0 dark panel, 1 night vision, 2 as the desktop
    QString HelpFile;         // empty: none installed
    bool HasTrayIcon = false; // a minimised window may be hidden
    QString LastUpdateMsg;
    QString Kiv_News;
    QString UpdateBaseAddress; // of the maker's server, http or https; empty: none

    MenuEntry mnuStart, mnuStop, mSep0, MnuExit, mnuUpdate;
    MenuEntry mPopStart, mPopStop, mSep1, mPopRestore, mPopMinimize, mPopExit;
};

} // namespace skyhold
