// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media_control.h"

#include "platform/files.h"

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kRefused = 1;
const QString kOpenBegin = u"open "_s;
const QString kOpenEnd = u" type MPEGVideo alias KivNubiloPlayer"_s;

// The path of an open command; nothing when the command is another one.
std::optional<QString> openedPath(const QString& command) {
    if (!command.startsWith(kOpenBegin) || !command.endsWith(kOpenEnd))
        return std::nullopt;
    const QStringView path =
        QStringView(command).sliced(kOpenBegin.size()).chopped(kOpenEnd.size());
    const bool quoted = path.size() >= 2 && path.startsWith(u'"') && path.endsWith(u'"');
    return (quoted ? path.sliced(1).chopped(1) : path).toString();
}

// Runs in the new process before the player does.
void tieToMonitor() {
    // A repeated sound must not outlive the monitor, however that ends.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // An interrupt from the terminal is for the monitor to act on.
    setsid();
}

} // namespace

QString mediaOpenCommand(const QString& path) {
    const bool quote = path.contains(u' ') || path.contains(u'"');
    return kOpenBegin + (quote ? u'"' + path + u'"' : path) + kOpenEnd;
}

SoundPlayerProgram::SoundPlayerProgram(const QString& program,
                                       std::function<void(const QString&)> report)
    : program_(program)
    , report_(std::move(report)) {}

SoundPlayerProgram::~SoundPlayerProgram() {
    stop();
    for (auto* process : processes_.findChildren<QProcess*>())
        process->waitForFinished(1000); // killed already
}

int SoundPlayerProgram::send(const QString& command, QString* answer, int answerLength) {
    if (const std::optional<QString> path = openedPath(command))
        return open(*path);
    if (file_.isEmpty())
        return kRefused;
    if (command == kMediaPlay || command == kMediaPlayRepeat) {
        play(command == kMediaPlayRepeat);
    } else if (command == kMediaStop) {
        stop();
    } else if (command == kMediaClose) {
        stop();
        file_.clear();
    } else if (command == kMediaMode && answer != nullptr && answerLength > 0) {
        const bool playing = process_ != nullptr && process_->state() != QProcess::NotRunning;
        *answer = (playing ? u"playing"_s : u"stopped"_s).left(answerLength - 1);
    } else {
        return kRefused;
    }
    return 0;
}

int SoundPlayerProgram::open(const QString& path) {
    if (!file_.isEmpty() || !isReadableFile(path))
        return kRefused;
    file_ = nativePath(path);
    return 0;
}

void SoundPlayerProgram::play(bool repeat) {
    stop();
    process_ = new QProcess(&processes_);
    QObject::connect(process_, &QProcess::finished, process_,
                     [this, process = process_](int code, QProcess::ExitStatus status) {
                         if (status == QProcess::CrashExit)
                             report(file_ + u": the sound player crashed"_s);
                         else if (code != 0)
                             report(QString::fromLocal8Bit(process->readLine()).trimmed());
                     });
    QObject::connect(process_, &QProcess::errorOccurred, process_,
                     [this](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             report(program_ + u" cannot be started"_s);
                     });
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardErrorFile(QProcess::nullDevice()); // the sound libraries' own chatter
    process_->setChildProcessModifier(tieToMonitor);
    QStringList arguments{file_};
    if (repeat)
        arguments.prepend(u"--repeat"_s);
    process_->start(program_, arguments, QIODevice::ReadOnly);
}

void SoundPlayerProgram::stop() {
    if (process_ == nullptr)
        return;
    process_->disconnect();
    if (process_->state() == QProcess::NotRunning) {
        process_->deleteLater();
    } else {
        QObject::connect(process_, &QProcess::finished, process_, &QObject::deleteLater);
        process_->kill();
    }
    process_ = nullptr;
}

void SoundPlayerProgram::report(const QString& reason) {
    if (silent)
        silent(reason);
    if (reported_.contains(reason))
        return;
    reported_.insert(reason);
    report_(reason);
}

} // namespace skyhold
