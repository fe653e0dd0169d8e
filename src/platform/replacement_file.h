// SPDX-License-Identifier: GPL-3.0-or-later
// A file that takes the place of another one whole: a reader of that name finds the old contents
// or the new ones, never a part of them.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryFile>

namespace skyhold {

class ReplacementFile {
  public:
    // Makes an empty file in the folder of `path`. What stands at `path` is not touched yet; a
    // link there is replaced, never followed.
    explicit ReplacementFile(const QString& path);

    // False when it could not be made; then nothing else succeeds.
    bool isOpen() const { return file_.isOpen(); }

    // Where a library that opens files by name writes it. It leads to this very file, whatever
    // becomes of names in the folder.
    QByteArray writerPath() const;
    bool write(const QByteArray& bytes);
    // What has been written.
    QByteArray contents();

    // Puts the file at `path`; readable by everyone. False when that failed.
    bool commit();

    // Removes what a program that was killed has left of its work on `path`. For a program's first
    // work on it, while no other works on it.
    static void removeLeftovers(const QString& path);

  private:
    QString path_;
    QTemporaryFile file_; // removed unless committed
};

} // namespace skyhold
