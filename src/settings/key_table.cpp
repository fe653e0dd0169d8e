// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/key_table.h"

#include "model/compass.h"
#include "platform/files.h"
#include "settings/row_builder.h"

namespace skyhold {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array kColumnHeaders{"Date",
                                    "Time",
                                    "Cloud Condition",
                                    "Rain Condition",
                                    "Wind Condition",
                                    "Gust Condition",
                                    "Temperature Condition",
                                    "DewPoint Condition",
                                    "Humidity Condition",
                                    "Brightness Condition",
                                    "Cloud Value",
                                    "Rain Value",
                                    "Wind Speed",
                                    "Gust Speed",
                                    "Wind Direction",
                                    "Ambient Temperature",
                                    "DewPoint",
                                    "Humidity",
                                    "Brightness Value",
                                    "Rain Heating Percentage",
                                    "Rain Sensor Temperature",
                                    "Cloud Sensor Temperature",
                                    "Heating Status",
                                    "Switch Status",
                                    "Safe Condtition"};

constexpr int kMaxColumnHeader = 25;
constexpr int kMaxUploadEntries = 9999;
constexpr IntegerRange kScrollRange{0, 32767};
constexpr IntegerRange kTabRange{0, 9};

// "Cadinal01"
QString twoDigitKey(const char* stem, int number) {
    return latin(stem) + QString::number(number).rightJustified(2, u'0');
}

// Left and Top: an absent or unusable coordinate leaves the window unplaced, and it is centred.
void positionRow(KeyRows& rows, const QString& key, WindowControls& window,
                 QProperty<int>& coordinate, bool first, const QString& holds) {
    KeyRow& row = rows.add(KeyType::Integer, key, QString(), holds);
    row.defaultName = u"centred"_s;
    row.lowest = -32768;
    row.highest = 32767;
    row.text = [&window, &coordinate](const NumberForms&) {
        return window.Placed ? QString::number(coordinate.value()) : QString();
    };
    row.load = [&window, &coordinate, first](const QString& stored, const NumberForms& forms) {
        const auto value = storedInteger(stored, forms, -32768, 32767);
        window.Placed = value.has_value() && (first || window.Placed);
        if (value)
            coordinate = *value;
        return value.has_value() || stored.isEmpty();
    };
}

void windowRows(KeyRows& rows, Records& r) {
    auto& window = r.window;
    rows.section(u"Window"_s);
    rows.text(u"LastUpdateMsg"_s, u""_s, window.LastUpdateMsg,
              u"status of the last update, shown once at the next start"_s);
    rows.number(u"SafeDelayVal"_s, u"0"_s, r.conditions.SafeDelayVal,
                u"seconds for which a return to safe is held back"_s);
    positionRow(rows, u"Left"_s, window, window.Left, true, u"main window, left edge"_s);
    positionRow(rows, u"Top"_s, window, window.Top, false, u"main window, top edge"_s);
    rows.integer(u"SSTab1"_s, 0, kTabRange, window.SSTab1, u"page of the window"_s);
    rows.integer(u"SSTab2"_s, 1, kTabRange, window.SSTab2, u"page of the conditions"_s);
    rows.integer(u"SSTab3"_s, 0, kTabRange, window.SSTab3, u"page of the files"_s);

    auto& units = r.units;
    rows.text(u"StringKPH"_s, u"KM/HR KM/H KPH"_s, units.StringKPH,
              u"unit texts of the station file that mean km/h"_s);
    rows.text(u"StringMPS"_s, u"M/S MPS"_s, units.StringMPS, u"unit texts that mean m/s"_s);
    rows.text(u"StringMPH"_s, u"MPH"_s, units.StringMPH, u"unit texts that mean mph"_s);
    rows.text(u"StringKNOTS"_s, u"KNOTS KTS KT"_s, units.StringKNOTS,
              u"unit texts that mean knots"_s);
    rows.text(u"StringDC"_s, u"C"_s, units.StringDC,
              u"pieces, separated by \";\", of unit texts that mean °C"_s);
    rows.text(u"StringDF"_s, u"F"_s, units.StringDF,
              u"pieces, separated by \";\", of unit texts that mean °F"_s);
    rows.text(u"ExcChrHumidity"_s, u"%"_s, units.ExcChrHumidity,
              u"characters that are removed from humidity values"_s);
}

void unitOptionRows(KeyRows& rows, Records& r) {
    rows.section(u"Limit"_s);
    rows.options({u"UnitsTemp0"_s, u"UnitsTemp1"_s}, 0, r.units.UnitsTemp,
                 {u"temperatures in °C"_s, u"temperatures in °F"_s});
    rows.options(
        {u"UnitsSpeed0"_s, u"UnitsSpeed1"_s, u"UnitsSpeed2"_s, u"UnitsSpeed3"_s}, 0,
        r.units.UnitsSpeed,
        {u"speeds in km/h"_s, u"speeds in mph"_s, u"speeds in m/s"_s, u"speeds in knots"_s});
    rows.options(
        {u"DateFormat0"_s, u"DateFormat1"_s}, 0, r.units.DateFormat,
        {u"dates of the station file are dd/mm/yy"_s, u"dates of the station file are mm/dd/yy"_s});
}

void cardinalAndFolderRows(KeyRows& rows, Records& r) {
    rows.section(u"Window"_s);
    for (int k = 0; k < 16; ++k) {
        const auto i = static_cast<std::size_t>(k);
        rows.text(twoDigitKey("Cadinal", k + 1), latin(kCompassPoints[i]), r.units.Cardinal[i],
                  u"label for a wind from %1°"_s.arg(k * 22.5));
    }
    rows.text(u"FileNameCCDAP4"_s, u"Kiv_CCDAP4_II.dat"_s, r.ccdap.FileNameCCDAP4.Text,
              u"name of the CCDAutopilot weather file; empty: not written"_s);
    rows.folder(u"PathNameCCDAP4"_s, writableProgramFolder(), r.ccdap.LblPathNameCCDAP4.Caption,
                u"its folder"_s);
    auto& window = r.window;
    rows.integer(u"VScrollPos0"_s, 0, kScrollRange, window.VScrollPos0,
                 u"scroll position of the sources"_s);
    rows.integer(u"VScrollPos1"_s, 0, kScrollRange, window.VScrollPos1,
                 u"scroll position of the conditions"_s);
    rows.integer(u"VScrollPos3"_s, 15, kScrollRange, window.VScrollPos3,
                 u"scroll position of the files"_s);
    rows.integer(u"HScrollPos2"_s, 15, kScrollRange, window.HScrollPos2,
                 u"scroll position of the graphs"_s);
    rows.text(u"LastMusicDir"_s, u""_s, r.alarms.LastMusicDir,
              u"folder in which a sound was last chosen"_s);
}

void uploadCountRow(KeyRows& rows, UploadControls& upload) {
    KeyRow& row = rows.add(KeyType::Integer, u"NoFiles"_s, u"0"_s,
                           u"number of entries of the upload list; entry *n* has the keys "
                           "\"FileName*n*\", \"FilePath*n*\" and \"FileUpload*n*\""_s);
    row.highest = kMaxUploadEntries;
    row.text = [&upload](const NumberForms&) {
        return QString::number(upload.Files.size());
    };
    row.load = [&upload](const QString& stored, const NumberForms& forms) {
        const auto count = storedInteger(stored, forms, 0, kMaxUploadEntries);
        if (count)
            upload.Files.assign(static_cast<std::size_t>(*count), FileItem());
        return count.has_value();
    };
}

void setupRows(KeyRows& rows, Records& r) {
    auto& session = r.session;
    auto& upload = r.upload;
    const auto highestEntry = [](const ComboBox& box) {
        return static_cast<int>(box.Entries.size()) - 1;
    };
    rows.section(u"Setup"_s);
    rows.check(u"ReadStation"_s, true, session.flgReadStation,
               u"the weather station's file is read"_s);
    rows.check(u"Upload"_s, false, session.flgUpload, u"files are handed to the uploader"_s);
    rows.text(u"HTMFile"_s, u""_s, r.stationFile.HTMFile.Caption,
              u"path of the weather station's file"_s);
    rows.text(u"Server"_s, u""_s, upload.ServerAddress.Text, u"upload server"_s);
    rows.text(u"ServerPath"_s, u""_s, upload.ServerPath.Text, u"folder on the server"_s);
    rows.text(u"Username"_s, u""_s, upload.UserName.Text, u"user name on the server"_s);
    rows.text(u"Password"_s, u""_s, upload.PassWord.Text,
              u"password on the server, stored as entered"_s);
    rows.integer(u"UploadOnSec"_s, 15, {0, 99}, upload.UploadOnSec, u"second of the upload"_s);
    rows.integer(u"TimeoutUPLOAD"_s, 60, {0, 999}, upload.TimeoutUPLOAD,
                 u"time-out of an upload in seconds"_s);
    uploadCountRow(rows, upload);
    rows.integer(u"NBTimeout"_s, 10, {0, 999}, session.NBTimeout,
                 u"seconds to wait for the sensor program's first data"_s);
    rows.integer(u"RefreshUpload"_s, 3, {0, highestEntry(upload.RefreshUpload)},
                 upload.RefreshUpload, u"upload check every 5, 10, 30 or 60 s"_s);
    rows.integer(u"RefreshRead"_s, 1, {0, highestEntry(session.RefreshRead)}, session.RefreshRead,
                 u"read cycle every 5, 10, 30 or 60 s"_s);
    rows.integer(u"TimeoutREAD"_s, 3, {0, 999}, r.stationFile.TimeoutREAD,
                 u"minutes after which station data is too old"_s);
    rows.text(u"UploadDir"_s, u""_s, upload.UploadDir, u"working folder of the uploader"_s);
    rows.check(u"SuspendAlarm"_s, false, r.alarms.SuspendSoundAlarm,
               u"alarm sounds are suspended"_s);
    rows.check(u"Emulator"_s, true, session.EmulatorFlag,
               u"state of \"Connect to Kiv_Skyhold\"; absent: the program was never set up"_s);
    rows.options({u"SWRole0"_s, u"SWRole1"_s}, 0, session.SWRole,
                 {u"the monitor drives the roof switch"_s,
                  u"the monitor leaves the roof switch to its clients"_s});
}

void graphRows(KeyRows& rows, Records& r) {
    auto& graphs = r.graphs;
    constexpr std::array<const char*, kGraphCount> names{"Wind", "Gust", "Dir",
                                                         "Dew",  "Hum",  "Temp"};
    rows.section(u"Graphs"_s);
    rows.integer(u"GraphNoPoints"_s, 120, {20, 2000, true}, graphs.GraphNoPoints,
                 u"points kept in the history"_s);
    rows.integer(u"GraphFreq"_s, 6, {1, 99, true}, graphs.GraphFreq, u"read cycles per point"_s);
    for (std::size_t i = 0; i < names.size(); ++i)
        rows.check(u"Generate"_s + latin(names[i]), true, graphs.GraphGenerate[i],
                   u"this graph is drawn"_s);
    for (std::size_t i = 0; i < names.size(); ++i)
        rows.check(u"Image"_s + latin(names[i]), true, graphs.GraphImage[i],
                   u"this graph is saved as an image"_s);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const QString key = u"GraphColor"_s + latin(names[i]);
        rows.colour(key + u'0', 0x404040, graphs.GraphColor[i][0], u"first colour of the graph"_s);
        rows.colour(key + u'1', i == kDirectionGraph ? 0x0000FF : 0xC00000, graphs.GraphColor[i][1],
                    u"second colour of the graph"_s);
        if (i == kDirectionGraph)
            rows.colour(key + u'2', 0xFFFFC0, graphs.GraphColor[i][2],
                        u"third colour of the graph"_s);
    }
    rows.check(u"ImageType"_s, true, graphs.ImageType, u"images are PNG files, else JPEG"_s);
    rows.options({u"QualityTop"_s, u"QualityGood"_s, u"QualityNormal"_s}, 2, graphs.ImageQuality,
                 {u"best JPEG quality"_s, u"good JPEG quality"_s, u"normal JPEG quality"_s});
    rows.folder(u"GraphImagePath"_s, writableProgramFolder(), graphs.GraphImagePath.Caption,
                u"folder of the images"_s);
}

