#include "units/unit_change.h"

#include "units/conversion.h"

namespace skyhold {

namespace {

using Convert = double (*)(QStringView fromCode, QStringView toCode, double value);

struct Unit {
    const char16_t* code;
    const char16_t* text;
};

constexpr std::array<Unit, 4> kSpeedUnits{
    {{u"K", u"km/hr"}, {u"M", u"mph"}, {u"m", u"m/s"}, {u"k", u"knot"}}};
constexpr std::array<Unit, 2> kTemperatureUnits{{{u"C", u"°C"}, {u"F", u"°F"}}};

struct ConvertedLimits {
    ThreeBoxes& limits;
    Convert convert;
};

void changeUnit(const Unit& unit, QString& inForce, QString& previous, Label& shown, bool loading,
                std::initializer_list<ConvertedLimits> converted,
                const ConvertHistory& convertHistory) {
    const QString code = QString::fromUtf16(unit.code);
    inForce = code;
    shown.Caption = QString::fromUtf16(unit.text);

    // Choosing the unit that limits and history are in already must leave them alone: a
    // temperature conversion does not look at where it comes from.
    const bool convert = !loading && !previous.isEmpty() && previous != code;
    if (convert) {
        for (const ConvertedLimits& entry : converted) {
            for (NumberBox& box : entry.limits)
                box.set(entry.convert(previous, code, box.Value));
        }
        if (convertHistory)
            convertHistory(previous, code);
    }
    previous = code;
}

template <std::size_t N>
const Unit* unitAt(const std::array<Unit, N>& units, int index) {
    return index >= 0 && index < static_cast<int>(N) ? &units[static_cast<std::size_t>(index)]
                                                     : nullptr;
}

} // namespace

void UnitsSpeed_Click(int index, UnitControls& units, ConditionControls& conditions,
                      CurrentReadings& readings, const ConvertHistory& convertHistory) {
    const Unit* unit = unitAt(kSpeedUnits, index);
    if (!unit)
        return;
    changeUnit(*unit, readings.SpeedUnit, units.PreviousSpeedUnit, units.SpeedUnitText,
               units.Loading,
               {{conditions.Limit[Quantity::Wind], ConvertSpeed},
                {conditions.Limit[Quantity::Gust], ConvertSpeed}},
               convertHistory);
}

void UnitsTemp_Click(int index, UnitControls& units, ConditionControls& conditions,
                     CurrentReadings& readings, const ConvertHistory& convertHistory) {
    const Unit* unit = unitAt(kTemperatureUnits, index);
    if (!unit)
        return;
    changeUnit(*unit, readings.TemperatureUnit, units.PreviousTemperatureUnit,
               units.TemperatureUnitText, units.Loading,
               {{conditions.Limit[Quantity::Dew], ConvertTemperatureDifference},
                {conditions.Limit[Quantity::Temperature], ConvertTemperature}},
               convertHistory);
}

} // namespace skyhold
