// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/station_writer.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kHugeSize = 200LL * 1024 * 1024;

void report(const QString& path, const QString& reason) {
    std::fprintf(stderr, "Kiv_StationSim: %s: %s\n", qUtf8Printable(path), qUtf8Printable(reason));
}

QByteArray rubbish() {
    QList<quint32> words(1024);
    QRandomGenerator::global()->fillRange(words.data(), words.size());
    return QByteArray(reinterpret_cast<const char*>(words.constData()),
                      words.size() * qsizetype{sizeof(quint32)});
}

// QFile::rename does not replace an existing file.
void renameOver(const QString& from, const QString& to) {
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        report(to, QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace

StationWriter::StationWriter(const QString& path)
    : path_(path) {
    pause_.setSingleShot(true);
    pause_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&pause_, &QTimer::timeout, &pause_, [this] { writeSecondHalf(); });
}

QStringList StationWriter::faultNames() {
    return {u"stop"_s, u"delete"_s, u"halves"_s, u"rubbish"_s, u"empty"_s, u"huge"_s};
}

void StationWriter::write(const QByteArray& text, const Faults& faults) {
    if (pause_.isActive() || faults.has(u"stop"_s))
        return;
    if (faults.has(u"delete"_s))
        QFile::remove(path_);
    else if (faults.has(u"empty"_s))
        replace({});
    else if (faults.has(u"rubbish"_s))
        replace(rubbish());
    else if (faults.has(u"huge"_s))
        replaceByHuge();
    else if (faults.has(u"halves"_s))
        writeInHalves(text, faults.number(u"halves"_s, 1000));
    else
        replace(text);
}

void StationWriter::replace(const QByteArray& bytes) {
    QFile beside(path_ + u".new"_s);
    if (!beside.open(QIODevice::WriteOnly) || beside.write(bytes) != bytes.size() ||
        !beside.flush()) {
        report(beside.fileName(), beside.errorString());
        return;
    }
    beside.close();
    renameOver(beside.fileName(), path_);
}

void StationWriter::replaceByHuge() {
    QFile beside(path_ + u".new"_s);
    if (!beside.open(QIODevice::WriteOnly) || !beside.resize(kHugeSize)) {
        report(beside.fileName(), beside.errorString());
        return;
    }
    beside.close();
    renameOver(beside.fileName(), path_);
}

void StationWriter::writeInHalves(const QByteArray& text, int pauseMs) {
    const qsizetype middle = text.size() / 2;
    QFile file(path_);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.left(middle)) != middle) {
        report(path_, file.errorString());
        return;
    }
    secondHalf_ = text.mid(middle);
    pause_.start(pauseMs);
}

void StationWriter::writeSecondHalf() {
    QFile file(path_);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append) ||
        file.write(secondHalf_) != secondHalf_.size())
        report(path_, file.errorString());
}

} // namespace skyhold
