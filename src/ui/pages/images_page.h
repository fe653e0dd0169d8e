// SPDX-License-Identifier: GPL-3.0-or-later
// Which graphs are saved as image files, in what format and where.
#pragma once

#include "records/file_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeImagesPage(GraphControls& graphs, QWidget* parent);

} // namespace skyhold
