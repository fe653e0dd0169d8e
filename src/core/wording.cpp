// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/wording.h"

#include "conditions/alarms.h"
#include "conditions/threshold_rules.h"
#include "judge/nearest.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

QString shortNumber(double value, const NumberForms& forms) {
    return numberText(std::round(value * 10) / 10, forms);
}

QString valueText(Quantity quantity, double value, const CycleResult& result,
                  const NumberForms& forms) {
    const Measure measure = rowOf(quantity).measure;
    const bool whole = measure == Measure::Cycles || measure == Measure::Kelvin;
    const QString number = formatNumber(value, whole ? u"0" : u"0.0", forms);
    const QString unit = unitText(measure, result.temperatureUnit, result.speedUnit);
    return unit.isEmpty() ? number : number + u' ' + unit;
}

// What the level says about its limit: level 1 ends at the first one, the others begin above one.
QString limitText(Quantity quantity, std::int32_t level, const Rules& rules,
                  const NumberForms& forms) {
    const auto& limits = rules.levels[quantity].limits;
    if (level == 1)
        return u", not above "_s + shortNumber(limits[0], forms);
    return u", above "_s + shortNumber(limits[static_cast<std::size_t>(level - 2)], forms);
}

QString levelText(const Cause& cause, const CycleResult& result, const NumberForms& forms) {
    const QuantityRow& row = rowOf(cause.quantity);
    const QString name = QString::fromUtf16(row.title);
    const std::optional<double> value = result.observation.values[cause.quantity];
    if (row.hasLimits()) {
        if (!value)
            return name + u" at its last level, "_s + QString::number(cause.level);
        return name + u' ' + valueText(cause.quantity, *value, result, forms) +
               limitText(cause.quantity, cause.level, result.rules, forms);
    }
    const QString label = result.observation.givenLabels[cause.quantity].trimmed();
    const QString level = label.isEmpty() ? u"level %1"_s.arg(cause.level) : label;
    return value ? name + u": "_s + level + u" at "_s +
                       valueText(cause.quantity, *value, result, forms)
                 : name + u": "_s + level;
}

QString sourceText(const Cause& cause, const CycleResult& result, const NumberForms& forms) {
    if (cause.source == SourceName::Sensor)
        return result.observation.sensor.state == SourceState::Absent
                   ? u"Kiv_Nubilo is not running"_s
                   : u"Kiv_Nubilo has failed"_s;
    const StationObservation& station = result.observation.station;
    switch (station.state) {
    case SourceState::Absent:
        return u"Station data file is missing"_s;
    case SourceState::Old:
        return u"Station data %1 s old, more than %2"_s.arg(
            formatNumber(station.ageSeconds, u"0", forms),
            formatNumber(station.timeoutSeconds, u"0", forms));
    default:
        return u"Station data: "_s + station.detail;
    }
}

QString quantityName(Quantity quantity) {
    return QString::fromUtf16(rowOf(quantity).name);
}

