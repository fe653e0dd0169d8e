// SPDX-License-Identifier: GPL-3.0-or-later
// Loading and saving all settings.
#pragma once

#include "platform/settings_store.h"
#include "platform/text_forms.h"
#include "records/records.h"

namespace skyhold {

// Reads every key once, in the order of the key table, into the records; controls are set through
// their own rules while `UnitControls::Loading` is true. A stored text that does not convert or is
// out of range is replaced by the default.
void LoadSettings(Records& records, const SettingsStore& store,
                  const NumberForms& forms = localeNumberForms());

// Writes every key, and the keys of every entry of the upload list, to disk. False when the store
// could not be written.
bool SaveSettings(Records& records, SettingsStore& store,
                  const NumberForms& forms = localeNumberForms());

} // namespace skyhold
