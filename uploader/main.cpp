// SPDX-License-Identifier: GPL-3.0-or-later
// Kiv_Uploader.exe: transfers the files that the monitor has handed off, and says in the hand-off
// area whether it is at work.
#include "platform/log.h"
#include "platform/tasks.h"
#include "uploader/guard.h"
#include "uploader/quit_request.h"
#include "uploader/transfer.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QThread>

#include <cstdlib>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

namespace {

void note(const QString& text) {
    qCInfo(uploadLog, "%s", qUtf8Printable(text));
}

const QString kNotSent = u"it was not sent before the uploader ended"_s;

// The process that the monitor has started: its worker reports in its name.
pid_t started = 0;

QString now() {
    return QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

QString nameOf(const QString& path) {
    return path.section(u'/', -1);
}

void setRunning(SettingsStore& area, bool running) {
    area.SaveSetting(u"Window"_s, u"Running"_s, running ? u"1"_s : u"0"_s);
    if (!area.flush())
        note(u"Cannot write "_s + area.filePath());
}

// One uploader works at a time. One that an earlier session has left at work gets the time that it
// may need for as many files as are handed off now.
bool waitForTurn(TaskLock& lock) {
    const SettingsStore area(kUploaderArea);
    const std::int64_t files = readFiles(area).size() + 1;
    const QDeadlineTimer patience(files * readTimeout(area) * 1000);
    const QString path = taskLockPath(area);
    if (isLocked(path))
        note(u"Waiting for another uploader"_s);
    while (!lock.take(path)) {
        if (quitAfterThisFile())
            return false;
        if (patience.hasExpired()) {
            note(u"Another uploader does not end, or %1 cannot be written"_s.arg(path));
            return false;
        }
        QThread::msleep(50);
    }
    return true;
}

// Called all the time while a file is sent.
bool breakOff() {
    static bool noted = false;
    if (quitAfterThisFile() && !std::exchange(noted, true))
        note(quitAtOnce() ? u"Ending at once"_s : u"Ending after this file"_s);
    return quitAtOnce();
}

// Notes in the report what has not arrived, and the last success and error.
void sendFiles(const UploadJob& job, UploadReport& report) {
    const qsizetype count = job.files.size();
    note(u"Sending %1 files to "_s.arg(count) + job.server.host + u'/' + job.server.folder);
    Transfer transfer(job, breakOff);
    report.notArrived.clear();
    QString lost; // the fault after which no other file is sent
    for (qsizetype i = 0; i < count; ++i) {
        const QString& file = job.files[i];
        if (quitAfterThisFile() || !lost.isEmpty()) {
            report.notArrived.push_back({file, lost.isEmpty() ? kNotSent : lost, now()});
            continue;
        }
        const QString which = u"%1 of %2: %3"_s.arg(i + 1).arg(count).arg(file);
        note(which);
        const TransferResult result = transfer.send(file);
        if (result.fault.isEmpty())
            continue;
        note(which + u": "_s + result.fault);
        report.notArrived.push_back({file, result.fault, now()});
        report.lastError = u"%1, %2: %3"_s.arg(now(), nameOf(file), result.fault);
        if (result.serverLost)
            lost = result.fault;
    }
    const qsizetype arrived = count - static_cast<qsizetype>(report.notArrived.size());
    if (arrived > 0)
        report.lastSuccess = u"%1, %2 of %3 files"_s.arg(now()).arg(arrived).arg(count);
    note(u"%1 of %2 files have arrived"_s.arg(arrived).arg(count));
}

int upload() {
    TaskLock lock;
    const bool turn = waitForTurn(lock);
    SettingsStore area(kUploaderArea);
    UploadReport result = readUploadReport(area);
    result.processId = started;
    result.notArrived.clear();
    // Should it be killed, nothing counts as arrived.
    for (const QString& file : readFiles(area))
        result.notArrived.push_back({file, kNotSent, now()});
    writeUploadReport(area, result);
    if (!turn) {
        area.flush();
        return EXIT_FAILURE;
    }
    setRunning(area, true);
    QString fault;
    if (const std::optional<UploadJob> job = readUploadJob(area, fault)) {
        sendFiles(*job, result);
    } else {
        note(fault);
        for (UploadFault& file : result.notArrived)
            file.reason = fault;
        result.lastError = now() + u", "_s + fault;
    }
    writeUploadReport(area, result);
    setRunning(area, false);
    return fault.isEmpty() && result.notArrived.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

// For the guard of a worker that was killed. What another uploader has written stays.
void clearRunning() {
    note(u"The uploader was killed"_s);
    SettingsStore area(kUploaderArea);
    TaskLock lock;
    if (!lock.take(taskLockPath(area)))
        return;
    UploadReport report = readUploadReport(area);
    report.lastError = now() + u", the uploader was killed"_s;
    writeUploadReport(area, report);
    setRunning(area, false);
}

} // namespace

int main(int argc, char**) {
    if (argc > 1) {
        note(u"Kiv_Uploader takes no arguments: it reads its list of files from its settings"_s);
        return 2;
    }
    const rlimit none{0, 0}; // a dump would hold the password
    ::setrlimit(RLIMIT_CORE, &none);
    catchQuitSignals();
    started = ::getpid();
    return runGuarded(upload, clearRunning);
}
