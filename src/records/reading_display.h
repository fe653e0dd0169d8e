// SPDX-License-Identifier: GPL-3.0-or-later
// The labels that show the readings, their conditions and their times.
#pragma once

#include "model/observation.h"
#include "model/quantity.h"
#include "records/controls.h"

#include <array>

namespace skyhold {

struct ReadingDisplay {
    PerQuantity<Label> Label0; // headers
    PerQuantity<Label> LVal;   // values; of Dew the dew point, though its spread is judged
    PerQuantity<Label> LCond;  // descriptions of the levels
    Label Label0Direction, LValWindDir;
    Label LValSwitch;
    Label Label3Sensor;  // time of the sensor program's last reading
    Label Label3Station; // time of the station's last record
    Label LblSwitch;
    Label SensorStatus; // "NB error" while the sensor program fails
    Label LblCause;     // why the verdict is what it is, in words
    Label NBAlarmMsg;
    Label WSAlarmMsg;
    LampPair LEDRead;

    // The station value table, by `StationEntry`.
    std::array<Label, kStationEntries> LblWSDesc;
    std::array<Label, kStationEntries> LblWSValue;
    const Label& stationValue(StationEntry entry) const {
        return LblWSValue[static_cast<std::size_t>(entry)];
    }
};

// Sets a label's text colour and text.
void PaintLabel(Label& label, Colour colour, const QString& text);

} // namespace skyhold
