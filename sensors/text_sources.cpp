// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/text_sources.h"

#include "platform/files.h"
#include "sensors/payload.h"

#include <QFileInfo>

#include <cmath>

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

int milliseconds(double seconds) {
    return static_cast<int>(std::lround(std::max(seconds, 0.05) * 1000));
}

} // namespace

QString takePayload(QByteArrayView text, std::int64_t atMs, SourceReadings& readings) {
    QString fault;
    const std::optional<QMap<QString, QString>> values = payloadValues(text, fault);
    if (!values)
        return fault;
    const QSet<QString> wanted = readings.wanted();
    for (const QString& address : wanted) {
        const auto value = values->find(address);
        if (value == values->end())
            readings.drop(address);
        else
            readings.take(address, *value, atMs);
    }
    return {};
}

FileSource::FileSource(const SourceSettings& settings, SourceReadings& readings)
    : path_(settings.text(u"path"_s))
    , readings_(readings) {
    timer_.setInterval(milliseconds(settings.number(u"every"_s)));
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { look(); });
}

void FileSource::start() {
    look();
    timer_.start();
}

void FileSource::look() {
    const QDateTime changed = modificationTime(path_);
    const qint64 size = QFileInfo(path_).size();
    if (!changed.isValid()) {
        readings_.dropAll();
        readings_.setTrouble(u"there is no file "_s + path_);
        seen_ = {};
        return;
    }
    if (changed == seen_ && size == seenSize_)
        return;
    const FileContents contents = readFile(path_, kPayloadLimit);
    if (contents.result != ReadResult::Ok) {
        readings_.dropAll();
        readings_.setTrouble(path_ + u" cannot be read, or is larger than 64 KiB"_s);
        return;
    }
    const QByteArray& bytes = contents.bytes;
    const bool json = bytes.trimmed().startsWith('{') || bytes.trimmed().startsWith('[');
    if (!json && !bytes.endsWith('\n')) {
        readings_.setTrouble(path_ + u" does not end in a line end"_s);
        return;
    }
    // What lay there before the start is as old as its file.
    const std::int64_t age =
        seen_.isValid() ? 0 : std::abs(changed.msecsTo(QDateTime::currentDateTime()));
    const QString fault = takePayload(bytes, bootMs() - age, readings_);
    readings_.setTrouble(fault.isEmpty() ? QString() : path_ + u": "_s + fault);
    if (fault.isEmpty()) {
        seen_ = changed;
        seenSize_ = size;
    }
}

CommandSource::CommandSource(const SourceSettings& settings, SourceReadings& readings)
    : command_(QProcess::splitCommand(settings.text(u"command"_s)))
    , readings_(readings) {
    timer_.setInterval(milliseconds(settings.number(u"every"_s)));
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { run(); });
    limit_.setInterval(milliseconds(settings.number(u"timeout"_s)));
    limit_.setSingleShot(true);
    QObject::connect(&limit_, &QTimer::timeout, &limit_, [this] { finish(u"took too long"_s); });
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.setStandardInputFile(QProcess::nullDevice());
    QObject::connect(&process_, &QProcess::readyReadStandardOutput, &process_, [this] {
        output_ += process_.readAllStandardOutput();
        if (output_.size() > kPayloadLimit)
            finish(u"wrote more than 64 KiB"_s);
    });
    QObject::connect(&process_, &QProcess::errorOccurred, &process_,
                     [this](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             finish(u"cannot be started"_s);
                     });
    QObject::connect(&process_, &QProcess::finished, &process_,
                     [this](int code, QProcess::ExitStatus status) {
                         if (status != QProcess::NormalExit)
                             finish(u"was killed"_s);
                         else
                             finish(code == 0 ? QString() : u"ended with %1"_s.arg(code));
                     });
}

CommandSource::~CommandSource() {
    process_.disconnect();
    process_.kill();
    process_.waitForFinished(1000);
}

void CommandSource::start() {
    run();
    timer_.start();
}

void CommandSource::run() {
    if (process_.state() != QProcess::NotRunning)
        return;
    output_.clear();
    running_ = true;
    begunMs_ = bootMs();
    limit_.start();
    process_.start(command_.value(0), command_.mid(1), QIODevice::ReadOnly);
}

// The end of a run, or what is wrong with it; a run that was given up may end later.
void CommandSource::finish(const QString& trouble) {
    if (!std::exchange(running_, false))
        return;
    limit_.stop();
    QString fault = trouble;
    if (fault.isEmpty()) {
        output_ += process_.readAllStandardOutput();
        fault = takePayload(output_, begunMs_, readings_);
    }
    if (!fault.isEmpty()) {
        readings_.dropAll();
        process_.kill();
    }
    readings_.setTrouble(fault.isEmpty() ? QString() : command_.value(0) + u": "_s + fault);
}

} // namespace skyhold
