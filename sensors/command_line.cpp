// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/command_line.h"

#include "platform/files.h"
#include "platform/quit_signals.h"
#include "platform/service_manager.h"
#include "sensorhost/sensor_members.h"
#include "sensors/discovery.h"
#include "sensors/sensor_log.h"
#include "sensors/sensor_program.h"
#include "sensors/setup.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QFileInfo>

#include <cstdio>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kDescription[] =
    R"(The cloud and rain sensor's program for real devices: reads INDI, Alpaca, MQTT, a file or a
command, and serves what they measure as Kiv_Nubilo.Nubilo on the session bus, where Kiv_Skyhold
reads it. docs/sensors.md says what to write for which device.)";

constexpr int kUnusable = 2;
constexpr std::int64_t kSettingsLimit = 1LL << 20;

void print(const QString& line) {
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

int refuse(const QString& reason) {
    std::fprintf(stderr, "skyhold-sensor: %s\n", qUtf8Printable(reason));
    return kUnusable;
}

// The settings of the file; nothing, with the reasons on standard error, when they cannot be used.
std::optional<SensorSettings> readSettings(const QString& path) {
    const FileContents contents = readFile(path, kSettingsLimit);
    if (contents.result != ReadResult::Ok) {
        refuse(u"there are no settings in %1; skyhold-sensor --setup makes them"_s.arg(path));
        return std::nullopt;
    }
    QStringList faults;
    SensorSettings settings = sensorSettings(contents.bytes, faults);
    for (const QString& fault : std::as_const(faults))
        refuse(path + u": "_s + fault);
    if (!faults.isEmpty())
        return std::nullopt;
    const auto others = QFileInfo(path).permissions() & (QFile::ReadGroup | QFile::ReadOther);
    for (const SourceSettings& source : settings.sources) {
        if (others && !source.text(u"password"_s).isEmpty())
            qCWarning(sensorLog).noquote() << path << "holds a password that others can read";
    }
    return settings;
}

// Prints what is measured, and says with the exit status whether all of it is there; gives the
// sources so much time for it.
int check(SensorProgram& program, const SensorSettings& settings, double seconds) {
    for (const QString& remark : settingsRemarks(settings))
        print(u"note: "_s + remark);
    program.start();
    QDeadlineTimer limit(static_cast<qint64>(seconds * 1000));
    while (!program.measurements().missing(false).empty() && !limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 200);
    for (const QString& line : program.sourceLines() + program.itemLines())
        print(line);
    if (const QString line = program.switchLine(); !line.isEmpty())
        print(line);
    const bool whole = program.measurements().missing(false).empty();
    print(whole ? u"Everything that is set up is measured."_s
                : u"Not everything is measured: the monitor would say unsafe."_s);
    return whole ? 0 : 1;
}

int preview(SensorProgram& program) {
    QTimer each;
    QObject::connect(&each, &QTimer::timeout, &each, [&program] {
        QStringList lines = program.sourceLines() + program.itemLines();
        lines.append(program.switchLine());
        lines.append(program.sensor().dataReady() ? u"data ready"_s
                                                  : u"NOT READY: the monitor says unsafe"_s);
        lines.removeAll(QString());
        print(QTime::currentTime().toString(u"HH:mm:ss"_s) + u'\n' + lines.join(u'\n') + u'\n');
    });
    program.start();
    each.start(1000);
    return QCoreApplication::exec();
}

// Serves the bus, writes the station's file, or both.
int serve(SensorProgram& program, const SensorSettings& settings, const QString& stationFile) {
    const ServiceManager manager; // before any command is started
    for (const QString& remark : settingsRemarks(settings))
        qCWarning(sensorLog).noquote() << remark;
    SensorHost host{.source = program.sensor(), .limitsAreFixed = true};
    AutomationServer server(QDBusConnection::sessionBus(), sensorProgramId(), sensorMembers(host),
                            [](int) {});
    addSensorForm(server, host);
    if (!stationFile.isEmpty())
        program.writeStation(stationFile);
    // Without anything for the monitor's sensor this is the station's program alone.
    const bool onBus = settings.anyOfSensor();
    if (!onBus && stationFile.isEmpty())
        return refuse(u"neither clouds nor rain nor brightness is set up, and no --station"_s);
    program.start();
    if (onBus && !server.start())
        return refuse(u"the name %1 is not available on the session bus"_s.arg(sensorProgramId()));
    // Without the bus nobody reads it any more: the login has ended.
    QDBusConnection::sessionBus().connect({}, u"/org/freedesktop/DBus/Local"_s,
                                          u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s,
                                          QCoreApplication::instance(), SLOT(quit()));
    program.cycleDone = [&manager, &program] {
        manager.roundDone(program.sensor().dataReady() ? u"All is measured"_s
                                                       : u"Not all is measured: unsafe"_s);
    };
    manager.ready();
    manager.expectRounds(true);
    const int status = QCoreApplication::exec();
    manager.stopping();
    program.end();
    return status;
}

} // namespace

int runSensorProgram() {
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(kDescription));
    parser.addHelpOption();
    parser.addOptions({
        {u"settings"_s, u"The settings (%1)."_s.arg(defaultSettingsPath()), u"FILE"_s,
         defaultSettingsPath()},
        {u"setup"_s, u"Asks five questions and writes the settings."_s},
        {u"list"_s, u"Lists the devices of the INDI server and of the Alpaca servers nearby."_s},
        {u"indi"_s, u"With --list: the INDI server (localhost:7624)."_s, u"HOST:PORT"_s,
         u"localhost:7624"_s},
        {u"check"_s, u"Reads all once and prints it; the exit status is 0 when nothing is "
                     u"missing, 1 when something is, 2 for settings that cannot be used."_s},
        {u"seconds"_s, u"With --check, --list: how long to wait (15, 3)."_s, u"N"_s},
        {u"preview"_s, u"Prints values, levels and ages each second."_s},
        {u"station"_s, u"Also writes the weather station's file."_s, u"FILE"_s},
    });
    parser.process(*QCoreApplication::instance());
    if (!parser.positionalArguments().isEmpty())
        return refuse(u"there is no argument "_s + parser.positionalArguments().first());
    bool number = true;
    const double seconds =
        parser.isSet(u"seconds"_s) ? parser.value(u"seconds"_s).toDouble(&number) : 0;
    if (!number || !(seconds >= 0 && seconds <= 3600))
        return refuse(u"--seconds takes a number"_s);
    onQuitSignal([] { QCoreApplication::quit(); });
    if (parser.isSet(u"list"_s))
        return listDevices(parser.value(u"indi"_s), seconds > 0 ? seconds : 3);
    if (parser.isSet(u"setup"_s))
        return setUp(parser.value(u"settings"_s));
    const std::optional<SensorSettings> settings = readSettings(parser.value(u"settings"_s));
    if (!settings)
        return kUnusable;
    SensorProgram program(*settings);
    if (parser.isSet(u"check"_s))
        return check(program, *settings, seconds > 0 ? seconds : 15);
    if (parser.isSet(u"preview"_s))
        return preview(program);
    return serve(program, *settings, parser.value(u"station"_s));
}

} // namespace skyhold
