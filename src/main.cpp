// SPDX-License-Identifier: GPL-3.0-or-later
// The program: options, one instance, first start, updater, window or terminal, and the end.
#include "automation/automation_object.h"
#include "bus/desktop_notifier.h"
#include "bus/session_bus.h"
#include "core/alarms.h"
#include "core/clients.h"
#include "core/gateway_keeper.h"
#include "core/notices.h"
#include "core/recording.h"
#include "core/session.h"
#include "core/start_up.h"
#include "platform/clock_options.h"
#include "platform/display.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/media_control.h"
#include "platform/quit_signals.h"
#include "platform/service_manager.h"
#include "platform/sudden_exit.h"
#include "terminal.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_setup_form.h"
#include "ui/dialogs/news_window.h"
#include "ui/dialogs/update_window.h"
#include "ui/look/look.h"
#include "ui/window/main_window.h"
#include "ui/window/simulators.h"
#include "ui/window/tray.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLockFile>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>
#include <utility>

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

// A session to start at once and the clients at the bus do not wait for the user's answer.
void warnOfImageLibrary(QWidget* window) {
    const QString text =
        QStringLiteral("FreeImage.dll file must be present in directory\n\r") + programFolder();
    if (!window) {
        terminalMessages()({text, MessageStyle::Ok, kVersion.title()});
        return;
    }
    auto* box =
        new QMessageBox(QMessageBox::Warning, kVersion.title(), text, QMessageBox::Ok, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}

// The window shows first: two dozen libraries come with this one.
void initialiseImages(MonitoringCore& core, KivSHMainform* window) {
    constexpr int kShowFirstMs = 50;
    const auto initialise = [&core, window] {
        if (!core.images.initialise())
            warnOfImageLibrary(window);
    };
    if (window)
        QTimer::singleShot(kShowFirstMs, window, initialise);
    else
        initialise();
}

// Reports once that the window has been painted for the first time.
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

// The face that other programs see. Every return of the bus makes a new one; an old one may still
// be at work on a call and is kept.
class Automation {
  public:
    Automation(MonitoringCore& core, const SessionBus& bus)
        : core_(core)
        , bus_(bus) {}

    void begin() {
        servers_.push_back(makeAutomationObject(bus_.connection(), core_));
        const bool on = servers_.back()->start();
        ShowAutomation(core_.records.session, on);
        if (!on)
            qCWarning(automationLog, "Automation is off: there is no session bus, or the name "
                                     "Kiv_Skyhold.Nubilo is taken.");
    }
    void busLost() {
        servers_.back()->dropClients();
        ShowAutomation(core_.records.session, false);
        qCWarning(automationLog, "Automation is off: the session bus has gone.");
    }
    void end() { servers_.back()->stop(); }

  private:
    MonitoringCore& core_;
    const SessionBus& bus_;
    std::vector<std::unique_ptr<AutomationServer>> servers_;
};

// What changes while nobody looks goes to the desktop.
class DesktopNotices {
  public:
    DesktopNotices(MonitoringCore& core, const SessionBus& bus, KivSHMainform* window)
        : notifier_(bus)
        , notices_(core) {
        notices_.show = [this](const Notice& notice) {
            const bool bad = notice.urgency == NoticeUrgency::Critical;
            notifier_.show({.title = notice.title,
                            .text = notice.text,
                            .icon = bad ? QStringLiteral("dialog-warning")
                                        : QStringLiteral("dialog-information"),
                            .urgency = static_cast<int>(notice.urgency),
                            .actionLabel = notice.silence ? QStringLiteral("Silence") : QString()});
        };
        notices_.close = [this] {
            notifier_.close();
        };
        notices_.seen = [] {
            return QGuiApplication::applicationState() == Qt::ApplicationActive;
        };
        notifier_.action = [&core] {
            stopAlarm(core);
        };
        if (!window)
            return;
        notifier_.opened = [window] {
            window->restore();
        };
        QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &notifier_,
                         [this](Qt::ApplicationState state) {
                             if (state == Qt::ApplicationActive)
                                 notifier_.close();
                         });
    }

  private:
    DesktopNotifier notifier_;
    ChangeNotices notices_;
};

// Ends the program whatever holds the window: a request to quit would first ask the window to
// close, which it refuses while automation clients are attached.
void end(MonitoringCore& core) {
    core.ending = true;
    QCoreApplication::exit(0);
}

// A line per cycle, and the end after as many as were asked for.
[[nodiscard]] QPropertyNotifier followCycles(MonitoringCore& core, const Options& options) {
    return core.records.session.CyclesDone.addNotifier([&core, options] {
        if (options.report) {
            std::printf("%s\n", qPrintable(cycleLine(core.records, core.clock.now())));
            std::fflush(stdout);
        }
        if (core.records.session.CyclesDone == options.cycles)
            QTimer::singleShot(0, qApp, [&core] { end(core); });
    });
}

// The service manager waits for cycles while there is a session, and for none without one.
class ServiceReport {
  public:
    ServiceReport(const ServiceManager& manager, MonitoringCore& core)
        : manager_(manager)
        , session_(core.records.session)
        , state_(session_.State.addNotifier([this] { expect(); }))
        , cycles_(session_.CyclesDone.addNotifier([this, &core] {
            const Label& cause = core.records.display.LblCause;
            manager_.roundDone(core.records.conditions.LblStatus.Caption.value() +
                               QStringLiteral(": ") + cause.Caption.value());
        })) {}

    void ready() {
        manager_.ready();
        expect();
    }

  private:
    void expect() {
        const SessionState state = session_.State.value();
        manager_.expectRounds(state == SessionState::Running);
        if (state != SessionState::Running)
            manager_.report(state == SessionState::Idle
                                ? QStringLiteral("No session: no verdict")
                                : QStringLiteral("Waits for the sensor program's first data"));
    }

