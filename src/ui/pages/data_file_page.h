// SPDX-License-Identifier: GPL-3.0-or-later
// Recording of the user data file: on or off, how often, where to, and which columns; and for how
// long the history is kept.
#pragma once

#include "records/file_controls.h"
#include "records/history_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeDataFilePage(DataFileControls& dataFile, HistoryControls& history, QWidget* parent);

} // namespace skyhold
