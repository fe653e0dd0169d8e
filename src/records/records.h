// SPDX-License-Identifier: GPL-3.0-or-later
// All records of the monitor in one place, for those who own or persist them all. An operation
// takes the records that it works on, not this.
#pragma once

#include "model/current_readings.h"
#include "records/alarm_controls.h"
#include "records/condition_controls.h"
#include "records/file_controls.h"
#include "records/graph_history.h"
#include "records/graph_pictures.h"
#include "records/history_controls.h"
#include "records/network_controls.h"
#include "records/notice_controls.h"
#include "records/reading_display.h"
#include "records/session_controls.h"
#include "records/unit_controls.h"

namespace skyhold {

struct Records {
    Records();

    CurrentReadings readings;
    ReadingDisplay display;
    ConditionControls conditions;
    AlarmControls alarms;
    UnitControls units;
    StationFileControls stationFile;
    CcdapControls ccdap;
    DataFileControls dataFile;
    UploadControls upload;
    GraphControls graphs;
    GraphHistory history;
    GraphPictures pictures;
    HistoryControls historyKeep;
    NetworkControls network;
    NoticeControls notices;
    SessionControls session;
    WindowControls window;
};

} // namespace skyhold
