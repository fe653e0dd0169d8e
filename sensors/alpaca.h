// SPDX-License-Identifier: GPL-3.0-or-later
// Calls of an Alpaca device: ASCOM's interfaces over HTTP, with answers in JSON.
#pragma once

#include "sensors/settings.h"
#include "sensors/source_readings.h"

#include <QJsonValue>
#include <QNetworkAccessManager>
#include <QTimer>
#include <QUrlQuery>

namespace skyhold {

class AlpacaDevice {
  public:
    // `url` of the server, "http://host:port"; `device` as "observingconditions/0".
    AlpacaDevice(const QString& url, const QString& device, double timeoutSeconds);

    struct Answer {
        QJsonValue value;
        QString fault; // empty: the value is good
    };
    using Take = std::function<void(const Answer&)>;
    // A member is asked for in lower case. `take` is called once, unless the device goes first.
    void get(const QString& member, const QUrlQuery& arguments, Take take);
    void put(const QString& member, const QUrlQuery& arguments, Take take);

  private:
    QNetworkRequest request(const QString& member, const QUrlQuery& arguments) const;
    QUrlQuery identified(QUrlQuery arguments);
    void await(QNetworkReply* reply, Take take);

    QNetworkAccessManager network_;
    QString base_;
    int timeoutMs_;
    int transaction_ = 0;
};

// Asks an ObservingConditions device, a SafetyMonitor or any other for the members that are wanted,
// "SkyTemperature" or "IsSafe". A value is as old as the device says it is.
class AlpacaSource : public ValueSource {
  public:
    AlpacaSource(const SourceSettings& settings, SourceReadings& readings);
    void start() override;

  private:
    void ask();
    void askFor(const QString& member, std::int64_t at, std::int64_t ageMs);
    void finishOne(const QString& fault);

    SourceReadings& readings_;
    AlpacaDevice device_;
    QTimer timer_;
    bool observing_;
    int awaited_ = 0;
    QString fault_; // of this round
    bool connected_ = false;
    QSet<QString> ageless_; // members whose age the device does not know
};

} // namespace skyhold
