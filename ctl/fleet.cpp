// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/fleet.h"

#include "ctl/output.h"
#include "ctl/values.h"
#include "ctl/verdict.h"
#include "mqtt/connection.h"

#include <QEventLoop>
#include <QJsonDocument>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kMostSites = 1000;
constexpr qint64 kClockSlackSeconds = 5; // by which two clocks may differ
constexpr double kLongestInterval = 600; // seconds
constexpr int kConnectMs = 10'000;
constexpr double kShortestWait = 0.2; // seconds
constexpr double kLongestWait = 60;

// Why the document does not count; empty while it does.
QString ageFault(const QJsonObject& document, std::optional<qint64> age) {
    if (!age)
        return u"It does not say how old it is"_s;
    if (*age < -kClockSlackSeconds)
        return u"Its clock is %1 s ahead"_s.arg(-*age);
    const double interval = std::clamp(document[u"interval_s"_s].toDouble(), 0.0, kLongestInterval);
    if (static_cast<double>(*age) > interval * 1.5 + 2)
        return u"Its last word is %1 s old"_s.arg(*age);
    return {};
}

std::optional<double> waitSeconds(const Command& command, QString& fault) {
    if (!command.has(u"wait"_s))
        return 2;
    bool sound = false;
    const double seconds = command.option(u"wait"_s).toDouble(&sound);
    if (sound && seconds >= kShortestWait && seconds <= kLongestWait)
        return seconds;
    fault = u"--wait takes a number of seconds, 0.2 to 60"_s;
    return std::nullopt;
}

std::optional<MqttBroker> brokerOf(const Command& command, QString& fault) {
    MqttBroker broker;
    const QString address = command.has(u"broker"_s) ? command.option(u"broker"_s) : u"localhost"_s;
    if (!readBrokerAddress(address, broker, fault))
        return std::nullopt;
    broker.user = command.option(u"user"_s);
    broker.password = qEnvironmentVariable("SKYHOLD_MQTT_PASSWORD");
    if (command.has(u"password-file"_s) &&
        !readPasswordFile(command.option(u"password-file"_s), broker, fault))
        return std::nullopt;
    broker.caFile = command.option(u"ca"_s);
    broker.tls = command.has(u"tls"_s) || !broker.caFile.isEmpty();
    return broker;
}

// Fills the fleet with what the broker has and what comes meanwhile; false with the reason.
bool listen(const MqttBroker& broker, double seconds, Fleet& fleet, QString& fault) {
    MqttConnection connection(broker);
    QEventLoop loop;
    QTimer end;
    end.setSingleShot(true);
    fault = u"it does not answer"_s;
    QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
    connection.Topics = fleet.topics();
    connection.SubscribeQos = 0; // all that is retained at once, not twenty at a time
    connection.Connected = [&] {
        fault.clear();
        end.start(static_cast<int>(seconds * 1000));
    };
    connection.Lost = [&](const QString& why) {
        fault = why;
        loop.quit();
    };
    connection.Arrived = [&fleet](const MqttMessage& message, std::int64_t) {
        fleet.take(message);
    };
    end.start(kConnectMs);
    connection.start();
    loop.exec();
    if (!fault.isEmpty())
        fault = u"no broker at %1: %2"_s.arg(connection.broker().address(), fault);
    return fault.isEmpty();
}

} // namespace

QStringList Fleet::topics() const {
    return {prefix_ + u"/+/state"_s, prefix_ + u"/+/safe"_s, prefix_ + u"/+/availability"_s};
}

void Fleet::take(const MqttMessage& message) {
    if (!message.topic.startsWith(prefix_ + u'/'))
        return;
    const QStringList parts = message.topic.mid(prefix_.size() + 1).split(u'/');
    if (parts.size() != 2 || (!known_.contains(parts[0]) && known_.size() >= kMostSites))
        return;
    Known& site = known_[parts[0]];
    if (parts[1] == u"state")
        site.state = message.payload;
    else if (parts[1] == u"safe")
        site.safe = message.payload;
    else if (parts[1] == u"availability")
        site.availability = message.payload;
    if (site.state.isEmpty() && site.safe.isEmpty() && site.availability.isEmpty())
        known_.remove(parts[0]); // somebody tidied up
}

