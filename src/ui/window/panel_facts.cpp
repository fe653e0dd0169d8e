// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/panel_facts.h"

#include "core/wording.h"
#include "judge/nearest.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

std::int64_t secondsSince(const CycleResult& result, std::int64_t nowMs) {
    return std::max<std::int64_t>(nowMs - result.judged.ms, 0) / 1000;
}

QString sinceText(std::int64_t utcMs, std::int64_t nowMs) {
    if (utcMs <= 0)
        return {};
    const QString since = u"since "_s + clockText(utcMs);
    return nowMs < utcMs ? since : since + u" · "_s + durationText((nowMs - utcMs) / 1000);
}

double shareWaited(const CycleResult& result, std::int64_t nowMs) {
    const double whole = result.judgement.delaySeconds;
    const auto left =
        static_cast<double>(result.judgement.waitSeconds - secondsSince(result, nowMs));
    return whole > 0 ? std::clamp(1 - left / whole, 0.0, 1.0) : 0;
}

// Never less than what is left.
QString countdown(const CycleResult& result, std::int64_t nowMs) {
    const std::int64_t left = result.judgement.waitSeconds - secondsSince(result, nowMs);
    if (left <= 0)
        return u"The next reading decides"_s;
    return u"Safe in %1:%2"_s.arg(left / 60).arg(left % 60, 2, 10, QLatin1Char('0'));
}

BannerFacts startingFacts(const PanelMoment& now) {
    const auto seconds = static_cast<std::int64_t>(std::min(now.started, now.startLimit));
    return {BannerKind::Starting, u"Kiv_Nubilo, %1 of %2 s"_s.arg(seconds).arg(now.startLimit)};
}

QString shortNumber(double value, const NumberForms& forms) {
    return numberText(std::round(value * 10) / 10, forms);
}

QString limitFoot(const Cause& cause, const CycleResult& result, const NumberForms& forms) {
    const auto& limits = result.rules.levels[cause.quantity].limits;
    const auto number = [&forms](double value) {
        return shortNumber(value, forms);
    };
    if (!rowOf(cause.quantity).hasLimits())
        return {};
    if (cause.kind == CauseKind::Beyond)
        return u"> "_s + number(limits.back()) + u' ';
    if (cause.level < 1 || cause.level > static_cast<std::int32_t>(kLevelCount))
        return {};
    const auto index = static_cast<std::size_t>(cause.level - 1);
    return index == 0 ? u"≤ "_s + number(limits[0]) + u' '
                      : u"> "_s + number(limits[index - 1]) + u' ';
}

std::optional<Gauge> gaugeOf(Quantity quantity, const CycleResult& result,
                             const NumberForms& forms) {
    const std::optional<double> value = result.observation.values[quantity];
    const LevelRules& levels = result.rules.levels[quantity];
    if (!rowOf(quantity).hasLimits() || !value || !levels.ordered() ||
        !result.observation.station.usable())
        return std::nullopt;
    const auto& limits = levels.limits;
    // A margin of a fifth at both ends, and for what is not negative no lower than 0.
    const double margin = (limits.back() - limits.front()) / 5;
    const double top = limits.back() + 2 * margin;
    const double bottom = limits.front() >= 0
                              ? std::max(0.0, limits.front() - (limits.back() - limits.front()))
                              : limits.front() - 2 * margin;
    const auto place = [top, bottom](double at) {
        return std::clamp((at - bottom) / (top - bottom), 0.0, 1.0);
    };
    const std::array<double, kLevelCount + 2> bounds{bottom, limits[0], limits[1], limits[2], top};
    std::array<bool, kLevelCount + 1> unsafe{};
    std::copy(levels.unsafe.begin(), levels.unsafe.end(), unsafe.begin());
    unsafe.back() = result.rules.beyondIsUnsafe;
    Gauge gauge{.marker = place(*value), .limits = {}, .unsafe = {}};
    for (std::size_t i = 0; i < unsafe.size(); ++i) {
        if (unsafe[i])
            gauge.unsafe.push_back({place(bounds[i]), place(bounds[i + 1])});
        if (i < kLevelCount)
            gauge.limits.push_back(
                {place(limits[i]), unsafe[i] != unsafe[i + 1], shortNumber(limits[i], forms)});
    }
    return gauge;
}

} // namespace

BannerFacts bannerFacts(const CycleResult& result, const PanelMoment& now) {
    if (now.session == SessionState::Idle)
        return {};
    if (now.session == SessionState::Starting)
        return startingFacts(now);
    if (now.verdict == Verdict::None)
        return {BannerKind::NoVerdict, u"No verdict yet"_s};
    if (now.overdue)
        return {BannerKind::SourceFailed,
                u"no reading for %1"_s.arg(durationText(secondsSince(result, now.ms)))};
    const Causes& causes = result.judgement.causes;
    const bool inTheSky = std::ranges::any_of(
        causes, [](const Cause& cause) { return cause.kind != CauseKind::Source; });
    if (!result.judgement.byClient && result.distrusted.isEmpty() && !inTheSky) {
        const QString fault = sourceFaultInShort(result, secondsSince(result, now.ms));
        if (!fault.isEmpty())
            return {BannerKind::SourceFailed, fault};
    }
    switch (now.verdict) {
    case Verdict::Safe:
        return {BannerKind::Safe, sinceText(result.memory.verdictSince, now.utcMs)};
    case Verdict::Waiting:
        return {BannerKind::Waiting, countdown(result, now.ms), shareWaited(result, now.ms)};
    default:
        return {BannerKind::Unsafe, sinceText(result.memory.verdictSince, now.utcMs)};
    }
}

TileFacts tileFacts(Quantity quantity, const CycleResult& result, Verdict verdict,
                    const NumberForms& forms) {
    TileFacts facts;
    if (verdict == Verdict::None || result.number == 0)
        return facts;
    for (const Cause& cause : result.judgement.causes) {
        if (cause.kind == CauseKind::Source || cause.quantity != quantity)
            continue;
        facts.culprit = true;
        facts.foot = limitFoot(cause, result, forms);
        if (cause.sinceUtcMs > 0)
            facts.foot += u"since "_s + clockText(cause.sinceUtcMs).left(5);
    }
    if (verdict == Verdict::Safe) {
        const auto nearest = nearestLimit(result.observation, result.rules, result.judgement);
        facts.nearest = nearest && nearest->quantity == quantity;
    }
    const std::optional<double> value = result.observation.values[quantity];
    if (quantity == Quantity::Dew && value && result.observation.station.usable())
        facts.spread = u"spread "_s + formatNumber(*value, u"0.0", forms);
    facts.gauge = gaugeOf(quantity, result, forms);
    return facts;
}

SourceAge stationAge(const CycleResult& result, std::int64_t nowMs) {
    const StationObservation& station = result.observation.station;
    const auto atCycle = static_cast<std::int64_t>(std::max(station.ageSeconds, 0.0));
    SourceAge age{.seconds = atCycle + secondsSince(result, nowMs), .failed = station.faulty()};
    age.ageing = station.timeoutSeconds > 0 &&
                 static_cast<double>(age.seconds) * 2 >= station.timeoutSeconds;
    return age;
}

std::int64_t secondsToCycle(const CycleResult& result, std::int64_t nowMs) {
    return std::max<std::int64_t>(result.intervalSeconds - secondsSince(result, nowMs), 0);
}

} // namespace skyhold
