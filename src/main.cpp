// The program: options, one instance, first start, updater, window or terminal, and the end.
#include "automation/nubilo_server.h"
#include "core/recording.h"
#include "core/session.h"
#include "core/start_up.h"
#include "platform/clock_options.h"
#include "platform/display.h"
#include "platform/files.h"
#include "platform/media_control.h"
#include "platform/quit_signals.h"
#include "terminal.h"
#include "ui/kiv_error.h"
#include "ui/kiv_setup_form.h"
#include "ui/look.h"
#include "ui/main_window.h"
#include "ui/news_window.h"
#include "ui/tray.h"
#include "ui/update_window.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLockFile>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

using namespace skyhold;

namespace {

const ProgramVersion kVersion{SKYHOLD_VERSION_MAJOR, SKYHOLD_VERSION_MINOR,
                              SKYHOLD_VERSION_REVISION};

struct Options {
    bool headless = false;
    bool start = false;
    bool report = false;
    bool record = false;
    int cycles = 0; // 0: no end
    QString screenshot;
};

Options parseOptions(const QApplication& application, bool headless) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Monitor of sky and weather for an observatory."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption headlessOption(QStringLiteral("headless"),
                                            QStringLiteral("Run without a window."));
    const QCommandLineOption start(QStringLiteral("start"),
                                   QStringLiteral("Start a monitoring session at once."));
    const QCommandLineOption report(QStringLiteral("report"),
                                    QStringLiteral("Write a line for every read cycle."));
    const QCommandLineOption record(QStringLiteral("record"),
                                    QStringLiteral("Record the user data file, appending."));
    const QCommandLineOption cycles(QStringLiteral("cycles"),
                                    QStringLiteral("End after <n> read cycles."),
                                    QStringLiteral("n"), QStringLiteral("0"));
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Leave a picture of the window in <file> at the end."),
        QStringLiteral("file"));
    parser.addOptions({headlessOption, start, report, record, cycles, screenshot});
    parser.addOptions(clockOptions());
    parser.process(application);
    return {.headless = headless,
            .start = parser.isSet(start),
            .report = parser.isSet(report),
            .record = parser.isSet(record),
            .cycles = parser.value(cycles).toInt(),
            .screenshot = parser.value(screenshot)};
}

bool wantsHeadless(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (QLatin1String(argv[i]) == QLatin1String("--headless"))
            return true;
    }
    return !displayReachable();
}

void warnOfImageLibrary(bool headless) {
    const QString text =
        QStringLiteral("FreeImage.dll file must be present in directory\n\r") + programFolder();
    if (headless)
        terminalMessages()({text, MessageStyle::Ok, kVersion.title()});
    else
        QMessageBox::warning(nullptr, kVersion.title(), text, QMessageBox::Ok);
}

// Says when the window has first been painted; once.
class PaintReport : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            std::printf("Window painted\n");
            std::fflush(stdout);
            watched->removeEventFilter(this);
        }
        return false;
    }
};

// Ends the program whatever holds the window: a request to quit would first ask the window to
// close, which it refuses while automation clients are attached.
void end() {
    QCoreApplication::exit(0);
}

// A line per cycle, and the end after as many as were asked for.
void followCycles(MonitoringCore& core, const Options& options) {
    core.cycleDone = [&core, options, done = 0]() mutable {
        if (options.report) {
            std::printf("%s\n", qPrintable(cycleLine(core.records, core.clock.now())));
            std::fflush(stdout);
        }
        if (++done == options.cycles)
            QTimer::singleShot(0, qApp, end);
    };
}

} // namespace

int main(int argc, char** argv) {
    const bool headless = wantsHeadless(argc, argv);
    if (headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kiv_Skyhold"));
    QApplication::setApplicationVersion(kVersion.text());
    QApplication::setQuitOnLastWindowClosed(false);
    const Options options = parseOptions(application, headless);
    applyLook(application);

    QLockFile instance(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
                       QStringLiteral("/Kiv_Skyhold.lock"));
    instance.setStaleLockTime(0);
    if (!instance.tryLock(0) && instance.error() == QLockFile::LockFailedError)
        return 0;

    SettingsStore settings(QStringLiteral("Kiv_Skyhold"));
    if (isFirstStart(settings)) {
        if (headless)
            std::fprintf(stderr, "Not set up yet: the monitor runs with its defaults and "
                                 "without a weather station file.\n");
        else if (!runSetupForm(settings))
            return 0;
    }
    swapUpdater(programFolder());

    SystemClock clock(clockStartFromArguments(application.arguments()));
    const QDBusConnection bus = QDBusConnection::sessionBus();
    SoundPlayerProgram media(
        joinPath(programFolder(), QStringLiteral("Kiv_SoundPlayer")),
        [](const QString& reason) { std::fprintf(stderr, "No sound: %s\n", qPrintable(reason)); });
    MonitoringCore core(clock, settings, busObjectCreator(bus), media, kVersion);
    core.showMessage = terminalMessages();
    LoadMainWindow(core);

    std::unique_ptr<KivSHMainform> window;
    std::unique_ptr<Tray> tray;
    if (!headless) {
        window = std::make_unique<KivSHMainform>(core);
        core.showMessage = makeMessageDialog(*window);
        core.showNews = [&core, &window](const QString& text) {
            showNewsOver(*window, core, text);
        };
        window->onUpdate = [&core, &window] {
            runUpdateWindow(core, *window);
        };
        core.closeWindow = [&window] {
            window->close();
        };
        QObject::connect(window.get(), &KivSHMainform::closed, window.get(), end);
        tray = std::make_unique<Tray>(core, *window);
        if (options.report)
            window->centralWidget()->installEventFilter(new PaintReport(window.get()));
        window->show();
    } else {
        core.closeWindow = end;
    }
    if (!core.images.initialise())
        warnOfImageLibrary(headless);

    const std::unique_ptr<AutomationServer> server = makeNubiloServer(bus, core);
    if (!server->start())
        std::fprintf(stderr, "Automation is off: no session bus, or the name "
                             "Kiv_Skyhold.Nubilo is taken.\n");

    onQuitSignal([&core] {
        StopSession(core); // ends a start that still waits, too
        end();
    });
    followCycles(core, options);
    if (options.record)
        Record_Start(core, true);
    if (options.start)
        QTimer::singleShot(0, &application, [&core] { StartSession(core); });

    const int status = QApplication::exec();

    if (!options.screenshot.isEmpty()) {
        if (!window)
            window = std::make_unique<KivSHMainform>(core);
        window->grab().save(options.screenshot);
    }
    // A signal or the last cycle ends a running session too; the window has stopped it already.
    StopSession(core);
    tray.reset();
    server->stop();
    Unload(core);
    window.reset();
    return status;
}
