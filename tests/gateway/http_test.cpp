// SPDX-License-Identifier: GPL-3.0-or-later
#include "state_of.h"

#include "gateway/bounds.h"
#include "gateway/discovery.h"
#include "gateway/options.h"

#include <gtest/gtest.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

} // namespace

TEST(State, IsUnknownOnceTheMonitorIsSilent) {
    StateBoard board;
    EXPECT_EQ(board.look(kHeard).word(), Word::Unknown);
    board.publish(snapshotOf(QJsonDocument(safeDocument()).toJson(), kHeard));
    board.answered(kHeard);
    EXPECT_EQ(board.look(kHeard + kSilenceMs).word(), Word::Safe);
    const View silent = board.look(kHeard + kSilenceMs + 1);
    EXPECT_EQ(silent.word(), Word::Unknown);
    EXPECT_FALSE(silent.document().contains(u"readings"_s));
    EXPECT_TRUE(silent.documentText().contains("\"safe\":false"));
    for (const QByteArray& bad : {QByteArray(), QByteArray("[]"), QByteArray("{\"safe\":tru"),
                                  QByteArray(300'000, ' ') + "{\"safe\":true}"}) {
        board.publish(snapshotOf(bad, kHeard));
        EXPECT_EQ(board.look(kHeard).word(), Word::Unknown);
    }
}

TEST(Form, ReadsEscapes) {
    const auto all = parseForm("a=1&&B=%41+%c3%b6&c&a=2&=x");
    ASSERT_TRUE(all);
    EXPECT_EQ(parameter(*all, "a", false), "1");
    EXPECT_EQ(parameter(*all, "b", true), "A \u00f6");
    EXPECT_EQ(parameter(*all, "b", false), std::nullopt);
    EXPECT_EQ(parameter(*all, "c", false), "");
    for (const char* bad : {"a=%", "a=%4", "%zz=1", "a=%-1"})
        EXPECT_FALSE(parseForm(bad)) << bad;
}

TEST(Site, IsWrittenToOnlyByItsOwnPages) {
    HeardSite heard(safeDocument());
    const auto status = [&](const char* method, const char* origin) {
        const Handling handling = heard.ask({.method = method,
                                             .path = "/api/v1/safetymonitor/0/connected",
                                             .body = "Connected=true",
                                             .host = "localhost:11111",
                                             .origin = origin});
        return std::get<Answer>(handling).status;
    };
    EXPECT_EQ(status("PUT", ""), 200);
    EXPECT_EQ(status("PUT", "http://localhost:11111"), 200);
    EXPECT_EQ(status("PUT", "http://evil.example"), 403);
    EXPECT_EQ(status("PUT", "null"), 403);
    EXPECT_EQ(status("GET", "http://evil.example"), 200); // which it cannot read
    EXPECT_EQ(status("POST", ""), 400);
    EXPECT_EQ(heard.answer("PUT", "/api/status").status, 405);
    EXPECT_EQ(heard.answer("GET", "/../etc/passwd").status, 404);
}

TEST(Bounds, LetAClientAskSoOften) {
    RateLimit rate;
    int allowed = 0;
    for (int i = 0; i < 1000; ++i)
        allowed += rate.allows("10.0.0.1", 1000) ? 1 : 0;
    EXPECT_EQ(allowed, 200);
    EXPECT_TRUE(rate.allows("10.0.0.2", 1000));
    EXPECT_FALSE(rate.allows("10.0.0.1", 1010));
    EXPECT_TRUE(rate.allows("10.0.0.1", 1100));
}

TEST(Options, AreReadOrRefused) {
    QString fault;
    const auto parse = [&](const QStringList& more) {
        fault.clear();
        return parseOptions(QStringList{u"skyhold-gateway"_s} + more, fault);
    };
    const auto usual = parse({});
    ASSERT_TRUE(usual);
    EXPECT_EQ(shownAddress(usual->http), "127.0.0.1:11111");
    EXPECT_TRUE(usual->http.loopback());
    EXPECT_EQ(usual->discoveryPort, 32227);
    EXPECT_FALSE(usual->allowSwitch);
    const auto wide = parse({u"--http"_s, u"[::]:8080"_s, u"--allow-switch"_s});
    ASSERT_TRUE(wide);
    EXPECT_EQ(shownAddress(wide->http), "[::]:8080");
    EXPECT_FALSE(wide->http.loopback());
    const QStringList bad[] = {{u"--http"_s, u"11111"_s},
                               {u"--http"_s, u"localhost:80"_s},
                               {u"--http"_s, u"127.0.0.1:65536"_s},
                               {u"--http"_s, u"127.0.0.1:"_s},
                               {u"--discovery-port"_s, u"x"_s},
                               {u"--elevation"_s, u"nan"_s},
                               {u"--allow"_s},
                               {u"extra"_s}};
    for (const QStringList& arguments : bad) {
        EXPECT_FALSE(parse(arguments)) << qPrintable(arguments.join(u' '));
        EXPECT_FALSE(fault.isEmpty());
    }
}

TEST(Discovery, AnswersTheQuestionAlone) {
    EXPECT_EQ(discoveryAnswer("alpacadiscovery1", 11111), "{\"AlpacaPort\":11111}");
    EXPECT_EQ(discoveryAnswer("alpacadiscovery1 more", 1), "{\"AlpacaPort\":1}");
    for (const char* other : {"", "alpacadiscovery", "Alpacadiscovery1", "x"})
        EXPECT_TRUE(discoveryAnswer(other, 1).isEmpty());
}

} // namespace skyhold
