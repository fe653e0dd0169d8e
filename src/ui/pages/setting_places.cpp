// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/setting_places.h"

#include "conditions/alarms.h"
#include "conditions/sector_text.h"
#include "platform/files.h"
#include "ui/look/look.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The keys that begin so stand in this control; "*" is what follows. The first match counts.
struct PlaceRule {
    const char16_t* keys;
    Page page;
    const char16_t* control;
};

constexpr PlaceRule kRules[]{
    {u"Setup/ReadStation", Page::Sources, u"flgReadStation"},
    {u"Setup/HTMFile", Page::Sources, u"ButtHTMPath"},
    {u"Setup/RefreshRead", Page::Sources, u"RefreshRead"},
    {u"Setup/TimeoutREAD", Page::Sources, u"TimeoutREAD"},
    {u"Limit/DateFormat", Page::Sources, u"DateFormat*"},
    {u"Limit/UnitsTemp", Page::Sources, u"UnitsTemp*"},
    {u"Limit/UnitsSpeed", Page::Sources, u"UnitsSpeed*"},
    {u"Window/String", Page::Sources, u"ButtUnits"},
    {u"Window/ExcChrHumidity", Page::Sources, u"ButtUnits"},
    {u"Window/Cadinal", Page::Sources, u"ButtCardinal"},
    {u"Setup/NBTimeout", Page::Sources, u"NBTimeout"},
    {u"Setup/Emulator", Page::Sources, u"EmulatorFlag"},
    {u"Setup/SWRole", Page::Sources, u"SWRole*"},
    {u"Alarms/WSDataOldUnsafe", Page::Limits, u"WSDataOldUnsafe"},
    {u"Alarms/NBDataOldUnsafe", Page::Limits, u"NBDataOldUnsafe"},
    {u"Alarms/WSAlarmStat", Page::Limits, u"AlarmWS"},
    {u"Alarms/NBAlarmStat", Page::Limits, u"AlarmNB"},
    {u"Alarms/RoofAlarmStat", Page::Limits, u"AlarmRoof"},
    {u"Alarms/WSAlarm", Page::Limits, u"SoundAlarmWS"},
    {u"Alarms/NBAlarm", Page::Limits, u"SoundAlarmNB"},
    {u"Alarms/RoofAlarm", Page::Limits, u"SoundAlarmRoof"},
    {u"Verdict/BeyondLimitUnsafe", Page::Limits, u"BeyondLimitUnsafe"},
    {u"Setup/SuspendAlarm", Page::Limits, u"SuspendSoundAlarm"},
    {u"Window/SafeDelayVal", Page::Limits, u"SafeDelayVal"},
    {u"Verdict/", Page::Caution, u"*"},
    {u"Notices/", Page::Caution, u"Notice*"},
    {u"Graphs/GraphImagePath", Page::Images, u"ButtGraphImagePath"},
    {u"Graphs/ImageType", Page::Images, u"ImageType"},
    {u"Graphs/Image", Page::Images, u"GraphImage*"},
    {u"Graphs/QualityTop", Page::Images, u"ImageQuality0"},
    {u"Graphs/QualityGood", Page::Images, u"ImageQuality1"},
    {u"Graphs/QualityNormal", Page::Images, u"ImageQuality2"},
    {u"Graphs/Generate", Page::Graphs, u"GraphGenerate*"},
    {u"Graphs/", Page::Graphs, u"*"},
    {u"Window/FileNameCCDAP4", Page::Ccdap, u"FileNameCCDAP4"},
    {u"Window/PathNameCCDAP4", Page::Ccdap, u"ButtCCDAP4"},
    {u"Window/FileName", Page::DataFile, u"FileName"},
    {u"Window/PathName", Page::DataFile, u"ButtPATH"},
    {u"Window/FreqSave", Page::DataFile, u"SaveFreq"},
    {u"File/DispFileNameOnly", Page::Upload, u"DispFileNameOnly"},
    {u"File/", Page::DataFile, u"ButtFileStructure"},
    {u"History/", Page::DataFile, u"*"},
    {u"Setup/UploadOnSec", Page::Upload, u"UploadOnSec"},
    {u"Setup/UploadDir", Page::Upload, u""},
    {u"Setup/Upload", Page::Upload, u"flgUpload"},
    {u"Setup/ServerPath", Page::Upload, u"ServerPath"},
    {u"Setup/Server", Page::Upload, u"ServerAddress"},
    {u"Setup/Username", Page::Upload, u"UserName"},
    {u"Setup/Password", Page::Upload, u"PassWord"},
    {u"Setup/TimeoutUPLOAD", Page::Upload, u"TimeoutUPLOAD"},
    {u"Setup/RefreshUpload", Page::Upload, u"RefreshUpload"},
    {u"Network/Broker", Page::Network, u"Broker*"},
    {u"Network/TopicPrefix", Page::Network, u"TopicPrefix"},
    {u"Network/Hook", Page::Network, u"Hook"},
    {u"Network/", Page::Network, u"Gateway*"},
};

