// SPDX-License-Identifier: GPL-3.0-or-later
// Where each setting stands: its page, its control there, and what it is called.
#pragma once

#include "records/records.h"
#include "settings/key_table.h"
#include "ui/pages/settings_pages.h"

namespace skyhold {

struct SettingPlace {
    QString key;   // "Section/Key"
    QString title; // "Gust, Gusty: upper limit"
    Page page = Page::Sources;
    QString control; // its object name
};

// In the order of the pages; those that no page shows are left out. The titles have the names that
// the levels have now.
std::vector<SettingPlace> settingPlaces(Records& records);

// Those in whose title, page or key every word of the text occurs, in any case; those whose title
// has them all come first.
std::vector<SettingPlace> findPlaces(const std::vector<SettingPlace>& places, const QString& text);

// "Limits and alarms"
QString pageTitle(Page page);

// The title of a key, or what the key holds where no page shows it.
QString settingTitle(const KeyRow& row, const std::vector<SettingPlace>& places);
// A stored text as people read it: "on", "Bell", "SW to NW, after 2 min"; a secret as nothing.
QString settingText(const KeyRow& row, const QString& stored, const UnitControls& units);

} // namespace skyhold
