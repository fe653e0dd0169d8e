// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/http_server.h"

#include "gateway/bounds.h"
#include "gateway/exchange.h"
#include "gateway/listen.h"
#include "gateway/state.h"

#include <microhttpd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <mutex>
#include <unordered_map>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kAskMs = 15'000;    // from the connection, or the last answer, to a request
constexpr std::int64_t kAnswerMs = 30'000; // from the request to the end of its answer
constexpr std::int64_t kFollowMs = 3'600'000; // an event stream; a browser connects again by itself
constexpr unsigned kIdleSeconds = 20;         // without a byte either way
constexpr std::size_t kHeaderLimit =
    std::size_t{16} * 1024; // a connection's memory: request line and headers
constexpr qsizetype kMostUnsent = qsizetype{128} * 1024; // of events, for one listener

struct Connection {
    int descriptor = -1;
    std::int64_t endMs = 0; // when it is ended
    QByteArray client;
    bool local = false;
    bool waiting = false; // suspended
    std::shared_ptr<Listener> listener;
};

} // namespace

// Everything that both threads touch is behind the mutex. The library calls back without locks of
// its own that its suspend and resume functions need.
class HttpServer::Running : public std::enable_shared_from_this<Running> {
  public:
    explicit Running(Handler handler)
        : handler_(std::move(handler)) {}

    bool start(ListenAddress& address, QString& fault);
    void stop();
    void sweep();
    void send(const QByteArray& event, bool kept);
    Counts counts() const;

  private:
    static MHD_Result onPolicy(void* self, const sockaddr* peer, socklen_t size);
    static void onConnection(void* self, MHD_Connection* connection, void** context,
                             MHD_ConnectionNotificationCode code);
    static MHD_Result onRequest(void* self, MHD_Connection* connection, const char* url,
                                const char* method, const char* version, const char* upload,
                                std::size_t* uploadSize, void** context);
    static void onCompleted(void* self, MHD_Connection* connection, void** context,
                            MHD_RequestTerminationCode code);

    std::optional<Answer> refusal(MHD_Connection* connection, const Connection& known);
    MHD_Result handle(MHD_Connection* connection, Exchange& exchange);
    MHD_Result answerLater(MHD_Connection* connection, const LaterAnswer& work);
    MHD_Result follow(MHD_Connection* connection);
    void resume(MHD_Connection* connection, Connection& known);

    Handler handler_;
    MHD_Daemon* daemon_ = nullptr;
    mutable std::mutex mutex_;
    bool ending_ = false;
    std::unordered_map<MHD_Connection*, Connection> connections_;
    QHash<QByteArray, int> perClient_;
    std::unordered_map<MHD_Connection*, Answer> late_;
    RateLimit rate_;
    QByteArray kept_;
    Counts counts_;
};

bool HttpServer::Running::start(ListenAddress& address, QString& fault) {
    const int descriptor = listenOn(address, fault);
    if (descriptor < 0)
        return false;
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ITC, 0, &onPolicy, this,
        &onRequest, this, MHD_OPTION_LISTEN_SOCKET, descriptor, MHD_OPTION_CONNECTION_LIMIT,
        static_cast<unsigned>(kMostConnections), MHD_OPTION_CONNECTION_TIMEOUT, kIdleSeconds,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT, kHeaderLimit, MHD_OPTION_NOTIFY_COMPLETED, &onCompleted,
        this, MHD_OPTION_NOTIFY_CONNECTION, &onConnection, this, MHD_OPTION_END);
    if (!daemon_) {
        fault = u"the HTTP server did not start"_s;
        ::close(descriptor);
    }
    return daemon_ != nullptr;
}

void HttpServer::Running::stop() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        for (auto& [connection, known] : connections_)
            resume(connection, known);
    }
    if (daemon_)
        MHD_stop_daemon(daemon_);
    daemon_ = nullptr;
}

void HttpServer::Running::resume(MHD_Connection* connection, Connection& known) {
    if (!known.waiting)
        return;
    known.waiting = false;
    MHD_resume_connection(connection);
}

