// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/notices.h"

#include "core/wording.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Between two cycles the panel still shows the last cycle's reason, which is not that of a client.
QString reason(Verdict verdict, const MonitoringCore& core) {
    if (verdict == Verdict::None)
        return u"No monitoring session is running"_s;
    if (core.result.judgement.byClient)
        return u"Decided by "_s + core.records.session.LblControl.Caption.value();
    return core.records.display.LblCause.Caption;
}

// An alarm that has no sound is one all the same; a client's has a sound and no id.
bool alarmBegins(const NoticeState& before, const NoticeState& now) {
    return now.alarm.isEmpty() ? now.sounding && !before.sounding : now.alarm != before.alarm;
}

bool failed(SourceState before, SourceState now) {
    return now != SourceState::Ok && now != before;
}

NoticeUrgency urgencyOf(const NoticeState& before, const NoticeState& now, bool needsHands) {
    const bool closes = before.verdict == Verdict::Safe && now.verdict != Verdict::Safe;
    if (closes || needsHands)
        return NoticeUrgency::Critical;
    return now.verdict == Verdict::Waiting ? NoticeUrgency::Low : NoticeUrgency::Normal;
}

} // namespace

NoticeState noticeState(const MonitoringCore& core) {
    const Records& records = core.records;
    NoticeState state;
    state.sounding = records.alarms.ButtStopAlarm.Visible;
    state.alarm = records.readings.AlarmSoundId;
    // A session that has not judged yet has read nothing either.
    if (!records.session.running() || records.session.verdict == Verdict::None)
        return state;
    state.verdict = records.session.verdict;
    state.station = stationState(core.result.observation.station);
    state.sensor = core.result.observation.sensor.state;
    return state;
}

std::optional<Notice> noticeOf(const NoticeState& before, const NoticeState& now,
                               const MonitoringCore& core) {
    const NoticeControls& controls = core.records.notices;
    const bool verdict = controls.OnVerdict.checked() && now.verdict != before.verdict;
    const bool source = controls.OnSource.checked() &&
                        (failed(before.station, now.station) || failed(before.sensor, now.sensor));
    const bool alarm = controls.OnAlarm.checked() && alarmBegins(before, now);
    if (!verdict && !source && !alarm)
        return std::nullopt;
    QStringList lines{reason(now.verdict, core)};
    if (source) {
        for (const QString& fault : sourceFaults(core.result, core.forms)) {
            if (!lines[0].contains(fault)) // where it counts it is a cause
                lines += fault;
        }
    }
    if (now.sounding || !now.alarm.isEmpty())
        lines += alarmText(now.alarm, core.result, core.records.conditions);
    return Notice{noticeTitle(now.verdict, source), lines.join(u'\n'),
                  urgencyOf(before, now, source || alarm), now.sounding};
}

ChangeNotices::ChangeNotices(MonitoringCore& core)
    : core_(core)
    , last_(noticeState(core)) {
    soon_.setSingleShot(true);
    soon_.setInterval(0);
    soon_.callOnTimeout([this] { look(); });
    SessionControls& session = core.records.session;
    const auto follow = [this](auto& property) {
        return property.addNotifier([this] { soon_.start(); });
    };
    following_ = {follow(session.State), follow(session.verdict), follow(session.CyclesDone),
                  follow(core.records.alarms.ButtStopAlarm.Visible)};
}

ChangeNotices::~ChangeNotices() {
    if (close)
        close();
}

void ChangeNotices::look() {
    const NoticeState before = std::exchange(last_, noticeState(core_));
    if (before == last_)
        return;
    if (seen && seen())
        return;
    const std::optional<Notice> notice = noticeOf(before, last_, core_);
    if (notice && show)
        show(*notice);
}

} // namespace skyhold
