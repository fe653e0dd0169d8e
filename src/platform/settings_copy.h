// The last whole copy of a settings file. A file is replaced in one step when it is saved; what
// cuts it short is a damaged disk, a restored backup, an editor on a full disk. Half a file would
// load as half of the user's limits and half defaults, and its last number may be a piece of one.
#pragma once

#include <QString>

namespace skyhold {

// Copies the file, which has just been saved whole, to beside it. False when that failed; the copy
// is then the one before.
bool keepWholeCopy(const QString& path);

// Gives a file that ends before the last key of its copy, or in mid-line, the keys that it lacks;
// those that it has stay. True when it was cut and has been completed. A missing file is none that
// was cut: that is how everything is reset.
bool completeCutSettings(const QString& path);

} // namespace skyhold
