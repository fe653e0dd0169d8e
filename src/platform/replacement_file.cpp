// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/replacement_file.h"

#include "platform/files.h"

#include <QFileInfo>

#include <cstdio>

namespace skyhold {

namespace {

// The temporary files of `path` begin so.
QString temporaryBegin(const QFileInfo& target) {
    return u'.' + target.fileName() + u'.';
}

QString temporaryName(const QString& path) {
    const QFileInfo target(path);
    return target.path() + u'/' + temporaryBegin(target) + QStringLiteral("XXXXXX");
}

} // namespace

ReplacementFile::ReplacementFile(const QString& path)
    : path_(nativePath(path))
    , file_(temporaryName(path_)) {
    if (file_.open())
        file_.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                             QFileDevice::ReadGroup | QFileDevice::ReadOther);
}

QByteArray ReplacementFile::writerPath() const {
    return "/proc/self/fd/" + QByteArray::number(file_.handle());
}

bool ReplacementFile::write(const QByteArray& bytes) {
    return file_.write(bytes) == bytes.size() && file_.flush();
}

QByteArray ReplacementFile::contents() {
    return file_.seek(0) ? file_.readAll() : QByteArray();
}

bool ReplacementFile::commit() {
    if (!file_.isOpen() || !file_.flush())
        return false;
    const QByteArray from = QFile::encodeName(file_.fileName());
    if (std::rename(from.constData(), QFile::encodeName(path_).constData()) != 0)
        return false;
    file_.setAutoRemove(false);
    return true;
}

void ReplacementFile::removeLeftovers(const QString& path) {
    const QFileInfo target(nativePath(path));
    for (const QString& left : unfinishedFiles(target.path(), temporaryBegin(target)))
        QFile::remove(left);
}

} // namespace skyhold