void dataFileRows(KeyRows& rows, Records& r) {
    auto& file = r.dataFile;
    rows.section(u"Window"_s);
    rows.text(u"FileName"_s, u"Skyhold"_s, file.FileName.Text,
              u"name of the user data file, without its \".csv\""_s);
    rows.folder(u"PathName"_s, writableProgramFolder(), file.LblPathName.Caption, u"its folder"_s);
    rows.integer(u"FreqSave"_s, 1, {1, 999}, file.SaveFreq, u"read cycles per line"_s);
    rows.text(u"Kiv_News"_s, u""_s, r.window.Kiv_News,
              u"news of the last update check; empty: nothing to show"_s);

    rows.section(u"File"_s);
    for (int slot = 1; slot <= 25; ++slot) {
        auto& column = file.Columns[static_cast<std::size_t>(slot - 1)];
        const DataColumn fresh = defaultDataColumn(slot);
        KeyRow& header = rows.text(twoDigitKey("Hdr", slot), fresh.Hdr, column.Hdr,
                                   u"heading of column %1, at most 25 characters"_s.arg(slot));
        header.load = [&column](const QString& stored, const NumberForms&) {
            column.Hdr = stored.left(kMaxColumnHeader);
            return true;
        };
        rows.integer(twoDigitKey("Cal", slot), fresh.Cal, {1, 25}, column.Cal,
                     u"data item of column %1"_s.arg(slot));
        rows.boolean(twoDigitKey("Prt", slot), fresh.Prt, column.Prt,
                     u"column %1 is written"_s.arg(slot));
    }
    rows.check(u"DispFileNameOnly"_s, false, r.upload.DispFileNameOnly,
               u"the upload list shows names without folders"_s);
}

