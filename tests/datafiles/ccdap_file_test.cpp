#include "datafiles/ccdap_file.h"

#include "support/manual_clock.h"
#include "support/test_folder.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const NumberForms kPoint{};
const NumberForms kComma{u","_s, u"."_s};

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
    readings.Condition[Quantity::Cloud] = CloudVeryCloudy;
    readings.Condition[Quantity::Wind] = WindWindy;
    readings.Condition[Quantity::Rain] = RainDry;
    readings.Condition[Quantity::Brightness] = BrightnessDark;
    readings.SpeedUnit = SpeedCode::MetresPerSecond;
    return readings;
}

TEST(CcdapFile, RecordByteByByte) {
    const RunningClock clock(QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59)));
    // The time and the day number were asked for one and two seconds after the date. Fields that
    // are too narrow keep the last characters.
    EXPECT_EQ(ccdapRecord(someReadings(), clock, kPoint),
              QByteArray("2026-11-16 00:00:00.00 C m "
                         " -21.3   -5.3 2345.6    0.3 000    0.0 100 0 0 00003 "
                         "046343.00001 3 2 1 1"));

    CurrentReadings wet = someReadings();
    wet.Condition[Quantity::Rain] = RainUnknown;
    wet.TemperatureUnit = TemperatureCode::Unknown;
    wet.SpeedUnit = SpeedCode::Knots;
    wet.StationDataOld = true;
    wet.DewPointValue.reset(); // missing: the record has no other word for it than 0
    wet.Condition[Quantity::Cloud] = CloudUnknown;
    const ManualClock noon(QDateTime(QDate(2026, 11, 16), QTime(12, 0)));
    EXPECT_EQ(ccdapRecord(wet, noon, kComma),
              QByteArray("2026-11-16 12:00:00.00   k "
                         " -21,3   -5,3 2345,6    0,3 000    0,0 100 2 2 01000 "
                         "046342,50000 0 2 0 1"));
    const NumberForms odd{u"€\u066B.."_s, QString()};
    EXPECT_EQ(ccdapRecord(wet, noon, odd).size(), kCcdapRecordLength);
    EXPECT_EQ(FormatFixedField(12, u"0", 2, kPoint), u"2 "_s);
}

TEST(CcdapFile, RewritesTheFirstHundredBytesOfAFileThatHasAPlace) {
    const TestFolder folder;
    const ManualClock clock;
    CcdapControls controls;
    const auto write = [&](const QString& path, const QString& name) {
        controls.LblPathNameCCDAP4.Caption = path;
        controls.FileNameCCDAP4.Text = name;
        return WriteCcdapFile(controls, someReadings(), clock, kPoint);
    };
    const QString name = u"weather.dat"_s;
    const QByteArray record = ccdapRecord(someReadings(), clock, kPoint);
    ASSERT_TRUE(write(folder.path() + u'\\', name));
    EXPECT_EQ(folder.read(name), record);
    folder.write(name, QByteArray(120, 'x'));
    ASSERT_TRUE(write(folder.path(), name));
    EXPECT_EQ(folder.read(name), record + QByteArray(20, 'x'));

    EXPECT_TRUE(write(folder.filePath(u"missing"_s), u"  "_s)) << "no name is no failure";
    EXPECT_FALSE(write(folder.filePath(u"missing"_s), name));
    EXPECT_FALSE(write({}, name));
    EXPECT_FALSE(write(folder.path(), u"."_s)) << "a folder";
}

} // namespace
} // namespace skyhold
