// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/hooks.h"

#include "gateway/gateway_log.h"

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kMostOutput = 300;

bool isVerdict(const QString& event) {
    return event == u"safe" || event == u"unsafe" || event == u"waiting" || event == u"stopped";
}

} // namespace

HookRunner::HookRunner(QStringList command, int limitMs)
    : command_(std::move(command)) {
    process_.setProcessChannelMode(QProcess::MergedChannels);
    // A group of its own, so that a run ends with all that it started.
    process_.setChildProcessModifier([] { ::setpgid(0, 0); });
    limit_.setSingleShot(true);
    limit_.setInterval(limitMs);
    connect(&limit_, &QTimer::timeout, this, [this] { killRun(u"took too long"_s); });
    connect(&process_, &QProcess::readyRead, this, [this] { readOutput(); });
    connect(&process_, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        if (!killed_.isEmpty())
            ended(u"ended, since it "_s + killed_);
        else if (status == QProcess::CrashExit)
            ended(u"died by signal %1"_s.arg(code));
        else
            ended(u"status %1"_s.arg(code));
    });
    connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            ended(u"cannot be started: "_s + process_.errorString());
    });
}

HookRunner::~HookRunner() {
    process_.disconnect(this);
    if (running())
        ::kill(-static_cast<pid_t>(process_.processId()), SIGKILL);
    process_.waitForFinished(1000);
}

void HookRunner::call(HookCall call) {
    auto place = waiting_.end();
    if (isVerdict(call.event)) {
        std::erase_if(waiting_, [](const HookCall& other) { return other.event == u"safe"; });
        place = std::find_if(waiting_.begin(), waiting_.end(),
                             [](const HookCall& other) { return !isVerdict(other.event); });
        if (running() && event_ == u"safe" && call.event != u"safe")
            killRun(u"is safe no longer"_s);
    }
    waiting_.insert(place, std::move(call));
    if (waiting_.size() > kMostWaiting) {
        log(waiting_.front().event + u": left out, since %1 others wait"_s.arg(kMostWaiting));
        waiting_.pop_front();
    }
    next();
}

void HookRunner::next() {
    if (running() || waiting_.empty())
        return;
    const HookCall call = std::move(waiting_.front());
    waiting_.pop_front();
    begin(call);
}

void HookRunner::begin(const HookCall& call) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"SKYHOLD_MQTT_PASSWORD"_s);
    environment.insert(u"SKYHOLD_EVENT"_s, call.event);
    environment.insert(u"SKYHOLD_REASON"_s, call.reason);
    process_.setProcessEnvironment(environment);
    event_ = call.event;
    killed_.clear();
    output_.clear();
    since_.start();
    limit_.start();
    process_.start(command_.constFirst(), command_.mid(1));
    process_.write(call.document + '\n');
    process_.closeWriteChannel();
}

void HookRunner::readOutput() {
    const QByteArray more = process_.readAll();
    output_ += more.first(std::min(more.size(), kMostOutput - output_.size()));
}

void HookRunner::killRun(const QString& why) {
    killed_ = why;
    if (process_.processId() > 0)
        ::kill(-static_cast<pid_t>(process_.processId()), SIGKILL);
}

void HookRunner::ended(const QString& result) {
    limit_.stop();
    readOutput();
    const QString said = QString::fromLocal8Bit(output_).simplified();
    log(u"%1: %2 after %3 s"_s.arg(event_, result)
            .arg(static_cast<double>(since_.elapsed()) / 1000, 0, 'f', 1) +
        (said.isEmpty() ? QString() : u" ("_s + said + u')'));
    // Not from within the signal of the run that ended.
    QMetaObject::invokeMethod(
        this, [this] { next(); }, Qt::QueuedConnection);
}

void HookRunner::log(const QString& text) const {
    qCInfo(gatewayLog).noquote() << "Hook" << command_.constFirst() << text;
}

} // namespace skyhold
