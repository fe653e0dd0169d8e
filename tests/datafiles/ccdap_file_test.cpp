#include "datafiles/ccdap_file.h"

#include "support/manual_clock.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

namespace skyhold {
namespace {

const NumberForms kPoint{};
const NumberForms kComma{QStringLiteral(","), QStringLiteral(".")};

// Moves on by a second whenever it is asked.
class RunningClock : public ManualClock {
  public:
    using ManualClock::ManualClock;
    QDateTime now() const override { return ManualClock::now().addSecs(asked_++); }

  private:
    mutable int asked_ = 0;
};

CurrentReadings someReadings() {
    CurrentReadings readings;
    readings.SensorValues = {-21.34, 900, 12, 3, 100, 30};
    readings.AmbientTemperature = -5.3;
    readings.SkySensorTemperature = 12345.6;
    readings.WindSpeed = 0.25;
    readings.HumidityValue = 1000;
    readings.DewPointValue = -0.04;
    readings.CloudCondition = CloudVeryCloudy;
    readings.WindCondition = WindWindy;
    readings.RainCondition = RainDry;
    readings.BrightnessCondition = BrightnessDark;
    readings.SpeedUnit = QStringLiteral("m");
    return readings;
}

TEST(CcdapFile, FixedFieldsKeepTheirLastCharacters) {
    const std::vector<std::tuple<double, const char16_t*, int, const char16_t*>> cases = {
        {-5.3, u"#0.0", 7, u"  -5.3 "},
        {12345.6, u"#0.0", 7, u"2345.6 "},
        {100, u"0", 4, u"100 "},
        {1000, u"0", 4, u"000 "},
        {0, u"#0.0", 7, u"   0.0 "},
        {3, u"00000", 6, u"00003 "},
        {7, u"0", 2, u"7 "},
        {12, u"0", 2, u"2 "},
    };
    for (const auto& [value, format, width, text] : cases)
        EXPECT_EQ(FormatFixedField(value, format, width, kPoint), QString::fromUtf16(text))
            << value;
}

TEST(CcdapFile, RecordByteByByte) {
    const RunningClock clock(QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59)));
    // The time and the day number were asked for one and two seconds after the date.
    EXPECT_EQ(ccdapRecord(someReadings(), clock, kPoint),
              QByteArray("2026-11-16 00:00:00.00 C m "
                         " -21.3   -5.3 2345.6    0.3 000    0.0 100 0 0 00003 "
                         "046343.00001 3 2 1 1"));

    CurrentReadings wet = someReadings();
    wet.RainCondition = RainUnknown;
    wet.TemperatureUnit = QStringLiteral(" ");
    wet.SpeedUnit = QString();
    wet.StationDataOld = true;
    wet.CloudCondition = CloudUnknown;
    const ManualClock noon(QDateTime(QDate(2026, 11, 16), QTime(12, 0)));
    EXPECT_EQ(ccdapRecord(wet, noon, kComma),
              QByteArray("2026-11-16 12:00:00.00     "
                         " -21,3   -5,3 2345,6    0,3 000    0,0 100 2 2 01000 "
                         "046342,50000 0 2 0 1"));
    const NumberForms odd{QStringLiteral("€\u066B.."), QString()};
    EXPECT_EQ(ccdapRecord(wet, noon, odd).size(), kCcdapRecordLength);
}

TEST(CcdapFile, RewritesTheFirstHundredBytesOnly) {
    const QTemporaryDir folder;
    const ManualClock clock;
    CcdapControls controls;
    controls.LblPathNameCCDAP4.Caption = folder.path() + u'\\';
    controls.FileNameCCDAP4.Text = QStringLiteral("weather.dat");
    QFile file(folder.filePath(QStringLiteral("weather.dat")));

    ASSERT_TRUE(WriteCcdapFile(controls, someReadings(), clock, kPoint));
    const QByteArray record = ccdapRecord(someReadings(), clock, kPoint);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    EXPECT_EQ(file.readAll(), record);

    file.seek(0);
    file.write(QByteArray(120, 'x'));
    file.close();
    ASSERT_TRUE(WriteCcdapFile(controls, someReadings(), clock, kPoint));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), record + QByteArray(20, 'x'));
}

TEST(CcdapFile, NoNameIsNoFailureButNoFolderIs) {
    const QTemporaryDir folder;
    const ManualClock clock;
    CcdapControls controls;
    controls.LblPathNameCCDAP4.Caption = folder.filePath(QStringLiteral("missing"));
    controls.FileNameCCDAP4.Text = QStringLiteral("  ");
    EXPECT_TRUE(WriteCcdapFile(controls, someReadings(), clock, kPoint));

    controls.FileNameCCDAP4.Text = QStringLiteral("weather.dat");
    EXPECT_FALSE(WriteCcdapFile(controls, someReadings(), clock, kPoint));
    controls.LblPathNameCCDAP4.Caption = QString();
    EXPECT_FALSE(WriteCcdapFile(controls, someReadings(), clock, kPoint));
    controls.LblPathNameCCDAP4.Caption = folder.path();
    controls.FileNameCCDAP4.Text = QStringLiteral(".");
    EXPECT_FALSE(WriteCcdapFile(controls, someReadings(), clock, kPoint)) << "a folder";
}

} // namespace
} // namespace skyhold
