// SPDX-License-Identifier: GPL-3.0-or-later
// The calls of a read cycle to the sensor program, beside as many bare blocking calls that carry
// the same bytes. Starts the simulated sensor program, which lies beside this one.
#include "bus/automation_client.h"
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QProcess>

#include <cstdio>

namespace {

using namespace skyhold;

const QString kProgramId = QStringLiteral("Kiv_Nubilo.Nubilo");

const QStringList& cycleNames() {
    static const QStringList names{
        QStringLiteral("Kiv_TemperatureUnits"),  QStringLiteral("Condition_Cloud"),
        QStringLiteral("Condition_Rain"),        QStringLiteral("Condition_Brightness"),
        QStringLiteral("SkyTemperature"),        QStringLiteral("RainValue"),
        QStringLiteral("BrightnessValue"),       QStringLiteral("SkySensorTemperature"),
        QStringLiteral("AmbientTemperature"),    QStringLiteral("RainHeaterPercent"),
        QStringLiteral("RainHeaterTemperature"), QStringLiteral("RainHeaterStatus"),
        QStringLiteral("LastReading"),           QStringLiteral("DeviceIsRunning"),
        QStringLiteral("Kiv_XFERFileErr"),       QStringLiteral("DescriptionClear"),
        QStringLiteral("DescriptionDry"),        QStringLiteral("DescriptionDark"),
        QStringLiteral("SwitchStatus"),          QStringLiteral("DataReady")};
    return names;
}

void BM_cycle_calls(benchmark::State& state) {
    const auto object = busObjectCreator(QDBusConnection::sessionBus())(kProgramId);
    for (auto _ : state) {
        for (const QString& name : cycleNames()) {
            QVariantList arguments;
            if (!object || !object->invoke(name, kRead, arguments).ok()) {
                state.SkipWithError("the sensor program refused a call");
                return;
            }
        }
    }
}

void BM_bare_calls(benchmark::State& state) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QDBusMessage created = bus.call(QDBusMessage::createMethodCall(
        kProgramId, factoryPath(kProgramId), QString::fromLatin1(kFactoryInterface),
        QStringLiteral("CreateInstance")));
    const QString path = created.arguments().value(0).value<QDBusObjectPath>().path();
    for (auto _ : state) {
        for (const QString& name : cycleNames()) {
            QDBusMessage call = QDBusMessage::createMethodCall(
                created.service(), path, QString::fromLatin1(kDispatchInterface),
                QStringLiteral("InvokeByName"));
            call << name << static_cast<uint>(kRead) << QVariant(QVariantList());
            if (bus.call(call).type() != QDBusMessage::ReplyMessage) {
                state.SkipWithError("the sensor program refused a call");
                return;
            }
        }
    }
}

BENCHMARK(BM_cycle_calls)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_bare_calls)->Unit(benchmark::kMicrosecond)->UseRealTime();

bool waitForSensor() {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 10'000) {
        if (QDBusConnection::sessionBus().interface()->isServiceRegistered(kProgramId))
            return true;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QProcess sensor;
    sensor.start(QCoreApplication::applicationDirPath() + QStringLiteral("/Kiv_NubiloSim"), {});
    if (!waitForSensor()) {
        std::fprintf(stderr, "The simulated sensor program did not start.\n");
        return 1;
    }
    const int status = runAndPrintRatios(argc, argv,
                                         {{"calls of a cycle to bare blocking calls (at most 1.2)",
                                           "BM_cycle_calls", "BM_bare_calls"}});
    sensor.terminate();
    sensor.waitForFinished();
    return status;
}
