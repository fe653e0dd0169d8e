#include "core/recording.h"

#include "conditions/classification.h"
#include "records/status_lines.h"

namespace skyhold {

namespace {

void report(bool started, SessionControls& session) {
    if (!started)
        SetErrorCodes(session.Statusbar2, QStringLiteral("d13"), kRed);
}

// The sensor program's words of this cycle stand on the display already; while it fails they are
// blanked there, and it is asked.
QString sensorDescription(MonitoringCore& core, Quantity quantity, std::int32_t level) {
    Records& records = core.records;
    if (!records.readings.SensorError)
        return records.display.LCond[quantity].Caption;
    return core.sensor.levelDescription(quantity, level);
}

} // namespace

void RecOption_Click(MonitoringCore& core, int index) {
    report(RecOption_Click(index, core.recorder, core.records.dataFile, core.showMessage),
           core.records.session);
}

void Record_Start(MonitoringCore& core, bool append) {
    report(Record_Start(append, core.recorder, core.records.dataFile), core.records.session);
}

void Record_Stop(MonitoringCore& core) {
    Record_Stop(core.recorder, core.records.dataFile);
}

void WriteUserDataLine(MonitoringCore& core) {
    const Records& records = core.records;
    const DescribeLevel describe = [&core](Quantity quantity, std::int32_t level) {
        return LevelDescription(quantity, level, core.records.conditions,
                                [&core](Quantity sensed, std::int32_t sensedLevel) {
                                    return sensorDescription(core, sensed, sensedLevel);
                                });
    };
    if (WriteUserDataLine(core.recorder, records.dataFile,
                          {records.readings, core.forms, describe}))
        return;
    // Beside the codes that this cycle has raised already, such as that of the other file.
    Label& codes = core.records.session.Statusbar2;
    SetErrorCodes(codes, (codes.Caption.value() + QStringLiteral(" d13")).trimmed(), kRed);
}

} // namespace skyhold
