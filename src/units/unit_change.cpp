// SPDX-License-Identifier: GPL-3.0-or-later
#include "units/unit_change.h"

#include "units/conversion.h"
#include "units/unit_text.h"

#include <utility>

namespace skyhold {

namespace {

template <class Code>
struct ConvertedLimits {
    ThreeBoxes& limits;
    double (*convert)(Code fromCode, Code toCode, double value);
};

// What choosing a unit changes.
template <class Code>
struct ChosenUnit {
    Code& inForce;
    std::optional<Code>& previous;
    Label& shown;
};

template <class Code>
void changeUnit(Code code, const QString& text, const ChosenUnit<Code>& chosen, bool loading,
                std::initializer_list<ConvertedLimits<Code>> converted,
                const ConvertHistory<Code>& convertHistory) {
    chosen.inForce = code;
    chosen.shown.Caption = text;

    // Choosing the unit that limits and history are in already must leave them alone: a
    // temperature conversion does not look at where it comes from.
    const std::optional<Code> previous = std::exchange(chosen.previous, code);
    if (loading || !previous || *previous == code)
        return;
    for (const ConvertedLimits<Code>& entry : converted) {
        for (NumberBox& box : entry.limits)
            box.set(entry.convert(*previous, code, box.Value));
    }
    if (convertHistory)
        convertHistory(*previous, code);
}

// Nothing for an index that is none of the codes.
template <std::size_t N>
std::optional<std::size_t> placeOf(int index) {
    return index >= 0 && index < static_cast<int>(N)
               ? std::optional(static_cast<std::size_t>(index))
               : std::nullopt;
}

} // namespace

void UnitsSpeed_Click(int index, UnitControls& units, ConditionControls& conditions,
                      CurrentReadings& readings, const ConvertHistory<SpeedCode>& convertHistory) {
    const auto place = placeOf<kSpeedCodes.size()>(index);
    if (!place)
        return;
    changeUnit<SpeedCode>(kSpeedCodes[*place], shownSpeedUnit(kSpeedCodes[*place]),
                          {readings.SpeedUnit, units.PreviousSpeedUnit, units.SpeedUnitText},
                          units.Loading,
                          {{conditions.Limit[Quantity::Wind], ConvertSpeed},
                           {conditions.Limit[Quantity::Gust], ConvertSpeed}},
                          convertHistory);
}

void UnitsTemp_Click(int index, UnitControls& units, ConditionControls& conditions,
                     CurrentReadings& readings,
                     const ConvertHistory<TemperatureCode>& convertHistory) {
    const auto place = placeOf<kTemperatureCodes.size()>(index);
    if (!place)
        return;
    changeUnit<TemperatureCode>(
        kTemperatureCodes[*place],
        shownUnit(Measure::Temperature, kTemperatureCodes[*place], SpeedCode::KilometresPerHour),
        {readings.TemperatureUnit, units.PreviousTemperatureUnit, units.TemperatureUnitText},
        units.Loading,
        {{conditions.Limit[Quantity::Dew], ConvertTemperatureDifference},
         {conditions.Limit[Quantity::Temperature], ConvertTemperature}},
        convertHistory);
}

} // namespace skyhold
