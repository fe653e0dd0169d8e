#include "conditions/safety.h"

#include "conditions/sectors.h"
#include "conditions/threshold_rules.h"
#include "platform/text_forms.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr double kLongestDelay = 2'147'483'647; // seconds

// By Quantity.
constexpr std::array kQuantityNames{u"Cloud", u"Rain",        u"Brightness", u"Wind",
                                    u"Gust",  u"Temperature", u"Dew point",  u"Humidity"};

QString quantityName(Quantity quantity) {
    return QString::fromUtf16(kQuantityNames[static_cast<std::size_t>(quantity)]);
}

// The value of a station quantity with its unit.
QString valueInWords(const CurrentReadings& readings, Quantity quantity, const NumberForms& forms) {
    const QString number =
        formatNumber(readings.judgedValue(quantity).value_or(0), u"0.0", forms) + u' ';
    switch (quantity) {
    case Quantity::Wind:
    case Quantity::Gust: {
        constexpr std::array units{u"km/h", u"mph", u"m/s", u"knots"};
        const qsizetype unit = u"KMmk"_s.indexOf(readings.SpeedUnit);
        return number + (unit < 0 ? QString() : QString::fromUtf16(units[unit]));
    }
    case Quantity::Humidity:
        return number + u'%';
    default:
        return number + u'°' + readings.TemperatureUnit.trimmed();
    }
}

SafetyDecision rawDecision(const CurrentReadings& readings, const ConditionControls& controls,
                           SafetyState& safety, SectorState& sectors, std::int64_t nowMs) {
    SafetyDecision decision;
    // `holds` comes evaluated: the cloud and sector tests note changes even where no box is
    // checked and whatever was found before.
    const auto count = [&](Quantity quantity, std::int32_t level, bool holds,
                           const ThreeChecks& unsafe) {
        if (holds && unsafe[static_cast<std::size_t>(level - 1)].checked())
            decision.levels.push_back({quantity, level});
    };
    const auto countPlain = [&](Quantity quantity, const ThreeChecks& unsafe) {
        for (std::int32_t k = 1; k <= 3; ++k)
            count(quantity, k, readings.Condition[quantity] == k, unsafe);
    };

    for (std::int32_t k = 3; k >= 1; --k)
        count(Quantity::Cloud, k, CloudLevelActive(k, readings, safety, nowMs), controls.Cond[Quantity::Cloud]);
    countPlain(Quantity::Rain, controls.Cond[Quantity::Rain]);
    for (std::int32_t k = 3; k >= 1; --k)
        count(Quantity::Wind, k, WindLevelHolds(k, readings, controls, sectors, nowMs),
              controls.Cond[Quantity::Wind]);
    for (std::int32_t k = 3; k >= 1; --k)
        count(Quantity::Gust, k, GustLevelHolds(k, readings, controls, sectors, nowMs),
              controls.Cond[Quantity::Gust]);
    countPlain(Quantity::Dew, controls.Cond[Quantity::Dew]);
    countPlain(Quantity::Humidity, controls.Cond[Quantity::Humidity]);
    countPlain(Quantity::Temperature, controls.Cond[Quantity::Temperature]);
    countPlain(Quantity::Brightness, controls.Cond[Quantity::Brightness]);
    if (controls.BeyondLimitUnsafe.checked())
        std::ranges::copy_if(kStationQuantities, std::back_inserter(decision.beyondLimits),
                             [&](Quantity quantity) { return isBeyondLimits(readings, quantity); });
    decision.stationDataOld = controls.WSDataOldUnsafe.checked() && readings.StationDataOld;
    decision.sensorFailed = controls.NBDataOldUnsafe.checked() && readings.SensorError;
    return decision;
}

} // namespace

bool CloudLevelActive(std::int32_t level, const CurrentReadings& readings, SafetyState& safety,
                      std::int64_t nowMs) {
    const std::int32_t current = readings.Condition[Quantity::Cloud];
    if (current != level)
        return false;
    const std::int32_t previous = safety.PrevCloudLevel;
    if (previous != current) {
        safety.PrevCloudLevel = current;
        safety.CloudChangeTime = nowMs;
    }
    if (previous == CloudVeryCloudy) {
        safety.CloudChangeTime = 0;
        return true;
    }
    if (current != CloudCloudy)
        return true;
    const double elapsed = static_cast<double>(nowMs - safety.CloudChangeTime) / 1000;
    return !(elapsed < safety.CloudAlarmDelay); // a delay that is no number is none
}

