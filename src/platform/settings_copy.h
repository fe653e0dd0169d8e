// SPDX-License-Identifier: GPL-3.0-or-later
// The last whole copy of a settings file. A file is replaced in one step when it is saved; what
// cuts it short is a damaged disk, a restored backup, an editor on a full disk. Half a file would
// load as half of the user's limits and half defaults, and its last number may be a piece of one.
#pragma once

#include <QString>
#include <QStringList>

namespace skyhold {

// Copies the file, which has just been saved whole, to beside it. False when that failed; the copy
// is then the one before.
bool writeWholeCopy(const QString& path);

// Gives a file that was cut short the keys of its copy that stood behind the cut, and returns their
// names ("Section/Key"). A file was cut when it holds zero bytes, as a crashed file system leaves
// them, or when it lacks the end mark and either ends in the middle of a line or has just the first
// keys of the copy. Anything else that lacks keys is the user's own work and stays as it is: what
// the user removed must not come back. So does a missing file, by which everything is reset.
QStringList completeCutSettings(const QString& path);

} // namespace skyhold
