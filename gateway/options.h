// The command line of the gateway.
#pragma once

#include "gateway/http_server.h"

#include <QStringList>

namespace skyhold {

inline constexpr int kDefaultPort = 11111;

struct GatewayOptions {
    ListenAddress http{"127.0.0.1", kDefaultPort};
    QList<QByteArray> names; // by which it is asked for beside its own
};

// Reads them, the program's name first. Nothing, with the reason, when they cannot be used.
std::optional<GatewayOptions> parseOptions(const QStringList& arguments, QString& fault);

QString optionsHelp();

} // namespace skyhold
