// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/publish.h"

#include "core/alarms.h"
#include "core/present.h"
#include "core/readings.h"
#include "core/recording.h"
#include "core/remember.h"
#include "core/roof.h"
#include "core/verdict.h"
#include "core/wording.h"
#include "datafiles/ccdap_file.h"
#include "graphs/history.h"
#include "graphs/render.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

SensorLink::Effect effectOf(bool unsafe) {
    return unsafe ? SensorLink::Effect::Other : SensorLink::Effect::Opens;
}

// Each outlet takes the result, and none changes it. The answer is a status code when it failed,
// else empty.
using Outlet = QString (*)(MonitoringCore& core, const CycleResult& result);

QString soundAlarm(MonitoringCore& core, const CycleResult& result) {
    if (!result.judgement.byClient)
        soundConditionAlarm(core, result);
    return {};
}

QString sendVerdict(MonitoringCore& core, const CycleResult& result) {
    const bool unsafe = result.judgement.UnsafeFlag;
    core.sensor.command(u"SetUnSafe"_s, {unsafe}, effectOf(unsafe));
    return {};
}

QString driveSwitch(MonitoringCore& core, const CycleResult& result) {
    CurrentReadings& readings = core.records.readings;
    if (!core.records.session.SwitchControl) {
        readings.SwitchValue =
            core.sensor.readReal(u"SwitchStatus"_s).value_or(readings.SwitchValue);
        return {};
    }
    const bool unsafe = result.judgement.UnsafeFlag;
    readings.SwitchValue = unsafe ? 2 : 1;
    core.sensor.command(u"Kiv_SetSwitch"_s, {readings.SwitchValue}, effectOf(unsafe));
    return {};
}

QString watchRoof(MonitoringCore& core, const CycleResult&) {
    checkRoof(core);
    return {};
}

QString askWhetherDataIsReady(MonitoringCore& core, const CycleResult&) {
    core.records.readings.SensorDataReady = core.sensor.readBoolean(u"DataReady"_s).value_or(false);
    return {};
}

QString storeReadings(MonitoringCore& core, const CycleResult& result) {
    takeReadings(result, core.records.readings);
    return {};
}

QString writeCcdapFile(MonitoringCore& core, const CycleResult&) {
    const Records& records = core.records;
    return WriteCcdapFile(records.ccdap, records.readings, core.clock, core.forms) ? QString()
                                                                                   : u"c51"_s;
}

QString writeDataLine(MonitoringCore& core, const CycleResult&) {
    return recordLine(core) ? QString() : u"d13"_s;
}

QString addGraphPoint(MonitoringCore& core, const CycleResult&) {
    AddReading(core.records.history, core.records.readings, core.records.graphs.GraphNoPoints);
    return {};
}

QString drawGraphs(MonitoringCore& core, const CycleResult&) {
    Records& records = core.records;
    DrawGraphs({records.history, records.conditions, records.graphs}, records.pictures,
               core.renderedGraphs);
    return SaveImages(records.graphs, records.pictures, core.images, core.imageWriter);
}

// The sensor program expects its calls in this order; the records and files come after it, since
// they hold what it answers. The display comes last, below.
constexpr std::array<Outlet, 10> kOutlets{
    soundAlarm,    sendVerdict,    driveSwitch,   watchRoof,     askWhetherDataIsReady,
    storeReadings, writeCcdapFile, writeDataLine, addGraphPoint, drawGraphs};

// A lost data line is shown beside what this cycle has raised already; every other code replaces
// it.
QString withCode(const QString& codes, const QString& code) {
    if (code.isEmpty())
        return codes;
    return code == u"d13" ? (codes + u' ' + code).trimmed() : code;
}

} // namespace

void publish(MonitoringCore& core) {
    CycleResult& result = core.result;
    QString codes = sourceCode(result.observation);
    for (const Outlet outlet : kOutlets)
        codes = withCode(codes, outlet(core, result));
    result.end = momentOf(core.clock);
    present(result, codes, core.forms, core.records);
    rememberCycle(core);
    core.records.session.CyclesDone = core.records.session.CyclesDone + 1;
}

void publishUnsafe(MonitoringCore& core) {
    const CycleResult& result = core.result;
    soundAlarm(core, result);
    sendVerdict(core, result);
    driveSwitch(core, result);
    core.records.display.LblCause.Caption =
        withShownUnits(causeLine(result, core.records.conditions, core.forms));
    showVerdict(core);
}

} // namespace skyhold
