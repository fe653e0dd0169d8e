// SPDX-License-Identifier: GPL-3.0-or-later
// The one table of every persisted key: where it is stored, what it holds, and the record field it
// belongs to. Loading, saving, the reference page and the tests all walk it.
#pragma once

#include "platform/text_forms.h"
#include "records/records.h"

#include <functional>
#include <vector>

namespace skyhold {

enum class KeyType {
    Text,
    Integer,  // lowest..highest
    Number,   // any finite number, in the locale's form
    Boolean,  // "True" or "False"
    CheckBox, // "0" or "1"
    Colour    // decimal text of 0x00BBGGRR
};

// What a key is to the user.
enum class KeyRole {
    Setting,
    State, // of the window, or what the program found last
    List,  // the number of entries that have keys of their own
    Secret // must not leave this computer
};

struct KeyRow {
    QString section;
    QString key;
    KeyType type = KeyType::Text;
    QString defaultText; // as stored
    QString defaultName; // how the reference page names a default that depends on the machine
    QString holds;       // for the reference page
    int lowest = 0;      // of integers and colours
    int highest = 0;
    bool clamped = false; // what lies outside moves to the nearer end
    KeyRole role = KeyRole::Setting;

    // The field's value as the text to store.
    std::function<QString(const NumberForms&)> text;
    // Puts a stored text into the field. False, with the field as it was, when the text does not
    // convert or is out of range.
    std::function<bool(const QString&, const NumberForms&)> load;
};

// All keys but those of the upload list's entries, in load order. The rows refer to the records.
std::vector<KeyRow> keyTable(Records& records);

// The keys of every entry that the upload list has now (its length is the key "NoFiles").
std::vector<KeyRow> uploadEntryRows(UploadControls& upload);

// Column `slot` (1..25) of the user data file as it is in a fresh store.
DataColumn defaultDataColumn(int slot);

} // namespace skyhold
