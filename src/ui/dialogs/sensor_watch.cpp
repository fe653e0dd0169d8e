// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/sensor_watch.h"

#include "model/quantity.h"
#include "platform/clock.h"
#include "platform/text_forms.h"
#include "records/session_controls.h"

#include <QRegularExpression>

#include <sys/prctl.h>

#include <algorithm>
#include <cmath>
#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kAgainMs = 2000;
constexpr int kEndMs = 1000;
constexpr qint64 kOldSeconds = 180;
constexpr CallTime kLookTime{.calls = 1000, .commands = 500};

const QString& wouldSayUnsafe() {
    static const QString text = u"The monitor would say unsafe."_s;
    return text;
}

// Reads members of one object.
class Look {
  public:
    explicit Look(DispatchObject& object)
        : object_(object) {}

    template <class Convert>
    auto read(const QString& member, Convert convert) -> decltype(convert(QVariant())) {
        QVariantList none;
        const AutomationReply reply = object_.invoke(member, kRead, none);
        return reply.ok() ? convert(reply.result) : std::nullopt;
    }

  private:
    DispatchObject& object_;
};

SourceNow::Value readQuantity(Look& look, Quantity quantity, const QString& temperatureUnit) {
    const QuantityRow& row = rowOf(quantity);
    SourceNow::Value shown{QString::fromUtf16(row.title), u"–"_s, u"missing"_s};
    const auto value = look.read(QLatin1String(row.valueMember), toReal);
    const auto level = look.read(QLatin1String(row.levelMember), toInt32);
    if (!value)
        return shown;
    const bool temperature = row.measure == Measure::Temperature;
    shown.value = formatNumber(*value, temperature ? u"0.0" : u"0", localeNumberForms());
    if (temperature)
        shown.value += temperatureUnit;
    const bool hasLevel = level && *level >= 1 && *level <= static_cast<int>(kLevelCount);
    shown.note =
        hasLevel
            ? look.read(QLatin1String(
                            row.levels[static_cast<std::size_t>(*level - 1)].descriptionMember),
                        toText)
                  .value_or(u"level %1"_s.arg(*level))
                  .simplified()
            : u"no level"_s;
    return shown;
}

} // namespace

SourceNow askSensorProgram(const CreateObject& createObject,
                           std::unique_ptr<DispatchObject>& object, bool simulated,
                           const QDateTime& now) {
    const auto usable = [&object] {
        return object &&
               (object->state() == ObjectState::Ready || object->state() == ObjectState::Hanging);
    };
    if (!usable())
        object = createObject ? createObject(u"Kiv_Nubilo.Nubilo"_s) : nullptr;
    SourceNow seen;
    if (!object) {
        seen.outcome = u"Kiv_Nubilo, the sensor's program, is not running. "_s + wouldSayUnsafe();
        return seen;
    }
    if (!usable()) {
        seen.state = SourceNow::State::Doubtful;
        seen.outcome = u"Waiting for Kiv_Nubilo, the sensor's program…"_s;
        return seen;
    }
    object->beginCalls(kLookTime);
    Look look(*object);
    if (!look.read(u"Version"_s, toText)) {
        seen.outcome = u"Kiv_Nubilo does not answer. "_s + wouldSayUnsafe();
        return seen;
    }
    seen.state = SourceNow::State::Doubtful;
    if (!look.read(u"DeviceIsRunning"_s, toBoolean).value_or(false)) {
        seen.outcome = u"Kiv_Nubilo is there. It begins to measure when a session starts."_s;
        // Only a master has a roof.
        const std::optional<QString> role = look.read(u"Kiv_DeviceRole"_s, toText);
        if (simulated || (role && *role != u"MASTER")) {
            object->command(u"Device_Start"_s, kMethod, {});
            seen.outcome = u"Kiv_Nubilo begins to measure…"_s;
        }
        return seen;
    }
    if (!look.read(u"DataReady"_s, toBoolean).value_or(false)) {
        seen.outcome = u"Kiv_Nubilo has no readings yet. "_s + wouldSayUnsafe();
        return seen;
    }
    const QString unit = look.read(u"Kiv_TemperatureUnits"_s, toText).value_or(u"C"_s);
    for (const Quantity quantity : kSensorQuantities)
        seen.values.push_back(readQuantity(look, quantity, u" °"_s + unit));
    const std::optional<double> read = look.read(u"LastReading"_s, toReal);
    const QDateTime lastReading = read ? fromDaySerial(*read) : QDateTime();
    if (lastReading.isValid())
        seen.age = u"Read %1 ago"_s.arg(durationText(std::max<qint64>(lastReading.secsTo(now), 0)));
    const bool whole = std::ranges::none_of(
        seen.values, [](const SourceNow::Value& value) { return value.value == u"–"_s; });
    if (look.read(u"Kiv_XFERFileErr"_s, toBoolean).value_or(true))
        seen.outcome = u"Kiv_Nubilo says that its readings cannot be used. "_s + wouldSayUnsafe();
    else if (!whole)
        seen.outcome = u"Not everything could be read. "_s + wouldSayUnsafe();
    else if (!lastReading.isValid() || lastReading.secsTo(now) > kOldSeconds)
        seen.outcome = u"It can be judged, but the last reading is old: look at the sensor."_s;
    else {
        seen.state = SourceNow::State::Good;
        seen.outcome = u"All of it can be judged."_s;
    }
    return seen;
}

