#include "gateway/options.h"

#include <QCommandLineParser>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

void addOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        u"Serves the state document of Kiv_Skyhold over HTTP. It says unsafe whenever it does not "
        u"hear the monitor. docs/network.md describes it."_s);
    parser.addOptions({
        {u"http"_s, u"Where to listen (127.0.0.1:11111, for this computer alone)."_s,
         u"ADDRESS:PORT"_s},
        {u"name"_s, u"A further name that it is asked for by, as of a reverse proxy."_s, u"NAME"_s},
    });
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
    for (const QString& name : parser.values(u"name"_s))
        options.names += name.toLatin1();
    return options;
}

QString optionsHelp() {
    QCommandLineParser parser;
    addOptions(parser);
    return parser.helpText();
}

} // namespace skyhold
