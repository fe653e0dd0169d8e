// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/alarms.h"
#include "core/clients.h"
#include "core/recording.h"
#include "support/core_fixture.h"

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

// Rain, station and sensor program have alarms with the sounds "rain", "station" and "sensor".
class CoreAlarms : public CoreFixture {
  protected:
    CoreAlarms() {
        AlarmControls& alarms = records().alarms;
        for (const auto& [box, name] : {std::pair{&alarms.Alarm[Quantity::Rain][2], u"rain"_s},
                                        {&alarms.AlarmWS, u"station"_s},
                                        {&alarms.AlarmNB, u"sensor"_s}}) {
            box->Tag = sound(name);
            box->set(1);
        }
    }
    QString sound(const QString& name) { return folder_->write(name + u".wav"_s); }

    // What was heard since it was asked last, and the alarm that owns the sound.
    void expect(const QString& heard, const QString& id) {
        EXPECT_EQ(media_.heard(), heard);
        EXPECT_EQ(records().readings.AlarmSoundId, id);
    }
    bool stopOffered() { return records().alarms.ButtStopAlarm.Visible; }
};

TEST_F(CoreAlarms, soundsWithTheVerdictAndEndsWithIt) {
    StartSession(*core_);
    media_.heard();
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
    EXPECT_TRUE(stopOffered());
    EXPECT_TRUE(core_->TimerPlayer.enabled());
    core_->TimerPlayer.Tick();
    EXPECT_TRUE(stopOffered());
    media_.mode = u"stopped"_s;
    core_->TimerPlayer.Tick();
    EXPECT_FALSE(stopOffered());
    EXPECT_FALSE(core_->TimerPlayer.enabled());
    media_.heard();
    rainCycle(3);
    expect({}, u"R2"_s);
    rainCycle(1);
    expect(u"-"_s, {});
}

TEST_F(CoreAlarms, endOfSessionAndLocalControlSilenceAndRelease) {
    for (const bool local : {false, true}) {
        SCOPED_TRACE(local);
        StartSession(*core_);
        rainCycle(3);
        expect(u"rain"_s, u"R2"_s);
        local ? HasControl(*core_, true, u"dome script"_s) : StopSession(*core_);
        expect(u"-"_s, {});
        EXPECT_FALSE(stopOffered());
        EXPECT_FALSE(core_->TimerPlayer.enabled());
    }
    // Another program decides: no condition alarm.
    rainCycle(3);
    expect({}, {});
    HasControl(*core_, false, {});
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
}

TEST_F(CoreAlarms, suspensionIsAClickRule) {
    StartSession(*core_);
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
    records().alarms.SuspendSoundAlarm.set(1);
    expect(u"-"_s, u"R2"_s);
    records().alarms.SuspendSoundAlarm.set(0);
    expect({}, {});
}

TEST_F(CoreAlarms, sensorFailureSilencesTheSensorProgramAndSoundsWhileItLasts) {
    StartSession(*core_);
    sensor_.values[u"DeviceIsRunning"_s] = false;
    media_.heard();
    sensor_.takeCalls();
    cycle();
    const QStringList calls = sensor_.takeCalls();
    EXPECT_EQ(calls.count(u"Kiv_AlarmStop"_s), 1);
    EXPECT_EQ(calls.indexOf(u"Kiv_AlarmStop"_s), calls.indexOf(u"Kiv_XFERFileErr"_s) + 1);
    expect(u"sensor"_s, u"20"_s);
    EXPECT_EQ(codes(), u"a31"_s);

    // Its own condition alarms wait, and nothing is started twice.
    rainCycle(3);
    expect({}, u"20"_s);
    EXPECT_EQ(sensor_.takeCalls().count(u"Kiv_AlarmStop"_s), 0);

    // With the sensor program back the rain is heard.
    sensor_.values[u"DeviceIsRunning"_s] = true;
    rainCycle(3);
    expect(u"rain"_s, u"R2"_s);
    EXPECT_EQ(codes(), QString());
}

// What the cycles leave behind: the user data file, the graph history and the graphs.
class Recording : public CoreFixture {
  protected:
    Recording() {
        for (DataColumn& column : records().dataFile.Columns)
            column.Prt = false;
    }

    QString recorded() {
        return QString(records().dataFile.LblRecorded.Caption).remove(folder_->path() + u'/');
    }
    void showColumn(std::size_t slot) { records().dataFile.Columns[slot - 1].Prt = true; }
};

TEST_F(Recording, startThatFailsShowsItsCode) {
    records().dataFile.LblPathName.Caption = folder_->filePath(u"gone"_s);
    records().dataFile.RecOption.choose(0);
    EXPECT_EQ(codes(), u"d13"_s);
    EXPECT_EQ(records().dataFile.LEDRecord.FillColor, kRed);
    EXPECT_EQ(records().dataFile.RecOption.Index, 1);
    records().session.Statusbar2.Caption = QString();
    startRecording(*core_, true);
    EXPECT_EQ(codes(), u"d13"_s);
    records().session.Statusbar2.Caption = QString();
    ASSERT_TRUE(QDir().mkdir(folder_->filePath(u"gone"_s)));
    startRecording(*core_, true);
    EXPECT_EQ(codes(), QString());
    EXPECT_EQ(records().dataFile.RecOption.Index, 0);
    EXPECT_EQ(recorded(), u"gone/Skyhold.csv: the first line comes with a read cycle"_s);
    EXPECT_EQ(records().dataFile.LEDRecord.FillColor, kGreen);
    StartSession(*core_);
    cycle();
    EXPECT_EQ(recorded(), u"gone/Skyhold.csv: 2 lines"_s);
    stopRecording(*core_);
    EXPECT_EQ(recorded(), u"Stopped. gone/Skyhold.csv: 2 lines"_s);
    EXPECT_EQ(records().dataFile.LEDRecord.FillColor, kGrey);
    EXPECT_EQ(records().dataFile.RecOption.Index, 1);
}