QString capital(QString text) {
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

void addLevel(const QuantityRow& shown, std::size_t i, ConditionControls& conditions,
              std::vector<SettingPlace>& places) {
    const LevelRow& level = shown.levels[i];
    const QString name = shown.hasLimits() ? conditions.Color[shown.quantity][i].Caption
                                           : conditions.Cond[shown.quantity][i].Caption;
    const auto add = [&](const char* section, const QString& key, const char16_t* what,
                         const char* control) {
        places.push_back(
            {QLatin1String(section) + u'/' + key,
             u"%1, %2: %3"_s.arg(QString::fromUtf16(shown.title), name, QString::fromUtf16(what)),
             Page::Limits,
             QLatin1String(control) + QLatin1String(shown.suffix) + QString::number(i)});
    };
    if (shown.hasLimits()) {
        const QString key = QString::fromLatin1(level.limitKey);
        add("Limit", key, u"upper limit", "Limit");
        add("Description", key, u"name of level", "Color");
        add("Color", key, u"colour of level", "Color");
    }
    add("Unsafe", QString::fromLatin1(level.unsafeKey), u"unsafe", "Cond");
    const QString alarm = QString::fromLatin1(level.alarmKey);
    add("Alarms", alarm + u"Stat"_s, u"alarm", "Alarm");
    add("Alarms", alarm, u"sound", "SoundAlarm");
    if (shown.hasSectors())
        add("Unsafe", QLatin1String(shown.sectorKey) + QString::number(i), u"wind sector",
            "Direction");
}

} // namespace

std::vector<SettingPlace> settingPlaces(Records& records) {
    std::vector<SettingPlace> places;
    for (const QuantityRow& shown : quantityTable()) {
        for (std::size_t i = 0; i < kLevelCount; ++i)
            addLevel(shown, i, records.conditions, places);
    }
    const std::size_t levels = places.size();
    for (const KeyRow& row : keyTable(records)) {
        const QString key = row.section + u'/' + row.key;
        const auto ofLevel =
            std::find_if(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(levels),
                         [&key](const SettingPlace& place) { return place.key == key; });
        if (row.role == KeyRole::State || row.role == KeyRole::List ||
            ofLevel != places.begin() + static_cast<std::ptrdiff_t>(levels))
            continue;
        const auto* const rule = std::ranges::find_if(kRules, [&key](const PlaceRule& tried) {
            return key.startsWith(QStringView(tried.keys));
        });
        if (rule == std::end(kRules) || QStringView(rule->control).isEmpty())
            continue;
        const QString rest = key.sliced(QStringView(rule->keys).size());
        places.push_back({key, capital(row.holds), rule->page,
                          QString::fromUtf16(rule->control).replace(u'*', rest)});
    }
    std::stable_sort(
        places.begin(), places.end(),
        [](const SettingPlace& one, const SettingPlace& other) { return one.page < other.page; });
    return places;
}

std::vector<SettingPlace> findPlaces(const std::vector<SettingPlace>& places, const QString& text) {
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    const auto has = [&words](const QString& all) {
        return std::ranges::all_of(
            words, [&all](const QString& word) { return all.contains(word, Qt::CaseInsensitive); });
    };
    std::vector<SettingPlace> found;
    for (const SettingPlace& place : places) {
        if (has(place.title + u' ' + pageTitle(place.page) + u' ' + place.key))
            found.push_back(place);
    }
    std::stable_partition(found.begin(), found.end(),
                          [&has](const SettingPlace& place) { return has(place.title); });
    return found;
}

QString pageTitle(Page page) {
    switch (page) {
    case Page::Tonight:
        return u"Tonight"_s;
    case Page::Sources:
        return u"Sources"_s;
    case Page::Limits:
        return u"Limits and alarms"_s;
    case Page::Caution:
        return u"Caution"_s;
    case Page::Graphs:
        return u"Graphs"_s;
    case Page::DataFile:
        return u"Data file"_s;
    case Page::Ccdap:
        return u"CCDAutopilot file"_s;
    case Page::Images:
        return u"Images"_s;
    case Page::Upload:
        return u"Upload"_s;
    case Page::Network:
        return u"Network"_s;
    }
    return {};
}

QString settingTitle(const KeyRow& row, const std::vector<SettingPlace>& places) {
    const auto place = std::ranges::find(places, row.section + u'/' + row.key, &SettingPlace::key);
    return place != places.end() ? place->title : capital(row.holds);
}

QString settingText(const KeyRow& row, const QString& stored, const UnitControls& units) {
    constexpr int kLongest = 32;
    if (row.role == KeyRole::Secret)
        return u"…"_s;
    switch (row.type) {
    case KeyType::CheckBox:
        return stored == u"1" ? u"on"_s : u"off"_s;
    case KeyType::Boolean:
        return stored == u"True" ? u"yes"_s : u"no"_s;
    case KeyType::Colour:
        return screenColour(stored.toInt()).name();
    case KeyType::Text:
        if (row.section == u"Alarms")
            return stored.isEmpty() ? u"none"_s
                                    : nativePath(parseSound(stored).file).section(u'/', -1);
        if (row.section == u"Unsafe")
            return sectorWords(stored, units.Cardinal);
        break;
    default:
        break;
    }
    if (stored.isEmpty())
        return u"nothing"_s;
    return stored.size() > kLongest ? u'…' + stored.right(kLongest) : stored;
}

} // namespace skyhold
