// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/output.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace skyhold {

namespace {

bool writeBytes(const QByteArray& bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

} // namespace

void secureStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            ::open("/dev/null", stream == STDERR_FILENO ? O_WRONLY : O_RDONLY);
    }
}

bool write(const QString& text) {
    return writeBytes(text.toUtf8());
}

bool writeLine(const QString& text) {
    return write(text + u'\n');
}

bool writeLine(const QJsonValue& json) {
    const QJsonDocument document =
        json.isArray() ? QJsonDocument(json.toArray()) : QJsonDocument(json.toObject());
    return writeBytes(document.toJson(QJsonDocument::Compact) + '\n');
}

bool closeOutput() {
    const bool failed = std::ferror(stdout) != 0;
    return std::fclose(stdout) == 0 && !failed;
}

bool waitWhileRead(int ms) {
    const QDeadlineTimer end(ms);
    do {
        // Nothing is asked for: only the reader's end is reported.
        pollfd output{STDOUT_FILENO, 0, 0};
        if (::poll(&output, 1, static_cast<int>(end.remainingTime())) > 0)
            return false;
    } while (!end.hasExpired());
    return true;
}

void printFault(const QString& text) {
    std::fprintf(stderr, "skyholdctl: %s\n", text.toUtf8().constData());
}

} // namespace skyhold
