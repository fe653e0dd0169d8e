// SPDX-License-Identifier: GPL-3.0-or-later
#include "replay/compare.h"

#include <QDateTime>

#include <algorithm>

namespace skyhold {

namespace {

constexpr std::int64_t kStepsPerReport = 8'192;

// Calls `progress` now and then.
class Reporter {
  public:
    Reporter(const ReplaySource& source, const Progress& progress)
        : source_(source)
        , progress_(progress) {}

    // False: stop.
    bool step(std::int64_t utcMs) {
        if (!progress_ || ++steps_ % kStepsPerReport != 0)
            return true;
        const double whole = static_cast<double>(source_.lastMs - source_.firstMs);
        const double done = static_cast<double>(utcMs - source_.firstMs);
        stopped_ = !progress_(whole > 0 ? std::clamp(done / whole, 0.0, 1.0) : 0);
        return !stopped_;
    }
    bool stopped() const { return stopped_; }

  private:
    const ReplaySource& source_;
    const Progress& progress_;
    std::int64_t steps_ = 0;
    bool stopped_ = false;
};

// Notes where two replays differ.
class Differences {
  public:
    void note(const Replay& inForce, const Replay& tried, std::int64_t utcMs) {
        const bool differ = inForce.unsafe() != tried.unsafe();
        if (open_ && (!differ || found_.back().unsafeInForce != inForce.unsafe()))
            close(utcMs);
        if (differ && !open_) {
            found_.push_back({utcMs, utcMs, inForce.unsafe(),
                              inForce.unsafe() ? inForce.cause() : tried.cause()});
            open_ = true;
        }
    }
    void close(std::int64_t utcMs) {
        if (open_)
            found_.back().toUtcMs = utcMs;
        open_ = false;
    }
    std::vector<Difference> take() { return std::move(found_); }

  private:
    std::vector<Difference> found_;
    bool open_ = false;
};

std::int64_t nextNoon(std::int64_t utcMs) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(utcMs);
    const QDateTime noon(time.date(), QTime(12, 0));
    return (noon > time ? noon : QDateTime(time.date().addDays(1), QTime(12, 0)))
        .toMSecsSinceEpoch();
}

void widen(std::optional<Extent>& seen, double low, double high) {
    seen = seen ? Extent{std::min(seen->low, low), 0, std::max(seen->high, high)}
                : Extent{low, 0, high};
}

struct Night {
    std::int64_t endMs = 0;
    std::int64_t darkMs = 0; // of its cycles that count
    bool safe = true;
    PerQuantity<std::optional<Extent>> seen;
};

void endNight(const Night& night, Suggestion& suggestion) {
    constexpr std::int64_t kLeastMs = 3'600'000;
    if (night.darkMs < kLeastMs)
        return;
    ++suggestion.nights;
    if (!night.safe)
        return;
    ++suggestion.safeNights;
    for (const Quantity quantity : kAllQuantities) {
        if (const std::optional<Extent>& seen = night.seen[quantity])
            widen(suggestion.seen[quantity], seen->low, seen->high);
    }
}

// Daylight and sources that fail say nothing of the weather.
bool saysNothing(const Cause& cause) {
    return cause.kind == CauseKind::Source || cause.quantity == Quantity::Brightness;
}

} // namespace

Comparison compareRules(const ReplaySource& source, const Rules& inForce, const Rules& tried,
                        const Progress& progress) {
    Comparison comparison;
    comparison.fault = source.fault;
    if (!source.fault.isEmpty())
        return comparison;
    const bool same = inForce == tried;
    Replay first(inForce);
    Replay second(tried);
    Differences differences;
    Reporter reporter(source, progress);
    std::int64_t lastMs = 0;
    int interval = 0;
    comparison.fault = source.each([&](const ReplayStep& step) {
        if (lastMs != 0 && step.utcMs - lastMs > overdueMs(interval))
            differences.close(lastMs + overdueMs(interval));
        first.cycle(step.observation, step.utcMs, step.intervalSeconds, step.newSession);
        if (!same) {
            second.cycle(step.observation, step.utcMs, step.intervalSeconds, step.newSession);
            differences.note(first, second, step.utcMs);
        }
        lastMs = step.utcMs;
        interval = step.intervalSeconds;
        return reporter.step(step.utcMs);
    });
    const std::int64_t endMs = lastMs + 1'000LL * interval;
    first.end(endMs);
    second.end(endMs);
    differences.close(endMs);
    comparison.inForce = first.outcome();
    comparison.tried = same ? first.outcome() : second.outcome();
    comparison.differences = differences.take();
    comparison.stopped = reporter.stopped();
    return comparison;
}

Suggestion suggest(const ReplaySource& source, const Rules& inForce, const Progress& progress) {
    Suggestion suggestion;
    suggestion.fault = source.fault;
    if (!source.fault.isEmpty())
        return suggestion;
    Replay replay(inForce);
    Reporter reporter(source, progress);
    Night night;
    suggestion.fault = source.each([&](const ReplayStep& step) {
        if (step.utcMs >= night.endMs) {
            endNight(night, suggestion);
            night = {};
            night.endMs = nextNoon(step.utcMs);
        }
        replay.cycle(step.observation, step.utcMs, step.intervalSeconds, step.newSession);
        const Causes& causes = replay.judgement().causes;
        if (std::ranges::any_of(causes, saysNothing))
            return reporter.step(step.utcMs);
        night.darkMs += 1'000LL * step.intervalSeconds;
        night.safe = night.safe && causes.isEmpty();
        for (const Quantity quantity : kAllQuantities) {
            if (const std::optional<double>& value = step.observation.values[quantity])
                widen(night.seen[quantity], *value, *value);
        }
        return reporter.step(step.utcMs);
    });
    endNight(night, suggestion);
    suggestion.stopped = reporter.stopped();
    return suggestion;
}

} // namespace skyhold