void updateRows(KeyRows& rows, WindowControls& window) {
    rows.section(u"Update"_s);
    rows.text(u"BaseAddress"_s, u""_s, window.UpdateBaseAddress,
              u"address of the update server, http or https; empty: none, and no check is made"_s);
}

void verdictRows(KeyRows& rows, ConditionControls& conditions) {
    rows.section(u"Verdict"_s);
    rows.check(u"BeyondLimitUnsafe"_s, false, conditions.BeyondLimitUnsafe,
               u"values beyond the last limit are unsafe"_s);
    rows.check(u"QuickReaction"_s, false, conditions.QuickReaction,
               u"rain, cloud and the station's file are looked at between two cycles, too"_s);
    rows.check(u"EarnFirstSafe"_s, false, conditions.EarnFirstSafe,
               u"a session's first safe waits for the delay, too"_s);
    rows.integer(u"FlapClosures"_s, 0, {0, 99}, conditions.FlapClosures,
                 u"closures within an hour that double the delay; 0: never"_s);
    rows.integer(u"FlapLongest"_s, 3600, {60, 9999}, conditions.FlapLongest,
                 u"the longest delay that comes of it, in seconds"_s);
    rows.integer(u"RoofCheck"_s, 0, {0, 999}, conditions.RoofCheck,
                 u"seconds after which a roof that is not where it was told to be is a fault; "
                 u"0: never"_s);
    rows.options({u"RoofAtStop0"_s, u"RoofAtStop1"_s, u"RoofAtStop2"_s}, 0, conditions.RoofAtStop,
                 {u"a session's end leaves an open roof as it is"_s,
                  u"the window asks about an open roof first"_s,
                  u"an open roof is closed first"_s});
}

