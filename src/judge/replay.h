// SPDX-License-Identifier: GPL-3.0-or-later
// What would have been: recorded cycles go through the judge once more, by rules of one's choice. A
// cycle's verdict counts until the next cycle; where none came for too long, nothing is counted.
#pragma once

#include "judge/judge.h"

#include <vector>

namespace skyhold {

// Beyond this after a cycle nobody has looked: three intervals and a little.
constexpr std::int64_t overdueMs(int intervalSeconds) {
    return 1'000 * (3LL * intervalSeconds + 5);
}

// The first cause of a cycle, with what it was judged by.
struct ReplayCause {
    CauseKind kind = CauseKind::Level;
    Quantity quantity = Quantity::Cloud;
    SourceName source = SourceName::Station;
    std::int32_t level = 0;
    bool delay = false; // none any more: the way back to safe is being waited for
    std::optional<double> value;
    std::optional<double> limit; // of quantities with limits
    bool above = true;           // the value is above the limit, else not above it

    // Of the same kind, whatever the value and the level.
    bool sameKind(const ReplayCause& other) const;
};

// A time that the rules call unsafe.
struct ReplayPeriod {
    std::int64_t fromUtcMs = 0;
    std::int64_t toUtcMs = 0;
    bool closure = false; // it was safe before
    ReplayCause cause;    // at its beginning
};

struct ReplayShare {
    ReplayCause cause;
    int closures = 0;
    std::int64_t unsafeMs = 0;
};

struct ReplayOutcome {
    std::int64_t cycles = 0;
    std::int64_t watchedMs = 0;
    std::int64_t unsafeMs = 0;
    int closures = 0; // from safe to unsafe
    std::vector<ReplayPeriod> periods;
    // By the first cause of each cycle, which together make up the whole; the waits for the safe
    // delay have one of their own.
    std::vector<ReplayShare> shares;
};

class Replay {
  public:
    explicit Replay(const Rules& rules)
        : rules_(rules) {}

    // The next cycle; times only move forward. `newSession`: it is the first of one.
    void cycle(const Observation& observation, std::int64_t utcMs, int intervalSeconds,
               bool newSession);
    // Until when the last cycle counts.
    void end(std::int64_t utcMs);

    bool unsafe() const { return unsafe_; }
    const Judgement& judgement() const { return judgement_; }
    const ReplayCause& cause() const { return cause_; } // while unsafe
    const ReplayOutcome& outcome() const { return outcome_; }

  private:
    void countTo(std::int64_t utcMs);
    void breakOff();
    ReplayCause firstCause(const Observation& observation) const;
    std::size_t shareOf(const ReplayCause& cause);

    Rules rules_;
    JudgeMemory memory_;
    Judgement judgement_;
    ReplayOutcome outcome_;
    ReplayCause cause_;
    std::size_t share_ = 0; // of the cause
    std::int64_t lastMs_ = 0;
    std::int64_t overdueMs_ = 0;
    bool begun_ = false;
    bool unsafe_ = false;
};

} // namespace skyhold
