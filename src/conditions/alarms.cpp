// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/alarms.h"

#include "platform/files.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kCheckPlayingMs = 500;
constexpr int kRightButton = 2;

// Which of PlayAlarm shows that the alarm plays; none for an empty id.
std::optional<int> indicatorOf(const QString& id) {
    if (id == kStationAlarm)
        return 8;
    if (id == kSensorAlarm)
        return 9;
    if (id == kRoofAlarm)
        return 10;
    const std::optional<ConditionAlarm> alarm = conditionAlarm(id);
    return alarm ? std::optional(rowOf(alarm->quantity).indicator) : std::nullopt;
}

void sound(const AlarmPlayer& player, CurrentReadings& readings, const QString& id,
           const QString& spec) {
    AlarmStart(player, spec);
    // Owned whether it sounds or not, so that a broken sound is not tried again every cycle.
    readings.AlarmSoundId = id;
    ShowPlayingAlarm(player.controls, id);
}

void faultAlarm(bool faulty, const QString& id, const CheckBox& box, const AlarmPlayer& player,
                CurrentReadings& readings, const std::function<void()>& stopSensorAlarm) {
    const bool owned = readings.AlarmSoundId == id;
    if (!faulty && owned) {
        releaseAlarm(player, readings);
    } else if (faulty && !owned && box.checked() && !box.Tag.value().isEmpty()) {
        stopSensorAlarm();
        sound(player, readings, id, box.Tag);
    }
}

} // namespace

SoundSpec parseSound(const QString& spec) {
    const qsizetype bar = spec.lastIndexOf(u'|');
    return bar < 0 ? SoundSpec{spec, false} : SoundSpec{spec.first(bar), true};
}

bool startSound(MediaControl& media, const SoundSpec& sound) {
    if (!isReadableFile(sound.file) || media.send(mediaOpenCommand(sound.file)) != 0)
        return false;
    media.send(sound.repeat ? kMediaPlayRepeat : kMediaPlay);
    return true;
}

void stopSound(MediaControl& media) {
    media.send(kMediaStop);
    media.send(kMediaClose);
}

void AlarmStart(const AlarmPlayer& player, const QString& spec) {
    AlarmStop(player);
    player.controls.SoundFault.Caption = QString();
    const SoundSpec sound = parseSound(spec);
    if (!startSound(player.media, sound)) {
        if (!sound.file.isEmpty())
            reportSilence(player.controls,
                          nativePath(sound.file).section(u'/', -1) + u" cannot be opened"_s);
        return;
    }
    player.TimerPlayer.arm(kCheckPlayingMs);
    player.controls.ButtStopAlarm.Visible = true;
}

void AlarmStop(const AlarmPlayer& player) {
    ShowPlayingAlarm(player.controls, QString());
    stopSound(player.media);
    player.TimerPlayer.disarm();
    player.controls.ButtStopAlarm.Visible = false;
}

void reportSilence(AlarmControls& controls, const QString& reason) {
    controls.SoundFault.Caption = u"No sound: "_s + reason;
}

void releaseAlarm(const AlarmPlayer& player, CurrentReadings& readings) {
    AlarmStop(player);
    readings.AlarmSoundId.clear();
}

void TimerPlayer_Tick(const AlarmPlayer& player) {
    QString mode;
    if (player.media.send(kMediaMode, &mode, 9) == 0 && mode.startsWith(u"playing"))
        return;
    player.TimerPlayer.disarm();
    player.controls.ButtStopAlarm.Visible = false;
}

void ShowPlayingAlarm(AlarmControls& controls, const QString& id) {
    const std::optional<int> lit = indicatorOf(id);
    for (std::size_t i = 0; i < controls.PlayAlarm.size(); ++i)
        controls.PlayAlarm[i] = lit == static_cast<int>(i);
}

void SetAlarmIcons(CheckBox& box, bool hasSound) {
    box.HasIcons = hasSound;
}

void soundChosenAlarm(const AlarmChoice& choice, const AlarmPlayer& player,
                      CurrentReadings& readings) {
    if (choice.ownerEnded)
        readings.AlarmSoundId.clear();
    switch (choice.act) {
    case AlarmAct::Leave:
        break;
    case AlarmAct::Start:
        sound(player, readings, choice.alarm.id(),
              player.controls.Alarm[choice.alarm.quantity][choice.alarm.index].Tag);
        break;
    case AlarmAct::Silence:
        AlarmStop(player);
        break;
    case AlarmAct::Release:
        releaseAlarm(player, readings);
        break;
    }
}

void StationDataAlarm(StationFileState state, const AlarmPlayer& player, CurrentReadings& readings,
                      const std::function<void()>& stopSensorAlarm) {
    const CheckBox& box = player.controls.AlarmWS;
    const bool owned = readings.AlarmSoundId == kStationAlarm;
    if (readings.AlarmSoundId == kRoofAlarm)
        return;
    switch (state) {
    case StationFileState::Missing:
        if (box.checked() && !owned)
            sound(player, readings, kStationAlarm, box.Tag);
        break;
    case StationFileState::Old:
        if (box.checked() && !box.Tag.value().isEmpty() && !owned) {
            stopSensorAlarm();
            sound(player, readings, kStationAlarm, box.Tag);
        }
        break;
    case StationFileState::Unchanged:
        if (owned)
            AlarmStop(player); // the file has not been rewritten: the alarm is not over
        break;
    case StationFileState::Refreshed:
        if (owned)
            releaseAlarm(player, readings);
        break;
    }
}

void SensorFailureAlarm(bool failed, const AlarmPlayer& player, CurrentReadings& readings,
                        const std::function<void()>& stopSensorAlarm) {
    if (readings.AlarmSoundId != kRoofAlarm)
        faultAlarm(failed, kSensorAlarm, player.controls.AlarmNB, player, readings,
                   stopSensorAlarm);
}

void RoofAlarm(bool faulty, const AlarmPlayer& player, CurrentReadings& readings,
               const std::function<void()>& stopSensorAlarm) {
    faultAlarm(faulty, kRoofAlarm, player.controls.AlarmRoof, player, readings, stopSensorAlarm);
}

void SuspendSoundAlarm_Click(const AlarmPlayer& player, CurrentReadings& readings) {
    if (player.controls.SuspendSoundAlarm.checked())
        AlarmStop(player);
    else
        readings.AlarmSoundId.clear();
}

void EditAlarmSound(int button, CheckBox& box, CurrentReadings& readings,
                    const std::function<void(CheckBox&)>& openChooser) {
    if (button == kRightButton) {
        openChooser(box);
        readings.AlarmSoundId.clear();
    }
    if (box.Tag.value().isEmpty())
        box.Value = 0;
}

} // namespace skyhold
