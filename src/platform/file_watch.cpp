// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file_watch.h"

#include "platform/files.h"

#include <QFileInfo>

namespace skyhold {

namespace {
constexpr int kSettledMs = 100;
}

FileWatch::FileWatch() {
    settled_.setSingleShot(true);
    settled_.setInterval(kSettledMs);
    QObject::connect(&settled_, &QTimer::timeout, &watcher_, [this] {
        const QDateTime now = modificationTime(path_);
        if (now == seen_ || !now.isValid())
            return;
        seen_ = now;
        if (Changed)
            Changed();
    });
    const auto changed = [this] {
        watchFile();
        settled_.start();
    };
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, changed);
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, changed);
}

void FileWatch::follow(const QString& path) {
    stop();
    path_ = nativePath(path);
    seen_ = modificationTime(path_);
    const QString folder = QFileInfo(path_).path();
    if (!path_.isEmpty() && folderExists(folder))
        watcher_.addPath(folder);
    watchFile();
}

void FileWatch::stop() {
    settled_.stop();
    const QStringList watched = watcher_.files() + watcher_.directories();
    if (!watched.isEmpty())
        watcher_.removePaths(watched);
    path_.clear();
}

void FileWatch::poll() {
    if (!path_.isEmpty() && !settled_.isActive() && modificationTime(path_) != seen_)
        settled_.start();
}

// A file that was replaced is watched no more.
void FileWatch::watchFile() {
    if (!watcher_.files().contains(path_) && isReadableFile(path_))
        watcher_.addPath(path_);
}

} // namespace skyhold
