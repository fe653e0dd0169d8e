// SPDX-License-Identifier: GPL-3.0-or-later
// What the panel shows, as plain values made from the last cycle; the widgets only paint them.
#pragma once

#include "model/cycle_result.h"
#include "model/session_state.h"
#include "platform/text_forms.h"

#include <vector>

namespace skyhold {

enum class BannerKind {
    Idle,      // no session
    Starting,  // waits for the sensor program's first data
    NoVerdict, // a session without a reading yet
    Safe,
    Waiting,      // the rules say safe, the delay does not yet
    Unsafe,       // the sky, or a client
    SourceFailed, // no cause in the sky, and a source is old or failed
};

struct BannerFacts {
    BannerKind kind = BannerKind::Idle;
    QString line;     // below the verdict; may be empty
    double share = 0; // 0..1 of the safe delay that has passed, while it is waited for
    bool operator==(const BannerFacts&) const = default;
};

// The moment on the clock, and what else the last cycle does not know.
struct PanelMoment {
    SessionState session = SessionState::Idle;
    Verdict verdict = Verdict::None;
    std::int64_t ms = 0;    // Clock::MsClock
    std::int64_t utcMs = 0; // the same moment since 1970; 0: not known
    bool overdue = false;   // the next cycle has not come
    double startLimit = 0;  // seconds that a start waits at most
    double started = 0;     // seconds since it began
};

BannerFacts bannerFacts(const CycleResult& result, const PanelMoment& now);

// A scale of values that rise to the right; all places are 0..1.
struct Gauge {
    double marker = 0;
    struct Limit {
        double at = 0;
        bool unsafe = false; // it parts what is unsafe from what is not
        QString text;
        bool operator==(const Limit&) const = default;
    };
    std::vector<Limit> limits;
    struct Span {
        double from = 0, to = 0;
        bool operator==(const Span&) const = default;
    };
    std::vector<Span> unsafe;
    bool operator==(const Gauge&) const = default;
};

struct TileFacts {
    bool culprit = false; // speaks for unsafe
    QString foot;         // of a culprit: "> 30 since 05:09"
    bool nearest = false; // to its limit, while all is safe
    QString spread;       // of the dew point's tile: "spread 3.4"
    std::optional<Gauge> gauge;
    bool operator==(const TileFacts&) const = default;
};

// Of a session that runs; without one a tile has none of it.
TileFacts tileFacts(Quantity quantity, const CycleResult& result, Verdict verdict,
                    const NumberForms& forms);

// How old a source's data are, and whether that is half of what is allowed or more.
struct SourceAge {
    std::int64_t seconds = 0;
    bool failed = false;
    bool ageing = false;
};
SourceAge stationAge(const CycleResult& result, std::int64_t nowMs);

// Seconds until the next cycle is due; 0 when it is.
std::int64_t secondsToCycle(const CycleResult& result, std::int64_t nowMs);

} // namespace skyhold
