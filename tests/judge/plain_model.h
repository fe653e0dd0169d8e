// SPDX-License-Identifier: GPL-3.0-or-later
// A second, deliberately plain model of the rules by which a cycle is judged. It is written clause
// by clause, for a reader, and shares no code with the judge that it checks.
#pragma once

#include "model/judgement.h"
#include "model/observation.h"
#include "model/rules.h"

#include <map>
#include <string>
#include <vector>

namespace skyhold {

struct PlainAnswer {
    PerQuantity<std::int32_t> levels;
    PerQuantity<bool> counts; // the level, by its sector or the cloud delay
    PerQuantity<bool> beyond;
    std::vector<std::string> causes; // such as "Wind 2", "Gust beyond", "Station"
    std::vector<std::int64_t> since; // of each cause, UTC milliseconds
    bool unsafe = false;
    std::int64_t wait = 0; // seconds
    bool operator==(const PlainAnswer&) const = default;
};

class PlainModel {
  public:
    void beginSession(const Rules& rules, Moment now);
    void distrust();
    void clientSays(bool unsafe) { unsafeFlag_ = unsafe; }
    PlainAnswer cycle(const Observation& observation, const Rules& rules, Moment now,
                      bool byClient);

  private:
    void readLevels(const Observation& observation, const Rules& rules);
    bool cloudCounts(double delaySeconds);
    bool sectorHolds(const std::optional<Sector>& sector, long double& outsideSince) const;
    std::int64_t decide(bool unsafe, double delaySeconds, bool earnFirst);
    double lengthened(const Rules& rules) const;
    void closed(const Rules& rules);

    long double now_ = 0; // milliseconds, as all times here
    PerQuantity<std::int32_t> levels_;
    PerQuantity<bool> beyond_;
    std::optional<double> direction_;
    long double windOutside_ = 0;
    long double gustOutside_ = 0;
    std::int32_t previousCloud_ = 0;
    std::optional<long double> cloudChange_; // none: long ago
    int safeState_ = 0;                      // 0 undecided, 1 was unsafe, 2 was safe
    long double delayStart_ = 0;
    bool unsafeFlag_ = false;
    std::vector<long double> closures_; // all of the session
    std::size_t counted_ = 0;           // those that have led to a doubling
    int doublings_ = 0;
    std::map<std::string, std::int64_t> standing_; // since when, by the cause's first word
};

// The judge's answer in the same form.
PlainAnswer plain(const Judgement& judgement);

const char* nameOf(Quantity quantity);

} // namespace skyhold
