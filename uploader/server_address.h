// SPDX-License-Identifier: GPL-3.0-or-later
// The server's address as the user enters it.
#pragma once

#include <QString>

#include <optional>

namespace skyhold {

enum class Protocol {
    Ftp,
    FtpExplicitTls, // begins as FTP and goes on encrypted
    Ftps,
    Sftp,
};

struct ServerAddress {
    Protocol protocol = Protocol::Ftp;
    QString host;
    int port = -1;  // -1: the protocol's own
    QString folder; // "" or with a "/" at its end, as all folders here
};

// "HOST", "HOST:PORT/", "SCHEME://HOST:PORT/FOLDER/" with the schemes ftp, ftpes, ftps and sftp;
// without scheme it is FTP. Nothing for any other text, and for one that names a user.
std::optional<ServerAddress> parseServerAddress(const QString& text);

// The URL of a file on the server, or of the folder when the name is empty. A folder without "/" at
// its beginning lies below the one that the user is in after login.
QByteArray remoteUrl(const ServerAddress& server, const QString& name);

} // namespace skyhold
