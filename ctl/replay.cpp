// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/replay.h"

#include "conditions/rule_values.h"
#include "conditions/rules_of.h"
#include "ctl/history.h"
#include "ctl/output.h"
#include "ctl/values.h"
#include "ctl/verdict.h"
#include "platform/files.h"
#include "platform/settings_store.h"
#include "replay/report.h"
#include "settings/load_save.h"

#include <QJsonObject>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kWeekMs = 7LL * 86'400'000;
constexpr std::int64_t kLargestText = 512LL << 20;

int fail(const QString& text) {
    printFault(text);
    return kStatusFailed;
}

// The settings file as the monitor would load it.
struct InForce {
    Records records;
    Rules rules;
    KeptUnits units;
};

void loadInForce(InForce& inForce) {
    LoadSettings(inForce.records, SettingsStore(u"Kiv_Skyhold"_s));
    inForce.rules = rulesOf(inForce.records.conditions);
    const UnitControls& units = inForce.records.units;
    inForce.units = {units.UnitsTemp.Index == 1 ? 'F' : 'C',
                     "KMmk"[std::clamp(units.UnitsSpeed.Index.value(), 0, 3)]};
}

// The settings do not have the cloud delay, which clients set for a session.
void takeCloudDelay(Rules& rules, HistoryReader& reader) {
    const std::vector<HistoryEvent> limits = reader.readEvents(kBeginning, kEndOfTime, u"limits"_s);
    if (limits.empty())
        return;
    const QJsonValue delay = limits.back().detail[u"rules"_s][u"CloudAlarmDelay"_s];
    QString fault;
    setRule(rules, u"CloudAlarmDelay"_s, delay.toString(), fault);
}

bool changeRules(const QStringList& changes, Rules& rules, QString& fault) {
    for (const QString& change : changes) {
        const qsizetype equals = change.indexOf(u'=');
        if (equals < 1) {
            fault = u"--set takes NAME=VALUE, not "_s + plainLine(change);
            return false;
        }
        if (!setRule(rules, change.first(equals), change.mid(equals + 1), fault))
            return false;
    }
    return true;
}

ReplaySource sourceOf(const Command& command, InForce& inForce, const TimeRange& wanted) {
    const std::int64_t untilMs = wanted.untilMs.value_or(kEndOfTime);
    if (command.has(u"from-csv"_s)) {
        const FileContents file = readFile(command.option(u"from-csv"_s), kLargestText);
        if (file.result == ReadResult::Ok)
            return fromText(file.bytes, inForce.records, wanted.sinceMs.value_or(kBeginning),
                            untilMs, inForce.units);
        ReplaySource none;
        none.fault = u"the file cannot be read"_s;
        return none;
    }
    HistoryReader reader(historyPathOf(command));
    const std::int64_t sinceMs =
        wanted.sinceMs.value_or(std::min(untilMs, reader.range().lastMs) - kWeekMs);
    if (reader.fault().isEmpty())
        takeCloudDelay(inForce.rules, reader);
    return fromHistory(historyPathOf(command), sinceMs, untilMs, inForce.units);
}

int runSuggest(const Command& command, const ReplaySource& source, const InForce& inForce) {
    const Suggestion suggestion = suggest(source, inForce.rules);
    if (!suggestion.fault.isEmpty())
        return fail(suggestion.fault);
    if (command.json)
        writeLine(suggestionJson(suggestion, inForce.rules, inForce.units));
    else
        write(suggestionText(suggestion, inForce.rules, inForce.units));
    return 0;
}

} // namespace

int runReplay(const Command& command) {
    QString fault;
    TimeRange wanted;
    if (!timeRangeOf(command, wanted, fault))
        return fail(fault);
    InForce inForce;
    loadInForce(inForce);
    const ReplaySource source = sourceOf(command, inForce, wanted);
    if (!source.fault.isEmpty())
        return fail(source.fault);
    Rules tried = inForce.rules;
    if (!changeRules(command.options.value(u"set"_s), tried, fault))
        return fail(fault);
    if (command.has(u"suggest"_s))
        return runSuggest(command, source, inForce);
    const Comparison comparison = compareRules(source, inForce.rules, tried);
    if (!comparison.fault.isEmpty())
        return fail(comparison.fault);
    if (command.json) {
        writeLine(comparisonJson(comparison, inForce.units));
        return 0;
    }
    if (source.thinned)
        write(u"Some of it are minutes, each with its highest and its lowest values.\n"_s);
    write(comparisonText(comparison, ruleChanges(inForce.rules, tried), inForce.units));
    return 0;
}

} // namespace skyhold
