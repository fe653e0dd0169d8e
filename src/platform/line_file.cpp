// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/line_file.h"

#include "platform/files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace skyhold {

namespace {

// The size of an open ordinary file; nothing for any other.
std::optional<std::int64_t> fileSize(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return status.st_size;
}

// How many of the bytes were written.
qsizetype writeBytes(int fd, const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t wrote =
            ::write(fd, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote <= 0)
            break;
        done += wrote;
    }
    return done;
}

} // namespace

bool LineFile::open(const QString& path, bool append) {
    close();
    const QByteArray name = nativePath(path).toLocal8Bit();
    // Reading is for the last byte alone.
    fd_ =
        ::open(name.constData(),
               O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0644);
    const std::optional<std::int64_t> size = fd_ >= 0 ? fileSize(fd_) : std::nullopt;
    if (!size || (!append && ::ftruncate(fd_, 0) != 0)) {
        close();
        return false;
    }
    char last = '\n';
    midLine_ = append && *size > 0 && ::pread(fd_, &last, 1, *size - 1) == 1 && last != '\n';
    return true;
}

void LineFile::close() {
    if (fd_ >= 0)
        ::close(std::exchange(fd_, -1));
    tornAt_.reset();
}

bool LineFile::isThere() const {
    struct stat status {};
    return fd_ >= 0 && ::fstat(fd_, &status) == 0 && status.st_nlink > 0;
}

bool LineFile::addLine(const QByteArray& line) {
    if (fd_ < 0 || !cutTornLine())
        return false;
    const QByteArray lineEnd = QByteArrayLiteral("\r\n");
    const QByteArray bytes = (midLine_ ? lineEnd : QByteArray()) + line + lineEnd;
    const qsizetype written = writeBytes(fd_, bytes);
    if (written == bytes.size()) {
        midLine_ = false;
        return true;
    }
    if (written > 0) {
        tornAt_ = ::lseek(fd_, 0, SEEK_CUR) - written;
        cutTornLine();
    }
    return false;
}

// True when no torn line is left at the end of the file.
bool LineFile::cutTornLine() {
    if (!tornAt_)
        return true;
    const std::optional<std::int64_t> end = fileSize(fd_);
    if (!end || (*end > *tornAt_ && ::ftruncate(fd_, *tornAt_) != 0))
        return false;
    tornAt_.reset();
    return true;
}

} // namespace skyhold
