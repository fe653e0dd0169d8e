// SPDX-License-Identifier: GPL-3.0-or-later
#include "uploader/upload_job.h"

#include <QDir>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kMaxFiles = 9999;

QString setting(const SettingsStore& area, const QString& key) {
    return area.GetSetting(u"Setup"_s, key, QString());
}

} // namespace

int readTimeout(const SettingsStore& area) {
    const int seconds = setting(area, u"TimeoutUPLOAD"_s).toInt();
    return seconds >= 1 && seconds <= 999 ? seconds : UploadJob().timeoutSeconds;
}

QStringList readFiles(const SettingsStore& area) {
    const QDir folder(setting(area, u"UploadDir"_s));
    const int count = std::clamp(setting(area, u"NoFiles"_s).toInt(), 0, kMaxFiles);
    QStringList files;
    for (int k = 1; k <= count; ++k) {
        const QString file = setting(area, u"File"_s + QString::number(k));
        if (!file.isEmpty())
            files.append(folder.filePath(file)); // an absolute path stays as it is
    }
    return files;
}

std::optional<UploadJob> readUploadJob(const SettingsStore& area, QString& fault) {
    const QString address = setting(area, u"Server"_s);
    const QString folder = setting(area, u"ServerPath"_s);
    const std::optional<ServerAddress> server = parseServerAddress(address);
    if (!server) {
        // The text is not shown: it may hold a password.
        fault = address.trimmed().isEmpty()
                    ? u"no server address is set"_s
                    : u"the server address is not valid; it takes the form HOST, HOST:PORT or "
                      "SCHEME://HOST:PORT with the schemes ftp, ftpes, ftps and sftp"_s;
        return std::nullopt;
    }
    UploadJob job{*server, setting(area, u"Username"_s), setting(area, u"Password"_s),
                  readFiles(area), readTimeout(area)};
    job.server.folder += folder;
    if (!job.server.folder.isEmpty() && !job.server.folder.endsWith(u'/'))
        job.server.folder += u'/';
    for (const QString& text : {job.server.folder, job.userName, job.password}) {
        if (hasControlCharacter(text)) {
            fault = u"the server's folder, the user name or the password contains a line break"_s;
            return std::nullopt;
        }
    }
    return job;
}

bool hasControlCharacter(const QString& text) {
    return std::ranges::any_of(text, [](QChar c) { return c < u' ' || c == u'\x7f'; });
}

} // namespace skyhold
