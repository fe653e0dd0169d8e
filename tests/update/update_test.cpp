// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/remote_file.h"
#include "support/eventually.h"
#include "support/test_folder.h"
#include "support/web_server.h"
#include "update/update_check.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

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

const QByteArray kFolder = "/base/kiv/skyhold220/";
const QByteArray kInstructions = "line\n\0\xff\r"_ba;
const QByteArray kFirstLine = "\"Title\",\"Kiv_Skyhold\",-7,120,\"Kiv_Skyhold.exe\"\r\n";

class Update : public testing::Test {
  protected:
    Update() {
        window_.UpdateBaseAddress = server_.address() + u"/base"_s;
        update_.Left = -7;
        update_.Top = 120;
        serve("Kiv_SkyholdNews.txt", "Neu: f\xfcr Sie");
        serve("Kiv_Skyhold.txt", "2.31.000\r\n");
        serve("Kiv_SkyholdUpdater.txt", kInstructions);
    }

    void serve(const QByteArray& name, const QByteArray& body) {
        server_.answers[kFolder + name] = WebServer::ok(body);
    }
    void check() {
        const UpdateSource source{
            .fetch =
                [this](const QUrl& url) {
                    EXPECT_FALSE(update_.CheckButton.Enabled);
                    return file_.fetch(url, [this](TransferState state) {
                        update_.StatusLine.Caption = transferStateText(state);
                    });
                },
            .runningVersion = u"2.30.004"_s,
            .instructionFolder = folder_.path(),
        };
        CheckForUpdate(update_, window_, settings_, source, [this](const QString& news) {
            EXPECT_TRUE(update_.CheckButton.Enabled);
            EXPECT_TRUE(update_.DownloadFrame.Visible);
            shown_ += news;
        });
        EXPECT_TRUE(update_.CheckButton.Enabled);
    }
    QByteArray written(const QString& name = u"Kiv_Updater.txt"_s) { return folder_.read(name); }
    // As another run of the program finds it.
    QString storedNews() {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(u"Window"_s, u"Kiv_News"_s, u"none"_s);
    }

    const SettingsFolder folder_; // before the store, which is made in it
    SettingsStore settings_{u"Kiv_Skyhold"_s};
    WebServer server_;
    RemoteFile file_;
    UpdateControls update_;
    WindowControls window_;
    QStringList shown_;
};

TEST_F(Update, NewsVersionAndInstructionsAreFetchedAndKept) {
    EXPECT_FALSE(update_.DownloadFrame.Visible);
    check();
    EXPECT_EQ(server_.asked,
              (QList<QByteArray>{kFolder + "Kiv_SkyholdNews.txt", kFolder + "Kiv_Skyhold.txt",
                                 kFolder + "Kiv_SkyholdUpdater.txt"}));
    EXPECT_EQ(update_.Label1.Caption.value(), u"2.30.004"_s);
    EXPECT_EQ(update_.Label2.Caption.value(), u"2.31.000"_s);
    EXPECT_EQ(update_.StatusLine.Caption.value(), u"Sucessful response"_s);
    EXPECT_TRUE(update_.DownloadFrame.Visible);
    EXPECT_EQ(written(), kFirstLine + kInstructions);
    EXPECT_EQ(shown_, QStringList{u"Neu: f\u00fcr Sie"_s});
    EXPECT_EQ(window_.Kiv_News, u"Neu: f\u00fcr Sie"_s);
    EXPECT_EQ(storedNews(), u"Neu: f\u00fcr Sie"_s);

    DiscardNews(window_, settings_);
    EXPECT_EQ(window_.Kiv_News, QString());
    EXPECT_EQ(storedNews(), QString());
}

TEST_F(Update, AfterAFailureNothingHasChanged) {
    folder_.write(u"Kiv_Updater.txt"_s, "before");
    settings_.saveNow(u"Window"_s, u"Kiv_News"_s, u"old news"_s);
    window_.Kiv_News = u"old news"_s;
    const QString base = window_.UpdateBaseAddress;
    const auto failsWith = [&](const QString& status) {
        check();
        EXPECT_EQ(update_.StatusLine.Caption.value(), status);
        EXPECT_EQ(written(), "before"_ba);
        EXPECT_EQ(window_.Kiv_News, u"old news"_s);
        EXPECT_EQ(storedNews(), u"old news"_s);
        EXPECT_EQ(update_.Label2.Caption.value(), QString());
        EXPECT_FALSE(update_.DownloadFrame.Visible);
        EXPECT_EQ(shown_, QStringList());
    };
    for (const QByteArray& name : {kFolder + "Kiv_SkyholdNews.txt", kFolder + "Kiv_Skyhold.txt",
                                   kFolder + "Kiv_SkyholdUpdater.txt"}) {
        const WebServer::Answer good = server_.answers.take(name);
        failsWith(u"Communication error"_s);
        server_.answers[name] = good;
    }
    // A server that answers whatever it is asked with its own page.
    for (const QByteArray& page : {""_ba, " \r\n"_ba, "<html><body>Welcome, guest, log in"_ba,
                                   "2.31\0.000"_ba, "\xff\xfe\x32"_ba}) {
        serve("Kiv_Skyhold.txt", page);
        failsWith(u"The update server gave no version number"_s);
    }
    serve("Kiv_Skyhold.txt", "2.31.000");

    server_.asked.clear();
    window_.UpdateBaseAddress = u" "_s;
    failsWith(u"No update server is set (BaseAddress in section Update of the settings)"_s);
    for (const QString& address : {u"file:///etc"_s, u"updates"_s, u"http://"_s}) {
        window_.UpdateBaseAddress = address;
        failsWith(u"The address of the update server is not valid"_s);
    }
    EXPECT_EQ(server_.asked, QList<QByteArray>());
    window_.UpdateBaseAddress = base + u'/';
    check();
    EXPECT_EQ(written(), kFirstLine + kInstructions);
}

TEST_F(Update, InstructionsThatCannotBeWrittenAreSaidAndNotOffered) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(u"Kiv_Updater.txt/in the way"_s));
    check();
    EXPECT_EQ(update_.StatusLine.Caption.value(),
              u"Cannot write "_s + folder_.filePath(u"Kiv_Updater.txt"_s));
    EXPECT_FALSE(update_.DownloadFrame.Visible);
    EXPECT_EQ(storedNews(), u"none"_s);
    // Nothing half-written stays behind.
    EXPECT_EQ(folder_.names(), (QStringList{u"Kiv"_s, u"Kiv_Updater.txt"_s}));
}

} // namespace
} // namespace skyhold
