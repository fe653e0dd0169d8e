// SPDX-License-Identifier: GPL-3.0-or-later
// A connection to an INDI server that is made again whenever it is lost.
#pragma once

#include "sensors/indi_reader.h"

#include <QTcpSocket>
#include <QTimer>

namespace skyhold {

class IndiConnection {
  public:
    // "host:port"; without a port 7624.
    IndiConnection(const QString& server, double retrySeconds);

    void start();
    // Only while connected; else it goes nowhere.
    void send(const QByteArray& xml);
    void setSwitch(const QString& device, const QString& property, const QString& element);
    void setNumber(const QString& device, const QString& property, const QString& element,
                   double value);
    // An empty device asks for all.
    void askFor(const QString& device);
    bool connected() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    bool flushed() const { return socket_.bytesToWrite() == 0; }
    const QString& trouble() const { return trouble_; } // why there is no connection

    std::function<void()> Connected;
    std::function<void()> Lost;
    std::function<void(const IndiMessage&)> Message;

  private:
    void tryAgain();
    void lose(const QString& why);

    QString host_;
    quint16 port_ = 7624;
    QTcpSocket socket_;
    QTimer retry_;
    IndiReader reader_;
    std::int64_t lastBytesMs_ = 0;
    QString trouble_;
};

} // namespace skyhold
