// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/roof.h"

#include "core/alarms.h"
#include "core/verdict.h"

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

enum AtStop { Leave, Ask, Close }; // as the options of RoofAtStop

bool drivenOpen(const MonitoringCore& core) {
    const Records& records = core.records;
    return records.session.running() && records.session.SwitchControl &&
           records.readings.SwitchValue == kRoofOpen;
}

void closeRoof(MonitoringCore& core) {
    core.sensor.beginRequest();
    core.records.readings.SwitchValue = kRoofClosed;
    core.sensor.command(u"Kiv_SetSwitch"_s, {core.records.readings.SwitchValue});
}

} // namespace

void checkRoof(MonitoringCore& core) {
    const Records& records = core.records;
    const double allowedSeconds = records.conditions.RoofCheck.Value;
    RoofCheck& roof = core.result.roof;
    const bool checked = records.session.SwitchControl && allowedSeconds > 0 &&
                         !core.result.observation.sensor.failed();
    if (!checked) {
        roof = {};
    } else {
        const Moment now = momentOf(core.clock);
        const int told = static_cast<int>(records.readings.SwitchValue);
        const double reads = core.sensor.readReal(u"SwitchStatus"_s).value_or(0);
        const bool differs = reads != told;
        if (!differs || told != roof.told || roof.since.utcMs == 0)
            roof.since = differs ? now : Moment{};
        roof.told = told;
        roof.reads = reads == kRoofOpen ? kRoofOpen : reads == kRoofClosed ? kRoofClosed : 0;
        roof.faulty =
            differs && static_cast<double>(now.ms - roof.since.ms) >= 1000 * allowedSeconds;
    }
    soundRoofAlarm(core, roof.faulty);
}

bool askAboutRoof(MonitoringCore& core) {
    if (!drivenOpen(core) || core.records.conditions.RoofAtStop.Index != Ask)
        return true;
    switch (
        core.showMessage({u"The roof is open, and nothing will close it when the weather turns. "
                          u"Close it first?"_s,
                          MessageStyle::YesNoCancel,
                          {}})) {
    case MessageAnswer::Yes:
        closeRoof(core);
        return true;
    case MessageAnswer::No:
        return true;
    default:
        return false;
    }
}

void closeRoofAtStop(MonitoringCore& core) {
    if (drivenOpen(core) && core.records.conditions.RoofAtStop.Index == Close)
        closeRoof(core);
}

} // namespace skyhold
