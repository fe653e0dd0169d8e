// Recording of the user data file: on or off, how often, where to, and which columns.
#pragma once

#include "records/file_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeDataFilePage(DataFileControls& dataFile, QWidget* parent);

} // namespace skyhold
