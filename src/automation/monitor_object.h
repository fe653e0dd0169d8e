// SPDX-License-Identifier: GPL-3.0-or-later
// The state document on the bus: object /Kiv_Skyhold/Monitor, interface Kiv.Skyhold.Monitor1.
#pragma once

#include "core/monitoring_core.h"

#include <QDBusConnection>
#include <QObject>

namespace skyhold {

// Reading it attaches no client. A document is made for each signal and each read;
// PropertiesChanged is not sent.
class MonitorObject : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "Kiv.Skyhold.Monitor1")
    Q_PROPERTY(QString State READ state)
    Q_PROPERTY(uint Version READ version)

  public:
    MonitorObject(const QDBusConnection& bus, MonitoringCore& core);
    ~MonitorObject() override;

    QString state() const;
    uint version() const { return 1; }

  Q_SIGNALS:
    void CycleDone(const QString& document);    // after each cycle
    void StateChanged(const QString& document); // session or verdict, between cycles

  private:
    QDBusConnection bus_;
    MonitoringCore& core_;
    QPropertyNotifier cycles_;
};

} // namespace skyhold
