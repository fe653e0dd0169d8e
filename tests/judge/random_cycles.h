// SPDX-License-Identifier: GPL-3.0-or-later
// Weather, faults and settings that change at random, and stay as they are often and long enough
// for delays and sector times to run out. One seed always gives the same cycles.
#pragma once

#include "model/judgement.h"
#include "model/observation.h"
#include "model/rules.h"

#include <random>
#include <string>

namespace skyhold {

class RandomCycles {
  public:
    explicit RandomCycles(std::uint64_t seed)
        : random_(seed) {}

    // Makes the next cycle of the fields below.
    void next();
    // All of it, for the report of a difference.
    std::string describe() const;

    bool newWorld = false;   // nothing is remembered
    bool newSession = false; // before this cycle
    bool distrusted = false; // before this cycle
    bool byClient = false;
    std::optional<bool> clientSays; // before this cycle: the client's verdict
    Moment now;
    Rules rules;
    Observation observation;

  private:
    std::uint64_t below(std::uint64_t count) { return random_() % count; }
    bool oneIn(std::uint64_t count) { return below(count) == 0; }
    template <class T>
    T pick(std::initializer_list<T> list) {
        return list.begin()[below(list.size())];
    }
    void changeRules();
    void changeValue(Quantity quantity);
    void changeDirection();
    std::optional<Sector> randomSector();

    std::mt19937_64 random_;
    std::uint64_t cycle_ = 0;
    std::int64_t stepMs_ = 1000;
    bool jitter_ = false;
    std::uint64_t restless_ = 10; // a value changes in one of so many cycles
    // What the instruments show, whether or not it is read.
    PerQuantity<double> values_;
    PerQuantity<std::int32_t> given_;
    std::optional<double> direction_;
};

} // namespace skyhold
