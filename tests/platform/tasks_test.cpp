#include "platform/tasks.h"

#include "support/eventually.h"
#include "support/test_folder.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

struct Tasks : testing::Test {
    // A program that has begun in its own folder, and that "{F6}" ends.
    std::optional<Task> begun(const QString& name) const {
        const std::optional<Task> task =
            startTask(folder.writeProgram(name, "trap 'touch keyed; exit' USR1\ntouch begun\n"
                                                "for i in $(seq 500); do sleep 0.02; done\n"));
        EXPECT_TRUE(task && appears(u"begun"_s));
        return task;
    }
    bool appears(const QString& name) const {
        return eventually([&] { return QFile::exists(folder.filePath(name)); });
    }
    static bool ends(const Task& task, int milliseconds = 10'000) {
        return eventually([&] { return !isRunning(task); }, milliseconds);
    }

    TestFolder folder;
};

TEST_F(Tasks, aTaskIsKnownByItsStartTimeAndTakesTheKey) {
    // The name is part of what the system tells of a process.
    const std::optional<Task> task = begun(u"a) (b 1 2 3"_s);
    ASSERT_TRUE(task);
    EXPECT_TRUE(isRunning(*task));

    Task other = *task; // ended, and its id was given to the one that runs
    other.startTime -= 1;
    EXPECT_FALSE(isRunning(other));
    sendKeyF6(other);
    EXPECT_FALSE(ends(*task, 200));

    sendKeyF6(*task);
    EXPECT_TRUE(ends(*task));
    EXPECT_TRUE(appears(u"keyed"_s));
    EXPECT_FALSE(isRunning(Task()));
}

TEST_F(Tasks, onlyAnAbsolutePathOfAProgramStarts) {
    for (const QString& path : {folder.filePath(u"missing"_s), u"true"_s, QString()})
        EXPECT_FALSE(startTask(path)) << qPrintable(path);
}

TEST_F(Tasks, aLockLastsAsLongAsItsHolder) {
    const QString path = folder.filePath(u"lock"_s);
    EXPECT_FALSE(isLocked(path));
    std::optional<Task> task;
    {
        TaskLock first;
        TaskLock second;
        EXPECT_TRUE(first.take(path));
        EXPECT_TRUE(isLocked(path));
        EXPECT_FALSE(second.take(path));
        task = begun(u"started"_s); // whatever is started meanwhile does not hold it
        ASSERT_TRUE(task);
    }
    EXPECT_FALSE(isLocked(path));
    TaskLock third;
    EXPECT_TRUE(third.take(path));
    EXPECT_TRUE(isRunning(*task));
    sendKeyF6(*task);
    EXPECT_TRUE(ends(*task));
}

} // namespace
} // namespace skyhold
