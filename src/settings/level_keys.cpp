#include "settings/level_keys.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

using Three = std::array<const char*, 3>;

// One station quantity: its keys by level, the same in "Limit", "Description" and "Color".
struct StationLevels {
    const char* name;
    Three keys;
    Three limits;
    Three descriptions;
    std::array<Colour, 3> colours;
};

constexpr std::array<StationLevels, 5> kStationLevels{{
    {"wind speed",
     {"WindCalm", "WindWindy", "WindVWindy"},
     {"10", "20", "99"},
     {"Calm", "Windy", "Very Windy"},
     {kSwatchGreen, kSwatchYellow, kSwatchOrange}},
    {"gust speed",
     {"GustCalm", "GustGusty", "GustVGusty"},
     {"10", "20", "99"},
     {"Calm", "Gusty", "Very Gusty"},
     {kSwatchGreen, kSwatchYellow, kSwatchOrange}},
    {"temperature",
     {"TempLow", "TempMedium", "TempHigh"},
     {"-5", "50", "99"},
     {"Cold", "Fine", "Hot"},
     {kSwatchYellow, kSwatchGreen, kSwatchOrange}},
    {"dew-point spread",
     {"DewLow", "DewMedium", "DewHigh"},
     {"3", "5", "99"},
     {"Condensation", "Humid", "Fine"},
     {kSwatchOrange, kSwatchYellow, kSwatchGreen}},
    {"humidity",
     {"HumLow", "HumMedium", "HumHigh"},
     {"80", "90", "99"},
     {"Fine", "Humid", "Very Humid"},
     {kSwatchGreen, kSwatchYellow, kSwatchOrange}},
}};

// Fields of the five station quantities, in the order of kStationLevels.
template <class Conditions>
auto stationLimits(Conditions& c) {
    return std::array{&c.Limit[Quantity::Wind], &c.Limit[Quantity::Gust], &c.Limit[Quantity::Temperature], &c.Limit[Quantity::Dew], &c.Limit[Quantity::Humidity]};
}
template <class Conditions>
auto stationSwatches(Conditions& c) {
    return std::array{&c.Color[Quantity::Wind], &c.Color[Quantity::Gust], &c.Color[Quantity::Temperature], &c.Color[Quantity::Dew], &c.Color[Quantity::Humidity]};
}
template <class Conditions>
auto stationUnsafe(Conditions& c) {
    return std::array{&c.Cond[Quantity::Wind], &c.Cond[Quantity::Gust], &c.Cond[Quantity::Temperature], &c.Cond[Quantity::Dew], &c.Cond[Quantity::Humidity]};
}

// The check boxes of one quantity with their keys, by level.
template <class AnyChecks>
struct LevelKeys {
    const char* name;
    AnyChecks& boxes;
    Three keys;
    std::array<bool, 3> defaults{};
};

template <class Box>
void soundRow(KeyRows& rows, const QString& key, Box& box, const QString& holds) {
    KeyRow& row = rows.text(key, QString(), box.Tag, holds);
    if constexpr (!std::is_const_v<Box>)
        row.load = [&box](const QString& stored, const NumberForms&) {
            box.Tag = stored;
            box.HasIcons = !stored.isEmpty();
            return true;
        };
}

} // namespace

template <class Conditions>
void limitRows(KeyRows& rows, Conditions& c) {
    const auto boxes = stationLimits(c);
    rows.section(u"Limit"_s);
    for (std::size_t q = 0; q < kStationLevels.size(); ++q) {
        const StationLevels& levels = kStationLevels[q];
        for (std::size_t i = 0; i < 3; ++i)
            rows.number(latin(levels.keys[i]), latin(levels.limits[i]), (*boxes[q])[i],
                        u"%1: highest value of level %2"_s.arg(latin(levels.name)).arg(i + 1));
    }
}

// A level's description stands on its swatch and beside its unsafe check box.
template <class Conditions>
void descriptionRows(KeyRows& rows, Conditions& c) {
    const auto swatches = stationSwatches(c);
    const auto unsafe = stationUnsafe(c);
    rows.section(u"Description"_s);
    for (std::size_t q = 0; q < kStationLevels.size(); ++q) {
        const StationLevels& levels = kStationLevels[q];
        for (std::size_t i = 0; i < 3; ++i) {
            auto& swatch = (*swatches[q])[i];
            auto& box = (*unsafe[q])[i];
            KeyRow& row =
                rows.text(latin(levels.keys[i]), latin(levels.descriptions[i]), swatch.Caption,
                          u"%1: description of level %2"_s.arg(latin(levels.name)).arg(i + 1));
            if constexpr (!std::is_const_v<Conditions>)
                row.load = [&swatch, &box](const QString& stored, const NumberForms&) {
                    swatch.Caption = stored;
                    box.Caption = stored;
                    return true;
                };
        }
    }
}

template <class Conditions>
void colourRows(KeyRows& rows, Conditions& c) {
    const auto swatches = stationSwatches(c);
    rows.section(u"Color"_s);
    for (std::size_t q = 0; q < kStationLevels.size(); ++q) {
        const StationLevels& levels = kStationLevels[q];
        for (std::size_t i = 0; i < 3; ++i)
            rows.colour(latin(levels.keys[i]), levels.colours[i], (*swatches[q])[i],
                        u"%1: colour of level %2"_s.arg(latin(levels.name)).arg(i + 1));
    }
}