// A connection that is shut down is closed by the library as if its client had done so.
void HttpServer::Running::sweep() {
    const std::int64_t now = bootMs();
    const std::lock_guard lock(mutex_);
    for (auto& [connection, known] : connections_) {
        if (now < known.endMs || (known.waiting && !known.listener))
            continue;
        if (known.listener) {
            known.listener->ended = true;
            resume(connection, known);
        }
        ::shutdown(known.descriptor, SHUT_RDWR);
        known.endMs = now + kAnswerMs;
        ++counts_.refused;
    }
}

void HttpServer::Running::send(const QByteArray& event, bool kept) {
    const std::lock_guard lock(mutex_);
    if (kept)
        kept_ = event;
    for (auto& [connection, known] : connections_) {
        if (!known.listener)
            continue;
        if (known.listener->unsent + event.size() > kMostUnsent)
            known.listener->ended = true;
        else
            known.listener->add(event);
        resume(connection, known);
    }
}

HttpServer::Counts HttpServer::Running::counts() const {
    const std::lock_guard lock(mutex_);
    Counts counts = counts_;
    counts.connections = static_cast<int>(connections_.size());
    for (const auto& [connection, known] : connections_)
        counts.listeners += known.listener ? 1 : 0;
    return counts;
}

MHD_Result HttpServer::Running::onPolicy(void* self, const sockaddr* peer, socklen_t) {
    auto& server = *static_cast<Running*>(self);
    const std::lock_guard lock(server.mutex_);
    const int most = isLoopback(peer) ? kMostOfThisComputer : kMostOfAClient;
    if (server.perClient_.value(peerText(peer)) < most)
        return MHD_YES;
    ++server.counts_.refused;
    return MHD_NO;
}

void HttpServer::Running::onConnection(void* self, MHD_Connection* connection, void**,
                                       MHD_ConnectionNotificationCode code) {
    auto& server = *static_cast<Running*>(self);
    const std::lock_guard lock(server.mutex_);
    if (code == MHD_CONNECTION_NOTIFY_STARTED) {
        const auto* peer =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS)->client_addr;
        Connection& known = server.connections_[connection];
        known.descriptor =
            MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
        known.endMs = bootMs() + kAskMs;
        known.client = peerText(peer);
        known.local = isLoopback(peer);
        ++server.perClient_[known.client];
        return;
    }
    const auto found = server.connections_.find(connection);
    if (found == server.connections_.end())
        return;
    if (--server.perClient_[found->second.client] <= 0)
        server.perClient_.remove(found->second.client);
    server.connections_.erase(found);
}

// What is refused before any of the body is read.
std::optional<Answer> HttpServer::Running::refusal(MHD_Connection* connection,
                                                   const Connection& known) {
    const char* length =
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_CONTENT_LENGTH);
    if (length && QByteArray(length).toULongLong() > static_cast<qulonglong>(kBodyLimit))
        return textAnswer(413, "The request is too large");
    if (!known.local && !rate_.allows(known.client, bootMs()))
        return textAnswer(429, "Too many requests");
    return std::nullopt;
}

MHD_Result HttpServer::Running::onRequest(void* self, MHD_Connection* connection, const char* url,
                                          const char* method, const char*, const char* upload,
                                          std::size_t* uploadSize, void** context) {
    auto& server = *static_cast<Running*>(self);
    if (!*context) {
        std::optional<Answer> refused;
        auto exchange = std::make_unique<Exchange>();
        {
            const std::lock_guard lock(server.mutex_);
            if (server.ending_)
                return MHD_NO;
            Connection& known = server.connections_[connection];
            known.endMs = bootMs() + kAnswerMs;
            refused = server.refusal(connection, known);
            ++server.counts_.requests;
            server.counts_.refused += refused ? 1 : 0;
            exchange->request.client = known.client;
            exchange->request.local = known.local;
        }
        fillRequest(exchange->request, connection, method, url);
        *context = exchange.release();
        return refused ? queueAnswer(connection, *refused) : MHD_YES;
    }
    auto& exchange = *static_cast<Exchange*>(*context);
    if (*uploadSize > 0) {
        if (exchange.request.body.size() + static_cast<qsizetype>(*uploadSize) > kBodyLimit)
            return MHD_NO; // without a length it cannot be refused in a better way
        exchange.request.body.append(upload, static_cast<qsizetype>(*uploadSize));
        *uploadSize = 0;
        return MHD_YES;
    }
    return server.handle(connection, exchange);
}

