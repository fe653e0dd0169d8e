// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/hooks.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// A hook that writes what it is started with, and then does as it is told.
struct Hook {
    QTemporaryDir folder;
    HookRunner runner;

    Hook(const QString& then, int limitMs)
        : runner({u"/bin/sh"_s, u"-c"_s,
                  u"printf '%s[%s] ' \"$SKYHOLD_EVENT\" \"$(cat)\" >>%1/seen; %2"_s.arg(
                      folder.path(), then)},
                 limitMs) {}

    QString seen() const {
        QFile file(folder.filePath(u"seen"_s));
        return file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void call(const QString& events) {
        for (const QString& event : events.split(u' '))
            runner.call({.event = event, .reason = {}, .document = "{}"});
    }
    // Serves it until all is run.
    void serve() {
        const QDeadlineTimer end(20'000);
        while ((runner.running() || runner.waiting() > 0) && !end.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
};

} // namespace

TEST(Hooks, RunOneAtATimeTheVerdictFirst) {
    const struct {
        const char* calls;
        const char* runs;
    } cases[] = {
        {"unsafe source-failed alarm", "unsafe[{}] source-failed[{}] alarm[{}] "},
        {"alarm source-failed unsafe waiting",
         "alarm[{}] unsafe[{}] waiting[{}] source-failed[{}] "},
        {"alarm safe unsafe", "alarm[{}] unsafe[{}] "}, // no late "safe"
        {"alarm 1 2 3 4 5 6 7 8 9 10 11 12",
         "alarm[{}] 3[{}] 4[{}] 5[{}] 6[{}] 7[{}] 8[{}] 9[{}] 10[{}] 11[{}] 12[{}] "},
    };
    for (const auto& row : cases) {
        Hook hook(u"exit 3"_s, 10'000);
        hook.call(QString::fromLatin1(row.calls));
        hook.serve();
        EXPECT_EQ(hook.seen().toStdString(), row.runs);
    }
}

TEST(Hooks, AreEndedWithAllThatTheyStarted) {
    {
        Hook hook(u"sleep 600 & yes 0123456789; wait"_s, 1000);
        hook.call(u"alarm unsafe"_s);
        hook.serve();
        EXPECT_EQ(hook.seen().toStdString(), "alarm[{}] unsafe[{}] ");
    }
    // A "safe" that still runs when it is safe no longer.
    Hook hook(u"test $SKYHOLD_EVENT != safe || exec sleep 600"_s, 600'000);
    hook.call(u"safe"_s);
    const QDeadlineTimer end(10'000);
    while (hook.seen().isEmpty() && !end.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    hook.call(u"alarm unsafe"_s);
    hook.serve();
    EXPECT_EQ(hook.seen().toStdString(), "safe[{}] unsafe[{}] alarm[{}] ");
}

TEST(Hooks, ThatCannotBeStartedAreOver) {
    HookRunner runner({u"/nowhere/hook"_s}, 1000);
    runner.call({.event = u"unsafe"_s, .reason = {}, .document = {}});
    runner.call({.event = u"alarm"_s, .reason = {}, .document = {}});
    const QDeadlineTimer end(10'000);
    while (runner.waiting() > 0 && !end.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    EXPECT_EQ(runner.waiting(), 0U);
}

} // namespace skyhold
