// SPDX-License-Identifier: GPL-3.0-or-later
// What the table of a station's file says of the quantities that conditions are judged by.
#pragma once

#include "datafiles/station_table.h"
#include "model/quantity.h"
#include "platform/text_forms.h"
#include "records/unit_controls.h"

#include <optional>

namespace skyhold {

// A station without an instrument never writes its name, and its value is 0. A name that is there
// has to hold a number, from the first read on: stations write "--" or nothing for an instrument
// that failed, and a 0 in its place would pass for that of a calm night.
struct StationValue {
    std::optional<double> number = 0;
    bool missing = false; // the station does not say what it should
};

struct StationValues {
    PerQuantity<StationValue> values; // of the station's quantities; of Dew the dew point
    // Degrees. A text that is not a compass label is not a number, but not missing either: stations
    // have none to write in still air.
    StationValue direction;

    bool anyMissing() const;
};

// The names of these that a station has written so far; one that is gone again is missing.
struct StationNames {
    PerQuantity<bool> found;
    bool direction = false;

    bool any() const;
    bool all() const;
};

// The names that the table holds.
StationNames namesIn(const StationTable& table);
StationNames operator|(const StationNames& a, const StationNames& b);

// `known`: the names of this session, those of the table included.
StationValues stationValues(const StationTable& table, const StationNames& known,
                            const UnitControls& units, const NumberForms& forms);

// True when a text that breaks off in its last record may have lost one of these quantities: the
// last field is its name or the beginning of a name that is nowhere else in the table.
bool mayHaveLostValue(const StationTable& table);

} // namespace skyhold
