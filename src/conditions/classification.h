// Turns each measured quantity into a condition level 0..3 and shows it as a coloured text:
// orange when the level counts as unsafe, else yellow.
#pragma once

#include "platform/text_forms.h"
#include "records/condition_controls.h"
#include "model/current_readings.h"
#include "records/reading_display.h"

#include <functional>

namespace skyhold {

// The sensor program's description of level 1..3 of cloud, rain or brightness; empty when it does
// not answer.
using SensorDescription = std::function<QString(Quantity quantity, std::int32_t level)>;

// The first level whose limit is not below the value; 0 above the last limit and for what is no
// finite number.
std::int32_t bandLevel(double value, const ThreeBoxes& limits);

// True for a value whose level is 0 because it is above the last limit.
bool isBeyondLimits(const CurrentReadings& readings, Quantity quantity);

// "Unknown" for level 0, the level's description for 1..3, else an empty text.
QString LevelDescription(Quantity quantity, std::int32_t level, const ConditionControls& controls,
                         const SensorDescription& sensorDescription);

// Show the sensor program's own levels; nothing while it fails.
void ClassifyCloud(ReadingDisplay& display, const CurrentReadings& readings,
                   const ConditionControls& controls, SafetyState& safety,
                   const SensorDescription& sensorDescription, std::int64_t nowMs);
void ClassifyRain(ReadingDisplay& display, const CurrentReadings& readings,
                  const ConditionControls& controls, const SensorDescription& sensorDescription);
void ClassifyBrightness(ReadingDisplay& display, const CurrentReadings& readings,
                        const ConditionControls& controls,
                        const SensorDescription& sensorDescription);

// Classify the station's values and show the levels. A missing value has level 0 and a blank text.
// Without valid station data the text is blank and the level stays.
// The spread is that of the numbers that LValTemperature and LValDewPoint show.
void ClassifyDew(ReadingDisplay& display, CurrentReadings& readings,
                 const ConditionControls& controls, const NumberForms& forms);
void ClassifyHumidity(ReadingDisplay& display, CurrentReadings& readings,
                      const ConditionControls& controls);
void ClassifyWind(ReadingDisplay& display, CurrentReadings& readings,
                  const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs);
void ClassifyGust(ReadingDisplay& display, CurrentReadings& readings,
                  const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs);

// Classifies `value` as the temperature and shows it in `label`; only with valid station data.
void ClassifyTemperature(Label& label, std::optional<double> value, CurrentReadings& readings,
                         const ConditionControls& controls);

} // namespace skyhold
