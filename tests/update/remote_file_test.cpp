#include "platform/remote_file.h"

#include "support/web_server.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kLimit = 4096;
constexpr int kPatience = 20'000; // ms that no transfer here comes near

class RemoteFiles : public testing::Test {
  protected:
    std::optional<QByteArray> fetch(const QString& url, const TransferLimits& limits) {
        RemoteFile file(limits);
        states_.clear();
        return file.fetch(QUrl(url), [this](TransferState state) { states_ += int(state); });
    }
    std::optional<QByteArray> fetch(const QString& url) {
        return fetch(url, {.bytes = kLimit, .milliseconds = kPatience});
    }

    WebServer server_;
    QList<int> states_;
};

TEST_F(RemoteFiles, AFileComesWholeWithEveryStateInOrder) {
    QByteArray everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    const QByteArray longest(kLimit, 'x');
    for (const QByteArray& body : {everyByte, longest, QByteArray()}) {
        server_.answers["/file"] = WebServer::ok(body);
        EXPECT_EQ(fetch(server_.address() + u"/file"_s), body);
        EXPECT_EQ(states_, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}));
    }
    // Without a length the end of the connection is the end of the file.
    server_.answers["/file"] = {"HTTP/1.0 200 OK\r\n\r\nto the end"};
    EXPECT_EQ(fetch(server_.address() + u"/file"_s), "to the end"_ba);
    server_.answers["/moved"] = WebServer::status("302 Found", "Location: /file\r\n");
    EXPECT_EQ(fetch(server_.address() + u"/moved"_s), "to the end"_ba);
    EXPECT_EQ(states_, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}));
}

TEST_F(RemoteFiles, WhatIsNotThereWholeIsAnError) {
    const QByteArray cutShort = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n";
    const QHash<QByteArray, WebServer::Answer> bad{
        {"/500", WebServer::status("500 Internal Server Error")},
        {"/204", {"HTTP/1.1 204 No Content\r\n\r\n"}},
        {"/206", WebServer::status("206 Partial Content")},
        {"/silent", {{}}},
        {"/cut-in-header", {"HTTP/1.1 200 OK\r\nContent-Le"}},
        {"/cut-at-body", {cutShort}},
        {"/cut-in-body", {cutShort + "some"}},
        {"/no-http", {"\0\xff\xfe nothing of the kind\r\n\r\n"_ba}},
        {"/too-long", WebServer::ok(QByteArray(kLimit + 1, 'x'))},
        {"/loop", WebServer::status("302 Found", "Location: /loop\r\n")},
        {"/to-file", WebServer::status("302 Found", "Location: file:///etc/hostname\r\n")},
        {"/to-ftp", WebServer::status("302 Found", "Location: ftp://127.0.0.1/a\r\n")},
        {"/to-data", WebServer::status("302 Found", "Location: data:,text\r\n")},
    };
    server_.answers = bad;
    QList<QByteArray> paths = bad.keys();
    paths += "/missing";
    for (const QByteArray& path : paths) {
        EXPECT_FALSE(fetch(server_.address() + QString::fromLatin1(path))) << path.constData();
        EXPECT_TRUE(server_.asked.contains(path)) << path.constData();
        EXPECT_EQ(states_.last(), 11) << path.constData();
        EXPECT_FALSE(states_.contains(8)) << path.constData();
    }
}

TEST_F(RemoteFiles, OnlyWebAddressesAreAsked) {
    QTcpServer closed; // a port that nobody listens at any more
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QString nobody = u"http://127.0.0.1:%1/"_s.arg(closed.serverPort());
    closed.close();
    EXPECT_FALSE(fetch(nobody));
    EXPECT_EQ(states_.first(), 1);
    EXPECT_EQ(states_.last(), 11);
    for (const QString& url :
         {u"file:///etc/hostname"_s, u"ftp://127.0.0.1/a"_s, u"data:,text"_s, u"127.0.0.1"_s,
          u"http:///a"_s, u"http://"_s, u"http://a b/"_s, QString()}) {
        EXPECT_FALSE(fetch(url)) << qPrintable(url);
        EXPECT_EQ(states_, QList<int>{11}) << qPrintable(url);
    }
}

TEST_F(RemoteFiles, AnEndlessFileIsLeftAtTheLimit) {
    server_.answers["/endless"] = {.bytes = "HTTP/1.1 200 OK\r\n\r\n", .endless = true};
    QElapsedTimer took;
    took.start();
    EXPECT_FALSE(fetch(server_.address() + u"/endless"_s));
    EXPECT_EQ(states_.last(), 11);
    EXPECT_LT(took.elapsed(), kPatience);
    // Sockets buffer some more than is read.
    EXPECT_LT(server_.taken, 16 * 1024 * 1024);
}

TEST_F(RemoteFiles, TheTimeIsThatOfTheWholeTransfer) {
    server_.answers["/silence"] = {.bytes = {}, .close = false};
    server_.answers["/unfinished"] = {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nsome",
                                      .close = false};
    server_.answers["/drips"] = {.bytes = "HTTP/1.1 200 OK\r\n\r\n", .drips = true};
    QElapsedTimer took;
    took.start();
    for (const QString& path : {u"/silence"_s, u"/unfinished"_s, u"/drips"_s}) {
        EXPECT_FALSE(fetch(server_.address() + path, {.bytes = kLimit, .milliseconds = 200}))
            << qPrintable(path);
        EXPECT_EQ(states_.last(), 11);
    }
    // Left to itself the dripping alone would take longer.
    EXPECT_LT(took.elapsed(), kPatience);
}

TEST_F(RemoteFiles, OneAtATimeWithEventsServedUntilAborted) {
    server_.answers["/silence"] = {.bytes = {}, .close = false};
    const QUrl url(server_.address() + u"/silence"_s);
    RemoteFile file({.bytes = kLimit, .milliseconds = kPatience});
    bool second = false;
    QElapsedTimer took;
    took.start();
    const auto result = file.fetch(url, [&](TransferState state) {
        states_ += int(state);
        if (state == TransferState::RequestSent)
            QTimer::singleShot(0, [&] {
                second = true;
                EXPECT_FALSE(file.fetch(url, [](TransferState) { ADD_FAILURE(); }));
                file.abort();
            });
    });
    EXPECT_TRUE(second);
    EXPECT_FALSE(result);
    EXPECT_EQ(states_.last(), 11);
    EXPECT_LT(took.elapsed(), kPatience);
    // And then it serves again.
    server_.answers["/file"] = WebServer::ok("text");
    EXPECT_EQ(file.fetch(QUrl(server_.address() + u"/file"_s), [](TransferState) {}), "text"_ba);
}

} // namespace
} // namespace skyhold
