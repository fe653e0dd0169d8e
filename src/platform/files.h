// SPDX-License-Identifier: GPL-3.0-or-later
// Files and folders. Paths may use "/" or "\"; both are the platform's separator.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace skyhold {

enum class ReadResult { Ok, Missing, NotAFile, TooLarge, Unreadable };

struct FileContents {
    ReadResult result = ReadResult::Missing;
    QByteArray bytes; // at most the limit
};

// Reads at most `limit` bytes. Never waits: a pipe, a device or a folder is NotAFile. A larger
// file is TooLarge, with nothing read.
FileContents readFile(const QString& path, std::int64_t limit);

// A path with the platform's separators.
QString nativePath(const QString& path);

// The path as it stands on disk of the file with that name, compared without regard to case;
// nothing when there is none. An exact match wins.
std::optional<QString> findFile(const QString& path);

// A regular file that may be read; not a folder, a pipe or a device.
bool isReadableFile(const QString& path);

// Modification time with the disk's resolution, as local time; invalid when there is no such file.
QDateTime modificationTime(const QString& path);

// folder + separator + name, with one separator between them.
QString joinPath(const QString& folder, const QString& name);

bool folderExists(const QString& folder);
// Makes every missing folder of the path; true when the folder exists afterwards.
bool createFolder(const QString& folder);

// Writes the bytes over the first bytes of the file, making it when it is missing; the rest of a
// longer file stays. False when not every byte could be written, or when something other than a
// file has that name: a link in its place is not followed.
bool writeAtStart(const QString& path, const QByteArray& bytes);

// The user's own files in `folder` whose names are `begin` and six letters, as a temporary file is
// named that its program could not finish.
QStringList unfinishedFiles(const QString& folder, const QString& begin);

// A regular file or a folder, not a link, that belongs to the user and that no other user may write
// to.
bool isOwnAlone(const QString& path);

// The folder of the executable, without a trailing separator.
QString programFolder();
// The user's data folder, of all programs of the monitor. Not made.
QString userDataFolder();
// The program folder, or the user's data folder where the program folder cannot be written to
// (an installed package).
QString writableProgramFolder();
// The folder of the sounds that come with the program, beside the program folder.
QString soundsFolder();

} // namespace skyhold
