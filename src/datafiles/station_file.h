// SPDX-License-Identifier: GPL-3.0-or-later
// The weather station's data file: found, judged by its age, and read into an observation.
#pragma once

#include "datafiles/staleness.h"
#include "datafiles/station_values.h"
#include "model/observation.h"
#include "platform/clock.h"
#include "platform/text_forms.h"
#include "records/file_controls.h"
#include "records/unit_controls.h"

namespace skyhold {

// A station's file is a few kilobytes; a larger one was chosen by mistake and is not read.
constexpr std::int64_t kStationFileLimit = std::int64_t{16} * 1024 * 1024;

// What is known of the file from one cycle to the next.
struct StationFileMemory {
    QString lastFileTime = neverReadFileTime(); // of the last open
    QDateTime recordTime;                       // the last date and time that could be read
    std::int64_t rewrittenMs = 0;               // when the file was last found rewritten

    // What earlier reads of the session found in it. A file that is read while the station writes
    // it lacks something of that.
    bool anyRead = false;
    StationNames names;
    bool endedInLineEnd = false; // of a CSV file

    // The file must prove its age again: at every session start, and after a gap.
    void reset() {
        lastFileTime = neverReadFileTime();
        anyRead = false;
        names = {};
        endedInLineEnd = false;
    }
};

enum class StationRead {
    Valid,
    Missing,
    NotAFile, // a folder, a pipe or a device
    Unreadable,
    TooLarge,    // over kStationFileLimit
    NotText,     // holds NUL bytes
    NoReadings,  // none of the names that the conditions are judged by
    Incomplete,  // a CSV file that stops too early
    ValueMissing // a value that is judged is none, or its name is gone
};

// Reads the file into `seen`: the station value table and its numbers. Up to NotText in the list
// above nothing is filled; after it every entry is, a missing value with an empty text. The file's
// time becomes the last file time as soon as it could be opened.
StationRead ReadStationFile(const StationFileControls& controls, const UnitControls& units,
                            const NumberForms& forms, const QDateTime& modified,
                            StationFileMemory& memory, StationObservation& seen);

// The text for the status line, empty for Valid.
QString stationReadStatus(StationRead read);

// The station's part of a cycle: whether its file is there and fresh, and if so, what it says.
StationObservation observeStation(const StationFileControls& controls, const UnitControls& units,
                                  const NumberForms& forms, const Clock& clock,
                                  StationFileMemory& memory);

} // namespace skyhold
