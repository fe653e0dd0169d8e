#include "conditions/classification.h"

#include "conditions/safety.h"
#include "conditions/sectors.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

bool isBand(std::int32_t level) {
    return level >= 1 && level <= 3;
}

bool flaggedUnsafe(std::int32_t level, const ThreeChecks& unsafe) {
    return isBand(level) && unsafe[static_cast<std::size_t>(level - 1)].checked();
}

Colour levelColour(bool unsafe) {
    return unsafe ? kOrange : kYellow;
}

QString stationDescription(std::int32_t level, const ThreeLabels& swatches) {
    if (level == 0)
        return u"Unknown"_s;
    return isBand(level) ? swatches[static_cast<std::size_t>(level - 1)].Caption.value()
                         : QString();
}

// Takes the level of a station quantity from its value; the text to show.
QString classify(std::int32_t& level, std::optional<double> value, const ThreeBoxes& limits,
                 const ThreeLabels& swatches) {
    level = value ? bandLevel(*value, limits) : 0;
    return value ? stationDescription(level, swatches) : QString();
}

bool beyondCounts(const CurrentReadings& readings, Quantity quantity,
                  const ConditionControls& controls) {
    return controls.BeyondLimitUnsafe.checked() && isBeyondLimits(readings, quantity);
}

// The spread of the two shown temperatures, as their decimal texts give it: 8.3 - 5.3 is 3, and
// must meet a limit of 3, though the nearest binary numbers are a hair more than 3 apart.
std::optional<double> dewSpread(const QString& temperature, const QString& dewPoint,
                                const NumberForms& forms) {
    const std::optional<double> warm = numberFromText(temperature, forms);
    const std::optional<double> dew = numberFromText(dewPoint, forms);
    if (!warm || !dew)
        return std::nullopt;
    constexpr double kPrecision = 1e9;
    return std::round((*warm - *dew) * kPrecision) / kPrecision;
}

} // namespace

std::int32_t bandLevel(double value, const ThreeBoxes& limits) {
    if (!std::isfinite(value))
        return 0;
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (value <= limits[i].Value)
            return static_cast<std::int32_t>(i) + 1;
    }
    return 0;
}

bool isBeyondLimits(const CurrentReadings& readings, Quantity quantity) {
    const std::optional<double> value = readings.judgedValue(quantity);
    return value && std::isfinite(*value) && readings.Condition[quantity] == 0;
}

QString LevelDescription(Quantity quantity, std::int32_t level, const ConditionControls& controls,
                         const SensorDescription& sensorDescription) {
    switch (quantity) {
    case Quantity::Cloud:
    case Quantity::Rain:
    case Quantity::Brightness:
        if (level == 0)
            return u"Unknown"_s;
        return isBand(level) ? sensorDescription(quantity, level) : QString();
    default:
        return stationDescription(level, controls.Color[quantity]);
    }
}

void ClassifyCloud(ReadingDisplay& display, const CurrentReadings& readings,
                   const ConditionControls& controls, SafetyState& safety,
                   const SensorDescription& sensorDescription, std::int64_t nowMs) {
    if (readings.SensorError)
        return;
    const std::int32_t level = readings.Condition[Quantity::Cloud];
    // Asked whether or not the level is flagged: the test notes when the cloud level changes.
    const bool active = isBand(level) && CloudLevelActive(level, readings, safety, nowMs);
    PaintLabel(display.LCond[Quantity::Cloud], levelColour(active && flaggedUnsafe(level, controls.Cond[Quantity::Cloud])),
               LevelDescription(Quantity::Cloud, level, controls, sensorDescription));
}

void ClassifyRain(ReadingDisplay& display, const CurrentReadings& readings,
                  const ConditionControls& controls, const SensorDescription& sensorDescription) {
    if (readings.SensorError)
        return;
    const std::int32_t level = readings.Condition[Quantity::Rain];
    PaintLabel(display.LCond[Quantity::Rain], levelColour(flaggedUnsafe(level, controls.Cond[Quantity::Rain])),
               LevelDescription(Quantity::Rain, level, controls, sensorDescription));
}