void historyRows(KeyRows& rows, HistoryControls& history) {
    rows.section(u"History"_s);
    rows.integer(u"CycleDays"_s, 30, {1, 3'660}, history.CycleDays,
                 u"days for which the history keeps single cycles; minutes from then on"_s);
    rows.integer(u"EventYears"_s, 10, {1, 50}, history.EventYears,
                 u"years for which it keeps minutes and events"_s);
    rows.integer(u"Megabytes"_s, 1'024, {16, 65'536}, history.Megabytes,
                 u"size of its file at most, in MB; the oldest minutes give way"_s);
}

void networkRows(KeyRows& rows, NetworkControls& network) {
    rows.section(u"Network"_s);
    rows.check(u"Serve"_s, false, network.Serve, u"the monitor runs the gateway"_s);
    rows.options({u"Reach0"_s, u"Reach1"_s}, 0, network.Reach,
                 {u"the gateway answers this computer alone"_s, u"it answers the whole network"_s});
    rows.integer(u"Port"_s, 11'111, {1, 65'535}, network.Port, u"its port for HTTP"_s);
    rows.check(u"AllowSwitch"_s, false, network.AllowSwitch,
               u"its clients may move the roof's switch"_s);
    rows.text(u"Elevation"_s, u""_s, network.Elevation.Text,
              u"elevation of the site in metres, for the pressure there; empty: not known"_s);
    rows.text(u"HostName"_s, u""_s, network.HostName.Text,
              u"a further name that it is asked for by, as of a reverse proxy"_s);
    rows.text(u"Broker"_s, u""_s, network.Broker.Text,
              u"MQTT broker, HOST or HOST:PORT; empty: none"_s);
    rows.text(u"BrokerUser"_s, u""_s, network.BrokerUser.Text, u"user name there"_s);
    rows.text(u"BrokerPassword"_s, u""_s, network.BrokerPassword.Text,
              u"password there, stored as entered"_s);
    rows.check(u"BrokerTls"_s, false, network.BrokerTls, u"the connection to it is encrypted"_s);
    rows.text(u"BrokerCertificates"_s, u""_s, network.BrokerCertificates.Text,
              u"file of the certificates to trust; empty: the system's"_s);
    rows.text(u"TopicPrefix"_s, u""_s, network.TopicPrefix.Text,
              u"what its topics begin with; empty: skyhold/ and the name of the computer"_s);
    rows.text(u"Hook"_s, u""_s, network.Hook.Text,
              u"command that is run when the verdict changes; empty: none"_s);
}