SourceNow sensorFromPreview(const QStringList& lines) {
    // "cloud               -22.9 °C     level 1  2 s old"
    static const QRegularExpression item(
        u"^(\\S.{18}) (.*?) *(no level|level \\d+)? *(never seen|\\d+ s old)$"_s);
    SourceNow seen;
    bool ready = false;
    for (const QString& line : lines) {
        const QRegularExpressionMatch found = item.match(line);
        if (found.hasMatch()) {
            QStringList note{found.captured(3), found.captured(4)};
            note.removeAll(QString());
            const QString value = found.captured(2).trimmed();
            QString name = found.captured(1).trimmed();
            name[0] = name[0].toUpper();
            seen.values.push_back({name, value == u"missing" || value.isEmpty() ? u"–"_s : value,
                                   note.join(u", "_s)});
        } else if (line == u"data ready") {
            ready = true;
        } else if (line.contains(u": "_s) && !line.startsWith(u"NOT READY"_s) &&
                   !line.endsWith(u": works"_s)) {
            seen.remarks += line; // a source and what troubles it
        }
    }
    seen.state = ready ? SourceNow::State::Good : SourceNow::State::Doubtful;
    seen.outcome = ready ? u"All of it can be judged."_s
                         : u"Not everything is measured yet. "_s + wouldSayUnsafe();
    return seen;
}

SensorWatch::SensorWatch(CreateObject createObject, const Clock& clock, QObject* parent)
    : QObject(parent)
    , createObject_(std::move(createObject))
    , clock_(clock) {
    again_.setInterval(kAgainMs);
    connect(&again_, &QTimer::timeout, this, &SensorWatch::ask);
    connect(&preview_, &QProcess::readyReadStandardOutput, this, &SensorWatch::takePreview);
    connect(&preview_, &QProcess::finished, this, [this] {
        const QString reason = QString::fromUtf8(preview_.readAllStandardError()).simplified();
        if (onSeen)
            onSeen({.state = SourceNow::State::None,
                    .outcome = u"skyhold-sensor has ended. "_s + wouldSayUnsafe(),
                    .age = {},
                    .values = {},
                    .remarks = QStringList{reason}});
    });
    // It must not outlive a monitor that is killed.
    preview_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
}

SensorWatch::~SensorWatch() {
    stop();
}

void SensorWatch::askProgram(bool simulated) {
    stop();
    simulated_ = simulated;
    ask();
    again_.start();
}

void SensorWatch::measure(const QString& program, const QString& settings) {
    stop();
    preview_.start(program, {u"--settings"_s, settings, u"--preview"_s});
    if (onSeen)
        onSeen({.state = SourceNow::State::Doubtful,
                .outcome = u"skyhold-sensor begins to measure…"_s,
                .age = {},
                .values = {},
                .remarks = {}});
}

void SensorWatch::stop() {
    again_.stop();
    object_.reset();
    lines_.clear();
    if (preview_.state() == QProcess::NotRunning)
        return;
    const QSignalBlocker quiet(&preview_);
    preview_.terminate();
    if (!preview_.waitForFinished(kEndMs)) {
        preview_.kill();
        preview_.waitForFinished(kEndMs);
    }
}

void SensorWatch::ask() {
    if (onSeen)
        onSeen(askSensorProgram(createObject_, object_, simulated_, clock_.now()));
}

// An empty line ends what belongs to one second; its first line is the time.
void SensorWatch::takePreview() {
    while (preview_.canReadLine()) {
        const QString line = QString::fromUtf8(preview_.readLine()).remove(u'\n');
        if (!line.trimmed().isEmpty()) {
            lines_ += line;
            continue;
        }
        if (!lines_.isEmpty() && onSeen)
            onSeen(sensorFromPreview(lines_.mid(1)));
        lines_.clear();
    }
}

} // namespace skyhold
