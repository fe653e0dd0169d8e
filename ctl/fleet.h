// SPDX-License-Identifier: GPL-3.0-or-later
// Several monitors, by what their gateways publish at one MQTT broker.
#pragma once

#include "ctl/command_line.h"
#include "mqtt/broker.h"

#include <QDateTime>
#include <QJsonArray>

namespace skyhold {

struct FleetSite {
    QString name;
    bool safe = false;
    QString verdict; // "SAFE", "UNSAFE", "UNKNOWN"
    QString cause;   // empty only when it is safe
    std::optional<qint64> ageSeconds;
};

class Fleet {
  public:
    // Topics are PREFIX/SITE/...
    explicit Fleet(QString prefix)
        : prefix_(std::move(prefix)) {}

    QStringList topics() const;
    void take(const MqttMessage& message);

    // All of them, or those of these names, whether or not anything is known of them. A site is
    // safe when its document, its topic "safe" and its availability all say so and the document is
    // no older than it may be; a clock that is ahead hides an age.
    QList<FleetSite> sites(const QStringList& names, const QDateTime& now) const;

  private:
    struct Known {
        QByteArray state;
        QByteArray safe;
        QByteArray availability;
    };
    static FleetSite judged(const QString& name, const Known& known, const QDateTime& now);

    QString prefix_;
    QMap<QString, Known> known_;
};

QString fleetText(const QList<FleetSite>& sites);
QJsonArray fleetJson(const QList<FleetSite>& sites);
// 0 when there are sites and all are safe, else 1.
int fleetStatus(const QList<FleetSite>& sites);

int runFleet(const Command& command);

} // namespace skyhold
