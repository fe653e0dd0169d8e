// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/load_save.h"

#include "settings/key_table.h"

namespace skyhold {

namespace {

void loadRows(const std::vector<KeyRow>& rows, const SettingsStore& store,
              const NumberForms& forms) {
    for (const KeyRow& row : rows) {
        const QString stored = store.GetSetting(row.section, row.key, row.defaultText);
        if (!row.load(stored, forms))
            row.load(row.defaultText, forms);
    }
}

void saveRows(const std::vector<KeyRow>& rows, SettingsStore& store, const NumberForms& forms) {
    for (const KeyRow& row : rows)
        store.SaveSetting(row.section, row.key, row.text(forms));
}

// The sensor program has the descriptions of its quantities; until it is asked, the unsafe check
// boxes show the usual ones.
void captionSensorLevels(ConditionControls& conditions) {
    for (const Quantity quantity : kSensorQuantities) {
        for (std::size_t i = 0; i < kLevelCount; ++i)
            conditions.Cond[quantity][i].Caption =
                QString::fromLatin1(rowOf(quantity).levels[i].description);
    }
}

} // namespace

void LoadSettings(Records& records, const SettingsStore& store, const NumberForms& forms) {
    records.units.Loading = true;
    captionSensorLevels(records.conditions);
    loadRows(keyTable(records), store, forms);
    loadRows(uploadEntryRows(records.upload), store, forms);
    records.units.Loading = false;
}

bool SaveSettings(Records& records, SettingsStore& store, const NumberForms& forms) {
    saveRows(keyTable(records), store, forms);
    saveRows(uploadEntryRows(records.upload), store, forms);
    const bool saved = store.flush();
    if (saved)
        store.writeCopy();
    return saved;
}

} // namespace skyhold
