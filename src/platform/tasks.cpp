// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/tasks.h"

#include "platform/files.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace skyhold {

namespace {

// When a living process was started; nothing when there is none with that id.
std::optional<std::uint64_t> startTimeOf(std::int64_t processId) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(processId));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // "id (name) state parent ...": the name may hold blanks and parentheses.
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    constexpr qsizetype kState = 0;
    constexpr qsizetype kStartTime = 19;
    if (fields.size() <= kStartTime || fields[kState] == "Z" || fields[kState] == "X")
        return std::nullopt; // ended; its parent has not taken note yet
    bool isNumber = false;
    const std::uint64_t startTime = fields[kStartTime].toULongLong(&isNumber);
    return isNumber ? std::optional(startTime) : std::nullopt;
}

} // namespace

std::optional<Task> startTask(const QString& program) {
    const QFileInfo file(program);
    if (!file.isAbsolute())
        return std::nullopt;
    QProcess process;
    process.setProgram(program);
    process.setWorkingDirectory(file.path());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    qint64 processId = 0;
    if (!process.startDetached(&processId))
        return std::nullopt;
    // A program that has ended already is not a running task: its start time is 0.
    return Task{processId, startTimeOf(processId).value_or(0)};
}

bool isRunning(const Task& task) {
    return task.processId > 0 && startTimeOf(task.processId) == task.startTime;
}

void sendKeyF6(const Task& task) {
    if (isRunning(task))
        ::kill(static_cast<pid_t>(task.processId), SIGUSR1);
}

TaskLock::~TaskLock() {
    if (fd_ >= 0)
        ::close(fd_);
}

bool TaskLock::take(const QString& path) {
    if (fd_ < 0)
        fd_ = ::open(nativePath(path).toLocal8Bit().constData(),
                     O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    return fd_ >= 0 && ::flock(fd_, LOCK_EX | LOCK_NB) == 0;
}

QString taskLockPath(const SettingsStore& settings) {
    const QFileInfo file(settings.filePath());
    return joinPath(file.path(), file.completeBaseName() + QStringLiteral(".running"));
}

bool isLocked(const QString& path) {
    const int fd = ::open(nativePath(path).toLocal8Bit().constData(),
                          O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return false;
    const bool locked = ::flock(fd, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(fd);
    return locked;
}

} // namespace skyhold
