// SPDX-License-Identifier: GPL-3.0-or-later
// A sensor program to run the monitor against, without its hardware.
#include "platform/clock_options.h"
#include "platform/quit_signals.h"
#include "sensorhost/sensor_members.h"
#include "simulators/sensor_device.h"
#include "simulators/sensor_server.h"
#include "simulators/spoiled_members.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

constexpr char kDescription[] =
    R"(Serves a simulated sensor program on the session bus.

Faults (--fault may be given several times; the member Sim_Fault of every object takes the same):
  slow-ready[=SECONDS]  first data only so long after the start (30)
  old-version           version 5.10.0001
  role=ROLE             another role
  not-running           the device does not run
  xfer-error            the transfer file failed
  late=MS               every answer so many real milliseconds later
  slow-member=MEMBER    every answer of that member three real seconds later
  failing-member=MEMBER every call of that member fails
  silent                no answer at all
  die[=MEMBER]          the process ends inside the next call, or the next call of that member
  nan, inf              every value is no number, or infinite
  wrong-types           every answer is of a wrong type
  empty                 every answer is empty
  megabyte              every text is a million characters long
  level=N               every whole number, the conditions among them, is N (9)
  nameless              the bus name is given up, the objects stay
  none                  ends them all)";

int refuse(const QString& reason) {
    std::fprintf(stderr, "Kiv_NubiloSim: %s\n", qUtf8Printable(reason));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(kDescription));
    parser.addHelpOption();
    parser.addOptions(clockOptions());
    parser.addOptions({
        {u"scenario"_s, u"The weather: night (default) or quick."_s, u"NAME"_s, u"night"_s},
        {u"ready-after"_s, u"Seconds from the start of the device to its first data (2)."_s,
         u"SECONDS"_s, u"2"_s},
        {u"role"_s, u"The device's role (MASTER)."_s, u"ROLE"_s, u"MASTER"_s},
        {u"sensor-version"_s, u"The version it reports (5.20.0001)."_s, u"TEXT"_s, u"5.20.0001"_s},
        {u"fault"_s, u"A fault from the list above."_s, u"NAME[=VALUE]"_s},
        {u"fault-after"_s, u"Seconds until the faults begin (0)."_s, u"SECONDS"_s, u"0"_s},
        {u"verbose"_s, u"Prints a line for every change that is sent to it."_s},
    });
    parser.process(application);

    const ClockStart start = clockStartFromArguments(QCoreApplication::arguments());
    const SystemClock clock(start);
    SensorOptions options;
    const std::optional<Scenario> scenario = scenarioNamed(parser.value(u"scenario"_s));
    bool number = false;
    options.readyAfter = parser.value(u"ready-after"_s).toDouble(&number);
    if (!scenario)
        return refuse(u"there is no scenario "_s + parser.value(u"scenario"_s));
    if (!number || !(options.readyAfter >= 0 && options.readyAfter < 1e6))
        return refuse(u"--ready-after takes seconds"_s);
    options.scenario = *scenario;
    options.scenarioStart = start.origin.isValid() ? start.origin : clock.now();
    options.role = parser.value(u"role"_s);
    options.version = parser.value(u"sensor-version"_s);

    Faults faults({u"slow-ready"_s, u"old-version"_s, u"role"_s, u"not-running"_s, u"xfer-error"_s,
                   u"late"_s, u"slow-member"_s, u"failing-member"_s, u"silent"_s, u"die"_s,
                   u"nan"_s, u"wrong-types"_s, u"inf"_s, u"empty"_s, u"megabyte"_s, u"level"_s,
                   u"nameless"_s});
    const auto begin = [&faults, wanted = parser.values(u"fault"_s)] {
        return std::find_if_not(wanted.cbegin(), wanted.cend(), [&faults](const QString& fault) {
                   return faults.set(fault);
               }) == wanted.cend();
    };
    if (!begin())
        return refuse(u"there is no such fault"_s);
    const double faultAfter = parser.value(u"fault-after"_s).toDouble(&number);
    if (!number || !(faultAfter >= 0 && faultAfter < 1e6))
        return refuse(u"--fault-after takes seconds"_s);
    if (faultAfter > 0) {
        faults.clear();
        QTimer::singleShot(
            std::chrono::milliseconds(std::llround(faultAfter * 1000 / clock.scale())),
            &application, [begin] { begin(); });
    }

    const bool verbose = parser.isSet(u"verbose"_s);
    SensorDevice device(clock, options, faults, [&](const QString& change) {
        if (!verbose)
            return;
        std::printf("%s %s\n", qUtf8Printable(clock.now().toString(u"hh:mm:ss"_s)),
                    qUtf8Printable(change));
        std::fflush(stdout);
    });
    SensorHost host{.source = device};
    SensorServer server(QDBusConnection::sessionBus(), spoiledMembers(*sensorMembers(host), faults),
                        faults);
    addSensorForm(server, host);
    if (!server.start())
        return refuse(u"the name %1 is not available on the session bus"_s.arg(sensorProgramId()));
    onQuitSignal([] { QCoreApplication::quit(); });
    return QCoreApplication::exec();
}
