// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/indi_source.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kParameters = u"WEATHER_PARAMETERS"_s;
const QString kStatus = u"WEATHER_STATUS"_s;

QString below(const QString& device, const QString& property) {
    return property.isEmpty() ? device + u'.' : device + u'.' + property + u'.';
}

} // namespace

std::optional<IndiAddress> indiAddress(const QString& text) {
    const IndiAddress address{text.section(u'.', 0, -3), text.section(u'.', -2, -2),
                              text.section(u'.', -1)};
    if (address.device.isEmpty() || address.property.isEmpty() || address.element.isEmpty())
        return std::nullopt;
    return address;
}

IndiSource::IndiSource(const SourceSettings& settings, SourceReadings& readings)
    : readings_(readings)
    , connect_(settings.yes(u"connect"_s))
    , period_(settings.number(u"period"_s))
    , connection_(settings.text(u"server"_s), settings.number(u"retry"_s)) {
    again_.setInterval(
        static_cast<int>(std::lround(std::max(settings.number(u"retry"_s), 0.1) * 1000)));
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { connectDevices(); });
    connection_.Connected = [this] {
        absent_ = devices_;
        for (const QString& device : std::as_const(devices_))
            connection_.askFor(device);
        showTrouble();
    };
    connection_.Lost = [this] {
        elements_.clear();
        disconnected_.clear();
        readings_.dropAll();
        readings_.setTrouble(connection_.trouble());
    };
    connection_.Message = [this](const IndiMessage& message) {
        take(message);
    };
}

void IndiSource::start() {
    for (const QString& text : readings_.wanted() | followed_) {
        if (const std::optional<IndiAddress> address = indiAddress(text))
            devices_.insert(address->device);
    }
    connection_.start();
    again_.start();
}

bool IndiSource::setSwitch(const QString& address) {
    const std::optional<IndiAddress> to = indiAddress(address);
    if (!to || !connection_.connected())
        return false;
    connection_.setSwitch(to->device, to->property, to->element);
    return true;
}

void IndiSource::take(const IndiMessage& message) {
    if (!devices_.contains(message.device))
        return;
    absent_.remove(message.device);
    if (message.kind == IndiMessage::Kind::Delete) {
        drop(message.device, message.property);
        if (message.property.isEmpty()) {
            disconnected_.remove(message.device);
            absent_.insert(message.device);
        }
    } else if (message.property == u"CONNECTION") {
        takeConnection(message);
    } else {
        takeValues(message);
        for (const IndiElement& element : message.elements) {
            // A driver forgets it when it starts again.
            if (period_ > 0 && message.kind == IndiMessage::Kind::Define &&
                message.property == u"WEATHER_UPDATE" && element.name == u"PERIOD" &&
                plainNumber(element.text) != period_)
                connection_.setNumber(message.device, message.property, element.name, period_);
        }
    }
    showTrouble();
}

void IndiSource::takeConnection(const IndiMessage& message) {
    for (const IndiElement& element : message.elements) {
        if (element.name != u"CONNECT")
            continue;
        if (element.text == u"On" && message.state != u"Alert") {
            disconnected_.remove(message.device);
            return;
        }
        drop(message.device, {});
        disconnected_.insert(message.device);
        // Others may ask it to disconnect: no haste beyond the first time.
        if (message.state != u"Busy" && bootMs() - lastConnectMs_ >= again_.interval())
            connectDevices();
    }
}

void IndiSource::connectDevices() {
    if (!connect_)
        return;
    lastConnectMs_ = bootMs();
    for (const QString& device : std::as_const(disconnected_))
        connection_.setSwitch(device, u"CONNECTION"_s, u"CONNECT"_s);
}

void IndiSource::takeValues(const IndiMessage& message) {
    const bool news = message.kind == IndiMessage::Kind::Set;
    const bool lights = message.type == u"Light";
    const std::int64_t now = bootMs();
    const QString prefix = below(message.device, message.property);
    for (const IndiElement& element : message.elements) {
        const QString address = prefix + element.name;
        if (!readings_.wants(address) && !followed_.contains(address))
            continue;
        Element& kept = elements_[address];
        kept.text = element.text;
        if (!message.state.isEmpty())
            kept.state = message.state;
        if (news && (lights || kept.state == u"Ok"))
            readings_.take(address, element.text, now);
    }
    // A message leaves out what has not changed.
    if (message.state.isEmpty())
        return;
    for (auto kept = elements_.begin(); kept != elements_.end(); ++kept) {
        if (!kept.key().startsWith(prefix))
            continue;
        kept->state = message.state;
        if (!lights && message.state != u"Ok")
            readings_.drop(kept.key());
    }
    if (message.property == kParameters && (news || message.state != u"Ok"))
        takeWeatherState(message.device, message.state == u"Ok");
}

void IndiSource::takeWeatherState(const QString& device, bool good) {
    const QString lights = below(device, kStatus);
    const std::int64_t now = bootMs();
    for (auto kept = elements_.cbegin(); kept != elements_.cend(); ++kept) {
        if (!kept.key().startsWith(lights))
            continue;
        if (good)
            readings_.take(kept.key(), kept->text, now);
        else
            readings_.drop(kept.key());
    }
}

void IndiSource::drop(const QString& device, const QString& property) {
    const QString prefix = below(device, property);
    const QList<QString> addresses = elements_.keys();
    for (const QString& address : addresses) {
        if (!address.startsWith(prefix))
            continue;
        readings_.drop(address);
        elements_.remove(address);
    }
}

void IndiSource::showTrouble() {
    const auto names = [](const QSet<QString>& devices) {
        QStringList sorted(devices.begin(), devices.end());
        sorted.sort();
        return sorted.join(u", "_s);
    };
    if (!absent_.isEmpty())
        readings_.setTrouble(u"the INDI server has no device "_s + names(absent_));
    else if (!disconnected_.isEmpty())
        readings_.setTrouble(u"not connected: "_s + names(disconnected_));
    else
        readings_.setTrouble({});
}

} // namespace skyhold
