// SPDX-License-Identifier: GPL-3.0-or-later
#include "uploader/transfer.h"

#include "platform/files.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cstring>
#include <sys/socket.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::int64_t kLargestFile = std::int64_t{256} * 1024 * 1024;

// So long a failed file's part may take to be removed.
constexpr std::int64_t kLongestRemovalMs = 2000;

// The bytes of a file that are still to be sent.
struct Remaining {
    const char* data;
    std::size_t size;
    bool asked = false; // the server has made the file and waits for them
};

std::size_t readNext(char* buffer, std::size_t size, std::size_t count, void* remaining) {
    auto& rest = *static_cast<Remaining*>(remaining);
    rest.asked = true;
    const std::size_t bytes = std::min(size * count, rest.size);
    std::memcpy(buffer, rest.data, bytes);
    rest.data += bytes;
    rest.size -= bytes;
    return bytes;
}

std::size_t discard(char*, std::size_t size, std::size_t count, void*) {
    return size * count;
}

int onProgress(void* cancelled, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return (*static_cast<bool (**)()>(cancelled))() ? 1 : 0;
}

QString partName(const QString& name) {
    return name + u".part"_s;
}

// A path as an argument of a command to an SFTP server.
QByteArray quoted(const QString& path) {
    QByteArray text = path.toUtf8();
    text.replace('\\', "\\\\").replace('"', "\\\"");
    return '"' + text + '"';
}

// The file as it stood at one time: read again when it was written to meanwhile.
QString readSteadyFile(const QString& path, QByteArray& bytes) {
    constexpr int kTries = 5;
    for (int i = 0; i < kTries; ++i) {
        const QDateTime before = modificationTime(path);
        FileContents contents = readFile(path, kLargestFile);
        switch (contents.result) {
        case ReadResult::Missing:
            return u"there is no such file"_s;
        case ReadResult::NotAFile:
            return u"it is not a file"_s;
        case ReadResult::TooLarge:
            return u"it is larger than 256 MiB"_s;
        case ReadResult::Unreadable:
            return u"it cannot be read"_s;
        case ReadResult::Ok:
            break;
        }
        if (modificationTime(path) == before) {
            bytes = std::move(contents.bytes);
            return {};
        }
        QThread::msleep(100);
    }
    return u"it keeps changing"_s;
}

} // namespace

Transfer::Transfer(const UploadJob& job, bool (*cancelled)())
    : job_(job)
    , cancelled_(cancelled)
    , curl_(curl_easy_init(), curl_easy_cleanup) {
    CURL* curl = curl_.get();
    if (curl == nullptr)
        return;
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "ftp,ftps,sftp");
    // Through a web proxy there is no renaming, and the password would be the proxy's to see.
    curl_easy_setopt(curl, CURLOPT_PROXY, "");
    if (!job.userName.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, job.userName.toUtf8().constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, job.password.toUtf8().constData());
    }
    if (job.server.protocol == Protocol::FtpExplicitTls)
        curl_easy_setopt(curl, CURLOPT_USE_SSL, CURLUSESSL_ALL);
    // The usual variable for certificates that are trusted here and not by the whole system.
    const QByteArray trusted = qgetenv("SSL_CERT_FILE");
    if (!trusted.isEmpty())
        curl_easy_setopt(curl, CURLOPT_CAINFO, trusted.constData());
    if (job.server.protocol == Protocol::Sftp) {
        curl_easy_setopt(curl, CURLOPT_SSH_AUTH_TYPES,
                         CURLSSH_AUTH_PASSWORD | CURLSSH_AUTH_KEYBOARD);
        // A server that is not known there does not get to see the password.
        curl_easy_setopt(curl, CURLOPT_SSH_KNOWNHOSTS,
                         QDir::home().filePath(u".ssh/known_hosts"_s).toLocal8Bit().constData());
    }
    curl_easy_setopt(curl, CURLOPT_FTP_CREATE_MISSING_DIRS, CURLFTP_CREATE_DIR_RETRY);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L); // a hung name server does not hold this up
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, readNext);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, discard);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, onProgress);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &cancelled_);
}

