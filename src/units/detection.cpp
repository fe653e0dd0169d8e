// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/detection.h"

namespace skyhold {

namespace {

bool anyPieceOccurs(const QString& pieces, QStringView text) {
    if (pieces.isEmpty())
        return false;
    for (const QStringView piece : QStringView(pieces).split(u';')) {
        if (text.contains(piece))
            return true;
    }
    return false;
}

} // namespace

TemperatureCode DetectTemperatureUnit(QStringView unitText, const UnitControls& units) {
    if (anyPieceOccurs(units.StringDC, unitText))
        return TemperatureCode::Celsius;
    if (anyPieceOccurs(units.StringDF, unitText))
        return TemperatureCode::Fahrenheit;
    return TemperatureCode::Unknown;
}

SpeedCode DetectSpeedUnit(QStringView unitText, const UnitControls& units, SpeedCode current) {
    const QString upper = unitText.toString().toUpper();
    if (units.StringKPH.contains(upper))
        return SpeedCode::KilometresPerHour;
    if (units.StringMPH.contains(upper))
        return SpeedCode::MilesPerHour;
    if (units.StringMPS.contains(upper))
        return SpeedCode::MetresPerSecond;
    if (units.StringKNOTS.contains(upper))
        return SpeedCode::Knots;
    return current;
}

} // namespace skyhold
