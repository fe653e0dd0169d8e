#include "graphs/history.h"

#include "platform/automation_date.h"
#include "platform/clock.h"

#include <gtest/gtest.h>

#include <vector>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

const QDateTime kMidnight(QDate(2026, 11, 16), QTime(0, 0));

class History : public testing::Test {
  protected:
    History() {
        refreshRead.Entries = {u"5  secs"_s, u"10 secs"_s, u"30 secs"_s, u"60 secs"_s};
        refreshRead.ListIndex = 1;
        setBoxes(120, 1);
    }

    void setBoxes(double points, double frequency) {
        graphs.GraphNoPoints.Value = points;
        SetCapacity(history, graphs, refreshRead);
        graphs.GraphFreq.Value = frequency;
        SetSampleEvery(history, graphs, refreshRead);
    }

    // The readings are numbered: the wind speed is the number.
    void read(int readings) {
        for (int i = 0; i < readings; ++i) {
            ++taken;
            current.LastReading = kMidnight.addSecs(10 * taken);
            current.WindSpeed = taken;
            current.GustSpeed = taken + 0.5;
            current.WindDirection = 22.5;
            current.StationTemperature = 8.5;
            current.DewPointValue = 10.25;
            current.HumidityValue = 58;
            AddReading(history, current, graphs.GraphNoPoints);
        }
    }

    // The wind speeds from the oldest point to the newest.
    std::vector<double> winds() const {
        std::vector<double> found;
        std::int32_t elem = history.FirstElem;
        for (std::int32_t left = history.count(); left > 0; --left, elem = history.next(elem))
            found.push_back(history.point(elem).wind);
        return found;
    }

    GraphHistory history;
    GraphControls graphs;
    ComboBox refreshRead;
    CurrentReadings current;
    int taken = 0;
};

TEST_F(History, RingKeepsTheNewestPoints) {
    setBoxes(20, 1);
    const struct {
        int readings;
        std::int32_t first, last, count;
        double oldest;
    } cases[] = {
        {0, 0, 0, 0, 0},      {1, 1, 2, 2, 1},     {2, 1, 3, 3, 1},    {18, 1, 19, 19, 1},
        {19, 1, 20, 20, 1},   {20, 2, 1, 20, 1},   {21, 3, 2, 20, 2},  {37, 19, 18, 20, 18},
        {38, 20, 19, 20, 19}, {39, 1, 20, 20, 20}, {40, 2, 1, 20, 21},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.readings);
        read(c.readings - taken);
        EXPECT_EQ(history.FirstElem, c.first);
        EXPECT_EQ(history.LastElem, c.last);
        std::vector<double> expected; // without a gap, the first reading twice
        for (std::int32_t i = 0; i < c.count; ++i)
            expected.push_back(std::max(1, c.readings - c.count + 1 + i));
        EXPECT_EQ(winds(), expected);
        EXPECT_TRUE(expected.empty() || expected.front() == c.oldest);
    }

    setBoxes(120, 1);
    taken = 0;
    read(120); // 121 points, the first reading's two counted
    EXPECT_EQ(history.FirstElem, 2);
    EXPECT_EQ(history.LastElem, 1);
}

TEST_F(History, EverySixthReadingBecomesAPoint) {
    setBoxes(120, 6);
    read(13);
    EXPECT_EQ(winds(), (std::vector<double>{1, 1, 7, 13}));

    // A new frequency does not start the count anew.
    read(2);
    setBoxes(120, 4);
    read(4);
    EXPECT_EQ(winds(), (std::vector<double>{1, 1, 7, 13, 17}));
}

TEST_F(History, AnotherNumberOfPointsDiscardsThem) {
    const struct {
        double box;
        double corrected;
        bool kept;
    } cases[] = {{120, 120, true}, {121, 121, false}, {5, 20, false},      {19.5, 20, true},
                 {-3, 20, true},   {20.5, 20, true},  {5000, 2000, false}, {1e12, 2000, true}};
    read(3);
    for (const auto& c : cases) {
        graphs.GraphNoPoints.Value = c.box;
        SetCapacity(history, graphs, refreshRead);
        EXPECT_EQ(graphs.GraphNoPoints.Value, c.corrected) << c.box;
        EXPECT_EQ(history.count() > 0, c.kept) << c.box;
        EXPECT_EQ(history.capacity(), c.kept ? c.corrected : 0) << c.box;
        if (!c.kept) {
            EXPECT_EQ(history.FirstElem, 0);
            EXPECT_EQ(history.LastElem, 0);
        }
        read(1);
        EXPECT_EQ(history.capacity(), c.corrected);
    }
}

