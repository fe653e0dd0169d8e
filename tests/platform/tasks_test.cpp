#include "platform/tasks.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

bool endsWithin(const Task& task, int milliseconds) {
    const QDeadlineTimer patience(milliseconds);
    while (isRunning(task)) {
        if (patience.hasExpired())
            return false;
        QThread::msleep(5);
    }
    return true;
}

class Tasks : public testing::Test {
  protected:
    // A program that tells when it has begun, and that "{F6}" ends.
    QString program(const QString& name) {
        QFile file(folder_.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\ntrap 'touch keyed; exit' USR1\ntouch begun\n"
                   "for i in $(seq 500); do sleep 0.02; done\n");
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        return file.fileName();
    }
    bool appears(const QString& name) {
        const QDeadlineTimer patience(10'000);
        while (!QFile::exists(folder_.filePath(name)) && !patience.hasExpired())
            QThread::msleep(5);
        return QFile::exists(folder_.filePath(name));
    }

    QTemporaryDir folder_;
};

TEST_F(Tasks, aTaskIsKnownByItsStartTimeAndTakesTheKey) {
    // The name is part of what the system tells of a process.
    const std::optional<Task> task = startTask(program(u"a) (b 1 2 3"_s));
    ASSERT_TRUE(task);
    ASSERT_TRUE(appears(u"begun"_s)); // in its own folder
    EXPECT_TRUE(isRunning(*task));

    Task other = *task; // ended, and its id was given to the one that runs
    other.startTime -= 1;
    EXPECT_FALSE(isRunning(other));
    sendKeyF6(other);
    EXPECT_FALSE(endsWithin(*task, 200));

    sendKeyF6(*task);
    EXPECT_TRUE(endsWithin(*task, 10'000));
    EXPECT_TRUE(appears(u"keyed"_s));
    EXPECT_FALSE(isRunning(Task()));
}

TEST_F(Tasks, onlyAnAbsolutePathOfAProgramStarts) {
    EXPECT_FALSE(startTask(folder_.filePath(u"missing"_s)));
    EXPECT_FALSE(startTask(u"true"_s));
    EXPECT_FALSE(startTask(QString()));
}

TEST_F(Tasks, aLockLastsAsLongAsItsHolder) {
    const QString path = folder_.filePath(u"lock"_s);
    EXPECT_FALSE(isLocked(path));
    std::optional<Task> task;
    {
        TaskLock first;
        TaskLock second;
        EXPECT_TRUE(first.take(path));
        EXPECT_TRUE(isLocked(path));
        EXPECT_FALSE(second.take(path));
        // Whatever is started meanwhile does not hold it.
        task = startTask(program(u"started"_s));
        ASSERT_TRUE(task);
        ASSERT_TRUE(appears(u"begun"_s));
    }
    EXPECT_FALSE(isLocked(path));
    TaskLock third;
    EXPECT_TRUE(third.take(path));
    EXPECT_TRUE(isRunning(*task));
    sendKeyF6(*task);
    EXPECT_TRUE(endsWithin(*task, 10'000));
}

} // namespace
} // namespace skyhold