// Beware: the keys of temperature and dew point run against the levels here.
template <class Conditions>
void unsafeRows(KeyRows& rows, Conditions& c) {
    using Keys = LevelKeys<std::remove_reference_t<decltype((c.Cond[Quantity::Cloud]))>>;
    rows.section(u"Unsafe"_s);
    for (const Keys& quantity :
         {Keys{"cloud", c.Cond[Quantity::Cloud], {"Clear", "Cloudy", "Overcast"}, {false, false, true}},
          Keys{"rain", c.Cond[Quantity::Rain], {"Dry", "Wet", "Rain"}, {false, true, true}},
          Keys{"wind", c.Cond[Quantity::Wind], {"Calm", "Windy", "VWindy"}, {false, true, true}},
          Keys{"gust", c.Cond[Quantity::Gust], {"CalmGust", "WindyGust", "VWindyGust"}, {false, true, true}},
          Keys{"temperature",
               c.Cond[Quantity::Temperature],
               {"TempHigh", "TempMedium", "TempLow"},
               {true, false, true}},
          Keys{"humidity", c.Cond[Quantity::Humidity], {"HumLow", "HumMedium", "HumHigh"}, {false, false, true}},
          Keys{"dew-point spread",
               c.Cond[Quantity::Dew],
               {"DewHigh", "DewMedium", "DewLow"},
               {true, false, false}},
          Keys{"brightness", c.Cond[Quantity::Brightness], {"Dark", "Light", "VLight"}, {false, false, true}}}) {
        for (std::size_t i = 0; i < 3; ++i)
            rows.check(latin(quantity.keys[i]), quantity.defaults[i], quantity.boxes[i],
                       u"%1: level %2 is unsafe"_s.arg(latin(quantity.name)).arg(i + 1));
    }
    for (int i = 0; i < 3; ++i) {
        const auto level = static_cast<std::size_t>(i);
        rows.text(u"WindDir%1"_s.arg(i), u"000  359  01"_s, c.Direction[Quantity::Wind][level].Caption,
                  u"wind level %1: sector from, to (degrees) and minutes"_s.arg(i + 1));
        rows.text(u"GustDir%1"_s.arg(i), u"000  359  01"_s, c.Direction[Quantity::Gust][level].Caption,
                  u"gust level %1: sector from, to (degrees) and minutes"_s.arg(i + 1));
    }
}

template <class Alarms>
void alarmRows(KeyRows& rows, Alarms& a) {
    using Keys = LevelKeys<std::remove_reference_t<decltype((a.Alarm[Quantity::Cloud]))>>;
    const std::array quantities{
        Keys{"cloud", a.Alarm[Quantity::Cloud], {"Clear", "Cloudy", "Overcast"}},
        Keys{"rain", a.Alarm[Quantity::Rain], {"Dry", "Wet", "Rain"}},
        Keys{"brightness", a.Alarm[Quantity::Brightness], {"Dark", "Light", "VLight"}},
        Keys{"wind", a.Alarm[Quantity::Wind], {"Calm", "Windy", "VWindy"}},
        Keys{"gust", a.Alarm[Quantity::Gust], {"CalmGust", "WindyGust", "VWindyGust"}},
        Keys{"temperature", a.Alarm[Quantity::Temperature], {"TempLow", "TempMedium", "TempHigh"}},
        Keys{"humidity", a.Alarm[Quantity::Humidity], {"HumLow", "HumMedium", "HumHigh"}},
        Keys{"dew-point spread", a.Alarm[Quantity::Dew], {"DewLow", "DewMedium", "DewHigh"}}};

    // All sounds before all check marks: a box without a sound unchecks itself.
    rows.section(u"Alarms"_s);
    for (const Keys& quantity : quantities) {
        for (std::size_t i = 0; i < 3; ++i)
            soundRow(rows, latin(quantity.keys[i]), quantity.boxes[i],
                     u"%1: sound of level %2, followed by \"|repeat\" to repeat it"_s
                         .arg(latin(quantity.name))
                         .arg(i + 1));
    }
    for (const Keys& quantity : quantities) {
        for (std::size_t i = 0; i < 3; ++i)
            rows.check(latin(quantity.keys[i]) + u"Stat"_s, false, quantity.boxes[i],
                       u"%1: alarm of level %2 is on"_s.arg(latin(quantity.name)).arg(i + 1));
    }
}

template <class Alarms, class Conditions>
void staleDataRows(KeyRows& rows, Alarms& alarms, Conditions& c) {
    rows.section(u"Alarms"_s);
    soundRow(rows, u"WSAlarm"_s, alarms.AlarmWS, u"sound for old or missing station data"_s);
    soundRow(rows, u"NBAlarm"_s, alarms.AlarmNB, u"sound for a failed sensor program"_s);
    rows.check(u"WSAlarmStat"_s, false, alarms.AlarmWS, u"the station data alarm is on"_s);
    rows.check(u"NBAlarmStat"_s, false, alarms.AlarmNB, u"the sensor program alarm is on"_s);
    rows.check(u"WSDataOldUnsafe"_s, true, c.WSDataOldUnsafe,
               u"old or missing station data is unsafe"_s);
    rows.check(u"NBDataOldUnsafe"_s, true, c.NBDataOldUnsafe,
               u"a failed sensor program is unsafe"_s);
}

template void limitRows(KeyRows&, ConditionControls&);
template void limitRows(KeyRows&, const ConditionControls&);
template void descriptionRows(KeyRows&, ConditionControls&);
template void descriptionRows(KeyRows&, const ConditionControls&);
template void colourRows(KeyRows&, ConditionControls&);
template void colourRows(KeyRows&, const ConditionControls&);
template void unsafeRows(KeyRows&, ConditionControls&);
template void unsafeRows(KeyRows&, const ConditionControls&);
template void alarmRows(KeyRows&, AlarmControls&);
template void alarmRows(KeyRows&, const AlarmControls&);
template void staleDataRows(KeyRows&, AlarmControls&, ConditionControls&);
template void staleDataRows(KeyRows&, const AlarmControls&, const ConditionControls&);

} // namespace skyhold
