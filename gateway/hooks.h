// SPDX-License-Identifier: GPL-3.0-or-later
// A command of the user's that is run at every event.
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>

#include <deque>

namespace skyhold {

struct HookCall {
    QString event;       // SKYHOLD_EVENT
    QString reason;      // SKYHOLD_REASON
    QByteArray document; // on standard input
};

// One run at a time, without a shell. Up to ten calls wait, the verdicts before the others; then
// the oldest goes. A "safe" is never run late: a verdict after it takes it from the queue, or ends
// it while it runs.
class HookRunner : public QObject {
  public:
    static constexpr std::size_t kMostWaiting = 10;

    HookRunner(QStringList command, int limitMs);
    ~HookRunner() override;

    void call(HookCall call);
    std::size_t waiting() const { return waiting_.size(); }
    bool running() const { return process_.state() != QProcess::NotRunning; }

  private:
    void next();
    void begin(const HookCall& call);
    void readOutput();
    void ended(const QString& result);
    void killRun(const QString& why);
    void log(const QString& text) const;

    QStringList command_;
    std::deque<HookCall> waiting_;
    QProcess process_;
    QTimer limit_;
    QElapsedTimer since_;
    QString event_;  // of the run
    QString killed_; // why the run was ended
    QByteArray output_;
};

} // namespace skyhold
