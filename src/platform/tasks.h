// SPDX-License-Identifier: GPL-3.0-or-later
// Programs that run beside this one: starting them, knowing them again, and the lock by which one
// of them shows that it is alive.
#pragma once

#include "platform/settings_store.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace skyhold {

// A started program. Its start time distinguishes it from a later process with the same id.
struct Task {
    std::int64_t processId = 0;
    std::uint64_t startTime = 0; // clock ticks since the machine's start
};

// Starts a program that outlives this one, in its own folder and without terminal; it shares
// standard error alone. `program` is an absolute path, no search path is asked. Nothing when it
// does not start.
std::optional<Task> startTask(const QString& program);

// The task still runs. This is what bringing it to the foreground would show; there is no window
// to bring.
bool isRunning(const Task& task);

// The key "{F6}", which a program without window takes as SIGUSR1. Never reaches another process.
void sendKeyF6(const Task& task);

// A lock on a file, held until the object ends or the process does, however that ends. Programs
// that it starts do not inherit it.
class TaskLock {
  public:
    TaskLock() = default;
    ~TaskLock();
    TaskLock(const TaskLock&) = delete;
    TaskLock& operator=(const TaskLock&) = delete;

    // Takes the lock, making the file when it is missing. False when another process holds it or
    // the file cannot be opened. Never waits.
    bool take(const QString& path);

  private:
    int fd_ = -1;
};

// The lock file of an application, beside its settings.
QString taskLockPath(const SettingsStore& settings);

// A process holds the lock on that file.
bool isLocked(const QString& path);

} // namespace skyhold