FleetSite Fleet::judged(const QString& name, const Known& known, const QDateTime& now) {
    const QJsonObject document = QJsonDocument::fromJson(known.state).object();
    const QDateTime time = QDateTime::fromString(document[u"time"_s].toString(), Qt::ISODate);
    FleetSite site{
        .name = name, .safe = false, .verdict = u"UNKNOWN"_s, .cause = {}, .ageSeconds = {}};
    if (time.isValid())
        site.ageSeconds = time.secsTo(now);
    const StatusVerdict verdict = verdictOf(document);
    const QString old = ageFault(document, site.ageSeconds);
    if (known.availability != "online")
        site.cause = u"Its gateway is gone"_s;
    else if (document.isEmpty())
        site.cause = u"It has published no state for a while"_s;
    else if (verdict != StatusVerdict::Unknown && !old.isEmpty())
        site.cause = old;
    else if (verdict != StatusVerdict::Safe)
        site.cause = causesOf(document).join(u"; "_s);
    else if (known.safe != "ON")
        site.cause = u"Its topic \"safe\" is not ON"_s;
    site.safe = site.cause.isEmpty();
    if (site.safe)
        site.verdict = u"SAFE"_s;
    else if (verdict == StatusVerdict::Unsafe && old.isEmpty() && known.availability == "online")
        site.verdict = u"UNSAFE"_s;
    return site;
}

QList<FleetSite> Fleet::sites(const QStringList& names, const QDateTime& now) const {
    QList<FleetSite> all;
    for (const QString& name : names.isEmpty() ? QStringList(known_.keys()) : names) {
        const auto known = known_.constFind(name);
        if (known != known_.constEnd())
            all += judged(name, *known, now);
        else
            all += FleetSite{.name = name,
                             .safe = false,
                             .verdict = u"UNKNOWN"_s,
                             .cause = u"Nothing is published for it"_s,
                             .ageSeconds = {}};
    }
    return all;
}

QString fleetText(const QList<FleetSite>& sites) {
    qsizetype width = 0;
    for (const FleetSite& site : sites)
        width = std::max(width, plainLine(site.name).size());
    QString text;
    for (const FleetSite& site : sites) {
        const QString age = site.ageSeconds ? u"%1 s"_s.arg(*site.ageSeconds) : u"–"_s;
        const QString line =
            QStringList{plainLine(site.name).leftJustified(width), site.verdict.leftJustified(7),
                        age.rightJustified(7), plainLine(site.cause)}
                .join(u"  "_s);
        text += line.trimmed() + u'\n';
    }
    return text;
}

QJsonArray fleetJson(const QList<FleetSite>& sites) {
    QJsonArray all;
    for (const FleetSite& site : sites)
        all += QJsonObject{{u"site"_s, site.name},
                           {u"safe"_s, site.safe},
                           {u"verdict"_s, site.verdict.toLower()},
                           {u"cause"_s, site.cause},
                           {u"age_s"_s, site.ageSeconds ? QJsonValue(*site.ageSeconds)
                                                        : QJsonValue(QJsonValue::Null)}};
    return all;
}

int fleetStatus(const QList<FleetSite>& sites) {
    const bool safe =
        !sites.isEmpty() &&
        std::all_of(sites.begin(), sites.end(), [](const FleetSite& site) { return site.safe; });
    return safe ? 0 : 1;
}

int runFleet(const Command& command) {
    QString fault;
    const QString prefix = command.has(u"prefix"_s) ? command.option(u"prefix"_s) : u"skyhold"_s;
    const std::optional<MqttBroker> broker = brokerOf(command, fault);
    const std::optional<double> seconds = waitSeconds(command, fault);
    if (!isTopic(prefix))
        fault = u"--prefix takes a topic, as skyhold"_s;
    Fleet fleet(prefix);
    if (!fault.isEmpty() || !listen(*broker, *seconds, fleet, fault)) {
        printFault(fault);
        return kStatusFailed;
    }
    const QList<FleetSite> sites = fleet.sites(command.arguments, QDateTime::currentDateTimeUtc());
    if (command.json)
        writeLine(fleetJson(sites));
    else if (!sites.isEmpty())
        write(fleetText(sites));
    if (sites.isEmpty())
        printFault(u"no site publishes at %1 below %2"_s.arg(broker->address(), prefix));
    return fleetStatus(sites);
}

} // namespace skyhold
