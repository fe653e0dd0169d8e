// SPDX-License-Identifier: GPL-3.0-or-later
// The weather file for CCDAutopilot: its name and its folder.
#pragma once

#include "records/file_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeCcdapPage(CcdapControls& ccdap, QWidget* parent);

} // namespace skyhold
