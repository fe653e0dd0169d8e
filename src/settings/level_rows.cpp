// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/row_builder.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

void soundRow(KeyRows& rows, const QString& key, CheckBox& box, const QString& holds) {
    rows.text(key, QString(), box.Tag, holds).load = [&box](const QString& stored,
                                                            const NumberForms&) {
        box.Tag = stored;
        box.HasIcons = !stored.isEmpty();
        return true;
    };
}

// Calls `add` for each level of each quantity: the level's row, its index, and what it is, in
// words.
template <class Add>
void forEachLevel(const QString& words, Add add) {
    for (const QuantityRow& row : quantityTable()) {
        for (std::size_t i = 0; i < kLevelCount; ++i)
            add(row, i, words.arg(latin(row.settingName)).arg(i + 1));
    }
}

// The same for the quantities that the user's limits classify.
template <class Add>
void forEachLimit(const QString& words, Add add) {
    forEachLevel(words, [&add](const QuantityRow& row, std::size_t i, const QString& holds) {
        if (row.hasLimits())
            add(row, i, holds);
    });
}

} // namespace

void limitRows(KeyRows& rows, ConditionControls& c) {
    rows.section(u"Limit"_s);
    forEachLimit(u"%1: highest value of level %2"_s,
                 [&](const QuantityRow& row, std::size_t i, const QString& holds) {
                     rows.number(latin(row.levels[i].limitKey), latin(row.levels[i].limit),
                                 c.Limit[row.quantity][i], holds);
                 });
}

// A level's description stands on its swatch and beside its unsafe check box.
void descriptionRows(KeyRows& rows, ConditionControls& c) {
    rows.section(u"Description"_s);
    forEachLimit(u"%1: description of level %2"_s, [&](const QuantityRow& row, std::size_t i,
                                                       const QString& holds) {
        auto& swatch = c.Color[row.quantity][i];
        auto& box = c.Cond[row.quantity][i];
        KeyRow& added = rows.text(latin(row.levels[i].limitKey), latin(row.levels[i].description),
                                  swatch.Caption, holds);
        added.load = [&swatch, &box](const QString& stored, const NumberForms&) {
            swatch.Caption = stored;
            box.Caption = stored;
            return true;
        };
    });
}

void colourRows(KeyRows& rows, ConditionControls& c) {
    rows.section(u"Color"_s);
    forEachLimit(u"%1: colour of level %2"_s,
                 [&](const QuantityRow& row, std::size_t i, const QString& holds) {
                     rows.colour(latin(row.levels[i].limitKey), row.levels[i].colour,
                                 c.Color[row.quantity][i], holds);
                 });
}

void unsafeRows(KeyRows& rows, ConditionControls& c) {
    rows.section(u"Unsafe"_s);
    forEachLevel(u"%1: level %2 is unsafe"_s,
                 [&](const QuantityRow& row, std::size_t i, const QString& holds) {
                     rows.check(latin(row.levels[i].unsafeKey), row.levels[i].unsafe,
                                c.Cond[row.quantity][i], holds);
                 });
    forEachLevel(u"%1, level %2: sector from, to (degrees) and minutes"_s,
                 [&](const QuantityRow& row, std::size_t i, const QString& holds) {
                     if (row.hasSectors())
                         rows.text(latin(row.sectorKey) + QString::number(i), u"000  359  01"_s,
                                   c.Direction[row.quantity][i].Caption, holds);
                 });
}

// All sounds before all check marks: a box without a sound unchecks itself.
void alarmRows(KeyRows& rows, AlarmControls& a) {
    rows.section(u"Alarms"_s);
    forEachLevel(u"%1: sound of level %2, followed by \"|repeat\" to repeat it"_s,
                 [&](const QuantityRow& row, std::size_t i, const QString& holds) {
                     soundRow(rows, latin(row.levels[i].alarmKey), a.Alarm[row.quantity][i], holds);
                 });
    forEachLevel(u"%1: alarm of level %2 is on"_s,
                 [&](const QuantityRow& row, std::size_t i, const QString& holds) {
                     rows.check(latin(row.levels[i].alarmKey) + u"Stat"_s, false,
                                a.Alarm[row.quantity][i], holds);
                 });
}

void staleDataRows(KeyRows& rows, AlarmControls& alarms, ConditionControls& c) {
    rows.section(u"Alarms"_s);
    soundRow(rows, u"WSAlarm"_s, alarms.AlarmWS, u"sound for old or missing station data"_s);
    soundRow(rows, u"NBAlarm"_s, alarms.AlarmNB, u"sound for a failed sensor program"_s);
    soundRow(rows, u"RoofAlarm"_s, alarms.AlarmRoof, u"sound for a roof that does not move"_s);
    rows.check(u"RoofAlarmStat"_s, false, alarms.AlarmRoof, u"the roof alarm is on"_s);
    rows.check(u"WSAlarmStat"_s, false, alarms.AlarmWS, u"the station data alarm is on"_s);
    rows.check(u"NBAlarmStat"_s, false, alarms.AlarmNB, u"the sensor program alarm is on"_s);
    rows.check(u"WSDataOldUnsafe"_s, true, c.WSDataOldUnsafe,
               u"old or missing station data is unsafe"_s);
    rows.check(u"NBDataOldUnsafe"_s, true, c.NBDataOldUnsafe,
               u"a failed sensor program is unsafe"_s);
}

} // namespace skyhold
