// SPDX-License-Identifier: GPL-3.0-or-later
// HTTP/1.1 over libmicrohttpd, with bounds: the number of connections, of all and of one address,
// how long one may take to ask, how much it may send, and how often an address may ask.
#pragma once

#include "gateway/request.h"

#include <QString>

#include <memory>

namespace skyhold {

struct ListenAddress {
    QByteArray host; // an address, without brackets
    int port = 0;
    bool loopback() const; // reached from this computer alone
};

// "127.0.0.1:11111", "[::1]:11111", "0.0.0.0:80"; nothing, with the reason, when it is none.
std::optional<ListenAddress> parseListenAddress(const QString& text, QString& fault);
QByteArray shownAddress(const ListenAddress& address); // with brackets and port

inline constexpr qsizetype kBodyLimit = 8 * 1024;

class HttpServer {
  public:
    // Called in the server's own thread.
    using Handler = std::function<Handling(const Request&)>;

    explicit HttpServer(Handler handler);
    ~HttpServer(); // ends what goes on
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // Listens; false, with the reason, when that cannot be. Port 0 becomes a free one.
    bool start(ListenAddress& address, QString& fault);

    // To be called every second: ends connections that have taken too long.
    void sweep();

    // Sends an event to all that follow the events; one that reads too slowly is dropped. What is
    // `kept` is sent first to whoever comes later.
    void send(const QByteArray& event, bool kept);

    struct Counts {
        int connections = 0;
        int listeners = 0;
        std::int64_t requests = 0;
        std::int64_t refused = 0; // for a bound, a foreign name or what is no request
    };
    Counts counts() const;

  private:
    class Running;
    std::shared_ptr<Running> running_;
};

} // namespace skyhold
