// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/simulators.h"

#include "platform/clock_options.h"
#include "platform/files.h"
#include "records/controls.h"
#include "ui/widgets/bind.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QSignalBlocker>
#include <QStandardPaths>

#include <sys/prctl.h>

#include <algorithm>
#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

const std::array kNames{u"Kiv_NubiloSim"_s, u"Kiv_StationSim"_s};
constexpr int kPatienceMs = 2000;
// A simulator that cannot do its work ends within this time.
constexpr int kSettleMs = 300;

QString programOf(const QString& name) {
    return joinPath(programFolder(), name);
}

QStringList clockArguments() {
    ClockStart start = clockStartFromArguments(QCoreApplication::arguments());
    if (!start.origin.isValid()) {
        start.origin = QDateTime::currentDateTime();
        start.realOriginMs = start.origin.toMSecsSinceEpoch();
    }
    return {u"--time-from"_s,   start.origin.toString(Qt::ISODate),
            u"--time-origin"_s, QString::number(start.realOriginMs),
            u"--time-scale"_s,  QString::number(start.scale)};
}

} // namespace

Simulators& Simulators::of(QObject* owner) {
    auto* simulators = owner->findChild<Simulators*>(QString(), Qt::FindDirectChildrenOnly);
    return simulators ? *simulators : *new Simulators(owner);
}

Simulators::Simulators(QObject* owner)
    : QObject(owner)
    , processes_{new QProcess(this), new QProcess(this)} {
    for (QProcess* process : processes_) {
        process->setStandardOutputFile(QProcess::nullDevice());
        // They must not outlive a monitor that is killed.
        process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        connect(process, &QProcess::stateChanged, this, &Simulators::changed);
    }
}

Simulators::~Simulators() {
    const QSignalBlocker quiet(this);
    end();
}

bool Simulators::installed() {
    return std::all_of(kNames.begin(), kNames.end(), [](const QString& name) {
        return QFileInfo(programOf(name)).isExecutable();
    });
}

QString Simulators::stationFile() {
    return joinPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation),
                    u"simulated/station.htm"_s);
}

bool Simulators::running() const {
    return std::all_of(processes_.begin(), processes_.end(), [](const QProcess* process) {
        return process->state() == QProcess::Running;
    });
}

QString Simulators::start() {
    if (running())
        return {};
    end();
    if (!createFolder(QFileInfo(stationFile()).path()))
        return u"The folder of %1 cannot be created."_s.arg(stationFile());
    const QStringList weather = QStringList{u"--scenario"_s, u"quick"_s} + clockArguments();
    QString fault = startOne(*processes_[0], kNames[0], weather);
    if (fault.isEmpty())
        fault =
            startOne(*processes_[1], kNames[1], QStringList{u"--file"_s, stationFile()} + weather);
    if (!fault.isEmpty())
        end();
    return fault;
}

QString Simulators::startOne(QProcess& process, const QString& name, const QStringList& arguments) {
    process.start(programOf(name), arguments);
    if (!process.waitForStarted(kPatienceMs))
        return u"%1 could not be started: %2."_s.arg(name, process.errorString());
    if (!process.waitForFinished(kSettleMs))
        return {};
    return u"%1 has ended: %2"_s.arg(name,
                                     QString::fromUtf8(process.readAllStandardError()).trimmed());
}

void Simulators::endWithFile(Label& stationFile) {
    follow(this, stationFile.Caption, [this](const QString& path) {
        if (path != Simulators::stationFile())
            end();
    });
}

void Simulators::end() {
    for (QProcess* process : processes_)
        process->terminate();
    for (QProcess* process : processes_) {
        if (process->state() != QProcess::NotRunning && !process->waitForFinished(kPatienceMs)) {
            process->kill();
            process->waitForFinished(kPatienceMs);
        }
    }
}

} // namespace skyhold
