// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/remote_file.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QHostInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace skyhold {

namespace {

constexpr int kMostRedirections = 5;

// One transfer. `loop` is left once it has ended, well or not.
class Transfer {
  public:
    Transfer(const QUrl& url, qint64 limit, const std::function<void(TransferState)>& onState,
             QEventLoop& loop)
        : url_(url)
        , limit_(limit)
        , onState_(onState)
        , loop_(loop)
        , manager_(std::make_unique<QNetworkAccessManager>()) {}
    ~Transfer() {
        if (lookup_ >= 0)
            QHostInfo::abortHostLookup(lookup_);
        closeConnection();
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    void start() {
        enter(TransferState::ResolvingHost);
        lookup_ = QHostInfo::lookupHost(url_.host(), &loop_, [this](const QHostInfo& host) {
            lookup_ = -1;
            if (host.error() != QHostInfo::NoError)
                return loop_.quit();
            enter(TransferState::HostResolved);
            request();
        });
    }

    // The connection goes with its manager.
    void closeConnection() {
        if (reply_)
            reply_->disconnect(&loop_);
        reply_ = nullptr; // a child of the manager
        manager_.reset();
    }

    std::optional<QByteArray> body() const {
        return complete_ ? std::optional(body_) : std::nullopt;
    }

  private:
    // Every state once and in order, whatever happens twice (a redirection connects again) or
    // goes unsaid (a connection is known by the request that was sent over it).
    void enter(TransferState state) {
        for (int next = reached_ + 1; next <= static_cast<int>(state); ++next) {
            reached_ = next;
            onState_(static_cast<TransferState>(next));
        }
    }

    void request() {
        QNetworkRequest request(url_);
        request.setHeader(QNetworkRequest::UserAgentHeader,
                          QCoreApplication::applicationName() + u'/' +
                              QCoreApplication::applicationVersion());
        // The bytes as they lie on the server: a packed answer could unpack to any size.
        request.setRawHeader("Accept-Encoding", "identity");
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
        request.setMaximumRedirectsAllowed(kMostRedirections);
        enter(TransferState::Connecting);
        reply_ = manager_->get(request);
        // A byte beyond the limit shows that there is more.
        reply_->setReadBufferSize(limit_ + 1);
        QObject::connect(reply_, &QNetworkReply::requestSent, &loop_,
                         [this] { enter(TransferState::RequestSent); });
        QObject::connect(reply_, &QNetworkReply::metaDataChanged, &loop_,
                         [this] { enter(TransferState::ReceivingResponse); });
        QObject::connect(reply_, &QNetworkReply::readyRead, &loop_, [this] { receive(); });
        QObject::connect(reply_, &QNetworkReply::finished, &loop_, [this] { finish(); });
    }

    void receive() {
        body_ += reply_->read(std::min(reply_->bytesAvailable(), limit_ + 1 - body_.size()));
        if (body_.size() > limit_)
            loop_.quit();
    }

    void finish() {
        receive();
        const QVariant announced = reply_->header(QNetworkRequest::ContentLengthHeader);
        complete_ = reply_->error() == QNetworkReply::NoError && body_.size() <= limit_ &&
                    reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == 200 &&
                    (!announced.isValid() || announced.toLongLong() == body_.size());
        if (complete_)
            enter(TransferState::ResponseReceived);
        loop_.quit();
    }

    QUrl url_;
    qint64 limit_;
    const std::function<void(TransferState)>& onState_;
    QEventLoop& loop_;
    std::unique_ptr<QNetworkAccessManager> manager_;
    QNetworkReply* reply_ = nullptr;
    QByteArray body_;
    int lookup_ = -1;
    int reached_ = 0;
    bool complete_ = false;
};

} // namespace

QString transferStateText(TransferState state) {
    switch (state) {
    case TransferState::ResolvingHost:
        return QStringLiteral("Looking up IP address");
    case TransferState::HostResolved:
        return QStringLiteral("Successfully found");
    case TransferState::Connecting:
        return QStringLiteral("Connecting to host");
    case TransferState::Connected:
        return QStringLiteral("Successfully connected");
    case TransferState::Requesting:
        return QStringLiteral("Sending a request");
    case TransferState::RequestSent:
        return QStringLiteral("Successfully sent");
    case TransferState::ReceivingResponse:
        return QStringLiteral("Receiving a response");
    case TransferState::ResponseReceived:
        return QStringLiteral("Successfully received");
    case TransferState::Disconnecting:
        return QStringLiteral("Disconnecting from host");
    case TransferState::Disconnected:
        return QStringLiteral("Successfully disconnected");
    case TransferState::Error:
        return QStringLiteral("Communication error");
    case TransferState::ResponseCompleted:
        return QStringLiteral("Sucessful response");
    }
    return QStringLiteral("Unknown condition");
}

bool isRemoteAddress(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https"));
}

std::optional<QByteArray> RemoteFile::fetch(const QUrl& url,
                                            const std::function<void(TransferState)>& onState) {
    if (waiting_)
        return std::nullopt;
    std::optional<QByteArray> body;
    if (isRemoteAddress(url)) {
        QEventLoop loop;
        waiting_ = &loop;
        aborted_ = false;
        QTimer::singleShot(limits_.milliseconds, &loop, &QEventLoop::quit);
        Transfer transfer(url, limits_.bytes, onState, loop);
        // From within the loop, which an answer at once could otherwise not leave.
        QTimer::singleShot(0, &loop, [&transfer] { transfer.start(); });
        loop.exec();
        if (!aborted_)
            body = transfer.body();
        if (body)
            onState(TransferState::Disconnecting);
        transfer.closeConnection();
        if (body)
            onState(TransferState::Disconnected);
        waiting_ = nullptr;
    }
    onState(body ? TransferState::ResponseCompleted : TransferState::Error);
    return body;
}

void RemoteFile::abort() {
    aborted_ = true;
    if (waiting_)
        waiting_->quit();
}

} // namespace skyhold
