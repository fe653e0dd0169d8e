// SPDX-License-Identifier: GPL-3.0-or-later
#include "mqtt/connection.h"

#include "platform/clock.h"

#include <QElapsedTimer>
#include <QEventLoop>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mosquitto.h>
#include <mqtt_protocol.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kKeepAliveSeconds = 10; // the broker waits half as long again
constexpr int kLoopMs = 200;
constexpr int kBeatMs = 1000;
constexpr std::int64_t kLongestPayload = std::int64_t{256} * 1024;
constexpr std::int64_t kLastedMs = 30'000; // a connection that proved itself
constexpr int kFailure = 128;              // codes from here on are failures

const char* pointer(const QByteArray& bytes) {
    return bytes.isEmpty() ? nullptr : bytes.constData();
}

} // namespace

// What a try to connect finds out, in the thread of the connection.
struct MqttConnection::Session {
    MqttConnection* owner = nullptr;
    std::uint64_t number = 0;
    bool answered = false;
    bool accepted = false;
    int refusal = 0;
    std::int64_t acceptedMs = 0;

    static Session& of(void* session) { return *static_cast<Session*>(session); }

    static void onConnect(mosquitto* client, void* session, int code, int,
                          const mosquitto_property*) {
        Session& self = of(session);
        self.answered = true;
        self.refusal = code;
        if (code != 0)
            return;
        self.accepted = true;
        self.acceptedMs = bootMs();
        for (const QString& topic : std::as_const(self.owner->Topics))
            mosquitto_subscribe(client, nullptr, topic.toUtf8().constData(),
                                self.owner->SubscribeQos);
        self.owner->post([owner = self.owner, number = self.number] {
            owner->outbox_.clear();
            owner->connectedTo_ = number;
            if (owner->Connected)
                owner->Connected();
        });
    }

    static void onMessage(mosquitto*, void* session, const mosquitto_message* message) {
        if (message->payloadlen > kLongestPayload)
            return;
        MqttConnection* owner = of(session).owner;
        MqttMessage copy{
            .topic = QString::fromUtf8(message->topic),
            .payload = QByteArray(static_cast<const char*>(message->payload), message->payloadlen),
            .retain = message->retain};
        owner->post([owner, copy = std::move(copy), at = bootMs()] {
            if (owner->Arrived)
                owner->Arrived(copy, at);
        });
    }

    static void onPublish(mosquitto*, void* session, int, int code, const mosquitto_property*) {
        const Session& self = of(session);
        self.owner->post([owner = self.owner, number = self.number, code] {
            if (owner->connectedTo_ != number)
                return;
            owner->outbox_.acknowledge();
            if (code >= kFailure && owner->Refused)
                owner->Refused(QString::fromUtf8(mosquitto_reason_string(code)));
            owner->send();
        });
    }

    QString refusalText(bool version5) const {
        return u"the broker refuses: "_s +
               QString::fromUtf8(version5 ? mosquitto_reason_string(refusal)
                                          : mosquitto_connack_string(refusal));
    }
};

MqttConnection::MqttConnection(MqttBroker broker)
    : broker_(std::move(broker))
    , here_(std::make_unique<QObject>())
    , beatMs_(bootMs())
    , version5_(broker_.mqtt5) {
    mosquitto_lib_init();
    QObject::connect(&beats_, &QTimer::timeout, here_.get(), [this] { beatMs_ = bootMs(); });
}

MqttConnection::~MqttConnection() {
    {
        const QMutexLocker lock(&mutex_);
        ending_ = true;
        wake_.wakeAll();
    }
    if (thread_.joinable())
        thread_.join();
    here_.reset();
    mosquitto_lib_cleanup();
}

void MqttConnection::start() {
    beatMs_ = bootMs();
    beats_.start(kBeatMs);
    thread_ = std::thread([this] { serve(); });
}

void MqttConnection::post(std::function<void()> work) {
    QMetaObject::invokeMethod(here_.get(), std::move(work));
}

bool MqttConnection::ending() {
    const QMutexLocker lock(&mutex_);
    return ending_;
}

bool MqttConnection::pause(double seconds) {
    const QDeadlineTimer end(static_cast<qint64>(seconds * 1000));
    const QMutexLocker lock(&mutex_);
    while (!ending_ && wake_.wait(&mutex_, end))
        continue;
    return !ending_;
}

