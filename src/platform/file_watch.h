// SPDX-License-Identifier: GPL-3.0-or-later
// Notices that a file has changed: by the system's notification, and by a look at it when asked.
#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>

#include <functional>

namespace skyhold {

class FileWatch {
  public:
    FileWatch();

    // From now on, whether or not the file exists. Its folder is watched as well, since a file may
    // be replaced by another of its name.
    void follow(const QString& path);
    void stop();
    // Looks by itself; for folders whose changes are not reported, such as those of a network.
    void poll();

    // Once for changes that come together, a tenth of a second after the last.
    std::function<void()> Changed;

  private:
    void watchFile();

    QString path_;
    QDateTime seen_; // its modification time when Changed was last called
    QFileSystemWatcher watcher_;
    QTimer settled_;
};

} // namespace skyhold
