// SPDX-License-Identifier: GPL-3.0-or-later
// Values of the devices of an INDI server.
//
// Only an update is news: a definition comes again whenever any client asks for it, with the values
// of old. Values count while their property's state is Ok. A weather driver sends its parameters at
// every reading, but its status lights only when they change; so the lights are as fresh as the
// parameters.
#pragma once

#include "sensors/indi_connection.h"
#include "sensors/settings.h"
#include "sensors/source_readings.h"

namespace skyhold {

// "Device.PROPERTY.ELEMENT"; the device's name may have points.
struct IndiAddress {
    QString device, property, element;
};
std::optional<IndiAddress> indiAddress(const QString& text);

class IndiSource : public ValueSource {
  public:
    IndiSource(const SourceSettings& settings, SourceReadings& readings);
    void start() override;

    // For the roof: the last text of a switch's element, with its property's state. Empty while the
    // device is gone.
    struct Element {
        QString text, state;
    };
    void follow(const QString& address) { followed_.insert(address); }
    Element element(const QString& address) const { return elements_.value(address); }
    // False when it could not be sent.
    bool setSwitch(const QString& address);
    // All of it has left this program.
    bool flushed() const { return connection_.flushed(); }

  private:
    void take(const IndiMessage& message);
    void takeConnection(const IndiMessage& message);
    void takeValues(const IndiMessage& message);
    void takeWeatherState(const QString& device, bool good);
    void drop(const QString& device, const QString& property);
    void connectDevices();
    void showTrouble();

    SourceReadings& readings_;
    bool connect_;
    double period_;
    IndiConnection connection_;
    QTimer again_; // asks disconnected devices to connect
    QSet<QString> followed_;
    QSet<QString> devices_;      // that anything is wanted of
    QSet<QString> disconnected_; // of these
    QSet<QString> absent_;       // that the server has not named yet
    QHash<QString, Element> elements_;
    std::int64_t lastConnectMs_ = 0;
};

} // namespace skyhold
