#include "core/recording.h"

#include "core/wording.h"
#include "records/status_lines.h"

namespace skyhold {

namespace {

void report(bool started, SessionControls& session) {
    if (!started)
        SetErrorCodes(session.Statusbar2, QStringLiteral("d13"), kRed);
}

} // namespace

void chooseRecording(MonitoringCore& core, int index) {
    report(RecOption_Click(index, core.recorder, core.records.dataFile, core.showMessage),
           core.records.session);
}

void startRecording(MonitoringCore& core, bool append) {
    report(Record_Start(append, core.recorder, core.records.dataFile), core.records.session);
}

void stopRecording(MonitoringCore& core) {
    Record_Stop(core.recorder, core.records.dataFile);
}

bool recordLine(MonitoringCore& core) {
    const Records& records = core.records;
    const DescribeLevel describe = [&core](Quantity quantity, std::int32_t) {
        return levelLabel(quantity, core.result, core.records.conditions);
    };
    return WriteUserDataLine(core.recorder, records.dataFile,
                             {records.readings, core.forms, describe});
}

} // namespace skyhold
