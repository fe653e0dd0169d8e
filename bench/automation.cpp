// SPDX-License-Identifier: GPL-3.0-or-later
// Calls of the program's automation members, by one client and by eight at once, beside a bare
// server that only looks the name up among as many; then the memory that many calls leave behind.
// One client is measured on one processor as well: where the scheduler wakes the next in line
// weighs more than what the servers do.
// Starts the program, which lies beside this one, without a display.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>

#include <sched.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kOurs = u"Kiv_Skyhold.Nubilo"_s;
const QString kBare = u"Bare.Server"_s;
const QString kDispatch = u"Kiv.Automation.Dispatch"_s;

constexpr int kRounds = 41;
constexpr int kClients = 8;
constexpr int kCallsARound = 2000;
constexpr int kCallsForMemory = 400'000;
constexpr int kNames = 208;

QString pathOf(const QString& name) {
    return u'/' + QString(name).replace(u'.', u'/');
}

class BareServer : public QDBusVirtualObject {
  public:
    BareServer() {
        for (int i = 1; i < kNames; ++i)
            values_.insert(u"Member%1"_s.arg(i), false);
        values_.insert(u"Safe"_s, true);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == u"CreateInstance"_s) {
            bus.send(
                message.createReply(QVariant::fromValue(QDBusObjectPath(pathOf(kBare) + u"/1"_s))));
            return true;
        }
        const auto value = values_.constFind(message.arguments().value(0).toString());
        if (value == values_.cend())
            return false;
        bus.send(message.createReply(
            {QVariant::fromValue(QDBusVariant(*value)), QVariant(QVariantList())}));
        return true;
    }

  private:
    QHash<QString, bool> values_;
};

int serveBare() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    BareServer server;
    if (!bus.registerVirtualObject(pathOf(kBare), &server, QDBusConnection::SubPath) ||
        !bus.registerService(kBare))
        return 1;
    return QCoreApplication::exec();
}

// Prints "ready"; for every line that it reads, a number of calls, makes them one after another and
// prints "done". Ends with its input.
int beClient(const QString& name) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QDBusMessage created = bus.call(QDBusMessage::createMethodCall(
        name, pathOf(name), u"Kiv.Automation.ClassFactory"_s, u"CreateInstance"_s));
    const QString path = created.arguments().value(0).value<QDBusObjectPath>().path();
    if (path.isEmpty())
        return 1;
    QDBusMessage call =
        QDBusMessage::createMethodCall(created.service(), path, kDispatch, u"InvokeByName"_s);
    call << u"Safe"_s << 3U << QVariant(QVariantList());
    std::puts("ready");
    std::fflush(stdout);
    for (int calls = 0; std::scanf("%d", &calls) == 1;) {
        for (int i = 0; i < calls; ++i) {
            if (bus.call(call).type() != QDBusMessage::ReplyMessage)
                return 1;
        }
        std::puts("done");
        std::fflush(stdout);
    }
    return 0;
}

using Process = std::unique_ptr<QProcess>;

Process startSelf(const QStringList& arguments) {
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(QCoreApplication::applicationFilePath(), arguments);
    return process;
}

void stop(QProcess& process) {
    process.terminate();
    process.waitForFinished();
}

bool readLine(QProcess& process, const QByteArray& expected) {
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead(120'000))
            return false;
    }
    return process.readLine().trimmed() == expected;
}

bool waitForName(const QString& name) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 10'000) {
        if (QDBusConnection::sessionBus().interface()->isServiceRegistered(name))
            return true;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    return false;
}

// Client processes of one server.
class Clients {
  public:
    Clients(const QString& name, int count) {
        for (int i = 0; i < count; ++i)
            processes_.push_back(startSelf({u"--client"_s, name}));
        for (const Process& process : processes_)
            ready_ = readLine(*process, "ready") && ready_;
    }
    ~Clients() {
        for (const Process& process : processes_) {
            process->closeWriteChannel();
            process->waitForFinished();
        }
    }
    Clients(const Clients&) = delete;
    Clients& operator=(const Clients&) = delete;