    const ServiceManager& manager_;
    SessionControls& session_;
    QPropertyNotifier state_, cycles_;
};

void beginRecording(MonitoringCore& core, const Options& options) {
    if (std::exchange(core.recordAtStart, false))
        startRecording(core, true);
    if (options.record && !core.recorder.recording)
        qCWarning(recordingLog, "Not recording: the user data file cannot be written.");
}

// A session at once, and recording, which waits for the session to make the file's folder.
void beginAsAsked(MonitoringCore& core, const Options& options) {
    core.recordAtStart = options.record;
    if (options.start)
        QTimer::singleShot(0, qApp, [&core, &options] {
            StartSession(core);
            beginRecording(core, options);
        });
    else
        beginRecording(core, options);
}

// The first start; false when the user cancels its assistant.
bool setUp(SettingsStore& settings, bool headless, const CreateObject& createObject,
           const Clock& clock) {
    if (!headless)
        return runSetupForm(settings, Simulators::of(qApp), createObject, clock);
    qCWarning(programLog, "Not set up yet: the monitor runs with its defaults and "
                          "without a weather station file.");
    return true;
}

// What the core shows and asks goes to the window, whose end is the program's.
void connectWindow(KivSHMainform& window, MonitoringCore& core) {
    core.showMessage = makeMessageDialog(window);
    const Notices notices = makeNotices(window);
    core.showNotice = notices.show;
    core.closeNotices = notices.close;
    core.showNews = [&core, &window](const QString& text) {
        showNewsOver(window, core, text);
    };
    window.onUpdate = [&core, &window] {
        runUpdateWindow(core, window);
    };
    core.closeWindow = [&window] {
        window.close();
    };
    QObject::connect(&window, &KivSHMainform::closed, &window, [&core] { end(core); });
}

} // namespace

int main(int argc, char** argv) {
    const bool headless = wantsHeadless(argc, argv);
    if (headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kiv_Skyhold"));
    QApplication::setApplicationVersion(kVersion.text());
    QGuiApplication::setDesktopFileName(
        QStringLiteral("kiv-skyhold")); // name and icon of its windows
    QApplication::setQuitOnLastWindowClosed(false);
    const Options options = parseOptions(application, headless);
    const ServiceManager manager; // before any other program is started
    applyLook(application);
    if (qEnvironmentVariableIsSet("JOURNAL_STREAM")) // where somebody looks them up
        QLoggingCategory::setFilterRules(QStringLiteral("skyhold.verdict.info=true"));

    QLockFile instance(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
                       QStringLiteral("/Kiv_Skyhold.lock"));
    instance.setStaleLockTime(0);
    if (!instance.tryLock(0) && instance.error() == QLockFile::LockFailedError)
        return 0;

    SessionBus bus;
    CreateObject createObject = busObjectCreator(bus.connection());
    SystemClock clock(clockStartFromArguments(application.arguments()));
    SettingsStore settings(QStringLiteral("Kiv_Skyhold"));
    if (isFirstStart(settings) && !setUp(settings, headless, createObject, clock))
        return 0;
    swapUpdater(programFolder());

    SoundPlayerProgram media(
        joinPath(programFolder(), QStringLiteral("Kiv_SoundPlayer")),
        [](const QString& reason) { qCWarning(soundLog, "No sound: %s", qUtf8Printable(reason)); });
    MonitoringCore core(
        clock, settings, [&createObject](const QString& id) { return createObject(id); }, media,
        kVersion);
    core.showMessage = terminalMessages();
    LoadMainWindow(core);
    beginHistory(core);
    auto gateway = std::make_unique<GatewayKeeper>(
        core.records.network, joinPath(programFolder(), QStringLiteral("skyhold-gateway")));

    std::unique_ptr<KivSHMainform> window;
    std::unique_ptr<Tray> tray;
    if (!headless) {
        Simulators::of(&application).endWithFile(core.records.stationFile.HTMFile);
        window = std::make_unique<KivSHMainform>(core);
        connectWindow(*window, core);
        tray = std::make_unique<Tray>(core, *window);
        if (options.report)
            window->centralWidget()->installEventFilter(new PaintReport(window.get()));
        window->show();
    } else {
        core.closeWindow = [&core] {
            end(core);
        };
    }
    initialiseImages(core, window.get());

    Automation automation(core, bus);
    bus.found = [&] {
        createObject = busObjectCreator(bus.connection());
        automation.begin();
    };
    bus.lost = [&automation] {
        automation.busLost();
    };
    automation.begin();
    std::optional<DesktopNotices> notices(std::in_place, core, bus, window.get());

    onQuitSignal([&core] {
        StopSession(core); // ends a start that still waits, too
        end(core);
    });
    const QPropertyNotifier following = followCycles(core, options);
    ServiceReport service(manager, core);
    beginAsAsked(core, options);

    // Qt ends the program when its display goes away. What was recorded and set is whole then, and
    // the sensor program is on its own again, as after any other end.
    onSuddenExit([&core, &automation] {
        core.showMessage = terminalMessages();
        qCWarning(programLog, "The display has gone: the monitor ends.");
        StopSession(core);
        automation.end();
        Unload(core);
    });
    service.ready();
    const int status = QApplication::exec();
    manager.stopping();
    onSuddenExit(nullptr);

    if (!options.screenshot.isEmpty()) {
        if (!window)
            window = std::make_unique<KivSHMainform>(core);
        window->grab().save(options.screenshot);
    }
    // A signal or the last cycle ends a running session too; the window has stopped it already.
    StopSession(core);
    notices.reset();
    tray.reset();
    automation.end();
    Unload(core);
    window.reset();
    return status;
}
