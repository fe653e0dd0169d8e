// SPDX-License-Identifier: GPL-3.0-or-later
// skyhold-gateway: what the monitor says, for the network.
#include "gateway/discovery.h"
#include "gateway/events.h"
#include "gateway/follower.h"
#include "gateway/gateway_log.h"
#include "gateway/options.h"
#include "gateway/roof_mover.h"
#include "gateway/routes.h"
#include "history/reader.h"
#include "platform/quit_signals.h"
#include "platform/service_manager.h"

#include <QCoreApplication>

#include <cstdio>
#include <sys/resource.h>

namespace skyhold {

namespace {

constexpr int kUnusable = 2;
constexpr int kSweepMs = 1000;
constexpr int kNiceness = 5; // a flood from the network must not slow the monitor

int refuse(const QString& reason) {
    std::fprintf(stderr, "skyhold-gateway: %s\n", qUtf8Printable(reason));
    return kUnusable;
}

void print(const QByteArray& line) {
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

int serve(GatewayOptions options) {
    const ServiceManager manager; // before any hook is started
    StateBoard board;
    HistoryWorker history(historyPath());
    Site site{.board = board, .hosts = HostCheck(options.names), .alpaca = {}, .history = history};
    site.alpaca.allowSwitch = options.allowSwitch;
    site.alpaca.elevation = options.elevation;
    HttpServer server([&site](const Request& request) { return route(request, site); });
    site.counts = [&server] {
        return server.counts();
    };
    EventFeed events(board, server);
    Outlets outlets(options.outlets, board);
    Follower follower(board, [&events, &outlets] {
        outlets.look();
        events.stateChanged();
    });
    RoofMover roof(follower, board);
    site.alpaca.moveRoof = roof.mover();
    QString fault;
    if (!server.start(options.http, fault))
        return refuse(fault);
    std::optional<Discovery> discovery;
    if (options.discoveryPort > 0)
        discovery.emplace(options.discoveryPort, options.http);
    QTimer sweep;
    QObject::connect(&sweep, &QTimer::timeout, &sweep, [&server] { server.sweep(); });
    sweep.start(kSweepMs);
    onQuitSignal([] { QCoreApplication::quit(); });
    print("Listening on http://" + shownAddress(options.http));
    follower.roundDone = [&manager](const QString& state) {
        manager.roundDone(state);
    };
    manager.ready();
    manager.expectRounds(true);
    return QCoreApplication::exec();
}

int run() {
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        print(optionsHelp().toUtf8());
        return 0;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        print("skyhold-gateway " SKYHOLD_VERSION);
        return 0;
    }
    QString fault;
    const std::optional<GatewayOptions> options = parseOptions(arguments, fault);
    if (!options)
        return refuse(fault);
    ::setpriority(PRIO_PROCESS, 0, kNiceness);
    return serve(*options);
}

} // namespace

} // namespace skyhold

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("skyhold-gateway"));
    return skyhold::run();
}
