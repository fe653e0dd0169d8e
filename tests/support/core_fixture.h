// SPDX-License-Identifier: GPL-3.0-or-later
// A monitor without window and bus: folders of its own, a clock that is moved, a scripted sensor
// program, a station file that the test writes.
#pragma once

#include "core/read_cycle.h"
#include "core/session.h"
#include "core/start_up.h"
#include "core/verdict.h"
#include "support/manual_clock.h"
#include "support/scripted_media.h"
#include "support/scripted_sensor.h"
#include "support/test_folder.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

// One row a quantity; what a test does not name is calm, dry and warm.
struct StationPage {
    QString wind = u"5"_s;
    QString gust = u"8"_s;
    QString direction = u"N"_s;
    QString temperature = u"12.0"_s;
    QString dewPoint = u"4.0"_s;
    QString humidity = u"58 %"_s;
    QString temperatureUnit = u"C"_s;
    QString speedUnit = u"km/h"_s;
};

class CoreFixture : public testing::Test {
  protected:
    CoreFixture() {
        core_->showMessage = [this](const Message& message) {
            messages_.append(message.text);
            return answer_;
        };
        LoadMainWindow(*core_);
        records().stationFile.HTMFile.Caption = stationPath();
        records().ccdap.LblPathNameCCDAP4.Caption = folder_->path();
        records().dataFile.LblPathName.Caption = folder_->path();
        records().graphs.GraphImagePath.Caption = folder_->path();
        core_->handOff.program = folder_->filePath(u"no uploader"_s);
        writeStation({});
    }

    Records& records() { return core_->records; }
    QString stationPath() const { return folder_->filePath(u"station.htm"_s); }
    QString status() { return records().session.Statusbar1.Caption; }
    QString codes() { return records().session.Statusbar2.Caption; }
    QString cause() { return records().display.LblCause.Caption; }
    bool unsafe() { return records().readings.UnsafeFlag; }
    bool running() { return records().session.running(); }

    QByteArray stationBytes(const StationPage& page) const {
        const QDateTime now = clock_.now();
        const std::array<QString, 3> rows[] = {
            {u"Date"_s, {}, now.toString(u"dd/MM/yyyy"_s)},
            {u"Time"_s, {}, now.toString(u"hh:mm:ss"_s)},
            {u"OutTemp"_s, page.temperatureUnit, page.temperature},
            {u"WindSpeed"_s, page.speedUnit, page.wind},
            {u"Gust"_s, page.speedUnit, page.gust},
            {u"WindDirection"_s, {}, page.direction},
            {u"RainDayMin"_s, u"mm"_s, u"0"_s},
            {u"RainDayMax"_s, u"mm"_s, u"1"_s},
            {u"OutHumidity"_s, u"%"_s, page.humidity},
            {u"DewPoint"_s, page.temperatureUnit, page.dewPoint},
            {u"Barometer"_s, u"hPa"_s, u"1012.5"_s}};
        QString text = u"<html><table>\n"_s;
        for (const auto& [name, unit, value] : rows)
            text += u"<tr><td>%1</td><td>%2</td><td>%3</td></tr>\n"_s.arg(name, unit, value);
        return (text + u"</table></html>\n"_s).toUtf8();
    }
    void writeStation(const StationPage& page) { writeStationBytes(stationBytes(page)); }

    // Every write is given a modification time of its own, a second after the last.
    void writeStationBytes(const QByteArray& bytes) {
        QFile file(folder_->write(u"station.htm"_s, bytes));
        modified_ = std::max(modified_.addSecs(1), clock_.now());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(modified_, QFileDevice::FileModificationTime));
    }

    // The next tick of the read timer, with the station file rewritten just before it.
    void cycle(const StationPage& page = {}, int seconds = 10) {
        clock_.advanceSeconds(seconds);
        writeStation(page);
        runCycle();
    }
    // The same with the station file as it is.
    void cycleWithoutStation(int seconds = 10) {
        clock_.advanceSeconds(seconds);
        runCycle();
    }
    // With its images on the disk.
    void runCycle() {
        RunReadCycle(*core_);
        core_->imageWriter.finish();
    }
    void rainCycle(int level) {
        sensor_.values[u"Condition_Rain"_s] = level;
        cycle();
    }

    const std::unique_ptr<SettingsFolder> folder_ = std::make_unique<SettingsFolder>();
    QStringList messages_;
    MessageAnswer answer_ = MessageAnswer::Ok;
    ManualClock clock_;
    ScriptedSensor sensor_;
    ScriptedMedia media_;
    SettingsStore settings_{u"Kiv_Skyhold"_s};
    std::unique_ptr<MonitoringCore> core_ = std::make_unique<MonitoringCore>(
        clock_, settings_, sensor_.creator(), media_, ProgramVersion{2, 30, 4});
    QDateTime modified_ = clock_.now();
};

} // namespace skyhold
