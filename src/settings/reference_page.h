// SPDX-License-Identifier: GPL-3.0-or-later
// The reference page of all settings.
#pragma once

#include <QString>

namespace skyhold {

// docs/settings.md, made from the key table.
QString settingsReference();

} // namespace skyhold
