// SPDX-License-Identifier: GPL-3.0-or-later
// A web server on the loopback address that answers as it is told, also badly.
#pragma once

#include <QHash>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

namespace skyhold {

class WebServer {
  public:
    struct Answer {
        QByteArray bytes;   // header and body, as sent
        bool close = true;  // closes the connection after them
        bool drips = false; // sends a blank every 10 ms
    };
    static Answer ok(const QByteArray& body) {
        return {"HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) +
                "\r\n\r\n" + body};
    }
    static Answer status(const QByteArray& line, const QByteArray& headers = {}) {
        return {"HTTP/1.1 " + line + "\r\n" + headers + "Content-Length: 4\r\n\r\nbody"};
    }

    WebServer() {
        if (!server_.listen(QHostAddress::LocalHost))
            qFatal("no loopback address");
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
    }

    QString address() const {
        return QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort());
    }

    QHash<QByteArray, Answer> answers; // by path; any other path is not found
    QList<QByteArray> asked;           // paths

  private:
    void accept() {
        QTcpSocket* socket = server_.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            request_[socket] += socket->readAll();
            if (!request_[socket].contains("\r\n\r\n"))
                return;
            const QByteArray path = request_.take(socket).split(' ').value(1);
            asked.append(path);
            answer(*socket, answers.value(path, status("404 Not Found")));
        });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, [this, socket] {
            request_.remove(socket);
            socket->deleteLater();
        });
    }

    void answer(QTcpSocket& socket, const Answer& answer) {
        socket.write(answer.bytes);
        if (answer.drips) {
            auto* tap = new QTimer(&socket);
            QObject::connect(tap, &QTimer::timeout, &socket, [&socket] { socket.write(" "); });
            tap->start(10);
        } else if (answer.close) {
            socket.disconnectFromHost();
        }
    }

    QHash<QTcpSocket*, QByteArray> request_; // as far as it has come
    QTcpServer server_;                      // its sockets write to the above until they are gone
};

} // namespace skyhold