    // Calls per second of all together, which share `calls`; 0 when one failed.
    double callsPerSecond(int calls) {
        if (!ready_)
            return 0;
        const int each = calls / static_cast<int>(processes_.size());
        QElapsedTimer timer;
        timer.start();
        for (const Process& process : processes_) {
            process->write(QByteArray::number(each) + '\n');
            process->waitForBytesWritten();
        }
        for (const Process& process : processes_) {
            if (!readLine(*process, "done"))
                return 0;
        }
        return calls / (static_cast<double>(timer.nsecsElapsed()) * 1e-9);
    }

  private:
    std::vector<Process> processes_;
    bool ready_ = true;
};

struct Spread {
    explicit Spread(std::vector<double> values) {
        std::sort(values.begin(), values.end());
        low = values.front();
        median = values[values.size() / 2];
        high = values.back();
    }
    double low, median, high;
};

// Both servers in turn and in short rounds, so that what else the computer does meets both alike.
bool compare(const char* title, int clients) {
    Clients ofBare(kBare, clients);
    Clients ofOurs(kOurs, clients);
    std::vector<double> ours, bare, ratios;
    for (int round = 0; round < kRounds; ++round) {
        bare.push_back(ofBare.callsPerSecond(kCallsARound));
        ours.push_back(ofOurs.callsPerSecond(kCallsARound));
        if (ours.back() <= 0 || bare.back() <= 0)
            return false;
        ratios.push_back(ours.back() / bare.back());
    }
    const Spread our(ours), peer(bare), ratio(ratios);
    std::printf("%s, calls a second: %.0f (%.0f to %.0f); bare server: %.0f (%.0f to %.0f)\n",
                title, our.median, our.low, our.high, peer.median, peer.low, peer.high);
    std::printf("%s, of the bare server's calls (at least 0.85): %.3f (%.3f to %.3f)\n", title,
                ratio.median, ratio.low, ratio.high);
    return true;
}

qint64 busProcess() {
    return QDBusConnection::sessionBus().interface()->servicePid(u"org.freedesktop.DBus"_s).value();
}

// Holds the processes, this one and what it starts from now on to the processors.
void pinTo(const cpu_set_t& processors, const std::vector<qint64>& processes) {
    for (const qint64 process : processes) {
        const QDir threads(u"/proc/%1/task"_s.arg(process));
        for (const QString& thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            sched_setaffinity(thread.toInt(), sizeof processors, &processors);
    }
    sched_setaffinity(0, sizeof processors, &processors);
}

bool compareOnOneProcessor(const std::vector<qint64>& processes) {
    cpu_set_t all, one;
    sched_getaffinity(0, sizeof all, &all);
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    pinTo(one, processes);
    const bool compared = compare("one client on one processor", 1);
    pinTo(all, processes);
    return compared;
}

long residentKilobytes(qint64 process) {
    QFile status(u"/proc/%1/status"_s.arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    }
    return -1;
}

bool measureMemory(qint64 process) {
    Clients clients(kOurs, kClients);
    if (clients.callsPerSecond(kCallsARound) <= 0)
        return false;
    const long before = residentKilobytes(process);
    if (clients.callsPerSecond(kCallsForMemory) <= 0)
        return false;
    const long after = residentKilobytes(process);
    std::printf("resident memory after %d calls more (at most 512 kB): %ld kB (of %ld kB)\n",
                kCallsForMemory, after - before, before);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == u"--bare"_s)
        return serveBare();
    if (arguments.value(1) == u"--client"_s)
        return beClient(arguments.value(2));

    // The program has folders of its own: the user's are never touched.
    const QTemporaryDir folder;
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, folder.path().toLocal8Bit());
    QProcess ours;
    ours.start(QCoreApplication::applicationDirPath() + u"/Kiv_Skyhold"_s, {u"--headless"_s});
    const Process bare = startSelf({u"--bare"_s});
    const bool complete =
        waitForName(kOurs) && waitForName(kBare) &&
        compareOnOneProcessor({busProcess(), ours.processId(), bare->processId()}) &&
        compare("one client", 1) && compare("eight clients", kClients) &&
        measureMemory(ours.processId());
    if (!complete)
        std::fprintf(stderr, "not measured\n");
    stop(*bare);
    stop(ours);
    return complete ? 0 : 1;
}
