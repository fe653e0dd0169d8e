// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/station_output.h"

#include "datafiles/station_file.h"
#include "records/records.h"
#include "settings/load_save.h"
#include "support/test_folder.h"

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

} // namespace

// What is written is what the monitor's reader reads, in either form and in other units.
TEST(StationOutput, IsReadByTheMonitor) {
    const SettingsFolder folder;
    for (const QString& name : {u"station.csv"_s, u"station.htm"_s}) {
        SCOPED_TRACE(name.toStdString());
        QStringList faults;
        const SensorSettings settings = sensorSettings(
            "[source a]\nkind = file\npath = /x\n[temperature]\nvalue = a: t\nmax-age = 10\n"
            "[humidity]\nvalue = a: h\n[wind]\nvalue = a: w\nunit = m/s\n[direction]\nvalue = a: "
            "d\n"
            "[station]\ntemperature = F\nspeed = kts\ndate = mm/dd\n",
            faults);
        ASSERT_EQ(faults, QStringList());
        std::int64_t now = bootMs();
        Measurements measurements(settings, [&now] { return now; });
        const QString path = folder.filePath(name);
        StationOutput output(path, settings, measurements);
        SourceReadings& source = measurements.of(u"a"_s);
        const auto take = [&](const QString& address, const QString& text) {
            source.take(address, text, now);
            output.changed();
        };
        StationFileControls controls;
        controls.HTMFile.Caption = path;
        Records records;
        LoadSettings(records, SettingsStore(u"Kiv_Skyhold"_s), {});
        UnitControls& units = records.units;
        units.DateFormat.Index = 1;
        StationFileMemory memory;
        StationObservation seen;
        const auto read = [&] {
            folder.write(name, output.text(QDateTime(QDate(2026, 11, 5), QTime(22, 1, 2))));
            seen = {};
            ReadStationFile(controls, units, {}, {}, memory, seen);
            return ReadStationFile(controls, units, {}, {}, memory, seen);
        };

        take(u"t"_s, u"10"_s);
        take(u"h"_s, u"80.4"_s);
        take(u"w"_s, u"9"_s);
        take(u"w"_s, u"5"_s);
        take(u"d"_s, u"359"_s);
        EXPECT_EQ(read(), StationRead::Valid);
        EXPECT_EQ(seen.numbers[Quantity::Temperature], 50);
        EXPECT_EQ(seen.numbers[Quantity::Humidity], 80);
        EXPECT_EQ(seen.numbers[Quantity::Wind], 9.7);
        EXPECT_EQ(seen.numbers[Quantity::Gust], 17.5); // the strongest wind of ten minutes
        EXPECT_EQ(seen.numbers[Quantity::Dew], 44.2);  // 6.8 °C
        EXPECT_EQ(seen.windDirection, 0);
        EXPECT_EQ(memory.recordTime, QDateTime(QDate(2026, 11, 5), QTime(22, 1, 2)));

        now += 15'000; // the thermometer has died
        EXPECT_EQ(read(), StationRead::ValueMissing);
        EXPECT_EQ(seen.numbers[Quantity::Temperature], std::nullopt);
        EXPECT_EQ(seen.numbers[Quantity::Dew], std::nullopt);
        EXPECT_EQ(seen.numbers[Quantity::Wind], 9.7);
        take(u"t"_s, u"N/A"_s);
        EXPECT_EQ(read(), StationRead::ValueMissing);
        take(u"t"_s, u"-1.5"_s);
        EXPECT_EQ(read(), StationRead::Valid);
        EXPECT_EQ(seen.numbers[Quantity::Temperature], 29.3);
        source.drop(u"w"_s);
        EXPECT_EQ(read(), StationRead::ValueMissing);
        EXPECT_EQ(seen.numbers[Quantity::Gust], std::nullopt);
    }
}

} // namespace skyhold
