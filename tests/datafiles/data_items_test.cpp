#include "datafiles/column_list.h"
#include "datafiles/data_items.h"
#include "settings/key_table.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

struct DataItems : testing::Test {
    DataItems() {
        for (std::size_t i = 0; i < columns.size(); ++i)
            columns[i] = defaultDataColumn(static_cast<int>(i) + 1);
        readings.LastReading = QDateTime(QDate(2026, 11, 6), QTime(9, 5, 7));
        readings.Condition[Quantity::Cloud] = CloudVeryCloudy;
        readings.Condition[Quantity::Rain] = RainDry;
        readings.Condition[Quantity::Wind] = WindUnknown;
        readings.Condition[Quantity::Gust] = WindWindy;
        readings.Condition[Quantity::Temperature] = TemperatureLow;
        readings.Condition[Quantity::Dew] = DewHigh;
        readings.Condition[Quantity::Humidity] = HumidityMedium;
        readings.Condition[Quantity::Brightness] = BrightnessDark;
        readings.SensorValues = {-21.34, 2849.5, 61, 3.25, 100, 31.06};
        readings.AmbientTemperature = -0.04;
        readings.StationTemperature = 99;
        readings.WindSpeed = 12.5;
        readings.GustSpeed = 20.49;
        readings.WindDirection = 337.5;
        readings.DewPointValue = 4;
        readings.HumidityValue = 58;
        readings.RainHeaterStatus = u"Normal"_s;
        readings.SwitchValue = 2;
    }
    DataItemSource source() const {
        return {readings, forms, [](Quantity quantity, std::int32_t level) {
                    return u"q%1 l%2"_s.arg(static_cast<int>(quantity)).arg(level);
                }};
    }
    QString item(int number) const { return FormatDataItem(number, source()); }

    CurrentReadings readings;
    NumberForms forms;
    DataColumns columns;
};

TEST_F(DataItems, WholeLineOfEveryItem) {
    forms = {u","_s, u"."_s};
    EXPECT_EQ(
        dataLine(columns, source()),
        QByteArray(
            R"("2026-11-06","09:05:07","q0 l3","q1 l1","q3 l0","q4 l2","q5 l1","q6 l3","q7 l2",)"
            R"("q2 l1","-21,3","2850","13","20","337,5","0,0","4,0","58","61","100%","31,1",)"
            R"("3,3","Normal","Closed","Safe")"));
    EXPECT_EQ(
        dataHeaderLine(columns),
        QByteArray(R"("Date","Time","Cloud Condition","Rain Condition","Wind Condition",)"
                   R"("Gust Condition","Temperature Condition","DewPoint Condition",)"
                   R"("Humidity Condition","Brightness Condition","Cloud Value","Rain Value",)"
                   R"("Wind Speed","Gust Speed","Wind Direction","Ambient Temperature","DewPoint",)"
                   R"("Humidity","Brightness Value","Rain Heating Percentage",)"
                   R"("Rain Sensor Temperature","Cloud Sensor Temperature","Heating Status",)"
                   R"("Switch Status","Safe Condtition")"));
}

TEST_F(DataItems, SwitchVerdictAndUnknownItems) {
    const std::pair<double, QString> states[] = {{0, u"Unknown"_s}, {1, u"Opened"_s},
                                                 {2, u"Closed"_s},  {1.6, u"Closed"_s},
                                                 {3, {}},           {-1, {}}};
    for (const auto& [value, text] : states) {
        readings.SwitchValue = value;
        EXPECT_EQ(item(24), text) << value;
    }
    readings.UnsafeFlag = true;
    EXPECT_EQ(item(25), u"Unsafe"_s);
    readings = {}; // nothing read yet
    for (const int empty : {0, 1, 13, 14, 15, 17, 18, 26})
        EXPECT_EQ(item(empty), QString()) << empty;
}

TEST_F(DataItems, ColumnsAsTheUserArrangedThem) {
    readings.RainHeaterStatus = u"a \"b\",\r\nc° Ω"_s;
    for (DataColumn& column : columns)
        column.Prt = false;
    EXPECT_EQ(dataHeaderLine(columns), QByteArray());
    EXPECT_EQ(dataLine(columns, source()), QByteArray());

    columns[0] = {.Hdr = u" Outside, °C "_s, .Cal = 16, .Prt = true};
    columns[3] = {.Hdr = u"\"1234567890123456789012345"_s, .Cal = 23, .Prt = true};
    columns[24] = {.Hdr = QString(), .Cal = 99, .Prt = true};
    EXPECT_EQ(dataHeaderLine(columns), QByteArray("\"Outside, \xB0"
                                                  "C\",\"\"\"123456789012345678901234\",\"\""));
    EXPECT_EQ(dataLine(columns, source()), QByteArray("\"0.0\",\"a \"\"b\"\",  c\xB0 ?\",\"\""));
}

TEST_F(DataItems, MovedAndSwitchedOffColumnsAreStored) {
    const QByteArray before = dataHeaderLine(columns);
    columns[1].Hdr = u"UT  "_s;
    ColumnList list = columnList(columns);
    EXPECT_EQ(list.entries[1].text, u"(02) UT"_s);
    EXPECT_EQ(list.entries[24].text, u"(25) Safe Condtition"_s);

    moveUp(list); // nothing is selected
    list.selected = 1;
    list.entries[1].checked = false;
    moveUp(list);
    moveUp(list); // at the top
    EXPECT_EQ(list.selected, 0);
    list.selected = 23;
    moveDown(list);
    moveDown(list); // at the bottom
    EXPECT_EQ(list.selected, 24);

    const DataColumns stored = columnsOf(list);
    const std::pair<std::size_t, DataColumn> cases[] = {{0, {u"UT"_s, 2, false}},
                                                        {1, {u"Date"_s, 1, true}},
                                                        {2, {u"Cloud Condition"_s, 3, true}},
                                                        {23, {u"Safe Condtition"_s, 25, true}},
                                                        {24, {u"Switch Status"_s, 24, true}}};
    for (const auto& [slot, column] : cases) {
        EXPECT_EQ(stored[slot].Hdr, column.Hdr) << slot;
        EXPECT_EQ(stored[slot].Cal, column.Cal) << slot;
        EXPECT_EQ(stored[slot].Prt, column.Prt) << slot;
    }
    setDefaults(list);
    EXPECT_EQ(dataHeaderLine(columnsOf(list)), before);
    EXPECT_EQ(columnsOf(list)[1].Cal, 2);
}

} // namespace
} // namespace skyhold