MHD_Result HttpServer::Running::handle(MHD_Connection* connection, Exchange& exchange) {
    if (exchange.handled) { // its answer has come
        Answer answer;
        {
            const std::lock_guard lock(mutex_);
            const auto found = late_.find(connection);
            if (ending_ || found == late_.end())
                return MHD_NO;
            answer = std::move(found->second);
            late_.erase(found);
        }
        return queueAnswer(connection, answer);
    }
    exchange.handled = true;
    const Handling handling = handler_(exchange.request);
    if (const auto* answer = std::get_if<Answer>(&handling)) {
        if (answer->status >= 400) {
            const std::lock_guard lock(mutex_);
            ++counts_.refused;
        }
        return queueAnswer(connection, *answer);
    }
    if (const auto* work = std::get_if<LaterAnswer>(&handling))
        return answerLater(connection, *work);
    return follow(connection);
}

MHD_Result HttpServer::Running::answerLater(MHD_Connection* connection, const LaterAnswer& work) {
    {
        const std::lock_guard lock(mutex_);
        if (ending_)
            return MHD_NO;
        connections_[connection].waiting = true;
        MHD_suspend_connection(connection);
    }
    // A connection that waits stays until it is resumed, so that its address stays its own.
    work([weak = weak_from_this(), connection](Answer answer) {
        const std::shared_ptr<Running> server = weak.lock();
        if (!server)
            return;
        const std::lock_guard lock(server->mutex_);
        const auto found = server->connections_.find(connection);
        if (server->ending_ || found == server->connections_.end() || !found->second.waiting)
            return;
        server->late_[connection] = std::move(answer);
        server->resume(connection, found->second);
    });
    return MHD_YES;
}

MHD_Result HttpServer::Running::follow(MHD_Connection* connection) {
    auto listener = std::make_shared<Listener>();
    {
        const std::lock_guard lock(mutex_);
        if (ending_)
            return MHD_NO;
        listener->add("retry: 2000\n\n");
        listener->add(kept_);
        Connection& known = connections_[connection];
        known.listener = listener;
        known.endMs = bootMs() + kFollowMs;
    }
    struct Reading {
        Running* server;
        MHD_Connection* connection;
        std::shared_ptr<Listener> listener;
    };
    auto* reading = new Reading{this, connection, std::move(listener)};
    const auto read = [](void* data, std::uint64_t, char* buffer, std::size_t most) -> ssize_t {
        auto& state = *static_cast<Reading*>(data);
        const std::lock_guard lock(state.server->mutex_);
        if (state.server->ending_ || state.listener->ended)
            return MHD_CONTENT_READER_END_OF_STREAM;
        if (const std::size_t taken = state.listener->take(buffer, most); taken > 0)
            return static_cast<ssize_t>(taken);
        state.server->connections_[state.connection].waiting = true;
        MHD_suspend_connection(state.connection);
        return 0;
    };
    return queueStream(connection, read, reading,
                       [](void* data) { delete static_cast<Reading*>(data); });
}

void HttpServer::Running::onCompleted(void* self, MHD_Connection* connection, void** context,
                                      MHD_RequestTerminationCode) {
    auto& server = *static_cast<Running*>(self);
    delete static_cast<Exchange*>(*context);
    *context = nullptr;
    const std::lock_guard lock(server.mutex_);
    server.late_.erase(connection);
    const auto found = server.connections_.find(connection);
    if (found == server.connections_.end())
        return;
    found->second.listener.reset();
    found->second.endMs = bootMs() + kAskMs;
}

HttpServer::HttpServer(Handler handler)
    : running_(std::make_shared<Running>(std::move(handler))) {}

HttpServer::~HttpServer() {
    running_->stop();
}

bool HttpServer::start(ListenAddress& address, QString& fault) {
    return running_->start(address, fault);
}

void HttpServer::sweep() {
    running_->sweep();
}

void HttpServer::send(const QByteArray& event, bool kept) {
    running_->send(event, kept);
}

HttpServer::Counts HttpServer::counts() const {
    return running_->counts();
}

} // namespace skyhold
