// SPDX-License-Identifier: GPL-3.0-or-later
// Small text files fetched from a web server.
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

class QEventLoop;

namespace skyhold {

// The steps of a transfer, in their order; a transfer ends with Error or ResponseCompleted.
enum class TransferState {
    ResolvingHost = 1,
    HostResolved = 2,
    Connecting = 3,
    Connected = 4,
    Requesting = 5,
    RequestSent = 6,
    ReceivingResponse = 7,
    ResponseReceived = 8,
    Disconnecting = 9,
    Disconnected = 10,
    Error = 11,
    ResponseCompleted = 12
};

// The text of a state for a status line.
QString transferStateText(TransferState state);

struct TransferLimits {
    qint64 bytes = 262'144;    // a longer file is an error
    int milliseconds = 30'000; // for the whole transfer
};

// An absolute http or https address with a host.
bool isRemoteAddress(const QUrl& url);

// Fetches one file at a time, each on a connection of its own.
class RemoteFile {
  public:
    explicit RemoteFile(const TransferLimits& limits = {})
        : limits_(limits) {}

    // The whole file, with events served until it is there. Nothing after an error: no http(s)
    // address, server not found, any answer but 200, a file cut short or too long, time over, an
    // abort, or another transfer under way (which goes on). A redirection is followed to http or
    // https only, and never from https to http.
    std::optional<QByteArray> fetch(const QUrl& url,
                                    const std::function<void(TransferState)>& onState);

    // Ends the transfer that is under way, with Error.
    void abort();

  private:
    TransferLimits limits_;
    QEventLoop* waiting_ = nullptr; // while a transfer is under way
    bool aborted_ = false;          // that transfer
};

} // namespace skyhold
