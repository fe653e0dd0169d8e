// A monitor without window and bus: folders of its own, a clock that is moved, a scripted sensor
// program, a station file that the test writes.
#pragma once

#include "core/read_cycle.h"
#include "core/session.h"
#include "core/start_up.h"
#include "support/manual_clock.h"
#include "support/scripted_media.h"
#include "support/scripted_sensor.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace skyhold {

// One row a quantity; what a test does not name is calm, dry and warm.
struct StationPage {
    QString wind = QStringLiteral("5");
    QString gust = QStringLiteral("8");
    QString direction = QStringLiteral("N");
    QString temperature = QStringLiteral("12.0");
    QString dewPoint = QStringLiteral("4.0");
    QString humidity = QStringLiteral("58 %");
    QString temperatureUnit = QStringLiteral("C");
    QString speedUnit = QStringLiteral("km/h");
};

class CoreFixture : public testing::Test {
  protected:
    CoreFixture()
        : folder_(makeFolder())
        , settings_(QStringLiteral("Kiv_Skyhold")) {
        core_ = std::make_unique<MonitoringCore>(clock_, settings_, sensor_.creator(), media_,
                                                 ProgramVersion{2, 30, 4});
        core_->showMessage = [this](const Message& message) {
            messages_.append(message.text);
            return answer_;
        };
        LoadMainWindow(*core_);
        records().stationFile.HTMFile.Caption = stationPath();
        records().ccdap.LblPathNameCCDAP4.Caption = folder_->path();
        records().dataFile.LblPathName.Caption = folder_->path();
        records().graphs.GraphImagePath.Caption = folder_->path();
        core_->handOff.program = folder_->filePath(QStringLiteral("no uploader"));
        writeStation({});
    }

    Records& records() { return core_->records; }
    QString stationPath() const { return folder_->filePath(QStringLiteral("station.htm")); }
    QString status() { return records().session.Statusbar1.Caption; }
    QString codes() { return records().session.Statusbar2.Caption; }
    bool unsafe() { return records().readings.UnsafeFlag; }

    void writeStation(const StationPage& page) {
        const QDateTime now = clock_.now();
        const QList<std::array<QString, 3>> rows{
            {QStringLiteral("Date"), {}, now.toString(QStringLiteral("dd/MM/yyyy"))},
            {QStringLiteral("Time"), {}, now.toString(QStringLiteral("hh:mm:ss"))},
            {QStringLiteral("OutTemp"), page.temperatureUnit, page.temperature},
            {QStringLiteral("WindSpeed"), page.speedUnit, page.wind},
            {QStringLiteral("Gust"), page.speedUnit, page.gust},
            {QStringLiteral("WindDirection"), {}, page.direction},
            {QStringLiteral("RainDayMin"), QStringLiteral("mm"), QStringLiteral("0")},
            {QStringLiteral("RainDayMax"), QStringLiteral("mm"), QStringLiteral("1")},
            {QStringLiteral("OutHumidity"), QStringLiteral("%"), page.humidity},
            {QStringLiteral("DewPoint"), page.temperatureUnit, page.dewPoint},
            {QStringLiteral("Barometer"), QStringLiteral("hPa"), QStringLiteral("1012.5")}};
        QString text = QStringLiteral("<html><table>\n");
        for (const auto& [name, unit, value] : rows)
            text += QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td></tr>\n")
                        .arg(name, unit, value);
        writeStationBytes((text + QStringLiteral("</table></html>\n")).toUtf8());
    }

    // Every write is given a modification time of its own, a second after the last.
    void writeStationBytes(const QByteArray& bytes) {
        QFile file(stationPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.flush();
        modified_ = std::max(modified_.addSecs(1), clock_.now());
        ASSERT_TRUE(file.setFileTime(modified_, QFileDevice::FileModificationTime));
    }

    // The next tick of the read timer, with the station file rewritten just before it.
    void cycle(const StationPage& page = {}, int seconds = 10) {
        clock_.advanceSeconds(seconds);
        writeStation(page);
        RunReadCycle(*core_);
    }

    QStringList messages_;
    MessageAnswer answer_ = MessageAnswer::Ok;
    ManualClock clock_;
    ScriptedSensor sensor_;
    ScriptedMedia media_;
    std::unique_ptr<QTemporaryDir> folder_;
    SettingsStore settings_;
    std::unique_ptr<MonitoringCore> core_;
    QDateTime modified_ = clock_.now();

  private:
    static std::unique_ptr<QTemporaryDir> makeFolder() {
        auto folder = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", folder->path().toLocal8Bit());
        return folder;
    }
};

} // namespace skyhold
