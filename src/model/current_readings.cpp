// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/current_readings.h"

namespace skyhold {

int SecondsSinceGoodData(const CurrentReadings& readings) {
    const bool failing =
        readings.StationFileMissing || readings.StationDataOld || readings.SensorError;
    return failing ? 1000 : 3;
}

} // namespace skyhold