void noticeRows(KeyRows& rows, NoticeControls& notices) {
    rows.section(u"Notices"_s);
    rows.check(u"Verdict"_s, true, notices.OnVerdict,
               u"the desktop is notified when the verdict changes"_s);
    rows.check(u"Source"_s, true, notices.OnSource,
               u"the desktop is notified when a source fails"_s);
    rows.check(u"Alarm"_s, true, notices.OnAlarm,
               u"the desktop is notified when an alarm sounds"_s);
}

void viewRows(KeyRows& rows, WindowControls& window) {
    rows.section(u"View"_s);
    rows.integer(u"Look"_s, 0, {0, 2}, window.Look,
                 u"look of the windows: 0 dark panel, 1 night vision, 2 as the desktop"_s);
}

KeyRole roleOf(const QString& key) {
    static const QStringList state{u"LastUpdateMsg"_s, u"Left"_s,         u"Top"_s,
                                   u"SSTab1"_s,        u"SSTab2"_s,       u"SSTab3"_s,
                                   u"VScrollPos0"_s,   u"VScrollPos1"_s,  u"VScrollPos3"_s,
                                   u"HScrollPos2"_s,   u"LastMusicDir"_s, u"Kiv_News"_s};
    if (key.endsWith(u"Password"_s))
        return KeyRole::Secret;
    if (key == u"NoFiles"_s)
        return KeyRole::List;
    return state.contains(key) ? KeyRole::State : KeyRole::Setting;
}

} // namespace

std::vector<KeyRow> keyTable(Records& r) {
    KeyRows rows;
    windowRows(rows, r);
    unitOptionRows(rows, r);
    cardinalAndFolderRows(rows, r);
    setupRows(rows, r);
    limitRows(rows, r.conditions);
    descriptionRows(rows, r.conditions);
    colourRows(rows, r.conditions);
    unsafeRows(rows, r.conditions);
    alarmRows(rows, r.alarms);
    graphRows(rows, r);
    staleDataRows(rows, r.alarms, r.conditions);
    dataFileRows(rows, r);
    updateRows(rows, r.window);
    verdictRows(rows, r.conditions);
    viewRows(rows, r.window);
    historyRows(rows, r.historyKeep);
    networkRows(rows, r.network);
    noticeRows(rows, r.notices);
    std::vector<KeyRow> table = rows.take();
    for (KeyRow& row : table)
        row.role = roleOf(row.key);
    return table;
}

std::vector<KeyRow> uploadEntryRows(UploadControls& upload) {
    KeyRows rows;
    rows.section(u"Setup"_s);
    for (std::size_t i = 0; i < upload.Files.size(); ++i) {
        auto& item = upload.Files[i];
        const QString n = QString::number(i + 1);
        rows.text(u"FileName"_s + n, u""_s, item.fName, u"name of upload entry "_s + n);
        rows.text(u"FilePath"_s + n, u""_s, item.fPath, u"folder of upload entry "_s + n);
        rows.boolean(u"FileUpload"_s + n, false, item.fUploadOnce,
                     u"upload entry %1 is uploaded once only"_s.arg(n));
    }
    return rows.take();
}

DataColumn defaultDataColumn(int slot) {
    return {
        .Hdr = latin(kColumnHeaders[static_cast<std::size_t>(slot - 1)]), .Cal = slot, .Prt = true};
}

} // namespace skyhold
