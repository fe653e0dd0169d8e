// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/sensor_step.h"

#include "platform/files.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"

#include <QButtonGroup>
#include <QEventLoop>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kPatienceMs = 30'000;
constexpr int kCaptionWidth = 180;

struct Kind {
    const char16_t* name; // as skyhold-sensor --setup knows it
    const char16_t* caption;
    const char16_t* whereCaption; // null: is not asked for
    const char16_t* where;
    const char16_t* deviceCaption;
    const char16_t* device;
};

constexpr std::array kKinds{
    Kind{nullptr, u"It has a p&rogram of its own, or comes later", nullptr, nullptr, nullptr,
         nullptr},
    Kind{u"indi", u"An &INDI driver (weather, cloud, sky quality)", u"&Server", u"localhost:7624",
         u"Name of the &device", u""},
    Kind{u"alpaca", u"A&n Alpaca device (ObservingConditions)", u"UR&L of its server",
         u"http://localhost:11111", u"&Device", u"observingconditions/0"},
    Kind{u"mqtt", u"A device that publishes by &MQTT", u"Br&oker", u"localhost:1883", u"&Topic",
         u"observatory/sensor"},
    Kind{u"file", u"A &file that some program writes", u"&Path", u"", nullptr, nullptr},
    Kind{u"command", u"A &command that prints values", u"Comm&and", u"", nullptr, nullptr},
};

QString textOf(const char16_t* text) {
    return text ? QString::fromUtf16(text) : QString();
}

} // namespace

SensorStep::SensorStep(QVBoxLayout* step)
    : kinds_(new QButtonGroup(step->parentWidget())) {
    QWidget* parent = step->parentWidget();
    for (std::size_t i = 0; i < kKinds.size(); ++i) {
        auto* option = new QRadioButton(QString::fromUtf16(kKinds[i].caption), parent);
        option->setObjectName(u"OptSensor%1"_s.arg(i));
        kinds_->addButton(option, static_cast<int>(i));
        step->addWidget(option);
    }
    const auto addRow = [&](QLabel*& caption, QLineEdit*& edit, const QString& name) {
        caption = new QLabel(parent);
        edit = new QLineEdit(parent);
        edit->setObjectName(name);
        caption->setBuddy(edit);
        caption->setFixedWidth(kCaptionWidth);
        auto* row = new QHBoxLayout;
        row->setContentsMargins(0, 6, 0, 0);
        row->setSpacing(look::kGap);
        row->addWidget(caption);
        row->addWidget(edit, 1);
        step->addLayout(row);
    };
    addRow(whereCaption_, where_, u"SensorWhere"_s);
    addRow(deviceCaption_, device_, u"SensorDevice"_s);
    QString note =
        u"skyhold-sensor reads all but the first. Its settings begin with usual limits; look "
        u"through them in %1, and run skyhold-sensor --check. Until all that is set there "
        u"is measured, the monitor says unsafe."_s.arg(settingsPath());
    if (isSetUp())
        note = u"skyhold-sensor is set up already: its settings in %1 stay as they are."_s.arg(
            settingsPath());
    else if (!QFileInfo(program()).isExecutable())
        note = u"The program skyhold-sensor, which reads such devices, is not installed."_s;
    QLabel* explanation = makeDimmed(note, parent);
    explanation->setWordWrap(true);
    step->addWidget(explanation);
    const bool possible = !isSetUp() && QFileInfo(program()).isExecutable();
    for (QAbstractButton* option : kinds_->buttons())
        option->setEnabled(possible || kinds_->id(option) == 0);
    QObject::connect(kinds_, &QButtonGroup::idClicked, parent, [this](int kind) { choose(kind); });
    kinds_->button(0)->setChecked(true);
    choose(0);
}

QString SensorStep::program() {
    return joinPath(programFolder(), u"skyhold-sensor"_s);
}

QString SensorStep::settingsPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/Kiv/skyhold-sensor.conf"_s;
}

bool SensorStep::isSetUp() {
    return QFileInfo::exists(settingsPath());
}

void SensorStep::choose(int kind) {
    const Kind& row = kKinds[static_cast<std::size_t>(kind)];
    const auto fill = [](QLabel* caption, QLineEdit* edit, const char16_t* name,
                         const char16_t* text) {
        caption->setText(textOf(name));
        edit->setText(textOf(text));
        caption->setVisible(name != nullptr);
        edit->setVisible(name != nullptr);
    };
    fill(whereCaption_, where_, row.whereCaption, row.where);
    fill(deviceCaption_, device_, row.deviceCaption, row.device);
}

QString SensorStep::prepare() {
    const Kind& row = kKinds[static_cast<std::size_t>(kinds_->checkedId())];
    if (!row.name || isSetUp()) {
        prepared_.clear();
        return {};
    }
    const QString where = where_->text().trimmed();
    const QString device = device_->text().trimmed();
    if (where.isEmpty() || (row.deviceCaption && device.isEmpty()))
        return u"Please say where the sensor is, or choose another one."_s;
    // The last two answers: no brightness, and no roof, which nobody drives by accident.
    const QStringList answers{QString::fromUtf16(row.name), where, device, u"no"_s, u"no"_s, {}};
    if (!prepared_.isEmpty() && answers == answers_)
        return {};
    QString fault = writeSettings(answers);
    if (fault.isEmpty())
        answers_ = answers;
    else
        prepared_.clear();
    return fault;
}

QString SensorStep::writeSettings(const QStringList& answers) {
    prepared_ = folder_.filePath(u"skyhold-sensor.conf"_s);
    QFile::remove(prepared_);
    QProcess setup;
    QEventLoop loop;
    QObject::connect(&setup, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&setup, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(kPatienceMs, &loop, &QEventLoop::quit);
    setup.start(program(), {u"--settings"_s, prepared_, u"--setup"_s});
    setup.write(answers.join(u'\n').toUtf8());
    setup.closeWriteChannel();
    if (setup.state() != QProcess::NotRunning)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (setup.state() != QProcess::NotRunning)
        setup.kill();
    setup.waitForFinished(1000);
    const bool good = setup.error() == QProcess::UnknownError &&
                      setup.exitStatus() == QProcess::NormalExit && setup.exitCode() == 0;
    const QString reason = QString::fromUtf8(setup.readAllStandardError()).trimmed();
    return good ? QString()
                : u"The sensor could not be set up. "_s +
                      (reason.isEmpty() ? setup.errorString() : reason);
}

QString SensorStep::save() {
    const QString path = settingsPath();
    if (prepared_.isEmpty() ||
        (createFolder(QFileInfo(path).path()) && QFile::copy(prepared_, path)))
        return {};
    return u"The settings of the sensor could not be saved to %1."_s.arg(path);
}

} // namespace skyhold
