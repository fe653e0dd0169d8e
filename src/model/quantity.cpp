// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/quantity.h"

namespace skyhold {

namespace {

// A level of the sensor program's quantities.
constexpr LevelRow sensed(const char* key, bool unsafe, const char* description,
                          const char* descriptionMember) {
    return {.unsafeKey = key,
            .unsafe = unsafe,
            .alarmKey = key,
            .description = description,
            .descriptionMember = descriptionMember};
}

// Where a station quantity's "Unsafe" and "Alarms" keys differ from the keys of its limits, they
// are named first.
constexpr LevelRow limited(const char* unsafeKey, const char* alarmKey, bool unsafe,
                           const char* limitKey, const char* limit, const char* description,
                           Colour colour) {
    return {.unsafeKey = unsafeKey,
            .unsafe = unsafe,
            .alarmKey = alarmKey,
            .description = description,
            .limitKey = limitKey,
            .limit = limit,
            .colour = colour};
}

constexpr QuantityTable kTable{{
    {.quantity = Quantity::Cloud,
     .name = u"Cloud",
     .title = u"Cloud",
     .header = "Cloud",
     .settingName = "cloud",
     .key = "cloud",
     .source = SourceName::Sensor,
     .measure = Measure::Temperature,
     .valueMember = "SkyTemperature",
     .levelMember = "Condition_Cloud",
     .valueLabel = "Cloud",
     .conditionLabel = "Cloud",
     .suffix = "Cloud",
     .alarmLetter = u'C',
     .indicator = 0,
     .dataItem = 3,
     .levels = {sensed("Clear", false, "Clear", "DescriptionClear"),
                sensed("Cloudy", false, "Cloudy", "DescriptionCloudy"),
                sensed("Overcast", true, "Overcast", "DescriptionVCloudy")}},
    {.quantity = Quantity::Rain,
     .name = u"Rain",
     .title = u"Rain",
     .header = "Rain",
     .settingName = "rain",
     .key = "rain",
     .source = SourceName::Sensor,
     .measure = Measure::Cycles,
     .valueMember = "RainValue",
     .levelMember = "Condition_Rain",
     .valueLabel = "Rain",
     .conditionLabel = "Rain",
     .suffix = "Rain",
     .alarmLetter = u'R',
     .indicator = 1,
     .dataItem = 4,
     .levels = {sensed("Dry", false, "Dry", "DescriptionDry"),
                sensed("Wet", true, "Wet", "DescriptionWet"),
                sensed("Rain", true, "Rain", "DescriptionRain")}},
    {.quantity = Quantity::Brightness,
     .name = u"Brightness",
     .title = u"Brightness",
     .header = "Brightness",
     .settingName = "brightness",
     .key = "brightness",
     .source = SourceName::Sensor,
     .measure = Measure::Kelvin,
     .valueMember = "BrightnessValue",
     .levelMember = "Condition_Brightness",
     .valueLabel = "Brightness",
     .conditionLabel = "Brightness",
     .suffix = "Day",
     .alarmLetter = u'D',
     .indicator = 7,
     .dataItem = 10,
     .levels = {sensed("Dark", false, "Dark", "DescriptionDark"),
                sensed("Light", false, "Light", "DescriptionLight"),
                sensed("VLight", true, "Very Light", "DescriptionVLight")}},
    {.quantity = Quantity::Wind,
     .name = u"Wind",
     .title = u"Wind",
     .header = "Wind",
     .settingName = "wind speed",
     .key = "wind",
     .source = SourceName::Station,
     .measure = Measure::Speed,
     .valueMember = "WindSpeed",
     .valueLabel = "WindSpeed",
     .conditionLabel = "Wind",
     .suffix = "Wind",
     .sectorKey = "WindDir",
     .alarmLetter = u'W',
     .indicator = 2,
     .dataItem = 5,
     .limitDecimals = 1,
     .levels = {limited("Calm", "Calm", false, "WindCalm", "10", "Calm", kSwatchGreen),
                limited("Windy", "Windy", true, "WindWindy", "20", "Windy", kSwatchYellow),
                limited("VWindy", "VWindy", true, "WindVWindy", "99", "Very Windy",
                        kSwatchOrange)}},
    {.quantity = Quantity::Gust,
     .name = u"Gust",
     .title = u"Gust",
     .header = "Gust",
     .settingName = "gust speed",
     .key = "gust",
     .source = SourceName::Station,
     .measure = Measure::Speed,
     .valueMember = "Gust",
     .valueLabel = "WindGust",
     .conditionLabel = "Gust",
     .suffix = "Gust",
     .sectorKey = "GustDir",
     .alarmLetter = u'G',
     .indicator = 3,
     .dataItem = 6,
     .limitDecimals = 1,
     .levels = {limited("CalmGust", "CalmGust", false, "GustCalm", "10", "Calm", kSwatchGreen),
                limited("WindyGust", "WindyGust", true, "GustGusty", "20", "Gusty", kSwatchYellow),
                limited("VWindyGust", "VWindyGust", true, "GustVGusty", "99", "Very Gusty",
                        kSwatchOrange)}},
    // Beware: the "Unsafe" keys of temperature and dew point run against the levels.
    {.quantity = Quantity::Temperature,
     .name = u"Temperature",
     .title = u"Temperature",
     .header = "Temperature",
     .settingName = "temperature",
     .key = "temperature",
     .source = SourceName::Station,
     .measure = Measure::Temperature,
     .valueMember = "OutTemp",
     .valueLabel = "Temperature",
     .conditionLabel = "Temp",
     .suffix = "Temp",
     .alarmLetter = u'T',
     .indicator = 4,
     .dataItem = 7,
     .negativeLimits = 2,
     .levels = {limited("TempHigh", "TempLow", true, "TempLow", "-5", "Cold", kSwatchYellow),
                limited("TempMedium", "TempMedium", false, "TempMedium", "50", "Fine",
                        kSwatchGreen),
                limited("TempLow", "TempHigh", true, "TempHigh", "99", "Hot", kSwatchOrange)}},
    {.quantity = Quantity::Dew,
     .name = u"Dew point",
     .title = u"Dew-point spread",
     .header = "DewPoint",
     .settingName = "dew-point spread",
     .key = "dew_spread",
     .source = SourceName::Station,
     .measure = Measure::TemperatureDifference,
     .valueMember = "DewPoint",
     .valueLabel = "DewPoint",
     .conditionLabel = "DewPoint",
     .suffix = "Dew",
     .alarmLetter = u'P',
     .indicator = 5,
     .dataItem = 8,
     .levels = {limited("DewHigh", "DewLow", true, "DewLow", "3", "Condensation", kSwatchOrange),
                limited("DewMedium", "DewMedium", false, "DewMedium", "5", "Humid", kSwatchYellow),
                limited("DewLow", "DewHigh", false, "DewHigh", "99", "Fine", kSwatchGreen)}},
    {.quantity = Quantity::Humidity,
     .name = u"Humidity",
     .title = u"Humidity",
     .header = "Humidity",
     .settingName = "humidity",
     .key = "humidity",
     .source = SourceName::Station,
     .measure = Measure::Percent,
     .valueMember = "OutHumidity",
     .valueLabel = "Humidity",
     .conditionLabel = "Humidity",
     .suffix = "Hum",
     .alarmLetter = u'H',
     .indicator = 6,
     .dataItem = 9,
     .levels = {limited("HumLow", "HumLow", false, "HumLow", "80", "Fine", kSwatchGreen),
                limited("HumMedium", "HumMedium", false, "HumMedium", "90", "Humid", kSwatchYellow),
                limited("HumHigh", "HumHigh", true, "HumHigh", "99", "Very Humid", kSwatchOrange)}},
}};

constexpr bool inOrder() {
    for (std::size_t i = 0; i < kTable.size(); ++i) {
        if (static_cast<std::size_t>(kTable[i].quantity) != i)
            return false;
    }
    return true;
}
static_assert(inOrder());

} // namespace

const QuantityTable& quantityTable() {
    return kTable;
}

const QuantityRow& rowOf(Quantity quantity) {
    return kTable[static_cast<std::size_t>(quantity)];
}

} // namespace skyhold
