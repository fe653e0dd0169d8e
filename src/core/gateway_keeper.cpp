// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/gateway_keeper.h"

#include "platform/log.h"

#include <QFileInfo>

#include <sys/prctl.h>

#include <algorithm>
#include <csignal>
#include <tuple>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kTypingMs = 1'500;
constexpr int kPatienceMs = 2'000;
constexpr int kSteadyMs = 60'000; // a gateway that has served for so long has recovered
constexpr int kLongestPause = 60;

// What its command line and environment are made of.
auto settingsOf(NetworkControls& network) {
    return std::tie(network.Serve.Value, network.Reach.Index, network.Port.Value,
                    network.AllowSwitch.Value, network.Elevation.Text, network.HostName.Text,
                    network.Broker.Text, network.BrokerUser.Text, network.BrokerPassword.Text,
                    network.BrokerTls.Value, network.BrokerCertificates.Text,
                    network.TopicPrefix.Text, network.Hook.Text);
}

} // namespace

QStringList gatewayArguments(const NetworkControls& network) {
    const QString address = network.Reach.Index == 1 ? u"0.0.0.0"_s : u"127.0.0.1"_s;
    QStringList arguments{u"--http"_s,
                          u"%1:%2"_s.arg(address).arg(static_cast<int>(network.Port.Value))};
    const auto add = [&arguments](const QString& option, const TextBox& box) {
        const QString text = box.Text.value().trimmed();
        if (!text.isEmpty())
            arguments += {option, text};
        return !text.isEmpty();
    };
    if (network.AllowSwitch.checked())
        arguments += u"--allow-switch"_s;
    add(u"--elevation"_s, network.Elevation);
    add(u"--name"_s, network.HostName);
    if (add(u"--mqtt"_s, network.Broker)) {
        add(u"--mqtt-user"_s, network.BrokerUser);
        if (network.BrokerTls.checked()) {
            arguments += u"--mqtt-tls"_s;
            add(u"--mqtt-ca"_s, network.BrokerCertificates);
        }
        add(u"--mqtt-prefix"_s, network.TopicPrefix);
    }
    add(u"--hook"_s, network.Hook);
    return arguments;
}

int gatewayPause(int failures) {
    constexpr int kDoublings = 6;
    return std::min(kLongestPause, 1 << std::clamp(failures - 1, 0, kDoublings));
}

GatewayKeeper::GatewayKeeper(NetworkControls& network, const QString& program)
    : network_(network)
    , program_(program) {
    // It must not keep the port when the monitor is killed.
    process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    changed_.setSingleShot(true);
    changed_.setInterval(kTypingMs);
    again_.setSingleShot(true);
    QObject::connect(&changed_, &QTimer::timeout, &changed_, [this] { apply(); });
    patience_.setSingleShot(true);
    patience_.setInterval(kPatienceMs);
    QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { process_.kill(); });
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { start(); });
    QObject::connect(&process_, &QProcess::readyReadStandardOutput, &again_,
                     [this] { readOutput(); });
    QObject::connect(&process_, &QProcess::readyReadStandardError, &again_,
                     [this] { readErrors(); });
    QObject::connect(&process_, &QProcess::finished, &again_, [this] { ended(); });
    QObject::connect(&process_, &QProcess::errorOccurred, &again_,
                     [this](QProcess::ProcessError error) {
                         if (error != QProcess::FailedToStart)
                             return;
                         lastError_ = QFileInfo::exists(program_) ? u"it cannot be started"_s
                                                                  : u"it is not installed"_s;
                         ended();
                     });
    followSettings();
    apply();
}

GatewayKeeper::~GatewayKeeper() {
    followed_.clear();
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.blockSignals(true);
    process_.terminate();
    if (!process_.waitForFinished(kPatienceMs)) {
        process_.kill();
        process_.waitForFinished(kPatienceMs);
    }
}

void GatewayKeeper::followSettings() {
    std::apply(
        [this](auto&... property) {
            (followed_.emplace_back(property.addNotifier([this] { changed_.start(); })), ...);
        },
        settingsOf(network_));
}

// One that runs is ended first; a gateway that hangs must not hold the window meanwhile.
void GatewayKeeper::apply() {
    again_.stop();
    failures_ = 0;
    if (process_.state() == QProcess::NotRunning) {
        begin();
        return;
    }
    ending_ = true;
    process_.terminate();
    patience_.start();
}

void GatewayKeeper::begin() {
    if (network_.Serve.checked())
        start();
    else
        show(GatewayState::Off, u"Off"_s);
}

void GatewayKeeper::start() {
    lastError_.clear();
    served_.invalidate();
    show(GatewayState::Starting, u"Starting"_s);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"SKYHOLD_MQTT_PASSWORD"_s, network_.BrokerPassword.Text);
    process_.setProcessEnvironment(environment);
    process_.start(program_, gatewayArguments(network_));
}

void GatewayKeeper::ended() {
    patience_.stop();
    if (std::exchange(ending_, false)) {
        begin();
        return;
    }
    readErrors();
    if (process_.exitStatus() == QProcess::CrashExit)
        lastError_ = u"it was killed or has crashed"_s;
    if (served_.isValid() && served_.hasExpired(kSteadyMs))
        failures_ = 0;
    const int pause = gatewayPause(++failures_);
    if (lastError_.isEmpty())
        lastError_ = u"it has ended"_s;
    qCWarning(networkLog, "The gateway does not run: %s.", qUtf8Printable(lastError_));
    show(GatewayState::Failed,
         u"Not running: %1. It is started again in %2 s."_s.arg(lastError_).arg(pause));
    again_.start(pause * 1'000);
}

// Its first line says where it listens.
void GatewayKeeper::readOutput() {
    const QString line = QString::fromUtf8(process_.readAllStandardOutput()).trimmed();
    if (!line.startsWith(u"Listening on "))
        return;
    served_.start();
    show(GatewayState::Serving, line.section(u'\n', 0, 0));
}

// The last line of a gateway that ends is the reason.
void GatewayKeeper::readErrors() {
    const QByteArray said = process_.readAllStandardError();
    for (const QByteArray& line : said.split('\n')) {
        if (line.trimmed().isEmpty())
            continue;
        lastError_ = QString::fromUtf8(line.trimmed().left(300));
        if (lastError_.startsWith(u"skyhold-gateway: "))
            lastError_ = lastError_.section(u": "_s, 1);
        qCInfo(networkLog, "%s", qUtf8Printable(lastError_));
    }
}

void GatewayKeeper::show(GatewayState state, const QString& text) {
    network_.State = state;
    network_.StateText.Caption = text;
}

} // namespace skyhold
