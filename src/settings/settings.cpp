#include "settings/settings.h"

#include "settings/key_table.h"

#include <algorithm>

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

// The sensor program has the descriptions of its three quantities; until it is asked, the unsafe
// check boxes show the usual ones.
void captionSensorLevels(ConditionControls& conditions) {
    constexpr std::array<std::array<const char*, 3>, 3> captions{{
        {"Clear", "Cloudy", "Overcast"},
        {"Dry", "Wet", "Rain"},
        {"Dark", "Light", "Very Light"},
    }};
    const std::array boxes{&conditions.Cond[Quantity::Cloud], &conditions.Cond[Quantity::Rain], &conditions.Cond[Quantity::Brightness]};
    for (std::size_t q = 0; q < boxes.size(); ++q) {
        for (std::size_t i = 0; i < 3; ++i)
            (*boxes[q])[i].Caption = QString::fromLatin1(captions[q][i]);
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

bool SaveSettings(const Records& records, SettingsStore& store, const NumberForms& forms) {
    saveRows(keyTable(records), store, forms);
    saveRows(uploadEntryRows(records.upload), store, forms);
    const bool saved = store.flush();
    if (saved)
        store.keepCopy();
    return saved;
}

bool SaveKeys(const Records& records, SettingsStore& store, const std::vector<KeyName>& names,
              const NumberForms& forms) {
    const std::vector<KeyRow> rows = keyTable(records);
    bool allKnown = true;
    for (const KeyName& name : names) {
        const auto row = std::ranges::find_if(rows, [&](const KeyRow& candidate) {
            return candidate.section == name.section && candidate.key == name.key;
        });
        if (row == rows.end())
            allKnown = false;
        else
            store.SaveSetting(row->section, row->key, row->text(forms));
    }
    return store.flush() && allKnown;
}

} // namespace skyhold
