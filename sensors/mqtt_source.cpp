#include "sensors/mqtt_source.h"

#include "sensors/payload.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mosquitto.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kKeepAliveSeconds = 20;
constexpr int kLoopMs = 200;

void onConnect(mosquitto*, void* source, int code) {
    static_cast<MqttSource*>(source)->connected(code);
}

void onDisconnect(mosquitto*, void* source, int) {
    static_cast<MqttSource*>(source)->disconnected();
}

void onMessage(mosquitto*, void* source, const mosquitto_message* message) {
    if (message->retain || message->payloadlen > kPayloadLimit)
        return;
    static_cast<MqttSource*>(source)->arrived(
        QString::fromUtf8(message->topic),
        QByteArray(static_cast<const char*>(message->payload), message->payloadlen));
}

QByteArray orNull(const QString& text) {
    return text.isEmpty() ? QByteArray() : text.toUtf8();
}

const char* pointer(const QByteArray& bytes) {
    return bytes.isNull() ? nullptr : bytes.constData();
}

} // namespace

MqttSource::MqttSource(const SourceSettings& settings, SourceReadings& readings)
    : settings_(settings)
    , readings_(readings)
    , here_(std::make_shared<QObject>()) {
    mosquitto_lib_init();
}

MqttSource::~MqttSource() {
    {
        const QMutexLocker lock(&mutex_);
        ending_ = true;
        wake_.wakeAll();
    }
    if (thread_.joinable())
        thread_.join();
    here_.reset();
    mosquitto_destroy(client_);
    mosquitto_lib_cleanup();
}

void MqttSource::start() {
    for (const QString& address : readings_.wanted())
        topics_.append(address.section(u'#', 0, 0));
    topics_.removeDuplicates();
    client_ = mosquitto_new(nullptr, true, this);
    if (!client_ || !prepare()) {
        readings_.setTrouble(u"the broker's settings cannot be used"_s);
        return;
    }
    mosquitto_connect_callback_set(client_, onConnect);
    mosquitto_disconnect_callback_set(client_, onDisconnect);
    mosquitto_message_callback_set(client_, onMessage);
    thread_ = std::thread([this] { serve(); });
}

bool MqttSource::prepare() {
    const QByteArray user = orNull(settings_.text(u"user"_s));
    const QByteArray password = orNull(settings_.text(u"password"_s));
    if (!user.isNull() &&
        mosquitto_username_pw_set(client_, pointer(user), pointer(password)) != MOSQ_ERR_SUCCESS)
        return false;
    if (!settings_.yes(u"tls"_s))
        return true;
    const QByteArray file = orNull(settings_.text(u"ca"_s));
    const char* folder = file.isNull() ? "/etc/ssl/certs" : nullptr;
    return mosquitto_tls_set(client_, pointer(file), folder, nullptr, nullptr, nullptr) ==
           MOSQ_ERR_SUCCESS;
}

// Of the thread: looking up a name and connecting may take long.
void MqttSource::serve() {
    const QString broker = settings_.text(u"broker"_s);
    const QByteArray host = broker.section(u':', 0, 0).toUtf8();
    const int given = broker.section(u':', 1).toInt();
    const int port = given > 0 ? given : settings_.yes(u"tls"_s) ? 8883 : 1883;
    const auto pauseMs = static_cast<qint64>(std::max(settings_.number(u"retry"_s), 0.1) * 1000);
    const auto ending = [this] {
        const QMutexLocker lock(&mutex_);
        return ending_;
    };
    while (!ending()) {
        int result = mosquitto_connect_async(client_, host.constData(), port, kKeepAliveSeconds);
        while (result == MOSQ_ERR_SUCCESS && !ending())
            result = mosquitto_loop(client_, kLoopMs, 1);
        if (ending())
            break;
        postTrouble(u"no broker at %1: %2"_s.arg(
            broker, result == MOSQ_ERR_ERRNO ? QString::fromLocal8Bit(std::strerror(errno))
                                             : QString::fromUtf8(mosquitto_strerror(result))));
        const QMutexLocker lock(&mutex_);
        if (!ending_)
            wake_.wait(&mutex_, QDeadlineTimer(pauseMs));
    }
    mosquitto_disconnect(client_);
}

void MqttSource::connected(int code) {
    if (code != 0) {
        postTrouble(u"the broker refuses: "_s + QString::fromUtf8(mosquitto_connack_string(code)));
        return;
    }
    for (const QString& topic : std::as_const(topics_))
        mosquitto_subscribe(client_, nullptr, topic.toUtf8().constData(), 1);
    QMetaObject::invokeMethod(here_.get(), [this] { readings_.setTrouble({}); });
}

void MqttSource::disconnected() {
    QMetaObject::invokeMethod(here_.get(), [this] { readings_.dropAll(); });
}

void MqttSource::arrived(const QString& topic, const QByteArray& payload) {
    const std::int64_t at = bootMs();
    QMetaObject::invokeMethod(here_.get(),
                              [this, topic, payload, at] { take(topic, payload, at); });
}

void MqttSource::postTrouble(const QString& why) {
    QMetaObject::invokeMethod(here_.get(), [this, why] { lose(why); });
}

void MqttSource::lose(const QString& why) {
    readings_.dropAll();
    readings_.setTrouble(why);
}

void MqttSource::take(const QString& topic, const QByteArray& payload, std::int64_t atMs) {
    QString fault;
    const auto values = payloadValues(payload, fault);
    const QSet<QString> wanted = readings_.wanted();
    for (const QString& address : wanted) {
        if (address.section(u'#', 0, 0) != topic)
            continue;
        const QString key = address.contains(u'#') ? address.section(u'#', 1) : u"value"_s;
        // Some devices spread their values over several messages.
        if (!values)
            readings_.drop(address);
        else if (const auto value = values->find(key); value != values->end())
            readings_.take(address, *value, atMs);
    }
    readings_.setTrouble(fault.isEmpty() ? QString() : topic + u": "_s + fault);
}

} // namespace skyhold