TEST_F(Recording, beginsWithASessionThatMakesItsFolder) {
    showColumn(13);
    records().dataFile.LblPathName.Caption = folder_->filePath(u"new/folder"_s);
    core_->recordAtStart = true;
    StartSession(*core_);
    cycle({.wind = u"6"_s});
    Unload(*core_); // which closes it last
    RunReadCycle(*core_);
    EXPECT_EQ(folder_->read(u"new/folder/Skyhold.csv"_s), "\"Wind Speed\"\r\n\"5\"\r\n\"6\"\r\n");
}

TEST_F(Recording, goesOnWhileSourcesFailAndItsCodeStandsBesideTheirs) {
    for (const std::size_t slot : {3U, 11U, 13U})
        showColumn(slot);
    const QString place = folder_->filePath(u"data"_s);
    records().dataFile.LblPathName.Caption = place;
    core_->recordAtStart = true;
    StartSession(*core_);
    sensor_.values[u"DeviceIsRunning"_s] = false;
    cycle();
    sensor_.answering = false;
    cycle();
    // The display is blank; the readings keep their last state. A sensor program that does not
    // answer has no words.
    EXPECT_EQ(records().display.LCond[Quantity::Cloud].Caption.value(), QString());
    EXPECT_EQ(folder_->read(u"data/Skyhold.csv"_s),
              "\"Cloud Condition\",\"Cloud Value\",\"Wind Speed\"\r\n\"Clear\",\"-25.3\",\"5\"\r\n"
              "\"Clear\",\"-25.3\",\"5\"\r\n\"\",\"-25.3\",\"5\"\r\n");
    ASSERT_TRUE(QDir(place).removeRecursively());
    cycle();
    EXPECT_EQ(codes(), u"a31 d13"_s);

    // Asking for the words must not make every cycle a failed one.
    ASSERT_TRUE(QDir().mkpath(place));
    sensor_.answering = true;
    sensor_.values[u"DeviceIsRunning"_s] = true;
    cycle();
    cycle();
    EXPECT_EQ(codes(), QString());
}

TEST_F(Recording, historyFollowsTheCyclesTheBoxesAndTheUnits) {
    const GraphHistory& history = records().history;
    const GraphControls& graphs = records().graphs;
    EXPECT_EQ(history.SampleEvery, 6);
    EXPECT_EQ(graphs.GraphSpan.Caption.value(), u"7200"_s);
    EXPECT_EQ(graphs.GraphSpanDesc.Caption.value(), u"02 h 00 m 00 s"_s);
    records().session.RefreshRead.choose(0);
    EXPECT_EQ(graphs.GraphSpan.Caption.value(), u"3600"_s);
    records().graphs.GraphFreq.set(2);
    EXPECT_EQ(graphs.GraphSpan.Caption.value(), u"1200"_s);
    records().graphs.GraphNoPoints.set(5);
    EXPECT_EQ(graphs.GraphNoPoints.Value, 20);
    EXPECT_EQ(graphs.GraphSpan.Caption.value(), u"200"_s);

    StationPage page;
    page.wind = u"36"_s;
    StartSession(*core_);
    cycle();
    cycle(page);
    StopSession(*core_);
    ASSERT_EQ(history.count(), 3) << "kept over the end of a session";
    EXPECT_EQ(history.point(3).wind, 36);
    EXPECT_EQ(history.point(3).spread, 8);
    EXPECT_EQ(history.point(3).date, 46342.5) << "the sensor program's last reading";

    records().units.UnitsSpeed.choose(2);
    records().units.UnitsTemp.choose(1);
    for (const std::int32_t elem : {1, 2})
        EXPECT_DOUBLE_EQ(history.point(elem).wind, 5 / 3.6);
    EXPECT_EQ(history.point(3).wind, 10);
    EXPECT_DOUBLE_EQ(history.point(3).gust, 8 / 3.6);
    EXPECT_EQ(history.point(3).spread, 14);
    EXPECT_EQ(history.point(3).temperature, 54);
    records().graphs.GraphNoPoints.set(21);
    EXPECT_EQ(history.count(), 0);
}

TEST_F(Recording, CyclesDrawAndSaveTheHistory) {
    const QString wind = folder_->filePath(u"Kiv_ImageWindCondition.png"_s);
    StartSession(*core_);
    core_->imageWriter.finish();
    EXPECT_EQ(records().pictures[0].Drawings, 1);
    EXPECT_EQ(QImage(wind).size(), QSize(600, 200));

    // The next five readings are no points: the same picture is saved again.
    ASSERT_TRUE(QFile::remove(wind));
    for (int i = 0; i < 5; ++i)
        cycle();
    EXPECT_EQ(records().pictures[0].Drawings, 1);
    EXPECT_EQ(QImage(wind).size(), QSize(600, 200));
    cycle();
    EXPECT_EQ(records().pictures[0].Drawings, 2);
    EXPECT_EQ(codes(), QString());

    records().graphs.GraphImagePath.Caption = folder_->filePath(u"none"_s);
    cycle();
    EXPECT_EQ(codes(), u"i23"_s);
}

} // namespace
} // namespace skyhold
