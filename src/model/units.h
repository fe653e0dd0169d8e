// SPDX-License-Identifier: GPL-3.0-or-later
// Display units. A code is the letter by which settings, files and other programs know the unit.
#pragma once

#include <QString>

#include <array>

namespace skyhold {

// Unknown: the station's file names a unit that is not recognised.
enum class TemperatureCode : char16_t { Unknown = u' ', Celsius = u'C', Fahrenheit = u'F' };
enum class SpeedCode : char16_t {
    KilometresPerHour = u'K',
    MilesPerHour = u'M',
    MetresPerSecond = u'm',
    Knots = u'k'
};

// In the order of the options UnitsTemp and UnitsSpeed.
inline constexpr std::array kTemperatureCodes{TemperatureCode::Celsius,
                                              TemperatureCode::Fahrenheit};
inline constexpr std::array kSpeedCodes{SpeedCode::KilometresPerHour, SpeedCode::MilesPerHour,
                                        SpeedCode::MetresPerSecond, SpeedCode::Knots};

template <class Code>
QString letterOf(Code code) {
    return QString(QChar(static_cast<char16_t>(code)));
}

} // namespace skyhold
