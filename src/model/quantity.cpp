#include "model/quantity.h"

namespace skyhold {

namespace {

// A level of the sensor program's quantities.
constexpr LevelRow sensed(const char* key, bool unsafe, const char* descriptionMember) {
    return {.unsafeKey = key,
            .unsafe = unsafe,
            .alarmKey = key,
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
            .limitKey = limitKey,
            .limit = limit,
            .description = description,
            .colour = colour};
}

constexpr QuantityTable kTable{{
    {.quantity = Quantity::Cloud,
     .name = u"Cloud",
     .settingName = "cloud",
     .key = "cloud",
     .source = SourceName::Sensor,
     .measure = Measure::Temperature,
     .valueMember = "SkyTemperature",
     .levelMember = "Condition_Cloud",
     .suffix = "Cloud",
     .sectorKey = nullptr,
     .alarmLetter = u'C',
     .indicator = 0,
     .dataItem = 3,
     .graph = -1,
     .levels = {sensed("Clear", false, "DescriptionClear"),
                sensed("Cloudy", false, "DescriptionCloudy"),
                sensed("Overcast", true, "DescriptionVCloudy")}},
    {.quantity = Quantity::Rain,
     .name = u"Rain",
     .settingName = "rain",
     .key = "rain",
     .source = SourceName::Sensor,
     .measure = Measure::Cycles,
     .valueMember = "RainValue",
     .levelMember = "Condition_Rain",
     .suffix = "Rain",
     .sectorKey = nullptr,
     .alarmLetter = u'R',
     .indicator = 1,
     .dataItem = 4,
     .graph = -1,
     .levels = {sensed("Dry", false, "DescriptionDry"), sensed("Wet", true, "DescriptionWet"),
                sensed("Rain", true, "DescriptionRain")}},
    {.quantity = Quantity::Brightness,
     .name = u"Brightness",
     .settingName = "brightness",
     .key = "brightness",
     .source = SourceName::Sensor,
     .measure = Measure::Kelvin,
     .valueMember = "BrightnessValue",
     .levelMember = "Condition_Brightness",
     .suffix = "Day",
     .sectorKey = nullptr,
     .alarmLetter = u'D',
     .indicator = 7,
     .dataItem = 10,
     .graph = -1,
     .levels = {sensed("Dark", false, "DescriptionDark"),
                sensed("Light", false, "DescriptionLight"),
                sensed("VLight", true, "DescriptionVLight")}},
    {.quantity = Quantity::Wind,
     .name = u"Wind",
     .settingName = "wind speed",
     .key = "wind",
     .source = SourceName::Station,
     .measure = Measure::Speed,
     .valueMember = "WindSpeed",
     .levelMember = nullptr,
     .suffix = "Wind",
     .sectorKey = "WindDir",
     .alarmLetter = u'W',
     .indicator = 2,
     .dataItem = 5,
     .graph = 0,
     .levels = {limited("Calm", "Calm", false, "WindCalm", "10", "Calm", kSwatchGreen),
                limited("Windy", "Windy", true, "WindWindy", "20", "Windy", kSwatchYellow),
                limited("VWindy", "VWindy", true, "WindVWindy", "99", "Very Windy",
                        kSwatchOrange)}},
    {.quantity = Quantity::Gust,
     .name = u"Gust",
     .settingName = "gust speed",
     .key = "gust",
     .source = SourceName::Station,
     .measure = Measure::Speed,
     .valueMember = "Gust",
     .levelMember = nullptr,
     .suffix = "Gust",
     .sectorKey = "GustDir",
     .alarmLetter = u'G',
     .indicator = 3,
     .dataItem = 6,
     .graph = 1,
     .levels = {limited("CalmGust", "CalmGust", false, "GustCalm", "10", "Calm", kSwatchGreen),
                limited("WindyGust", "WindyGust", true, "GustGusty", "20", "Gusty", kSwatchYellow),
                limited("VWindyGust", "VWindyGust", true, "GustVGusty", "99", "Very Gusty",
                        kSwatchOrange)}},
    // Beware: the "Unsafe" keys of temperature and dew point run against the levels.
    {.quantity = Quantity::Temperature,
     .name = u"Temperature",
     .settingName = "temperature",
     .key = "temperature",
     .source = SourceName::Station,
     .measure = Measure::Temperature,
     .valueMember = "OutTemp",
     .levelMember = nullptr,
     .suffix = "Temp",
     .sectorKey = nullptr,
     .alarmLetter = u'T',
     .indicator = 4,
     .dataItem = 7,
     .graph = 5,
     .levels = {limited("TempHigh", "TempLow", true, "TempLow", "-5", "Cold", kSwatchYellow),
                limited("TempMedium", "TempMedium", false, "TempMedium", "50", "Fine",
                        kSwatchGreen),
                limited("TempLow", "TempHigh", true, "TempHigh", "99", "Hot", kSwatchOrange)}},
    {.quantity = Quantity::Dew,
     .name = u"Dew point",
     .settingName = "dew-point spread",
     .key = "dew_spread",
     .source = SourceName::Station,
     .measure = Measure::TemperatureDifference,
     .valueMember = "DewPoint",
     .levelMember = nullptr,
     .suffix = "Dew",
     .sectorKey = nullptr,
     .alarmLetter = u'P',
     .indicator = 5,
     .dataItem = 8,
     .graph = 3,
     .levels = {limited("DewHigh", "DewLow", true, "DewLow", "3", "Condensation", kSwatchOrange),
                limited("DewMedium", "DewMedium", false, "DewMedium", "5", "Humid",
                        kSwatchYellow),
                limited("DewLow", "DewHigh", false, "DewHigh", "99", "Fine", kSwatchGreen)}},
    {.quantity = Quantity::Humidity,
     .name = u"Humidity",
     .settingName = "humidity",
     .key = "humidity",
     .source = SourceName::Station,
     .measure = Measure::Percent,
     .valueMember = "OutHumidity",
     .levelMember = nullptr,
     .suffix = "Hum",
     .sectorKey = nullptr,
     .alarmLetter = u'H',
     .indicator = 6,
     .dataItem = 9,
     .graph = 4,
     .levels = {limited("HumLow", "HumLow", false, "HumLow", "80", "Fine", kSwatchGreen),
                limited("HumMedium", "HumMedium", false, "HumMedium", "90", "Humid",
                        kSwatchYellow),
                limited("HumHigh", "HumHigh", true, "HumHigh", "99", "Very Humid",
                        kSwatchOrange)}},
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
