// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/options.h"

#include <QCommandLineParser>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr double kLowest = -500; // metres
constexpr double kHighest = 9000;

void addOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        u"Brings what Kiv_Skyhold says to the network: a web page, Alpaca, metrics, MQTT, hooks. "
        u"It "
        u"says unsafe whenever it does not hear the monitor. docs/network.md says how to use it."_s);
    parser.addOptions({
        {u"http"_s, u"Where to listen (127.0.0.1:11111, for this computer alone)."_s,
         u"ADDRESS:PORT"_s},
        {u"discovery-port"_s,
         u"The UDP port on which Alpaca clients look for devices (32227); 0: "
         u"they do not find it."_s,
         u"N"_s},
        {u"allow-switch"_s, u"Let Alpaca clients move the roof's switch: closed always, open only "
                            u"while it is safe."_s},
        {u"name"_s, u"A further name that it is asked for by, as of a reverse proxy."_s, u"NAME"_s},
        {u"elevation"_s, u"Of the site, for the pressure there."_s, u"METRES"_s},
    });
    addOutletOptions(parser);
    parser.addHelpOption();
    parser.addVersionOption();
}

} // namespace

std::optional<GatewayOptions> parseOptions(const QStringList& arguments, QString& fault) {
    QCommandLineParser parser;
    addOptions(parser);
    GatewayOptions options;
    if (!parser.parse(arguments)) {
        fault = parser.errorText();
        return std::nullopt;
    }
    if (!parser.positionalArguments().isEmpty()) {
        fault = u"%1 is no option"_s.arg(parser.positionalArguments().constFirst());
        return std::nullopt;
    }
    if (parser.isSet(u"http"_s)) {
        const auto address = parseListenAddress(parser.value(u"http"_s), fault);
        if (!address)
            return std::nullopt;
        options.http = *address;
    }
    bool sound = true;
    if (parser.isSet(u"discovery-port"_s)) {
        options.discoveryPort = parser.value(u"discovery-port"_s).toInt(&sound);
        if (!sound || options.discoveryPort < 0 || options.discoveryPort > 65535) {
            fault = u"--discovery-port takes a number from 0 to 65535"_s;
            return std::nullopt;
        }
    }
    if (parser.isSet(u"elevation"_s)) {
        const double metres = parser.value(u"elevation"_s).toDouble(&sound);
        if (!sound || !(metres >= kLowest && metres <= kHighest)) {
            fault = u"--elevation takes metres from %1 to %2"_s.arg(kLowest).arg(kHighest);
            return std::nullopt;
        }
        options.elevation = metres;
    }
    for (const QString& name : parser.values(u"name"_s))
        options.names += name.toLatin1();
    options.allowSwitch = parser.isSet(u"allow-switch"_s);
    if (!readOutletOptions(parser, options.outlets, fault))
        return std::nullopt;
    return options;
}

QString optionsHelp() {
    QCommandLineParser parser;
    addOptions(parser);
    return parser.helpText();
}

} // namespace skyhold
