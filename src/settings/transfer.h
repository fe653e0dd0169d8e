// SPDX-License-Identifier: GPL-3.0-or-later
// All settings as a file, to keep or to take to another computer. It is laid out like the settings
// file, and holds neither secrets nor the state of the window.
#pragma once

#include "platform/text_forms.h"
#include "records/records.h"

#include <QStringList>

namespace skyhold {

// Why the file could not be written; empty when it was.
QString exportSettings(Records& records, const QString& path,
                       const NumberForms& forms = localeNumberForms());

// What a file would change, checked and not yet taken over.
struct SettingsImport {
    struct Value {
        QString section;
        QString key;
        QString text;
    };
    std::vector<Value> values; // that are valid
    QStringList refused;       // "Limit/WindCalm: "abc" is no value of it"
    QString fault;             // why nothing can be read; empty when something can
};

// Every value is checked by the rule of its key; secrets and unknown keys are refused.
SettingsImport readSettingsFile(const QString& path,
                                const NumberForms& forms = localeNumberForms());

// Sets the values in the order in which settings are loaded. What the file does not have stays.
void takeSettings(Records& records, const SettingsImport& import,
                  const NumberForms& forms = localeNumberForms());

} // namespace skyhold
