#include "simulators/station_writer.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTimer>

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

QStringList StationWriter::faultNames() {
    return {u"stop"_s, u"delete"_s, u"halves"_s, u"rubbish"_s, u"empty"_s, u"huge"_s};
}

void StationWriter::write(const QByteArray& text, const Faults& faults) {
    if (halfWritten_ || faults.has(u"stop"_s))
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
    halfWritten_ = true;
    QTimer::singleShot(pauseMs, Qt::PreciseTimer, this, [this, rest = text.mid(middle)] {
        halfWritten_ = false;
        QFile opened(path_);
        if (!opened.open(QIODevice::WriteOnly | QIODevice::Append) ||
            opened.write(rest) != rest.size())
            report(path_, opened.errorString());
    });
}

} // namespace skyhold
