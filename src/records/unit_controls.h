// SPDX-License-Identifier: GPL-3.0-or-later
// Display units, the texts that name units in the station file, and the compass labels.
#pragma once

#include "model/quantity.h"
#include "model/units.h"
#include "records/controls.h"

#include <array>
#include <optional>

namespace skyhold {

struct UnitControls {
    OptionGroup UnitsTemp;     // index of kTemperatureCodes
    OptionGroup UnitsSpeed;    // index of kSpeedCodes
    OptionGroup DateFormat;    // 0 dd/mm/yy, 1 mm/dd/yy
    Label TemperatureUnitText; // "°C", "°F"
    Label SpeedUnitText;       // "km/hr", "mph", "m/s", "knot"

    // In force before the last change; limits and history are in these units until the change has
    // converted them. Nothing before the first choice.
    std::optional<TemperatureCode> PreviousTemperatureUnit;
    std::optional<SpeedCode> PreviousSpeedUnit;
    bool Loading = false; // settings are being loaded: a chosen unit is recorded, not converted to

    QString StringKPH, StringMPH, StringMPS, StringKNOTS; // a file's unit text occurs within it
    QString StringDC, StringDF; // pieces separated by ";", a piece occurs within the unit text
    QString ExcChrHumidity;     // every character is removed from humidity values

    std::array<QString, 16> Cardinal; // label k stands for k * 22.5 degrees
    Button ButtCardinal, ButtUnits;
};

// The label that shows the unit in force; null for a measure whose unit never changes.
inline Label* unitLabel(Measure measure, UnitControls& units) {
    switch (measure) {
    case Measure::Speed:
        return &units.SpeedUnitText;
    case Measure::Temperature:
    case Measure::TemperatureDifference:
        return &units.TemperatureUnitText;
    default:
        return nullptr;
    }
}

} // namespace skyhold