bool MqttConnection::prepare(mosquitto* client, QString& fault) const {
    const QByteArray user = broker_.user.toUtf8();
    const QByteArray password = broker_.password.toUtf8();
    fault = u"the broker's settings cannot be used"_s;
    mosquitto_int_option(client, MOSQ_OPT_PROTOCOL_VERSION,
                         version5_ ? MQTT_PROTOCOL_V5 : MQTT_PROTOCOL_V311);
    if (!user.isEmpty() &&
        mosquitto_username_pw_set(client, pointer(user), pointer(password)) != MOSQ_ERR_SUCCESS)
        return false;
    if (broker_.will) {
        const MqttMessage& will = *broker_.will;
        if (mosquitto_will_set(client, will.topic.toUtf8().constData(),
                               static_cast<int>(will.payload.size()), will.payload.constData(), 1,
                               will.retain) != MOSQ_ERR_SUCCESS)
            return false;
    }
    if (!broker_.tls)
        return true;
    const QByteArray file = broker_.caFile.toLocal8Bit();
    const char* folder = file.isEmpty() ? "/etc/ssl/certs" : nullptr;
    fault = u"the certificates of those to trust cannot be used"_s;
    return mosquitto_tls_set(client, pointer(file), folder, nullptr, nullptr, nullptr) ==
           MOSQ_ERR_SUCCESS;
}

// Each try has a client of its own, so that nothing of an earlier connection is sent on a later
// one: an old "safe" would arrive as news.
QString MqttConnection::attempt(bool& lasted) {
    Session session{.owner = this};
    const QByteArray id = broker_.clientId.toUtf8();
    mosquitto* client = mosquitto_new(pointer(id), true, &session);
    QString fault = u"out of memory"_s;
    if (!client || !prepare(client, fault)) {
        mosquitto_destroy(client);
        return fault;
    }
    mosquitto_threaded_set(client, true);
    mosquitto_connect_v5_callback_set(client, Session::onConnect);
    mosquitto_message_callback_set(client, Session::onMessage);
    mosquitto_publish_v5_callback_set(client, Session::onPublish);
    {
        const QMutexLocker lock(&mutex_);
        client_ = client;
        session.number = ++try_;
    }
    const auto hung = [this] {
        return bootMs() - beatMs_ > kHungMs;
    };
    int result = mosquitto_connect_async(client, broker_.host.toUtf8().constData(),
                                         broker_.usedPort(), kKeepAliveSeconds);
    while (result == MOSQ_ERR_SUCCESS && session.refusal == 0 && !ending() && !hung())
        result = mosquitto_loop(client, kLoopMs, 1);
    const int systemError = errno;
    {
        const QMutexLocker lock(&mutex_);
        client_ = nullptr;
    }
    mosquitto_destroy(client);
    lasted = session.accepted && bootMs() - session.acceptedMs > kLastedMs;
    post([this, number = session.number] {
        if (connectedTo_ == number)
            connectedTo_ = 0;
    });
    if (session.refusal != 0) {
        QString text = session.refusalText(version5_);
        if (session.refusal == MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION)
            version5_ = false;
        return text;
    }
    // Some brokers of the older version hang up instead of saying so.
    if (broker_.mqtt5 && !session.answered && result == MOSQ_ERR_CONN_LOST)
        version5_ = !version5_;
    if (result == MOSQ_ERR_SUCCESS)
        return u"this program did not go on"_s;
    return result == MOSQ_ERR_ERRNO ? QString::fromLocal8Bit(std::strerror(systemError))
                                    : QString::fromUtf8(mosquitto_strerror(result));
}

void MqttConnection::serve() {
    double seconds = std::max(broker_.firstPause, 0.1);
    while (!ending()) {
        bool lasted = false;
        const QString why = attempt(lasted);
        if (ending())
            return;
        if (lasted)
            seconds = std::max(broker_.firstPause, 0.1);
        post([this, why] {
            if (Lost)
                Lost(why);
        });
        if (!pause(seconds))
            return;
        seconds = std::min(seconds * 2, std::max(broker_.longestPause, 0.1));
        while (bootMs() - beatMs_ > kHungMs && pause(1))
            continue;
    }
}

void MqttConnection::publish(const MqttMessage& message) {
    if (!connected())
        return;
    outbox_.add(message);
    send();
}

void MqttConnection::send() {
    while (const std::optional<MqttMessage> message = outbox_.next()) {
        mosquitto_property* properties = nullptr;
        const QMutexLocker lock(&mutex_);
        if (!client_ || try_ != connectedTo_)
            return;
        if (version5_ && message->expirySeconds > 0)
            mosquitto_property_add_int32(&properties, MQTT_PROP_MESSAGE_EXPIRY_INTERVAL,
                                         static_cast<std::uint32_t>(message->expirySeconds));
        const int result =
            mosquitto_publish_v5(client_, nullptr, message->topic.toUtf8().constData(),
                                 static_cast<int>(message->payload.size()),
                                 message->payload.constData(), 1, message->retain, properties);
        mosquitto_property_free_all(&properties);
        if (result != MOSQ_ERR_SUCCESS)
            outbox_.acknowledge();
    }
}

bool MqttConnection::flush(int patienceMs) {
    const QDeadlineTimer end(patienceMs);
    while (connected() && !outbox_.empty() && !end.hasExpired()) {
        QEventLoop loop;
        QTimer::singleShot(10, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return connected() && outbox_.empty();
}

} // namespace skyhold