bool applySafeDelay(bool unsafe, double delaySeconds, SafetyState& safety, std::int64_t nowMs) {
    // Bounded, so that stamps and the countdown stay in range; in this order of the arguments a
    // delay that is no number is the longest one.
    const double delay = std::max(-kLongestDelay, std::min(kLongestDelay, delaySeconds));

    const std::int32_t before = safety.SafeState;
    safety.SafeState = unsafe ? 1 : 2;
    safety.SafeDelayRemaining = 0;
    if (before == 0) {
        safety.SafeDelayStart = nowMs - std::llround(delay * 1000);
        return unsafe;
    }
    if (before != safety.SafeState)
        safety.SafeDelayStart = nowMs;
    if (unsafe)
        return true;

    const auto elapsed = static_cast<double>(std::abs(nowMs / 1000 - safety.SafeDelayStart / 1000));
    if (delay <= elapsed)
        return false;
    safety.SafeDelayRemaining = static_cast<std::int32_t>(roundHalfEven(delay - elapsed));
    return true;
}

SafetyDecision DecideSafety(CurrentReadings& readings, ConditionControls& controls,
                            SafetyState& safety, SectorState& sectors, std::int64_t nowMs,
                            const std::function<void()>& selectAlarm) {
    if (safety.LocalControl)
        return {};
    SafetyDecision decision = rawDecision(readings, controls, safety, sectors, nowMs);
    readings.UnsafeFlag =
        applySafeDelay(decision.unsafe(), controls.SafeDelayVal.Value, safety, nowMs);

    const bool waiting = readings.UnsafeFlag && !decision.unsafe();
    controls.SafeDelayMsg.Caption =
        waiting ? u"SAFE condition delayed by %1 s"_s.arg(safety.SafeDelayRemaining) : QString();
    selectAlarm();
    return decision;
}

QString verdictCauses(const SafetyDecision& decision, const ConditionControls& controls,
                      const SensorDescription& sensorDescription) {
    QStringList causes;
    for (const auto& [quantity, level] : decision.levels) {
        QString description = LevelDescription(quantity, level, controls, sensorDescription);
        if (description.trimmed().isEmpty())
            description = u"level %1"_s.arg(level);
        causes += quantityName(quantity) + u": "_s + description;
    }
    for (const Quantity quantity : decision.beyondLimits)
        causes += quantityName(quantity) + u": beyond the last limit"_s;
    if (decision.stationDataOld)
        causes += u"Weather station: data old or missing"_s;
    if (decision.sensorFailed)
        causes += u"Sensor program: failed"_s;
    return causes.join(u", "_s);
}

QStringList verdictNotes(const CurrentReadings& readings, const ConditionControls& controls,
                         const NumberForms& forms) {
    QStringList beyond;
    for (const Quantity quantity : kStationQuantities) {
        const QString name =
            quantity == Quantity::Dew ? u"Dew-point spread"_s : quantityName(quantity);
        if (isBeyondLimits(readings, quantity) && !controls.BeyondLimitUnsafe.checked())
            beyond += name + u' ' + valueInWords(readings, quantity, forms);
    }
    QStringList notes;
    if (beyond.size() == 1)
        notes += beyond[0] + u" is beyond the last limit and is not judged"_s;
    else if (!beyond.isEmpty())
        notes += beyond.join(u", "_s) + u" are beyond the last limit and are not judged"_s;
    for (const Quantity quantity : kStationQuantities) {
        if (!limitsInOrder(controls.Limit[quantity]))
            notes += u"Limits of %1 are not in order"_s.arg(quantityName(quantity));
    }
    return notes;
}

void Disp_UnsafeFlag(const CurrentReadings& readings, ConditionControls& controls) {
    controls.LblStatus.Caption = readings.UnsafeFlag ? u"Unsafe"_s : u"Safe"_s;
    controls.LEDUnsafe.FillColor = readings.UnsafeFlag ? kRed : kGreen;
}

QString SafeText(std::int32_t flag) {
    if (flag == -1)
        return u"Unsafe"_s;
    return flag == 0 ? u"Safe"_s : QString();
}

} // namespace skyhold
