#include "conditions/alarms.h"

#include "conditions/safety.h"
#include "conditions/sectors.h"
#include "platform/files.h"

#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kCheckPlayingMs = 500;
constexpr int kRightButton = 2;

const QString kStationAlarm = u"10"_s;
const QString kSensorAlarm = u"20"_s;

struct AlarmFamily {
    char16_t letter;
    Quantity quantity;
};

// The first active alarm wins.
constexpr std::array<AlarmFamily, 8> kPriority{{{u'C', Quantity::Cloud},
                                                {u'R', Quantity::Rain},
                                                {u'W', Quantity::Wind},
                                                {u'G', Quantity::Gust},
                                                {u'P', Quantity::Dew},
                                                {u'H', Quantity::Humidity},
                                                {u'T', Quantity::Temperature},
                                                {u'D', Quantity::Brightness}}};

// One level of one quantity as an alarm.
struct ConditionAlarm {
    AlarmFamily family;
    std::size_t index;

    QString id() const { return QString(QChar(family.letter)) + QString::number(index); }
    std::int32_t level() const { return static_cast<std::int32_t>(index) + 1; }
};

std::optional<ConditionAlarm> conditionAlarm(const QString& id) {
    if (id.size() != 2 || id[1] < u'0' || id[1] > u'2')
        return std::nullopt;
    for (const AlarmFamily& family : kPriority) {
        if (id[0] == family.letter)
            return ConditionAlarm{family, static_cast<std::size_t>(id[1].digitValue())};
    }
    return std::nullopt;
}

struct Selection {
    AlarmControls& alarms;
    const CurrentReadings& readings;
    const ConditionControls& conditions;
    SafetyState& safety;
    SectorState& sectors;
    std::int64_t nowMs;

    QString sound(const ConditionAlarm& alarm) const {
        return alarms.Alarm[alarm.family.quantity][alarm.index].Tag;
    }

    bool wanted(const ConditionAlarm& alarm) const {
        const Quantity quantity = alarm.family.quantity;
        return conditions.Cond[quantity][alarm.index].checked() &&
               alarms.Alarm[quantity][alarm.index].checked();
    }

    bool levelHolds(const ConditionAlarm& alarm) const {
        switch (alarm.family.quantity) {
        case Quantity::Cloud:
            return CloudLevelActive(alarm.level(), readings, safety, nowMs);
        case Quantity::Wind:
            return WindLevelHolds(alarm.level(), readings, conditions, sectors, nowMs);
        case Quantity::Gust:
            return GustLevelHolds(alarm.level(), readings, conditions, sectors, nowMs);
        default:
            return readings.Condition[alarm.family.quantity] == alarm.level();
        }
    }

    // The alarm that owns the sound keeps it while the plain cloud level stands.
    bool goesOn(const ConditionAlarm& alarm) const {
        const bool stands = alarm.family.quantity == Quantity::Cloud
                                ? readings.Condition[Quantity::Cloud] == alarm.level()
                                : levelHolds(alarm);
        return stands && wanted(alarm);
    }

    std::optional<ConditionAlarm> first() const {
        for (const AlarmFamily& family : kPriority) {
            for (std::size_t index = 0; index < 3; ++index) {
                const ConditionAlarm alarm{family, index};
                // Asked whatever the boxes say: the cloud and sector tests note changes.
                const bool holds = levelHolds(alarm);
                if (holds && wanted(alarm) && !sound(alarm).isEmpty())
                    return alarm;
            }
        }
        return std::nullopt;
    }
};

void sound(const AlarmPlayer& player, CurrentReadings& readings, const QString& id,
           const QString& spec) {
    AlarmStart(player, spec);
    // Owned whether it sounds or not, so that a broken sound is not tried again every cycle.
    readings.AlarmSoundId = id;
    ShowPlayingAlarm(player.controls, id);
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
    const qsizetype lit = id.isEmpty() ? -1 : u"CRWGTPHD12"_s.indexOf(id[0]);
    for (std::size_t i = 0; i < controls.PlayAlarm.size(); ++i)
        controls.PlayAlarm[i] = static_cast<qsizetype>(i) == lit;
}

void SetAlarmIcons(CheckBox& box, bool hasSound) {
    box.HasIcons = hasSound;
}

void SelectConditionAlarm(const AlarmPlayer& player, CurrentReadings& readings,
                          const ConditionControls& conditions, SafetyState& safety,
                          SectorState& sectors, std::int64_t nowMs) {
    if (readings.StationDataOld || readings.SensorError)
        return; // their alarms own the sound
    if (!readings.UnsafeFlag) {
        releaseAlarm(player, readings);
        return;
    }

    const Selection selection{player.controls, readings, conditions, safety, sectors, nowMs};
    const std::optional<ConditionAlarm> owner = conditionAlarm(readings.AlarmSoundId);
    if (owner && !selection.goesOn(*owner))
        readings.AlarmSoundId.clear();

    const std::optional<ConditionAlarm> candidate = selection.first();
    if (candidate && candidate->id() != readings.AlarmSoundId &&
        !player.controls.SuspendSoundAlarm.checked())
        sound(player, readings, candidate->id(), selection.sound(*candidate));
    else if (readings.AlarmSoundId.isEmpty())
        AlarmStop(player);
}

void StationDataAlarm(StationFileState state, const AlarmPlayer& player, CurrentReadings& readings,
                      const std::function<void()>& stopSensorAlarm) {
    const CheckBox& box = player.controls.AlarmWS;
    const bool owned = readings.AlarmSoundId == kStationAlarm;
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
    const CheckBox& box = player.controls.AlarmNB;
    const bool owned = readings.AlarmSoundId == kSensorAlarm;
    if (!failed && owned) {
        releaseAlarm(player, readings);
    } else if (failed && !owned && box.checked() && !box.Tag.value().isEmpty()) {
        stopSensorAlarm();
        sound(player, readings, kSensorAlarm, box.Tag);
    }
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