void ClassifyBrightness(ReadingDisplay& display, const CurrentReadings& readings,
                        const ConditionControls& controls,
                        const SensorDescription& sensorDescription) {
    if (readings.SensorError)
        return;
    const std::int32_t level = readings.Condition[Quantity::Brightness];
    PaintLabel(display.LCond[Quantity::Brightness], levelColour(flaggedUnsafe(level, controls.Cond[Quantity::Brightness])),
               LevelDescription(Quantity::Brightness, level, controls, sensorDescription));
}

void ClassifyDew(ReadingDisplay& display, CurrentReadings& readings,
                 const ConditionControls& controls, const NumberForms& forms) {
    QString text;
    if (readings.StationValid) {
        readings.DewSpread =
            dewSpread(display.LVal[Quantity::Temperature].Caption, display.LVal[Quantity::Dew].Caption, forms);
        text = classify(readings.Condition[Quantity::Dew], readings.DewSpread, controls.Limit[Quantity::Dew],
                        controls.Color[Quantity::Dew]);
    }
    PaintLabel(display.LCond[Quantity::Dew],
               levelColour(flaggedUnsafe(readings.Condition[Quantity::Dew], controls.Cond[Quantity::Dew]) ||
                           beyondCounts(readings, Quantity::Dew, controls)),
               text);
}

void ClassifyHumidity(ReadingDisplay& display, CurrentReadings& readings,
                      const ConditionControls& controls) {
    QString text;
    if (readings.StationValid)
        text = classify(readings.Condition[Quantity::Humidity], readings.HumidityValue, controls.Limit[Quantity::Humidity],
                        controls.Color[Quantity::Humidity]);
    PaintLabel(display.LCond[Quantity::Humidity],
               levelColour(flaggedUnsafe(readings.Condition[Quantity::Humidity], controls.Cond[Quantity::Humidity]) ||
                           beyondCounts(readings, Quantity::Humidity, controls)),
               text);
}

void ClassifyWind(ReadingDisplay& display, CurrentReadings& readings,
                  const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs) {
    QString text;
    if (readings.StationValid)
        text = classify(readings.Condition[Quantity::Wind], readings.WindSpeed, controls.Limit[Quantity::Wind],
                        controls.Color[Quantity::Wind]);
    const std::int32_t level = readings.Condition[Quantity::Wind];
    // Asked whether or not the level is flagged: the test notes when the wind leaves the sector.
    const bool holds = WindLevelHolds(level, readings, controls, sectors, nowMs);
    PaintLabel(display.LCond[Quantity::Wind],
               levelColour((holds && flaggedUnsafe(level, controls.Cond[Quantity::Wind])) ||
                           beyondCounts(readings, Quantity::Wind, controls)),
               text);
}

void ClassifyGust(ReadingDisplay& display, CurrentReadings& readings,
                  const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs) {
    QString text;
    if (readings.StationValid)
        text = classify(readings.Condition[Quantity::Gust], readings.GustSpeed, controls.Limit[Quantity::Gust],
                        controls.Color[Quantity::Gust]);
    const std::int32_t level = readings.Condition[Quantity::Gust];
    const bool holds = GustLevelHolds(level, readings, controls, sectors, nowMs);
    PaintLabel(display.LCond[Quantity::Gust],
               levelColour((holds && flaggedUnsafe(level, controls.Cond[Quantity::Gust])) ||
                           beyondCounts(readings, Quantity::Gust, controls)),
               text);
}

void ClassifyTemperature(Label& label, std::optional<double> value, CurrentReadings& readings,
                         const ConditionControls& controls) {
    const QString text =
        classify(readings.Condition[Quantity::Temperature], value, controls.Limit[Quantity::Temperature], controls.Color[Quantity::Temperature]);
    PaintLabel(label,
               levelColour(flaggedUnsafe(readings.Condition[Quantity::Temperature], controls.Cond[Quantity::Temperature]) ||
                           beyondCounts(readings, Quantity::Temperature, controls)),
               text);
}

} // namespace skyhold
