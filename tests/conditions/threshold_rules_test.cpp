#include "conditions/threshold_rules.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

TEST(ThresholdRules, AnEntryMustKeepTheOrder) {
    using enum Quantity;
    const std::array<QString, 3> names{u"Calm"_s, u"breezy"_s, u"Very Windy"_s};
    const std::string greater = "CALM value CANNOT be greater or equal than BREEZY value";
    const std::string smaller = "BREEZY value CANNOT be smaller or equal than CALM value";
    const struct {
        Quantity quantity;
        std::array<double, 3> limits;
        std::size_t index; // the entry that is left
        std::string message;
    } cases[]{
        {Wind, {10, 20, 99}, 0, ""},
        {Wind, {10, 20, 99}, 1, ""},
        {Wind, {10, 20, 99}, 2, ""},
        {Wind, {20, 20, 99}, 0, greater},
        {Wind, {99, 20, 99}, 0, greater},
        {Wind, {100, 120, 99}, 0, ""}, // entry 0 against entry 1 only
        {Wind, {10, 10, 99}, 1, smaller},
        {Wind, {10, 99, 99}, 1, "BREEZY value CANNOT be larger or equal than VERY WINDY value"},
        {Wind, {10, 5, 3}, 1, smaller}, // one message
        {Gust, {10, 20, 15}, 2, "VERY WINDY value CANNOT be smaller or equal than BREEZY value"},
        {Dew, {10, 20, 10}, 2, "VERY WINDY value CANNOT be smaller or equal than CALM value"},
        {Temperature, {-5, -4.5, 30}, 1, ""},
        {Temperature, {-5, -5, 30}, 1, smaller},
        {Humidity, {80, 90, 100}, 2, ""},
        {Humidity, {80, 90, 101}, 2, "VERY WINDY value CANNOT be greater than 100"},
        {Humidity, {101, 90, 99}, 0, "CALM value CANNOT be greater than 100"},
        {Humidity, {80, 90, 101}, 1, ""}, // another entry's fault
        {Wind, {80, 90, 101}, 2, ""},
    };
    for (const auto& [quantity, limits, index, message] : cases)
        EXPECT_EQ(ValidateLimit(quantity, index, {limits, names}).toStdString(), message);
}

TEST(ThresholdRules, LimitsFromElsewhereMayBeOutOfOrder) {
    const std::pair<std::array<double, 3>, bool> rows[] = {{{10, 20, 99}, true},
                                                           {{20, 10, 99}, false},
                                                           {{10, 10, 99}, false},
                                                           {{10, 99, 20}, false},
                                                           {{10, qQNaN(), 99}, false}};
    for (const auto& [values, ordered] : rows) {
        ThreeBoxes limits;
        for (std::size_t i = 0; i < limits.size(); ++i)
            limits[i].Value = values[i];
        EXPECT_EQ(limitsInOrder(limits), ordered) << values[0] << ' ' << values[1];
    }
}

} // namespace

} // namespace skyhold
