// The weather station's data file: found, read and shown in the station value table.
#pragma once

#include "datafiles/station_values.h"
#include "platform/text_forms.h"
#include "model/current_readings.h"
#include "records/file_controls.h"
#include "records/reading_display.h"
#include "records/unit_controls.h"

namespace skyhold {

// A station's file is a few kilobytes; a larger one was chosen by mistake and is not read.
constexpr std::int64_t kStationFileLimit = std::int64_t{16} * 1024 * 1024;

// What earlier reads of the session found in the file. A file that is read while the station
// writes it lacks something of that.
struct StationFileMemory {
    bool anyRead = false;
    StationNames names;
    bool endedInLineEnd = false; // of a CSV file

    // At every session start.
    void reset() { *this = {}; }
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

// The values of the file may be judged, those that are missing left out.
inline bool mayBeJudged(StationRead read) {
    return read == StationRead::Valid || read == StationRead::ValueMissing;
}

// Fills the station value table and, from it, StationDateTime and BarometricPressure; records
// `fileTimeText`, the modification time that the caller took before this read, as LastFileTime.
// Up to NotText in the list above nothing is filled (and NotText alone records the time); after it
// every entry is, a missing value with an empty text.
StationRead ReadStationFile(const StationFileControls& controls, const UnitControls& units,
                            const NumberForms& forms, const QString& fileTimeText,
                            StationFileMemory& memory, CurrentReadings& readings,
                            ReadingDisplay& display);

// The text for the status line, empty for Valid.
QString stationReadStatus(StationRead read);

} // namespace skyhold
