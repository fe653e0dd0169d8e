// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/history.h"
#include "graphs/trend.h"

#include "platform/automation_date.h"
#include "platform/clock.h"

#include <gtest/gtest.h>

#include <cmath>
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
        {0, 0, 0, 0, 0},   {1, 1, 2, 2, 1},      {19, 1, 20, 20, 1},  {20, 2, 1, 20, 1},
        {21, 3, 2, 20, 2}, {38, 20, 19, 20, 19}, {39, 1, 20, 20, 20}, {40, 2, 1, 20, 21},
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
    current.GustSpeed.reset(); // missing in the station's file
    current.DewPointValue.reset();
    AddReading(history, current, graphs.GraphNoPoints);
    const QList<bool> there{false, true, true, false, true, false, true, true};
    for (qsizetype field = 0; field < there.size(); ++field)
        EXPECT_EQ(array()[field][history.LastElem].isValid(), there[field]) << field;
}

TEST(Trend, ShowsTheLastHourWithItsGaps) {
    GraphHistory history;
    history.Points.assign(120, {});
    history.FirstElem = 1;
    const double now = daySerial(kMidnight);
    const auto add = [&](int minutesAgo, double wind, bool valid = true) {
        GraphPoint& point = history.point(++history.LastElem);
        point.date = now - minutesAgo / 1440.0;
        point.wind = wind;
        point.valid = valid;
    };
    for (const int minutes : {70, 61, 59, 58, 57}) // the first two are too long ago
        add(minutes, 7);
    for (const int minutes : {40, 39, 38}) // behind a time without readings
        add(minutes, 9);
    add(37, 8, false); // the station could not be read
    add(36, std::nan(""));
    for (const int minutes : {35, 34})
        add(minutes, 5);
    add(-5, 99); // the clock has been set back since
    const Trend trend = lastHour(
        history, [](const GraphPoint& point) { return point.wind; }, now, 60);
    std::vector<std::size_t> runs;
    for (const auto& run : trend.runs)
        runs.push_back(run.size());
    EXPECT_EQ(runs, (std::vector<std::size_t>{3, 3, 2}));
    EXPECT_EQ(trend.lowest, 5);
    EXPECT_EQ(trend.highest, 9);
}

} // namespace
} // namespace skyhold
