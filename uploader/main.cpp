// Kiv_Uploader.exe: transfers the files that the monitor has handed off, and says in the hand-off
// area whether it is at work.
#include "platform/tasks.h"
#include "uploader/guard.h"
#include "uploader/quit_request.h"
#include "uploader/transfer.h"

#include <QDeadlineTimer>
#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <utility>

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

namespace {

void tell(const QString& text) {
    std::fprintf(stderr, "Kiv_Uploader: %s\n", text.toUtf8().constData());
}

void setRunning(SettingsStore& area, bool running) {
    area.SaveSetting(u"Window"_s, u"Running"_s, running ? u"1"_s : u"0"_s);
    if (!area.flush())
        tell(u"cannot write "_s + area.filePath());
}

// One uploader works at a time. One that an earlier session has left at work gets the time that it
// may need for as many files as are handed off now.
bool waitForTurn(TaskLock& lock) {
    const SettingsStore area(kUploaderArea);
    const std::int64_t files = readFiles(area).size() + 1;
    const QDeadlineTimer patience(files * readTimeout(area) * 1000);
    const QString path = taskLockPath(area);
    if (isLocked(path))
        tell(u"waits for another uploader"_s);
    while (!lock.take(path)) {
        if (quitAfterThisFile())
            return false;
        if (patience.hasExpired()) {
            tell(u"another uploader does not end, or %1 cannot be written"_s.arg(path));
            return false;
        }
        QThread::msleep(50);
    }
    return true;
}

// Asked all the time while a file is sent.
bool breakOff() {
    static bool told = false;
    if (quitAfterThisFile() && !std::exchange(told, true))
        tell(quitAtOnce() ? u"ends at once"_s : u"ends after this file"_s);
    return quitAtOnce();
}

int sendFiles(const UploadJob& job) {
    const qsizetype count = job.files.size();
    tell(u"%1 files for "_s.arg(count) + job.server.host + u'/' + job.server.folder);
    Transfer transfer(job, breakOff);
    qsizetype arrived = 0;
    for (qsizetype i = 0; i < count && !quitAfterThisFile(); ++i) {
        const QString which = u"%1 of %2: %3"_s.arg(i + 1).arg(count).arg(job.files[i]);
        tell(which);
        const TransferResult result = transfer.send(job.files[i]);
        if (result.fault.isEmpty()) {
            ++arrived;
            continue;
        }
        tell(which + u": "_s + result.fault);
        if (result.serverLost)
            break;
    }
    tell(u"%1 of %2 files have arrived"_s.arg(arrived).arg(count));
    return arrived == count ? EXIT_SUCCESS : EXIT_FAILURE;
}

int upload() {
    TaskLock lock;
    if (!waitForTurn(lock))
        return EXIT_FAILURE;
    SettingsStore area(kUploaderArea);
    setRunning(area, true);
    QString fault;
    int status = EXIT_FAILURE;
    if (const std::optional<UploadJob> job = readUploadJob(area, fault))
        status = sendFiles(*job);
    else
        tell(fault);
    setRunning(area, false);
    return status;
}

// For the guard of a worker that was killed. Another uploader's word is left alone.
void clearRunning() {
    tell(u"killed"_s);
    SettingsStore area(kUploaderArea);
    TaskLock lock;
    if (lock.take(taskLockPath(area)))
        setRunning(area, false);
}

} // namespace

int main(int argc, char**) {
    if (argc > 1) {
        tell(u"takes no arguments; the monitor hands it its files in its settings area"_s);
        return 2;
    }
    const rlimit none{0, 0}; // a dump would hold the password
    ::setrlimit(RLIMIT_CORE, &none);
    catchQuitSignals();
    return runGuarded(upload, clearRunning);
}