// What a verdict leaves out or may be wrong about, whatever it is.
QStringList verdictNotes(const CycleResult& result, const ConditionControls& controls,
                         const NumberForms& forms) {
    QStringList beyond;
    for (const Quantity quantity : kStationQuantities) {
        if (result.judgement.beyond[quantity] && !result.rules.beyondIsUnsafe)
            beyond +=
                QString::fromUtf16(rowOf(quantity).title) + u' ' +
                valueText(quantity, result.observation.values[quantity].value_or(0), result, forms);
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

bool anyBeyond(const CycleResult& result) {
    return std::ranges::any_of(kStationQuantities, [&result](Quantity quantity) {
        return result.judgement.beyond[quantity];
    });
}

} // namespace

QString levelLabel(Quantity quantity, const CycleResult& result,
                   const ConditionControls& controls) {
    const std::int32_t level = result.judgement.levels[quantity];
    if (level == 0)
        return u"Unknown"_s;
    if (level < 1 || level > static_cast<std::int32_t>(kLevelCount))
        return {};
    return rowOf(quantity).hasLimits()
               ? controls.Color[quantity][static_cast<std::size_t>(level - 1)].Caption.value()
               : result.observation.givenLabels[quantity];
}

QString noticeTitle(Verdict verdict, bool sourceFailed) {
    QString title;
    switch (verdict) {
    case Verdict::None:
        title = u"Not monitored"_s;
        break;
    case Verdict::Safe:
        title = u"Safe"_s;
        break;
    case Verdict::Waiting:
        title = u"Unsafe: waiting for the safe delay"_s;
        break;
    case Verdict::Unsafe:
        title = u"Unsafe"_s;
        break;
    }
    if (!sourceFailed)
        return title;
    return title +
           (verdict == Verdict::Safe ? u", but a source has failed"_s : u": a source has failed"_s);
}

QStringList sourceFaults(const CycleResult& result, const NumberForms& forms) {
    QStringList faults;
    if (result.observation.station.faulty())
        faults +=
            sourceText({.kind = CauseKind::Source, .source = SourceName::Station}, result, forms);
    if (result.observation.sensor.failed())
        faults +=
            sourceText({.kind = CauseKind::Source, .source = SourceName::Sensor}, result, forms);
    return faults;
}

QString sourceFaultInShort(const CycleResult& result, std::int64_t later) {
    if (result.observation.sensor.failed())
        return sourceText({.kind = CauseKind::Source, .source = SourceName::Sensor}, result, {});
    const StationObservation& station = result.observation.station;
    if (!station.faulty())
        return {};
    switch (station.state) {
    case SourceState::Absent:
        return u"station data file is missing"_s;
    case SourceState::Old:
        return u"station data %1 s old"_s.arg(std::llround(station.ageSeconds) + later);
    case SourceState::Ok:
        return u"station values are missing"_s;
    default:
        return u"station data cannot be used"_s;
    }
}

QString alarmText(const QString& id, const CycleResult& result, const ConditionControls& controls) {
    if (const std::optional<ConditionAlarm> alarm = conditionAlarm(id)) {
        const QuantityRow& row = rowOf(alarm->quantity);
        const QString label = row.hasLimits()
                                  ? controls.Color[row.quantity][alarm->index].Caption.value()
                                  : result.observation.givenLabels[row.quantity].trimmed();
        const QString name = u"Alarm: "_s + QString::fromUtf16(row.title);
        return label.isEmpty() ? name : name + u", "_s + label;
    }
    if (id == kStationAlarm)
        return u"Alarm: weather station"_s;
    if (id == kSensorAlarm)
        return u"Alarm: Kiv_Nubilo"_s;
    return id == kRoofAlarm ? u"Alarm: roof"_s : u"An alarm sounds"_s;
}

QString nearestText(const CycleResult& result, const NumberForms& forms) {
    const std::optional<NearestLimit> nearest =
        nearestLimit(result.observation, result.rules, result.judgement);
    if (!nearest)
        return {};
    const QString name = QString::fromUtf16(rowOf(nearest->quantity).title).toLower();
    const QString limit = shortNumber(nearest->limit, forms);
    if (!nearest->above)
        return u"nearest: %1 %2, unsafe at %3"_s.arg(
            name, valueText(nearest->quantity, nearest->value, result, forms), limit);
    const QString unit =
        unitText(rowOf(nearest->quantity).measure, result.temperatureUnit, result.speedUnit);
    return u"nearest: %1 %2 of %3 %4"_s.arg(name, shortNumber(nearest->value, forms), limit, unit);
}

QString roofText(const CycleResult& result) {
    const RoofCheck& roof = result.roof;
    if (!roof.faulty)
        return {};
    const bool close = roof.told == kRoofClosed;
    const QString now = roof.reads == kRoofOpen     ? u"still open"_s
                        : roof.reads == kRoofClosed ? u"still closed"_s
                        : close                     ? u"not reported closed"_s
                                                    : u"not reported open"_s;
    const std::int64_t seconds = (result.judged.ms - roof.since.ms) / 1000;
    return u"Roof %1 %2 after it was told to %3"_s.arg(
        now, durationText(std::max<std::int64_t>(seconds, 0)), close ? u"close"_s : u"open"_s);
}

QString causeLine(const CycleResult& result, const ConditionControls& controls,
                  const NumberForms& forms) {
    QStringList sentences{roofText(result)};
    for (const Cause& cause : result.judgement.causes)
        sentences += causeText(cause, result, forms);
    if (result.judgement.waiting()) {
        sentences += delayText(result);
    } else if (result.judgement.causes.isEmpty()) {
        sentences += anyBeyond(result) ? u"All other conditions safe"_s : u"All conditions safe"_s;
        sentences += nearestText(result, forms);
    }
    sentences += verdictNotes(result, controls, forms);
    sentences.removeAll(QString());
    return sentences.join(u"; "_s);
}

QString recordedText(bool recording, const QString& path, std::int64_t lines, std::int64_t lost) {
    if (path.isEmpty())
        return u"Not recording"_s;
    const auto counted = [](std::int64_t count) {
        return count == 1 ? u"1 line"_s : u"%1 lines"_s.arg(count);
    };
    QString text =
        (recording ? QString() : u"Stopped. "_s) + path + u": "_s +
        (lines == 0 && recording ? u"the first line comes with a read cycle"_s : counted(lines));
    if (lost > 0)
        text += u", %1 lost"_s.arg(counted(lost));
    return text;
}

QString delayText(const CycleResult& result) {
    const JudgeMemory& memory = result.memory;
    QString text = u"Safe in "_s + durationText(result.judgement.waitSeconds);
    if (memory.lastUnsafeUtcMs > 0) {
        const Cause& cause = memory.lastUnsafe;
        const QString what = cause.kind != CauseKind::Source      ? quantityName(cause.quantity)
                             : cause.source == SourceName::Sensor ? u"Kiv_Nubilo"_s
                                                                  : u"station data"_s;
        text += u"; last reset by %1 at %2"_s.arg(what, clockText(memory.lastUnsafeUtcMs));
    }
    if (result.judgement.lengthened)
        text += u"; delay lengthened to %1 after frequent closures"_s.arg(
            durationText(std::llround(result.judgement.delaySeconds)));
    return text;
}

QString causeText(const Cause& cause, const CycleResult& result, const NumberForms& forms) {
    QString text;
    switch (cause.kind) {
    case CauseKind::Level:
        text = levelText(cause, result, forms);
        break;
    case CauseKind::Beyond:
        text = QString::fromUtf16(rowOf(cause.quantity).title) + u' ' +
               valueText(cause.quantity, result.observation.values[cause.quantity].value_or(0),
                         result, forms) +
               u", beyond the last limit"_s;
        break;
    case CauseKind::Source:
        text = sourceText(cause, result, forms);
        break;
    }
    return cause.sinceUtcMs > 0 ? text + u", since "_s + clockText(cause.sinceUtcMs) : text;
}

} // namespace skyhold
