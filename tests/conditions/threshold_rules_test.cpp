#include "conditions/threshold_rules.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

TEST(ThresholdRules, AnEntryMustKeepTheOrder) {
    const std::array<QString, 3> wind{u"Calm"_s, u"Windy"_s, u"Very Windy"_s};
    const std::array<QString, 3> hum{u"Fine"_s, u"Humid"_s, u"Very Humid"_s};
    const std::array<QString, 3> temp{u"Cold"_s, u"breezy"_s, u"Hot"_s};
    struct Case {
        Quantity quantity;
        std::array<double, 3> limits;
        std::size_t index; // the entry that is left
        std::array<QString, 3> names;
        const char* message;
    };
    const Case cases[]{
        {Quantity::Wind, {10, 20, 99}, 0, wind, ""},
        {Quantity::Wind, {10, 20, 99}, 1, wind, ""},
        {Quantity::Wind, {10, 20, 99}, 2, wind, ""},
        {Quantity::Wind,
         {20, 20, 99},
         0,
         wind,
         "CALM value CANNOT be greater or equal than WINDY value"},
        {Quantity::Wind,
         {99, 20, 99},
         0,
         wind,
         "CALM value CANNOT be greater or equal than WINDY value"},
        {Quantity::Wind, {100, 120, 99}, 0, wind, ""}, // entry 0 against entry 1 only
        {Quantity::Wind,
         {10, 10, 99},
         1,
         wind,
         "WINDY value CANNOT be smaller or equal than CALM value"},
        {Quantity::Wind,
         {10, 99, 99},
         1,
         wind,
         "WINDY value CANNOT be larger or equal than VERY WINDY value"},
        {Quantity::Wind,
         {10, 5, 3},
         1,
         wind,
         "WINDY value CANNOT be smaller or equal than CALM value"}, // one message
        {Quantity::Gust,
         {10, 20, 15},
         2,
         wind,
         "VERY WINDY value CANNOT be smaller or equal than WINDY value"},
        {Quantity::Dew,
         {10, 20, 10},
         2,
         wind,
         "VERY WINDY value CANNOT be smaller or equal than CALM value"},
        {Quantity::Temperature, {-5, -4.5, 30}, 1, temp, ""},
        {Quantity::Temperature,
         {-5, -5, 30},
         1,
         temp,
         "BREEZY value CANNOT be smaller or equal than COLD value"},
        {Quantity::Humidity, {80, 90, 100}, 2, hum, ""},
        {Quantity::Humidity, {80, 90, 101}, 2, hum, "VERY HUMID value CANNOT be greater than 100"},
        {Quantity::Humidity, {101, 90, 99}, 0, hum, "FINE value CANNOT be greater than 100"},
        {Quantity::Humidity, {80, 90, 101}, 1, hum, ""}, // another entry's fault
        {Quantity::Wind, {80, 90, 101}, 2, wind, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ValidateLimit(c.quantity, c.index, {c.limits, c.names}).toStdString(), c.message);
}

} // namespace

} // namespace skyhold
