// Values of a settings file that are no text.
#pragma once

#include <QString>

namespace skyhold {

// Takes lines out of the settings file whose value says of itself that it is binary ("@Variant(").
// The store never writes one, and a few bytes of it can make their reader ask for gigabytes. True
// when there were any and the file has been rewritten without them.
bool removeBinaryValues(const QString& path);

} // namespace skyhold
