// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/files.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace skyhold {

namespace {

class Descriptor {
  public:
    explicit Descriptor(int fd)
        : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

    // True when closing succeeded: some disks report a failed write only then.
    bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

QString withoutTrailingSeparator(const QString& folder) {
    QString path = nativePath(folder);
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

} // namespace

FileContents readFile(const QString& path, std::int64_t limit) {
    const QByteArray name = nativePath(path).toLocal8Bit();
    // Opening a pipe for reading waits for its writer unless O_NONBLOCK is given.
    const Descriptor file(::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0)
        return {errno == ENOENT || errno == ENOTDIR ? ReadResult::Missing : ReadResult::Unreadable,
                {}};
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        return {ReadResult::Unreadable, {}};
    if (!S_ISREG(status.st_mode))
        return {ReadResult::NotAFile, {}};
    if (status.st_size > limit)
        return {ReadResult::TooLarge, {}};

    QByteArray bytes;
    // The file may grow while it is read; one byte beyond the limit shows that.
    const std::int64_t atMost = limit + 1;
    constexpr std::int64_t kChunk = 65'536;
    while (bytes.size() < atMost) {
        const std::int64_t wanted = std::min<std::int64_t>(kChunk, atMost - bytes.size());
        const qsizetype before = bytes.size();
        bytes.resize(before + wanted);
        ssize_t got = 0;
        do {
            got = ::read(file.get(), bytes.data() + before, static_cast<std::size_t>(wanted));
        } while (got < 0 && errno == EINTR);
        bytes.resize(before + std::max<ssize_t>(got, 0));
        if (got < 0)
            return {ReadResult::Unreadable, {}};
        if (got == 0)
            return {ReadResult::Ok, bytes};
    }
    return {ReadResult::TooLarge, {}};
}

QString nativePath(const QString& path) {
    QString native = path;
    return native.replace(u'\\', u'/');
}

std::optional<QString> findFile(const QString& path) {
    const QString native = nativePath(path);
    const QFileInfo exact(native);
    if (exact.fileName().isEmpty())
        return std::nullopt;
    if (exact.exists())
        return native;
    const QDir folder = exact.dir();
    // The platform's name filters know wildcards; a name with "[" or "*" must stand for itself.
    const QStringList names =
        folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (name.compare(exact.fileName(), Qt::CaseInsensitive) == 0)
            return folder.filePath(name);
    }
    return std::nullopt;
}

bool isReadableFile(const QString& path) {
    const QFileInfo file(nativePath(path));
    return file.isFile() && file.isReadable();
}

QDateTime modificationTime(const QString& path) {
    struct stat status {};
    if (::stat(nativePath(path).toLocal8Bit().constData(), &status) != 0)
        return {};
    return QDateTime::fromMSecsSinceEpoch(std::int64_t{status.st_mtim.tv_sec} * 1000 +
                                          status.st_mtim.tv_nsec / 1'000'000);
}

QString joinPath(const QString& folder, const QString& name) {
    const QString path = withoutTrailingSeparator(folder);
    return path.endsWith(u'/') ? path + name : path + u'/' + name;
}

bool folderExists(const QString& folder) {
    return !folder.trimmed().isEmpty() && QFileInfo(withoutTrailingSeparator(folder)).isDir();
}

bool createFolder(const QString& folder) {
    if (folder.trimmed().isEmpty())
        return false;
    QDir().mkpath(withoutTrailingSeparator(folder));
    return folderExists(folder);
}

bool writeAtStart(const QString& path, const QByteArray& bytes) {
    const QByteArray name = nativePath(path).toLocal8Bit();
    Descriptor file(::open(name.constData(),
                           O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY,
                           0644));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t wrote = ::pwrite(file.get(), bytes.constData() + done,
                                       static_cast<std::size_t>(bytes.size() - done), done);
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote <= 0)
            return false;
        done += wrote;
    }
    return file.close();
}

QStringList unfinishedFiles(const QString& folder, const QString& begin) {
    constexpr qsizetype kLetters = 6;
    const auto isLetter = [](QChar c) {
        return c.unicode() < 0x80 && c.isLetter();
    };
    QStringList found;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    while (files.hasNext()) {
        files.next();
        const QString name = files.fileName();
        if (name.size() == begin.size() + kLetters && name.startsWith(begin) &&
            std::all_of(name.end() - kLetters, name.end(), isLetter) &&
            files.fileInfo().ownerId() == ::geteuid())
            found.append(files.filePath());
    }
    return found;
}

bool isOwnAlone(const QString& path) {
    struct stat status {};
    return ::lstat(nativePath(path).toLocal8Bit().constData(), &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

QString programFolder() {
    return QCoreApplication::applicationDirPath();
}

QString userDataFolder() {
    return joinPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
                    QStringLiteral("Kiv_Skyhold"));
}

QString writableProgramFolder() {
    QString folder = programFolder();
    if (QFileInfo(folder).isWritable())
        return folder;
    QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(data);
    return data;
}

QString soundsFolder() {
    return QDir::cleanPath(
        joinPath(programFolder(), QStringLiteral("../share/kiv_skyhold/sounds")));
}

} // namespace skyhold
