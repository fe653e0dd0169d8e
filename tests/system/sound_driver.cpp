// Alarms and nothing else, for the test of sound: carries out lines of standard input and writes
// what the Stop Alarm button shows.
//
//     start SPEC     AlarmStart; answers "done" when it has returned
//     stop           AlarmStop; the same
//     sounds         answers the folder of the sounds that come with the program
#include "conditions/alarms.h"
#include "platform/clock.h"
#include "platform/files.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <iostream>
#include <string>

using namespace skyhold;

namespace {

void write(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void carryOut(const QString& line, const AlarmPlayer& player) {
    const QString command = line.section(u' ', 0, 0);
    if (command == QStringLiteral("start"))
        AlarmStart(player, line.section(u' ', 1));
    else if (command == QStringLiteral("stop"))
        AlarmStop(player);
    else if (command == QStringLiteral("sounds"))
        write(soundsFolder());
    write(QStringLiteral("done"));
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const SystemClock clock;
    Timer timer(clock);
    AlarmControls controls;
    controls.ButtStopAlarm.Visible = false;
    SoundPlayerProgram media(
        joinPath(programFolder(), QStringLiteral("Kiv_SoundPlayer")),
        [](const QString& reason) { write(QStringLiteral("no sound: ") + reason); });
    const AlarmPlayer player{media, timer, controls};
    timer.Tick = [&player] {
        TimerPlayer_Tick(player);
    };
    const auto shown = controls.ButtStopAlarm.Visible.onValueChanged([&controls] {
        write(controls.ButtStopAlarm.Visible ? QStringLiteral("sounding")
                                             : QStringLiteral("silent"));
    });

    // Each line is written at once and answered before the next.
    const QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&player] {
        std::string line;
        if (std::getline(std::cin, line))
            carryOut(QString::fromStdString(line), player);
        else
            QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
