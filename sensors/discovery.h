// SPDX-License-Identifier: GPL-3.0-or-later
// Finding devices.
#pragma once

#include "sensors/indi_reader.h"

#include <QMap>
#include <QString>

#include <optional>

namespace skyhold {

struct FoundValue {
    QString address; // "Device.PROPERTY.ELEMENT"
    QString label, text;
};

struct FoundDevice {
    QString name;
    bool connected = false;
    std::vector<FoundValue> values; // numbers and lights
};

// The devices of an INDI server, as it names them within `seconds`. Nothing, with the reason, when
// there is no such server. A device has its values only when it is connected; the one of the name
// `connect` is asked to. Serves events meanwhile.
std::optional<std::vector<FoundDevice>>
findIndiDevices(const QString& server, double seconds, QString& fault, const QString& connect = {});

struct FoundAlpaca {
    QString url;    // "http://192.168.1.7:11111"
    QString device; // "observingconditions/0"
    QString name;
};

// The devices of all Alpaca servers that answer on this network within `seconds`.
std::vector<FoundAlpaca> findAlpacaDevices(double seconds);

// Prints both; the exit status.
int listDevices(const QString& indiServer, double seconds);

} // namespace skyhold
