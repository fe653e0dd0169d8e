// SPDX-License-Identifier: GPL-3.0-or-later
// What the cloud and rain sensor says before there is a session, for a person who sets it up.
// Nobody takes control of its program, and a device that has a roof is not even started.
#pragma once

#include "bus/automation_client.h"
#include "ui/widgets/source_now.h"

#include <QDateTime>
#include <QProcess>
#include <QTimer>

#include <functional>

namespace skyhold {

class Clock;

// One look at the program on the bus. `object` is that of the look before, or empty. A simulator is
// started whatever it plays.
SourceNow askSensorProgram(const CreateObject& createObject,
                           std::unique_ptr<DispatchObject>& object, bool simulated,
                           const QDateTime& now);

// What skyhold-sensor --preview printed for one second, in lines.
SourceNow sensorFromPreview(const QStringList& lines);

class SensorWatch : public QObject {
    Q_OBJECT

  public:
    SensorWatch(CreateObject createObject, const Clock& clock, QObject* parent);
    ~SensorWatch() override;

    // Looks at the program on the bus every two seconds.
    void askProgram(bool simulated);
    // Has skyhold-sensor, which is at the path `program`, measure by these settings.
    void measure(const QString& program, const QString& settings);
    void stop();

    std::function<void(const SourceNow&)> onSeen;

  private:
    void ask();
    void takePreview();

    CreateObject createObject_;
    const Clock& clock_;
    std::unique_ptr<DispatchObject> object_;
    bool simulated_ = false;
    QTimer again_;
    QProcess preview_;
    QStringList lines_; // of the second that is being printed
};

} // namespace skyhold
