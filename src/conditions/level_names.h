// SPDX-License-Identifier: GPL-3.0-or-later
// The public names of what is chosen for each level, as other programs and the command line know
// it. A family lists its names in the order of the interface; the index is that of the level.
#pragma once

#include "model/quantity.h"

namespace skyhold {

struct LevelName {
    const char* name;
    Quantity quantity;
    std::size_t index;
};

// The upper limit of the level.
inline constexpr std::array<LevelName, 15> kLimitNames{{
    {"ThreshWindCalm", Quantity::Wind, 0},
    {"ThreshWindWindy", Quantity::Wind, 1},
    {"ThreshWindVWindy", Quantity::Wind, 2},
    {"ThreshGustCalm", Quantity::Gust, 0},
    {"ThreshGustWindy", Quantity::Gust, 1},
    {"ThreshGustVWindy", Quantity::Gust, 2},
    {"ThreshDewCondensation", Quantity::Dew, 0},
    {"ThreshDewHumid", Quantity::Dew, 1},
    {"ThreshDewFine", Quantity::Dew, 2},
    {"ThreshHumFine", Quantity::Humidity, 0},
    {"ThreshHumHumid", Quantity::Humidity, 1},
    {"ThreshHumVHumid", Quantity::Humidity, 2},
    {"ThreshTAmbCold", Quantity::Temperature, 0},
    {"ThreshTAmbFine", Quantity::Temperature, 1},
    {"ThreshTAmbHot", Quantity::Temperature, 2},
}};

// The sector in which the level counts.
inline constexpr std::array<LevelName, 6> kSectorNames{{
    {"DescDirWindCalm", Quantity::Wind, 0},
    {"DescDirWindWindy", Quantity::Wind, 1},
    {"DescDirWindVWindy", Quantity::Wind, 2},
    {"DescDirGustCalm", Quantity::Gust, 0},
    {"DescDirGustWindy", Quantity::Gust, 1},
    {"DescDirGustVWindy", Quantity::Gust, 2},
}};

// 1: the level makes the sky unsafe.
inline constexpr std::array<LevelName, 24> kUnsafeNames{{
    {"SafeClear", Quantity::Cloud, 0},
    {"SafeCloudy", Quantity::Cloud, 1},
    {"SafeOvercast", Quantity::Cloud, 2},
    {"SafeDry", Quantity::Rain, 0},
    {"SafeWet", Quantity::Rain, 1},
    {"SafeRain", Quantity::Rain, 2},
    {"SafeDark", Quantity::Brightness, 0},
    {"SafeLight", Quantity::Brightness, 1},
    {"SafeVLight", Quantity::Brightness, 2},
    {"SafeWindCalm", Quantity::Wind, 0},
    {"SafeWindWindy", Quantity::Wind, 1},
    {"SafeWindVWindy", Quantity::Wind, 2},
    {"SafeGustCalm", Quantity::Gust, 0},
    {"SafeGustWindy", Quantity::Gust, 1},
    {"SafeGustVWindy", Quantity::Gust, 2},
    {"SafeDewFine", Quantity::Dew, 2},
    {"SafeDewHumid", Quantity::Dew, 1},
    {"SafeDewCondensation", Quantity::Dew, 0},
    {"SafeHumFine", Quantity::Humidity, 0},
    {"SafeHumHumid", Quantity::Humidity, 1},
    {"SafeHumVHumid", Quantity::Humidity, 2},
    {"SafeTempCold", Quantity::Temperature, 0},
    {"SafeTempFine", Quantity::Temperature, 1},
    {"SafeTempHot", Quantity::Temperature, 2},
}};

} // namespace skyhold
