// Units as people write them.
#pragma once

#include "model/quantity.h"

#include <QString>

namespace skyhold {

// The unit of a measure by the codes in force ("C", "F" or " "; "K", "M", "m" or "k"): "°C",
// "km/h", "%"; empty for a plain count.
QString unitText(Measure measure, const QString& temperatureUnit, const QString& speedUnit);

} // namespace skyhold
