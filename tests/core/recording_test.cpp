#include "core/recording.h"

#include "support/core_fixture.h"

namespace skyhold {
namespace {

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

    std::vector<std::string> lines() const {
        QByteArray text = folder_->read(u"Skyhold.csv"_s);
        EXPECT_TRUE(text.endsWith("\r\n"));
        text.chop(2);
        std::vector<std::string> found;
        for (const QByteArray& line : text.replace("\r\n", "\n").split('\n'))
            found.push_back(line.toStdString());
        return found;
    }
};

TEST_F(Recording, linesOfASession) {
    for (const std::size_t slot : {2, 3, 4, 5, 7, 13, 24, 25})
        showColumn(slot);
    records().dataFile.SaveFreq.set(0);
    EXPECT_EQ(records().dataFile.SaveFreq.Value, 1);
    records().dataFile.SaveFreq.set(2);
    records().dataFile.RecOption.choose(0);
    StartSession(*core_);
    sensor_.takeCalls();
    cycle(); // counted only
    StationPage page;
    page.wind = u"15"_s;
    page.humidity = u"95 %"_s;
    sensor_.values[u"Condition_Rain"_s] = 0;
    cycle(page);
    EXPECT_EQ(sensor_.takeCalls().filter(u"Description"_s).size(), 5)
        << "the words on the display are not asked for again";
    cycle();
    records().dataFile.RecOption.choose(1);
    cycle();
    EXPECT_EQ(
        lines(),
        (std::vector<std::string>{
            R"("Time","Cloud Condition","Rain Condition","Wind Condition","Temperature Condition","Wind Speed","Switch Status","Safe Condtition")",
            R"("12:00:00","Clear","Dry","Calm","Fine","5","Opened","Safe")",
            R"("12:00:00","Clear","Unknown","Windy","Fine","15","Closed","Unsafe")"}));
}

TEST_F(Recording, lineIsWrittenWhileSourcesFail) {
    for (const std::size_t slot : {3, 5, 11, 13})
        showColumn(slot);
    records().dataFile.RecOption.choose(0);
    StartSession(*core_);
    sensor_.values[u"DeviceIsRunning"_s] = false;
    QFile::remove(stationPath());
    RunReadCycle(*core_);
    sensor_.answering = false;
    RunReadCycle(*core_);
    // The display is blank; the readings keep their last state. A sensor program that does not
    // answer has no words.
    EXPECT_EQ(records().display.LCond[Quantity::Cloud].Caption.value(), QString());
    EXPECT_EQ(lines(), (std::vector<std::string>{
                           R"("Cloud Condition","Wind Condition","Cloud Value","Wind Speed")",
                           R"("Clear","Calm","-25.3","5")", R"("Clear","Calm","-25.3","5")",
                           R"("","Calm","-25.3","5")"}));
    EXPECT_EQ(records().history.count(), 2) << "the first reading";

    // Asking for the words must not make every cycle a failed one.
    sensor_.answering = true;
    sensor_.values[u"DeviceIsRunning"_s] = true;
    cycle();
    cycle();
    EXPECT_FALSE(records().readings.SensorError);
    EXPECT_EQ(codes(), QString());
}

TEST_F(Recording, startThatFailsShowsItsCode) {
    const auto check = [this](const char* what) {
        EXPECT_EQ(codes(), u"d13"_s) << what;
        EXPECT_EQ(records().dataFile.LEDRecord.FillColor, kRed) << what;
        EXPECT_EQ(records().session.Statusbar2.ForeColor, kRed) << what;
        EXPECT_EQ(records().dataFile.RecOption.Index, 1) << what;
        EXPECT_TRUE(records().dataFile.FileName.Enabled) << what;
        records().session.Statusbar2.Caption = QString();
    };
    records().dataFile.LblPathName.Caption = folder_->filePath(u"gone"_s);
    records().dataFile.RecOption.choose(0);
    check("user");
    startRecording(*core_, true);
    check("automation");
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
    EXPECT_EQ(folder_->read(u"new/folder/Skyhold.csv"_s), "\"Wind Speed\"\r\n\"5\"\r\n\"6\"\r\n");
}

TEST_F(Recording, unloadClosesTheFileLast) {
    showColumn(13);
    records().dataFile.RecOption.choose(0);
    StartSession(*core_);
    Unload(*core_);
    EXPECT_FALSE(core_->recorder.recording);
    RunReadCycle(*core_);
    EXPECT_EQ(lines(), (std::vector<std::string>{"\"Wind Speed\"", "\"5\""}));
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

TEST_F(Recording, ImageTypeNamesItselfAndShowsTheQuality) {
    GraphControls& graphs = records().graphs;
    const auto expect = [&graphs](bool png) {
        EXPECT_EQ(graphs.ImageType.Caption.value(), png ? u"Image PNG"_s : u"Image JPEG"_s);
        EXPECT_EQ(graphs.ImageQuality.Visible, !png);
    };
    expect(true); // the default, as loaded
    for (const bool png : {false, true}) {
        graphs.ImageType.set(png ? 1 : 0);
        expect(png);
    }
}

} // namespace
} // namespace skyhold
