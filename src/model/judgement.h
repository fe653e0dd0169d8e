// SPDX-License-Identifier: GPL-3.0-or-later
// What a cycle's observation means by the rules: levels, causes and the verdict.
#pragma once

#include "model/quantity.h"

#include <QVarLengthArray>

#include <cstdint>
#include <optional>

namespace skyhold {

// A moment on both clocks. Waits are measured on `ms`, which only moves forward; `utcMs` is for
// people.
struct Moment {
    std::int64_t ms = 0;    // Clock::MsClock
    std::int64_t utcMs = 0; // since 1970
    bool operator==(const Moment&) const = default;
};

enum class CauseKind : std::uint8_t {
    Level,  // a level that counts as unsafe
    Beyond, // a value above the last limit
    Source  // a source that is old or failed
};

// What speaks for unsafe.
struct Cause {
    CauseKind kind = CauseKind::Level;
    Quantity quantity = Quantity::Cloud;     // of Level and Beyond
    SourceName source = SourceName::Station; // of Source
    std::int32_t level = 0;                  // of Level
    std::int64_t sinceUtcMs = 0;
    bool operator==(const Cause&) const = default;
};

using Causes = QVarLengthArray<Cause, 12>;

// What the guard against flapping remembers. A closure is a verdict that turns from safe to unsafe
// by the rules.
struct FlapMemory {
    QVarLengthArray<std::int64_t, 8> closures; // of the last hour, since the last doubling; ms
    std::int64_t lastClosure = 0;              // ms; counts while there is a doubling
    std::int32_t doublings = 0;                // of the safe delay
    bool operator==(const FlapMemory&) const = default;
};

// The last verdict and how it came about; what a rule itself must remember from cycle to cycle. A
// value: it can be copied, compared and saved.
struct JudgeMemory {
    // Both stay while there is no usable input.
    PerQuantity<std::int32_t> levels;
    PerQuantity<bool> beyond; // the last limit

    std::int32_t SafeState = 0; // 0 undecided in this session, 1 last was unsafe, 2 last was safe
    std::int64_t SafeDelayStart = 0;     // ms
    std::int32_t SafeDelayRemaining = 0; // whole seconds still to wait, 0 when not waiting
    bool UnsafeFlag = false;
    FlapMemory flap;

    std::int32_t PrevCloudLevel = 0;
    std::int64_t CloudChangeTime = 0; // ms; 0: long ago

    // Of the last usable reading; none when that had none.
    std::optional<double> WindDirection; // degrees
    // The last time at which the sector test of the quantity found the direction outside; ms.
    PerQuantity<std::int64_t> OutsideSince;

    // Since when each cause has stood; 0 while it does not. UTC milliseconds.
    PerQuantity<std::int64_t> causeSince;
    PerQuantity<std::int64_t> levelSince; // the present level
    std::int64_t stationOldSince = 0;
    std::int64_t sensorFailedSince = 0;
    std::int64_t verdictSince = 0;
    Cause lastUnsafe;                 // the first cause of the last cycle that had one
    std::int64_t lastUnsafeUtcMs = 0; // when that was; 0: not in this session

    bool operator==(const JudgeMemory&) const = default;
};

struct Judgement {
    PerQuantity<std::int32_t> levels;
    PerQuantity<bool> holds;      // the level counts: its sector or the cloud delay lets it
    PerQuantity<bool> unsafe;     // the level counts and is marked as unsafe
    PerQuantity<bool> beyond;     // the last value lay above the last limit and so has no level
    Causes causes;                // what speaks for unsafe in this cycle, in the order of the tests
    bool UnsafeFlag = false;      // the verdict
    std::int32_t waitSeconds = 0; // what is left of the safe delay; 0 when not waiting
    double delaySeconds = 0;      // the safe delay in force
    bool lengthened = false;      // that delay, by the guard against flapping
    bool byClient = false;        // a client decides: the verdict is not of these causes

    // The rules say safe, and the verdict is held back.
    bool waiting() const { return UnsafeFlag && causes.isEmpty() && !byClient; }
};

} // namespace skyhold
