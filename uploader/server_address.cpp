// SPDX-License-Identifier: GPL-3.0-or-later
#include "uploader/server_address.h"

#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

std::optional<Protocol> protocolOf(const QString& scheme) {
    if (scheme == u"ftp"_s)
        return Protocol::Ftp;
    if (scheme == u"ftpes"_s)
        return Protocol::FtpExplicitTls;
    if (scheme == u"ftps"_s)
        return Protocol::Ftps;
    if (scheme == u"sftp"_s)
        return Protocol::Sftp;
    return std::nullopt;
}

QString curlScheme(Protocol protocol) {
    switch (protocol) {
    case Protocol::Ftps:
        return u"ftps"_s;
    case Protocol::Sftp:
        return u"sftp"_s;
    case Protocol::Ftp:
    case Protocol::FtpExplicitTls:
        break;
    }
    return u"ftp"_s;
}

QByteArray encodedFolder(const QString& folder) {
    QByteArray encoded;
    for (const QString& part : folder.split(u'/'))
        encoded += QUrl::toPercentEncoding(part) + '/';
    encoded.chop(1);
    return encoded;
}

} // namespace

std::optional<ServerAddress> parseServerAddress(const QString& text) {
    const QString trimmed = text.trimmed();
    const QUrl url(trimmed.contains(u"://"_s) ? trimmed : u"ftp://"_s + trimmed, QUrl::StrictMode);
    const std::optional<Protocol> protocol = protocolOf(url.scheme());
    if (!url.isValid() || !protocol || url.host().isEmpty() || !url.userInfo().isEmpty() ||
        url.port() == 0 || url.hasQuery() || url.hasFragment())
        return std::nullopt;
    QString folder = url.path(QUrl::FullyDecoded).mid(1);
    if (!folder.isEmpty() && !folder.endsWith(u'/'))
        folder += u'/';
    return ServerAddress{*protocol, url.host(), url.port(), folder};
}

QByteArray remoteUrl(const ServerAddress& server, const QString& name) {
    QUrl url;
    url.setScheme(curlScheme(server.protocol));
    url.setHost(server.host);
    url.setPort(server.port);
    QByteArray folder = encodedFolder(server.folder);
    if (server.protocol == Protocol::Sftp) {
        // Its paths are absolute but for those below "~".
        if (folder.startsWith('/'))
            folder.remove(0, 1);
        else
            folder.prepend("~/");
    }
    return url.toEncoded() + '/' + folder + QUrl::toPercentEncoding(name);
}

} // namespace skyhold
