// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenshots/simulated_monitor.h"

#include "core/read_cycle.h"
#include "core/session.h"
#include "core/start_up.h"
#include "datafiles/upload_list.h"
#include "graphs/history.h"
#include "simulators/station_text.h"

#include <QDir>
#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kReadSeconds = 10;

SettingsStore settingsIn(const ShownFolder& folder) {
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(name, folder.path().toLocal8Bit());
    return SettingsStore(u"Kiv_Skyhold"_s);
}

} // namespace

ShownFolder::ShownFolder()
    : path_(QDir::temp().filePath(u"observatory"_s)) {
    if (!QDir().mkdir(path_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        path_ = other_.emplace().path();
}

ShownFolder::~ShownFolder() {
    if (!other_)
        QDir(path_).removeRecursively();
}

SimulatedMonitor::SimulatedMonitor(const QDateTime& start)
    : clock_(start)
    , start_(start)
    , settings_(settingsIn(folder_)) {
    core_ = std::make_unique<MonitoringCore>(clock_, settings_, sensor_.creator(), media_,
                                             ProgramVersion{2, 30, 4});
    core_->showMessage = [](const Message&) {
        return MessageAnswer::Ok;
    };
    LoadMainWindow(*core_);
    beginHistory(*core_);
    core_->handOff.program = folder_.filePath(u"none"_s);

    Records& r = records();
    r.stationFile.HTMFile.Caption = folder_.filePath(u"station.htm"_s);
    r.ccdap.LblPathNameCCDAP4.Caption = folder_.path();
    r.dataFile.LblPathName.Caption = folder_.path();
    r.graphs.GraphImagePath.Caption = folder_.path();
    for (CheckBox& image : r.graphs.GraphImage)
        image.set(0);
    r.conditions.SafeDelayVal.Value = 180; // seconds
    r.graphs.GraphFreq.Value = 3;
    SetSampleEvery(r.history, r.graphs, r.session.RefreshRead);
    r.graphs.GraphNoPoints.Value = 240; // two hours
    SetCapacity(r.history, r.graphs, r.session.RefreshRead);
    // Rain is told by a sound.
    r.alarms.Alarm[Quantity::Rain][2].Tag = u"/sounds/Rain.wav|repeat"_s;
    r.alarms.Alarm[Quantity::Rain][2].HasIcons = true;
    r.alarms.Alarm[Quantity::Rain][2].set(1);
    r.upload.ServerAddress.Text = u"ftp.example.org"_s;
    r.upload.ServerPath.Text = u"weather"_s;
    r.upload.UserName.Text = u"observer"_s;
    r.upload.PassWord.Text = u"never to be read"_s;
    ShowUploadReport(
        r.upload, {.processId = 0,
                   .notArrived = {},
                   .lastSuccess = u"2026-11-16 20:38:05, 4 of 4 files"_s,
                   .lastError = u"2026-11-16 19:12:40, Kiv_ImageWindCondition.png: no connection "
                                "to ftp.example.org"_s});
    Add(r.upload, u"Skyhold.csv"_s, u"/home/observer/weather"_s, true);
    for (const char* graph : {"Wind", "Gust", "Temp"})
        Add(r.upload, u"Kiv_Image%1Condition.png"_s.arg(QLatin1String(graph)),
            u"/home/observer/weather"_s, false);
    RefreshFileList(r.upload);
    SelectFile(r.upload, 1);
}

void SimulatedMonitor::runUntil(QTime time) {
    if (!records().session.running()) {
        showWeather();
        StartSession(core());
    }
    QDateTime end(start_.date(), time);
    if (end < start_)
        end = end.addDays(1);
    while (clock_.now() < end)
        cycle();
}

void SimulatedMonitor::start(const std::function<void()>& meanwhile) {
    showWeather();
    sensor_.values[u"DataReady"_s] = false;
    int waits = 0;
    clock_.onWait = [&] {
        if (++waits != 5)
            return;
        meanwhile();
        sensor_.values[u"DataReady"_s] = true;
    };
    StartSession(core());
    clock_.onWait = {};
}

void SimulatedMonitor::cycle() {
    clock_.advanceSeconds(kReadSeconds);
    showWeather();
    RunReadCycle(core());
}

void SimulatedMonitor::showWeather() {
    const Weather weather = weatherAt(Scenario::Night, start_, clock_.now());
    if (!stationStands)
        writeStation(weather);
    sensor_.answering = !sensorFails;
    const auto tell = [this](const char* name, const QVariant& value) {
        sensor_.values[QString::fromLatin1(name)] = value;
    };
    tell("Condition_Cloud", weather.cloudCondition);
    tell("Condition_Rain", weather.rainCondition);
    tell("Condition_Brightness", weather.brightnessCondition);
    tell("SkyTemperature", weather.skyTemperature);
    tell("RainValue", weather.rainValue);
    tell("BrightnessValue", weather.brightnessValue);
    tell("SkySensorTemperature", weather.sensorTemperature);
    tell("AmbientTemperature", weather.temperature);
    tell("LastReading", QVariant::fromValue(AutomationDate{daySerial(clock_.now().addSecs(-2))}));
}

// The file is a minute old at most, as that of a real station.
void SimulatedMonitor::writeStation(const Weather& weather) {
    const QDateTime written = clock_.now().addSecs(-clock_.now().time().second());
    QFile file(records().stationFile.HTMFile.Caption);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("the station's file cannot be written");
    file.write(stationText(cellsOf(weather, {}), written, {}));
    file.flush();
    file.setFileTime(clock_.now(), QFileDevice::FileModificationTime);
}

} // namespace skyhold
