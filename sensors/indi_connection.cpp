// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/indi_connection.h"

#include "sensors/source_readings.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// A connection that is silent for so long may have no other end any more. Drivers repeat their
// values every minute or oftener.
constexpr int kSilenceMs = 150'000;
constexpr int kConnectMs = 10'000;

} // namespace

IndiConnection::IndiConnection(const QString& server, double retrySeconds)
    : host_(server.section(u':', 0, 0))
    , reader_([this](const IndiMessage& message) {
        if (Message)
            Message(message);
    }) {
    if (const quint16 port = server.section(u':', 1).toUShort())
        port_ = port;
    retry_.setInterval(static_cast<int>(std::lround(std::max(retrySeconds, 0.1) * 1000)));
    QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] { tryAgain(); });
    QObject::connect(&socket_, &QTcpSocket::connected, &socket_, [this] {
        reader_.reset();
        lastBytesMs_ = bootMs();
        trouble_.clear();
        if (Connected)
            Connected();
    });
    QObject::connect(&socket_, &QTcpSocket::errorOccurred, &socket_,
                     [this] { lose(socket_.errorString()); });
    QObject::connect(&socket_, &QTcpSocket::readyRead, &socket_, [this] {
        lastBytesMs_ = bootMs();
        if (!reader_.read(socket_.readAll()))
            lose(u"what the server sends is not INDI"_s);
    });
    socket_.setReadBufferSize(IndiReader::kMessageLimit);
}

void IndiConnection::start() {
    tryAgain();
    retry_.start();
}

void IndiConnection::tryAgain() {
    const std::int64_t silent = bootMs() - lastBytesMs_;
    if (connected()) {
        if (silent > kSilenceMs)
            lose(u"the server is silent"_s);
        return;
    }
    if (socket_.state() != QAbstractSocket::UnconnectedState) {
        if (silent < kConnectMs)
            return;
        lose(u"the server does not answer"_s);
    }
    lastBytesMs_ = bootMs();
    socket_.connectToHost(host_, port_);
}

void IndiConnection::lose(const QString& why) {
    trouble_ = u"no INDI server at %1:%2: %3"_s.arg(host_).arg(port_).arg(why);
    socket_.abort();
    if (Lost)
        Lost();
}

void IndiConnection::send(const QByteArray& xml) {
    if (connected())
        socket_.write(xml + '\n');
}

void IndiConnection::setSwitch(const QString& device, const QString& property,
                               const QString& element) {
    send(u"<newSwitchVector device=\"%1\" name=\"%2\"><oneSwitch name=\"%3\">On</oneSwitch>"
         "</newSwitchVector>"_s
             .arg(device.toHtmlEscaped(), property.toHtmlEscaped(), element.toHtmlEscaped())
             .toUtf8());
}

void IndiConnection::setNumber(const QString& device, const QString& property,
                               const QString& element, double value) {
    send(u"<newNumberVector device=\"%1\" name=\"%2\"><oneNumber name=\"%3\">%4</oneNumber>"
         "</newNumberVector>"_s
             .arg(device.toHtmlEscaped(), property.toHtmlEscaped(), element.toHtmlEscaped())
             .arg(value)
             .toUtf8());
}

void IndiConnection::askFor(const QString& device) {
    send(device.isEmpty()
             ? "<getProperties version=\"1.7\"/>"
             : u"<getProperties version=\"1.7\" device=\"%1\"/>"_s.arg(device.toHtmlEscaped())
                   .toUtf8());
}

} // namespace skyhold
