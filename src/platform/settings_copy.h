// The last whole copy of a settings file. A file is replaced in one step when it is saved; what
// cuts it short is a damaged disk, a restored backup, an editor on a full disk. Half a file would
// load as half of the user's limits and half defaults, and its last number may be a piece of one.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace skyhold {

// A longer file is not taken for settings.
constexpr std::int64_t kMostSettingsBytes = 16'000'000;

// Puts a file with these bytes in the place of the one at `path`, in one step and for its owner
// alone. False when that failed; what stood there stays.
bool replaceSettings(const QString& path, const QByteArray& bytes);

// Copies the file, which has just been saved whole, to beside it. False when that failed; the copy
// is then the one before.
bool keepWholeCopy(const QString& path);

// Gives a file that ends before the last key of its copy, or in mid-line, the keys that it lacks;
// those that it has stay. True when it was cut and has been completed. A missing file is none that
// was cut: that is how everything is reset.
bool completeCutSettings(const QString& path);

} // namespace skyhold