TEST_F(History, SpanOfAFullHistory) {
    const struct {
        int entry;
        double points, frequency;
        double shownFrequency;
        QString seconds, text;
    } cases[] = {
        {1, 120, 6, 6, u"7200"_s, u"02 h 00 m 00 s"_s},
        {0, 121, 1, 1, u"605"_s, u"00 h 10 m 05 s"_s},
        {3, 2000, 99, 99, u"11880000"_s, u"3300 h 00 m 00 s"_s},
        {2, 20, 0, 1, u"600"_s, u"00 h 10 m 00 s"_s},
        {2, 20, -7, 1, u"600"_s, u"00 h 10 m 00 s"_s},
        {0, 41, 2.5, 2, u"410"_s, u"00 h 06 m 50 s"_s},
        {-1, 20, 6, 6, u"0"_s, u"00 h 00 m 00 s"_s},
    };
    for (const auto& c : cases) {
        refreshRead.ListIndex = c.entry;
        setBoxes(c.points, c.frequency);
        EXPECT_EQ(graphs.GraphFreq.Value, c.shownFrequency);
        EXPECT_EQ(history.SampleEvery, c.shownFrequency);
        EXPECT_EQ(graphs.GraphSpan.Caption.value(), c.seconds);
        EXPECT_EQ(graphs.GraphSpanDesc.Caption.value(), c.text);
    }
}

TEST_F(History, UnitChangeConvertsEveryStoredPointOnce) {
    setBoxes(20, 1);
    convertSpeedHistory(history, SpeedCode::KilometresPerHour,
                        SpeedCode::MetresPerSecond); // nothing stored yet
    read(25);                                        // the ring has wrapped
    convertSpeedHistory(history, SpeedCode::KilometresPerHour, SpeedCode::MetresPerSecond);
    convertTemperatureHistory(history, TemperatureCode::Celsius, TemperatureCode::Fahrenheit);
    for (std::int32_t elem = 1; elem <= 20; ++elem) {
        const GraphPoint& point = history.point(elem);
        const double number = elem <= 6 ? elem + 19 : elem - 1;
        EXPECT_DOUBLE_EQ(point.wind, number / 3.6) << elem;
        EXPECT_DOUBLE_EQ(point.gust, (number + 0.5) / 3.6) << elem;
        EXPECT_EQ(point.spread, -3) << elem;      // -1.75 scaled, without the offset
        EXPECT_EQ(point.temperature, 47) << elem; // 8.5 is 47.3
        EXPECT_EQ(point.direction, 22.5);
        EXPECT_EQ(point.humidity, 58);
    }
}

TEST_F(History, ArrayForClients) {
    const auto array = [this] {
        return historyArray(history).value<QList<QVariantList>>();
    };
    EXPECT_EQ(array(), QList<QVariantList>(8, QVariantList(1))) << "point 0 alone";

    setBoxes(20, 1);
    read(2);
    const QList<QVariantList> table = array();
    ASSERT_EQ(table.size(), 8);
    const QVariant date = QVariant::fromValue(AutomationDate{daySerial(kMidnight.addSecs(20))});
    const QVariantList newest{QVariant(), date, 2.0, 2.5, 22.5, -1.75, 58.0, 8.5};
    for (qsizetype field = 0; field < table.size(); ++field) {
        ASSERT_EQ(table[field].size(), 21) << field;
        EXPECT_EQ(table[field][3], newest[field]) << field;
        EXPECT_FALSE(table[field][0].isValid()) << field;
        EXPECT_FALSE(table[field][4].isValid()) << field << ", not stored yet";
        EXPECT_EQ(table[field][1], table[field][2]) << field;
    }
    read(18);
    for (qsizetype elem = 1; elem <= 20; ++elem)
        EXPECT_EQ(array()[2][elem], QVariant(elem == 1 ? 20.0 : static_cast<double>(elem - 1)));

    current.GustSpeed.reset(); // missing in the station's file
    current.DewPointValue.reset();
    AddReading(history, current, graphs.GraphNoPoints);
    const QList<bool> there{false, true, true, false, true, false, true, true};
    for (qsizetype field = 0; field < there.size(); ++field)
        EXPECT_EQ(array()[field][history.LastElem].isValid(), there[field]) << field;
}

} // namespace
} // namespace skyhold
