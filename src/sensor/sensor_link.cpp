#include "sensor/sensor_link.h"

#include "platform/text_forms.h"

#include <QElapsedTimer>

#include <utility>

namespace skyhold {

namespace {

const QString kProgramId = QStringLiteral("Kiv_Nubilo.Nubilo");
constexpr double kMinimumVersion = 5.2;

// All calls of one read cycle together; a sensor program that answers slowly must not hold the
// window, and what it could not answer in this time counts as failed.
constexpr int kCycleBudgetMs = 2500;

} // namespace

SensorLink::SensorLink(CreateObject createObject, Clock& clock)
    : createObject_(std::move(createObject))
    , clock_(clock) {}

bool SensorLink::OpenSensor(const SensorLinkRecords& records, const ShowMessage& showMessage) {
    QElapsedTimer opening;
    opening.start();
    wanted_ = true;
    dataAwaited_ = false;
    const bool answered =
        create(true) && prepare(records, showMessage) && waitForData(records.session.NBTimeout);
    // A sensor program this slow has held the window, and will hold it again in the first cycle.
    if (opening.elapsed() > kCycleBudgetMs)
        clock_.waitServingEvents(0);
    bool& ready = records.readings.SensorDataReady;
    ready = answered && object_;
    return ready;
}

// A program that the bus has to start first is waited for, while events are served, or left to a
// later cycle.
bool SensorLink::create(bool waitForStart) {
    object_ = createObject_(kProgramId);
    const bool wait = waitForStart && object_ && object_->starting();
    while (wait && object_ && object_->starting())
        clock_.waitServingEvents(100);
    if (wait && object_)
        object_ = createObject_(kProgramId);
    if (object_ && object_->starting())
        object_.reset();
    return object_ != nullptr;
}

bool SensorLink::prepare(const SensorLinkRecords& records, const ShowMessage& showMessage) {
    object_->beginCalls(kCycleBudgetMs);
    if (!CheckSensorVersion(showMessage)) {
        object_.reset();
        return false;
    }
    settleRole(records);
    call(QStringLiteral("Kiv_LocalControl"), {true, QStringLiteral("Kiv_Skyhold has control")});
    call(QStringLiteral("Device_Start"));
    return true;
}

bool SensorLink::CheckSensorVersion(const ShowMessage& showMessage) {
    const QString version = readText(QStringLiteral("Version")).value_or(QString());
    if (version.size() < 4)
        return false;
    // The last four characters are the build.
    if (leadingNumber(QStringView(version).chopped(4)) >= kMinimumVersion)
        return true;
    if (showMessage)
        showMessage(
            {QStringLiteral("Version of Kiv_Nubilo must be equal or greater than 5.2x"), {}, {}});
    return false;
}

void SensorLink::settleRole(const SensorLinkRecords& records) {
    const std::optional<QString> role = readText(QStringLiteral("Kiv_DeviceRole"));
    if (!role) // no answer settles nothing; the failure is reported by the cycle
        return;
    const bool master = *role == QStringLiteral("MASTER");
    if (master) {
        write(QStringLiteral("Kiv_DeviceSwitchCtrl"), true);
        Disp_SwitchLabels(records.session, records.display);
    } else {
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

bool SensorLink::waitForData(const NumberBox& timeout) {
    const std::int64_t begun = clock_.MsClock();
    const auto ready = [this] {
        // Nothing once it was closed while waiting.
        return object_ && readBoolean(QStringLiteral("DataReady")).value_or(false);
    };
    while (object_) {
        const double limit = timeout.Value * 1000;
        const bool inTime = static_cast<double>(clock_.MsClock() - begun) <= limit;
        if (!inTime || ready() || limit <= 0)
            break;
        clock_.waitServingEvents(1000);
        if (object_)
            object_->beginCalls(kCycleBudgetMs);
    }
    return ready();
}

void SensorLink::CloseSensor(CurrentReadings& readings) {
    wanted_ = false;
    dataAwaited_ = false;
    readings.SensorDataReady = false;
    if (!object_)
        return;
    object_->beginCalls(kCycleBudgetMs);
    call(QStringLiteral("Kiv_LocalControl"), {false, QString()});
    object_.reset();
}

void SensorLink::beginCycle(const SensorLinkRecords& records) {
    // What failed after the last cycle had reported a failure belongs to that failure.
    if (records.readings.SensorError)
        callFailed_ = false;
    if (object_ && object_->alive()) {
        object_->beginCalls(kCycleBudgetMs);
    } else if (wanted_) {
        dataAwaited_ = create(false) && prepare(records, nullptr);
        callFailed_ = callFailed_ || !dataAwaited_;
    }
    // Before its first data it reports levels that nobody measured.
    if (dataAwaited_) {
        dataAwaited_ = !readBoolean(QStringLiteral("DataReady")).value_or(false);
        callFailed_ = callFailed_ || dataAwaited_;
    }
}

void SensorLink::beginRequest() {
    if (object_)
        object_->beginCalls(kCycleBudgetMs);
}

bool SensorLink::takeCallFailure() {
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

bool SensorLink::callByReference(const QString& name, QVariantList& arguments) {
    const bool ok = forward(name, kMethod, arguments).ok();
    callFailed_ = callFailed_ || !ok;
    return ok;
}

bool SensorLink::call(const QString& name, QVariantList arguments) {
    return callByReference(name, arguments);
}

QString SensorLink::levelDescription(Quantity quantity, std::int32_t level) {
    static const std::array<std::array<QString, 3>, 3> names{
        {{QStringLiteral("DescriptionClear"), QStringLiteral("DescriptionCloudy"),
          QStringLiteral("DescriptionVCloudy")},
         {QStringLiteral("DescriptionDry"), QStringLiteral("DescriptionWet"),
          QStringLiteral("DescriptionRain")},
         {QStringLiteral("DescriptionDark"), QStringLiteral("DescriptionLight"),
          QStringLiteral("DescriptionVLight")}}};
    const auto row = static_cast<std::size_t>(quantity);
    if (row >= names.size() || level < 1 || level > 3)
        return {};
    return readText(names[row][static_cast<std::size_t>(level - 1)]).value_or(QString());
}

void Disp_SwitchLabels(SessionControls& session, ReadingDisplay& display) {
    const bool driven = session.SWRole.Index == 0;
    display.LblSwitch.Visible = driven;
    display.LValSwitch.Visible = driven;
    session.SwitchControl = driven;
}

void SetSwitch(SensorLink& sensor, const SessionControls& session, std::int32_t value) {
    if (!session.Running || session.SWRole.Index != 1)
        return;
    if (sensor.readText(QStringLiteral("Kiv_DeviceRole")) != QStringLiteral("MASTER"))
        return;
    QVariantList arguments{value};
    sensor.callByReference(QStringLiteral("Kiv_SetSwitch"), arguments);
}

} // namespace skyhold
