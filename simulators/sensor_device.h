// The simulated cloud sensor: what it measures, what state it is in, and what has been sent to it.
#pragma once

#include "platform/clock.h"
#include "simulators/faults.h"
#include "simulators/scenario.h"

#include <QHash>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

namespace skyhold {

struct SensorOptions {
    Scenario scenario = Scenario::Night;
    QDateTime scenarioStart;
    QString version = QStringLiteral("5.20.0001");
    QString role = QStringLiteral("MASTER");
    double readyAfter = 2; // seconds from the start of the device to its first data
};

// The graphs of the sensor program.
enum class SensorGraph { Cloud, Rain, Day, Temp };

class SensorDevice {
  public:
    // `onChange` is given a line for every change that is sent to the device.
    SensorDevice(const Clock& clock, const SensorOptions& options, const Faults& faults,
                 std::function<void(const QString&)> onChange);

    QString version() const;
    QString role() const;

    void start(); // without effect when it runs already
    bool running() const;
    bool dataReady() const;
    bool transferFailed() const;

    // The latest reading; everything 0 while there is none.
    Weather reading() const;
    QDateTime lastReading() const;
    QString heaterStatus() const;
    // In the unit that the device was given last.
    double temperature(double celsius) const;

    // History of a graph as (field, point): field 1 the date, 2 the value, 3 the condition (for
    // the temperature graph: the air and the sky sensor). Point 0 and field 0 are not used.
    QList<QVariantList> history(SensorGraph graph) const;
    int historyFirst() const { return historySize() > 0 ? 1 : 0; }
    int historyLast() const { return historySize(); }

    // What other programs send to it.
    void setTemperatureUnit(const QString& letter);
    QString temperatureUnit() const { return temperatureUnit_; }
    void setSwitchControl(bool byClient);
    bool switchControl() const { return switchControl_; }
    void setSwitch(double value); // 1 opened, 2 closed; anything else is ignored
    double switchStatus() const { return switchStatus_; }
    void setUnsafe(bool unsafe);
    void setLocalControl(bool claimed, const QString& label);
    void stopAlarm();

    // Settings that are kept for other programs and have no effect on the weather, by name.
    QHash<QString, QVariant> settings;

  private:
    double secondsSinceStart() const;
    QDateTime firstReading() const;
    int historySize() const;
    Weather weatherAt(const QDateTime& time) const;

    const Clock& clock_;
    SensorOptions options_;
    const Faults& faults_;
    std::function<void(const QString&)> onChange_;
    QDateTime started_;
    QString temperatureUnit_ = QStringLiteral("C");
    bool switchControl_ = false;
    double switchStatus_ = 2;
    std::optional<bool> unsafe_; // nothing before the first verdict
};

inline constexpr int kSensorReadCycle = 5;  // seconds between readings
inline constexpr int kSensorGraphFreq = 12; // readings for each point of a graph

} // namespace skyhold