TransferResult Transfer::send(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    if (hasControlCharacter(name))
        return {u"its name contains a line break"_s};
    QByteArray bytes;
    if (const QString fault = readSteadyFile(path, bytes); !fault.isEmpty())
        return {fault};
    if (!curl_)
        return {u"the transfer library could not be started"_s, true};

    deadline_ = QDeadlineTimer(job_.timeoutSeconds * std::int64_t{1000}).deadline();
    CURLcode code = store(name, bytes);
    curl_off_t sent = 0;
    curl_easy_getinfo(curl_.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
    // Some servers do not rename over an existing file.
    if (code == CURLE_QUOTE_ERROR && renameWasRefused())
        code = replaceAndRename(name);
    if (code != CURLE_OK) {
        hangUp();
        if (partMade_)
            removePart(name);
    }
    // A server that takes nothing in all that time is not waited for again.
    const bool tookNothing = sent == 0 && !bytes.isEmpty();
    return result(code, tookNothing);
}

CURLcode Transfer::store(const QString& name, const QByteArray& bytes) {
    Remaining rest{bytes.constData(), static_cast<std::size_t>(bytes.size())};
    curl_easy_setopt(curl_.get(), CURLOPT_NOBODY, 0L);
    curl_easy_setopt(curl_.get(), CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl_.get(), CURLOPT_READDATA, &rest);
    curl_easy_setopt(curl_.get(), CURLOPT_INFILESIZE_LARGE, curl_off_t{bytes.size()});
    const CURLcode code = perform(remoteUrl(job_.server, partName(name)), renameCommands(name));
    partMade_ = rest.asked;
    return code;
}

CURLcode Transfer::replaceAndRename(const QString& name) {
    return command(QList{deleteCommand(name)} + renameCommands(name));
}

void Transfer::removePart(const QString& name) {
    const std::int64_t most = std::min(job_.timeoutSeconds * std::int64_t{1000}, kLongestRemovalMs);
    deadline_ = QDeadlineTimer(most).deadline();
    // Also when the user has broken the file off.
    curl_easy_setopt(curl_.get(), CURLOPT_NOPROGRESS, 1L);
    command({deleteCommand(partName(name))});
    curl_easy_setopt(curl_.get(), CURLOPT_NOPROGRESS, 0L);
    // On a connection that began without a file the library has been seen to miss the next one's.
    hangUp();
}

CURLcode Transfer::command(const QList<QByteArray>& commands) {
    curl_easy_setopt(curl_.get(), CURLOPT_UPLOAD, 0L);
    curl_easy_setopt(curl_.get(), CURLOPT_NOBODY, 1L);
    return perform(remoteUrl(job_.server, QString()), commands);
}

CURLcode Transfer::perform(const QByteArray& url, const QList<QByteArray>& commandsAfterwards) {
    curl_slist* commands = nullptr;
    for (const QByteArray& command : commandsAfterwards)
        commands = curl_slist_append(commands, command.constData());
    const std::int64_t left = deadline_ - QDeadlineTimer::current().deadline();
    const auto ms = static_cast<long>(std::max<std::int64_t>(left, 1));
    CURL* curl = curl_.get();
    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl, CURLOPT_POSTQUOTE, commands);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, ms);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, ms);
    curl_easy_setopt(curl, CURLOPT_SERVER_RESPONSE_TIMEOUT, ms / 1000 + 1);
    const CURLcode code = curl_easy_perform(curl);
    curl_easy_setopt(curl, CURLOPT_POSTQUOTE, nullptr);
    curl_slist_free_all(commands);
    return code;
}

QList<QByteArray> Transfer::renameCommands(const QString& name) const {
    if (job_.server.protocol == Protocol::Sftp) {
        const QString folder = job_.server.folder;
        return {"rename " + quoted(folder + partName(name)) + ' ' + quoted(folder + name)};
    }
    // The connection is in the folder already.
    return {"RNFR " + partName(name).toUtf8(), "RNTO " + name.toUtf8()};
}

// With a "*" before it a command may fail.
QByteArray Transfer::deleteCommand(const QString& name) const {
    if (job_.server.protocol == Protocol::Sftp)
        return "*rm " + quoted(job_.server.folder + name);
    return "*DELE " + name.toUtf8();
}

bool Transfer::renameWasRefused() const {
    if (job_.server.protocol == Protocol::Sftp)
        return true;
    long answer = 0; // the server's last; none came when the connection broke or the time was over
    curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &answer);
    return answer >= 500;
}

void Transfer::hangUp() {
    curl_socket_t socket = CURL_SOCKET_BAD;
    curl_easy_getinfo(curl_.get(), CURLINFO_ACTIVESOCKET, &socket);
    if (socket != CURL_SOCKET_BAD)
        ::shutdown(socket, SHUT_RDWR);
}

TransferResult Transfer::result(CURLcode code, bool tookNothing) const {
    const QString host = job_.server.host;
    switch (code) {
    case CURLE_OK:
        return {};
    case CURLE_ABORTED_BY_CALLBACK:
        return {u"broken off"_s, true};
    case CURLE_COULDNT_RESOLVE_HOST:
        return {host + u" cannot be resolved"_s, true};
    case CURLE_COULDNT_CONNECT:
        return {u"no connection to "_s + host, true};
    case CURLE_LOGIN_DENIED:
        return {host + u" refuses the user name or the password"_s, true};
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_USE_SSL_FAILED:
        return {u"no encrypted connection to "_s + host, true};
    case CURLE_PEER_FAILED_VERIFICATION:
        return {host + (job_.server.protocol == Protocol::Sftp
                            ? u": its key is not in ~/.ssh/known_hosts"_s
                            : u": its certificate is not trusted"_s),
                true};
    case CURLE_OPERATION_TIMEDOUT:
        return {u"%1 was not done within %2 s"_s.arg(host, QString::number(job_.timeoutSeconds)),
                tookNothing};
    case CURLE_REMOTE_ACCESS_DENIED:
        return {u"%1 refuses the folder %2"_s.arg(host, job_.server.folder)};
    case CURLE_UPLOAD_FAILED:
        return {host + u" refuses the file"_s};
    case CURLE_QUOTE_ERROR:
        return {host + u" does not rename it"_s};
    default:
        return {u"%1: %2"_s.arg(host, QString::fromUtf8(curl_easy_strerror(code)))};
    }
}

} // namespace skyhold
