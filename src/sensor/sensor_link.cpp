// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/sensor_link.h"

#include "platform/text_forms.h"

#include <algorithm>
#include <utility>

namespace skyhold {

namespace {

const QString kProgramId = QStringLiteral("Kiv_Nubilo.Nubilo");
constexpr double kMinimumVersion = 5.2;

// All calls of one read cycle together, creating the object included, take less than five seconds;
// a sensor program that answers slowly must not hold the window, and what it could not answer in
// this time counts as failed.
constexpr CallTime kCycleTime{.calls = 2500, .commands = 1500};

// A session start serves events between its calls: each has the full time of a call.
constexpr CallTime kStartCallTime{.calls = kCallTimeoutMs, .commands = kCallTimeoutMs};
constexpr int kHoldMs = 500;   // the longest that a start goes on without serving events
constexpr int kTakeUpMs = 250; // between looks for a program that has yet to answer

} // namespace

SensorLink::SensorLink(CreateObject createObject, Clock& clock)
    : createObject_(std::move(createObject))
    , clock_(clock) {}

bool SensorLink::OpenSensor(const SensorLinkRecords& records, const ShowMessage& showMessage) {
    held_.start();
    wanted_ = opening_ = true;
    const bool answered = awaitTakeUp(records, showMessage) && waitForData(records, showMessage);
    opening_ = dataAwaited_ = false;
    if (!accepted_)
        letGo();
    // A sensor program that is slow holds the window again in the first cycle.
    serveEvents();
    bool& ready = records.readings.SensorDataReady;
    ready = answered && object_;
    return ready;
}

// A program that is not there, and that the bus cannot start, ends the start at once. One that is
// there has NBTimeout to answer, the time of any call at least; should it go meanwhile, the bus may
// start it once more.
bool SensorLink::awaitTakeUp(const SensorLinkRecords& records, const ShowMessage& showMessage) {
    const double limit =
        std::max(records.session.NBTimeout.Value * 1000, kCallTimeoutMs * clock_.scale());
    std::int64_t begun = clock_.MsClock();
    bool there = false;
    bool startedByBus = false;
    while (wanted_) {
        const Progress progress = takeUp(records, showMessage);
        if (progress == Progress::Done)
            return wanted_;
        if (progress == Progress::Refused ||
            (progress == Progress::Absent && (!there || startedByBus)))
            return false;
        there = there || progress == Progress::Awaited;
        startedByBus = startedByBus || progress == Progress::Starting;
        if (progress == Progress::Starting)
            begun = clock_.MsClock();
        else if (static_cast<double>(clock_.MsClock() - begun) > limit)
            return false;
        clock_.waitServingEvents(kTakeUpMs);
        held_.start();
    }
    return false;
}

// Makes up for what the link lacks.
SensorLink::Progress SensorLink::takeUp(const SensorLinkRecords& records,
                                        const ShowMessage& showMessage) {
    if (object_ && object_->state() == ObjectState::Gone)
        letGo();
    if (!object_) {
        const Progress progress = create();
        if (progress != Progress::Done)
            return progress;
    }
    if (!accepted_) {
        if (!beginStartCall())
            return Progress::Awaited;
        const Progress progress = CheckSensorVersion(showMessage);
        if (progress == Progress::Refused)
            letGo();
        if (progress != Progress::Done)
            return progress;
        prepare(records);
    } else if (!roleSettled_ && beginStartCall()) {
        const bool failed = callFailed_;
        settleRole(records);
        callFailed_ = failed; // a program without a role can be read all the same
    }
    return Progress::Done;
}

SensorLink::Progress SensorLink::create() {
    if (!awaited_ || awaited_->state() == ObjectState::Gone)
        awaited_ = createObject_(kProgramId);
    if (!awaited_)
        return Progress::Absent;
    switch (awaited_->state()) {
    case ObjectState::Starting:
        return Progress::Starting;
    case ObjectState::Creating:
    case ObjectState::Gone:
        return Progress::Awaited;
    default:
        object_ = std::move(awaited_);
        if (!opening_)
            object_->beginCalls(kCycleTime);
        return Progress::Done;
    }
}

void SensorLink::serveEvents() {
    if (held_.elapsed() < kHoldMs)
        return;
    clock_.waitServingEvents(0);
    held_.start();
}

// In a cycle no events are served, and all calls share its time. False when a stop has come.
bool SensorLink::beginStartCall() {
    if (opening_) {
        serveEvents();
        if (object_)
            object_->beginCalls(kStartCallTime);
    }
    return object_ != nullptr;
}

void SensorLink::prepare(const SensorLinkRecords& records) {
    dataAwaited_ = true;
    if (!beginStartCall())
        return;
    settleRole(records);
    if (!beginStartCall())
        return;
    sendCommand(QStringLiteral("Kiv_LocalControl"), kMethod,
                {true, QStringLiteral("Kiv_Skyhold has control")});
    if (!beginStartCall())
        return;
    sendCommand(QStringLiteral("Device_Start"), kMethod, {});
}

SensorLink::Progress SensorLink::CheckSensorVersion(const ShowMessage& showMessage) {
    const std::optional<QString> version = readText(QStringLiteral("Version"));
    if (!version && object_ && object_->state() != ObjectState::Ready)
        return Progress::Awaited;
    if (!version || version->size() < 4)
        return Progress::Refused;
    // The last four characters are the build.
    accepted_ = leadingNumber(QStringView(*version).chopped(4)) >= kMinimumVersion;
    if (accepted_)
        return Progress::Done;
    if (showMessage)
        showMessage(
            {QStringLiteral("Version of Kiv_Nubilo must be equal or greater than 5.2x"), {}, {}});
    return Progress::Refused;
}

// A role that cannot be read does not count as master: the switch is left alone until it can be
// read. What the user chose for a master stays chosen, for it may well be one.
void SensorLink::settleRole(const SensorLinkRecords& records) {
    const std::optional<QString> role = readText(QStringLiteral("Kiv_DeviceRole"));
    roleSettled_ = role.has_value();
    const bool master = role == QStringLiteral("MASTER");
    if (master) {
        if (!beginStartCall())
            return;
        sendCommand(QStringLiteral("Kiv_DeviceSwitchCtrl"), kPropertyPut, {true});
        Disp_SwitchLabels(records.session, records.display);
    } else {
        if (role)
            records.session.SWRole.choose(1);
        records.display.LblSwitch.Visible = false;
        records.display.LValSwitch.Visible = false;
        records.session.SwitchControl = false;
    }
    // A master sounds its own alarm when its data is old.
    records.alarms.AlarmNB.Visible = !master;
    records.conditions.NBDataOldUnsafe.Visible = !master;
    records.alarms.TimeoutAlarmCaption.Caption =
        master ? QString() : QStringLiteral("Timeout Alarm");
}

bool SensorLink::waitForData(const SensorLinkRecords& records, const ShowMessage& showMessage) {
    const std::int64_t begun = clock_.MsClock();
    bool refused = false;
    const auto ready = [&] {
        const Progress progress = takeUp(records, showMessage);
        refused = progress == Progress::Refused;
        return progress == Progress::Done && beginStartCall() &&
               readBoolean(QStringLiteral("DataReady")).value_or(false);
    };
    while (wanted_ && !refused) {
        const double limit = records.session.NBTimeout.Value * 1000;
        const bool inTime = static_cast<double>(clock_.MsClock() - begun) <= limit;
        if (!inTime || ready() || limit <= 0)
            break;
        clock_.waitServingEvents(1000);
        held_.start();
    }
    return wanted_ && !refused && ready();
}

void SensorLink::CloseSensor(CurrentReadings& readings) {
    wanted_ = false;
    dataAwaited_ = false;
    readings.SensorDataReady = false;
    if (object_) {
        object_->beginCalls(kCycleTime);
        sendCommand(QStringLiteral("Kiv_LocalControl"), kMethod, {false, QString()});
    }
    letGo();
}

void SensorLink::letGo() {
    awaited_.reset();
    object_.reset();
    accepted_ = false;
}

void SensorLink::beginCycle(const SensorLinkRecords& records) {
    descriptions_ = {};
    if (object_)
        object_->beginCalls(kCycleTime);
    if (wanted_ && takeUp(records, nullptr) != Progress::Done)
        callFailed_ = true;
    // Before its first data it reports levels that were not measured.
    if (dataAwaited_) {
        dataAwaited_ = !readBoolean(QStringLiteral("DataReady")).value_or(false);
        callFailed_ = callFailed_ || dataAwaited_;
    }
}

void SensorLink::beginRequest() {
    if (object_)
        object_->beginCalls(kCycleTime);
}

bool SensorLink::consumeCallFailure() {
    return std::exchange(callFailed_, false);
}

AutomationReply SensorLink::forward(const QString& name, unsigned use, QVariantList& arguments) {
    if (!object_)
        return {{}, AutomationError::Fail, QStringLiteral("Kiv_Nubilo is not connected")};
    return object_->invoke(name, use, arguments);
}

std::unique_ptr<DispatchObject> SensorLink::object(const QVariant& answer) {
    return object_ ? object_->object(answer) : nullptr;
}

std::optional<QVariant> SensorLink::read(const QString& name, QVariantList arguments) {
    AutomationReply reply = forward(name, kRead, arguments);
    if (!reply.ok()) {
        callFailed_ = true;
        return std::nullopt;
    }
    return std::move(reply.result);
}

void SensorLink::readAhead(const QStringList& names) {
    if (object_)
        object_->readAhead(names);
}

namespace {

// A value that does not convert is as good as no answer.
template <typename Convert>
auto converted(const std::optional<QVariant>& value, bool& failed, Convert convert)
    -> decltype(convert(*value)) {
    if (!value)
        return std::nullopt;
    auto result = convert(*value);
    if (!result)
        failed = true;
    return result;
}

// Whatever the sensor program answers, a label, a line of a file and the status stay readable.
std::optional<QString> toLine(const QVariant& value) {
    constexpr qsizetype kLongest = 255;
    std::optional<QString> text = toText(value);
    if (text) {
        text->truncate(kLongest);
        for (QChar& c : *text) {
            if (c.category() == QChar::Other_Control)
                c = u' ';
        }
    }
    return text;
}

std::optional<std::int32_t> toLevel(const QVariant& value) {
    const std::optional<std::int32_t> level = toInt32(value);
    return level && *level >= 0 && *level <= 3 ? level : std::nullopt;
}

} // namespace

std::optional<double> SensorLink::readReal(const QString& name) {
    return converted(read(name), callFailed_, toReal);
}

std::optional<std::int32_t> SensorLink::readLevel(const QString& name) {
    return converted(read(name), callFailed_, toLevel);
}

std::optional<bool> SensorLink::readBoolean(const QString& name) {
    return converted(read(name), callFailed_, toBoolean);
}

std::optional<QString> SensorLink::readText(const QString& name) {
    return converted(read(name), callFailed_, toLine);
}

bool SensorLink::write(const QString& name, const QVariant& value) {
    QVariantList arguments{value};
    const bool ok = forward(name, kPropertyPut, arguments).ok();
    callFailed_ = callFailed_ || !ok;
    return ok;
}

bool SensorLink::call(const QString& name) {
    QVariantList none;
    const bool ok = forward(name, kMethod, none).ok();
    callFailed_ = callFailed_ || !ok;
    return ok;
}

bool SensorLink::command(const QString& name, const QVariantList& arguments, Effect effect) {
    if (effect == Effect::Opens && object_ && object_->state() == ObjectState::Hanging) {
        callFailed_ = true;
        return false;
    }
    return sendCommand(name, kMethod, arguments);
}

// Only to a program that was found to be the right one.
bool SensorLink::sendCommand(const QString& name, unsigned use, const QVariantList& arguments) {
    const bool ok = accepted_ && object_ && object_->command(name, use, arguments).ok();
    callFailed_ = callFailed_ || !ok;
    return ok;
}

QString SensorLink::levelDescription(Quantity quantity, std::int32_t level) {
    const QuantityRow& row = rowOf(quantity);
    if (row.source != SourceName::Sensor || level < 1 ||
        level > static_cast<std::int32_t>(kLevelCount))
        return {};
    Description& description = descriptions_[quantity];
    if (description.level != level) {
        const char* member = row.levels[static_cast<std::size_t>(level - 1)].descriptionMember;
        description = {level, readText(QString::fromLatin1(member)).value_or(QString())};
    }
    return description.text;
}

void Disp_SwitchLabels(SessionControls& session, ReadingDisplay& display) {
    const bool driven = session.SWRole.Index == 0;
    display.LblSwitch.Visible = driven;
    display.LValSwitch.Visible = driven;
    session.SwitchControl = driven;
}

void SetSwitch(SensorLink& sensor, const SessionControls& session, std::int32_t value) {
    if (!session.running() || session.SWRole.Index != 1)
        return;
    if (sensor.readText(QStringLiteral("Kiv_DeviceRole")) != QStringLiteral("MASTER"))
        return;
    sensor.command(QStringLiteral("Kiv_SetSwitch"), {value});
}

} // namespace skyhold
