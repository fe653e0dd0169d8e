// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/settings_store.h"

#include "platform/files.h"
#include "platform/log.h"
#include "platform/settings_copy.h"
#include "platform/settings_text.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace skyhold {

namespace {

constexpr int kLongestSaveMs = 1000;
constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
constexpr mode_t kOthersWrite = S_IWGRP | S_IWOTH;

QString storedName(const QString& section, const QString& key) {
    return section + u'/' + key;
}

void warn(const QString& path, const char* what) {
    qCWarning(settingsLog, "%s %s", qUtf8Printable(path), what);
}

// Takes other users' access to a file or folder of the user. Returns the mode in which it
// was found, nothing when it is missing or not the user's.
std::optional<mode_t> makePrivate(const QString& path) {
    // What is opened is what is changed, whatever takes its name meanwhile.
    const int fd = ::open(path.toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat found {};
    const bool mine = fd >= 0 && ::fstat(fd, &found) == 0 && found.st_uid == ::geteuid() &&
                      (S_ISREG(found.st_mode) || S_ISDIR(found.st_mode));
    if (mine && (found.st_mode & kOthers) != 0)
        ::fchmod(fd, found.st_mode & S_IRWXU);
    if (fd >= 0)
        ::close(fd);
    return mine ? std::optional(found.st_mode) : std::nullopt;
}

// Makes the folder when it is missing. False when another user may have put something into it.
bool makeFolderPrivate(const QString& folder) {
    QDir().mkpath(QFileInfo(folder).path());
    const bool made = ::mkdir(folder.toLocal8Bit().constData(), S_IRWXU) == 0;
    const std::optional<mode_t> found = makePrivate(folder);
    if (!found)
        warn(folder, "is not yours: others may read and change the settings");
    else if (!made && (*found & kOthers) != 0)
        warn(folder, "was open to other users; it no longer is");
    return found && (*found & kOthersWrite) == 0;
}

// A file, or a link of the user's own to a file of the user's own.
bool isTrusted(const QString& path, bool folderWasPrivate) {
    const QByteArray name = path.toLocal8Bit();
    struct stat entry {};
    struct stat target {};
    if (::lstat(name.constData(), &entry) != 0 || S_ISREG(entry.st_mode) || S_ISDIR(entry.st_mode))
        return true;
    return S_ISLNK(entry.st_mode) && folderWasPrivate && entry.st_uid == ::geteuid() &&
           ::stat(name.constData(), &target) == 0 && S_ISREG(target.st_mode) &&
           target.st_uid == ::geteuid();
}

// Removes links and the like by which another user could have settings read from elsewhere or
// written there: from among the files of `application`, and from among all while others could
// write to the folder.
void removeUntrusted(const QString& folder, const QString& application, bool folderWasPrivate) {
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::System);
    while (entries.hasNext()) {
        const QString path = entries.next();
        if ((folderWasPrivate && !entries.fileName().startsWith(application + u'.')) ||
            isTrusted(path, folderWasPrivate))
            continue;
        ::unlink(path.toLocal8Bit().constData());
        warn(path, "is a link that others may have made, or not a file: it is removed, and what "
                   "it led to is left alone");
    }
}

void makeFilePrivate(const QString& path) {
    const std::optional<mode_t> found = makePrivate(path);
    if (found && (*found & kOthers) != 0)
        warn(path, "was open to other users; it no longer is");
}

// A save takes milliseconds. A program that holds the lock for longer hangs, and must not hold this
// one until the lock would count as forgotten, after half a minute.
void breakHungLock(const QString& path) {
    const QString name = path + QStringLiteral(".lock");
    if (!QFileInfo::exists(name))
        return;
    QLockFile lock(name);
    lock.setStaleLockTime(kLongestSaveMs);
    lock.tryLock(2 * kLongestSaveMs);
}

// Removes what a program that was killed while it saved has left. Whoever saves holds the lock.
void removeLeftovers(const QString& path) {
    const QFileInfo file(path);
    QStringList left = unfinishedFiles(file.path(), file.fileName() + u'.');
    left += unfinishedFiles(file.path(), file.fileName() + QStringLiteral(".whole."));
    QLockFile saving(path + QStringLiteral(".lock"));
    if (left.isEmpty() || !saving.tryLock(0))
        return;
    for (const QString& name : left)
        QFile::remove(name);
}

} // namespace

QString firstNames(const QStringList& names, qsizetype most) {
    const QString more = names.size() > most ? QStringLiteral(", …") : QString();
    return names.first(std::min(most, names.size())).join(QStringLiteral(", ")) + more;
}

SettingsStore::SettingsStore(const QString& application) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                           QStringLiteral("/Kiv");
    path_ = folder + u'/' + application + QStringLiteral(".ini");
    const bool wasPrivate = makeFolderPrivate(folder);
    removeUntrusted(folder, application, wasPrivate);
    makeFilePrivate(path_);
    removeLeftovers(path_);
    restored_ = completeCutSettings(path_);
    if (!restored_.isEmpty())
        warn(path_,
             qUtf8Printable(QStringLiteral("was cut short; %1 keys were restored from its last "
                                           "whole copy: %2")
                                .arg(QString::number(restored_.size()), firstNames(restored_, 5))));
    file_ = std::make_unique<QSettings>(path_, settingsFormat());
}

QString SettingsStore::GetSetting(const QString& section, const QString& key,
                                  const QString& fallback) const {
    return file_->value(storedName(section, key), fallback).toString();
}

void SettingsStore::SaveSetting(const QString& section, const QString& key, const QString& text) {
    file_->setValue(storedName(section, key), text);
}

void SettingsStore::saveNow(const QString& section, const QString& key, const QString& text) {
    SaveSetting(section, key, text);
    flush();
}

bool SettingsStore::writeCopy() {
    return writeWholeCopy(path_);
}

bool SettingsStore::flush() {
    breakHungLock(path_);
    // Whatever is made here is the owner's alone from its first byte.
    const mode_t before = ::umask(kOthers);
    file_->sync();
    ::umask(before);
    makePrivate(path_);
    return file_->status() == QSettings::NoError;
}

} // namespace skyhold
