// SPDX-License-Identifier: GPL-3.0-or-later
// The command line of the gateway.
#pragma once

#include "gateway/http_server.h"
#include "gateway/outlets.h"

#include <QStringList>

namespace skyhold {

inline constexpr int kDefaultPort = 11111;
inline constexpr int kDiscoveryPort = 32227;

struct GatewayOptions {
    ListenAddress http{"127.0.0.1", kDefaultPort};
    int discoveryPort = kDiscoveryPort; // 0: none
    bool allowSwitch = false;
    QList<QByteArray> names;         // that the gateway goes by beside its own
    std::optional<double> elevation; // of the site, metres
    OutletOptions outlets;
};

// Reads them, the program's name first. Nothing, with the reason, when they cannot be used.
std::optional<GatewayOptions> parseOptions(const QStringList& arguments, QString& fault);

QString optionsHelp();

} // namespace skyhold
