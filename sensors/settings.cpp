// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/settings.h"

#include "sensors/settings_text.h"

#include <QStandardPaths>

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

enum class KeyForm { Text, Seconds, YesNo };

struct KeyRow {
    const char16_t* name;
    const char16_t* start; // null: must be set
    KeyForm form = KeyForm::Text;
};

struct KindRow {
    const char16_t* name;
    SourceKind kind;
    std::vector<KeyRow> keys;
};

const std::vector<KindRow>& sourceKinds() {
    static const std::vector<KindRow> kinds{
        {u"file", SourceKind::File, {{u"path", nullptr}, {u"every", u"1", KeyForm::Seconds}}},
        {u"command",
         SourceKind::Command,
         {{u"command", nullptr},
          {u"every", u"10", KeyForm::Seconds},
          {u"timeout", u"10", KeyForm::Seconds}}},
        {u"indi",
         SourceKind::Indi,
         {{u"server", u"localhost:7624"},
          {u"connect", u"yes", KeyForm::YesNo},
          {u"period", u"0", KeyForm::Seconds},
          {u"retry", u"5", KeyForm::Seconds}}},
        {u"alpaca",
         SourceKind::Alpaca,
         {{u"url", nullptr},
          {u"device", u"observingconditions/0"},
          {u"every", u"5", KeyForm::Seconds},
          {u"timeout", u"5", KeyForm::Seconds}}},
        {u"mqtt",
         SourceKind::Mqtt,
         {{u"broker", u"localhost:1883"},
          {u"user", u""},
          {u"password", u""},
          {u"tls", u"no", KeyForm::YesNo},
          {u"ca", u""},
          {u"retry", u"5", KeyForm::Seconds}}},
    };
    return kinds;
}

struct SwitchRow {
    const char16_t* name;
    SwitchKind kind;
    std::vector<KeyRow> keys;
};

const std::vector<SwitchRow>& switchKinds() {
    static const std::vector<SwitchRow> kinds{
        {u"indi",
         SwitchKind::Indi,
         {{u"source", nullptr}, {u"open", nullptr}, {u"close", nullptr}}},
        {u"alpaca",
         SwitchKind::Alpaca,
         {{u"url", nullptr},
          {u"device", u"switch/0"},
          {u"id", u"0"},
          {u"open-when", u"true"},
          {u"every", u"5", KeyForm::Seconds},
          {u"timeout", u"5", KeyForm::Seconds}}},
        {u"command",
         SwitchKind::Command,
         {{u"open", nullptr},
          {u"close", nullptr},
          {u"state", nullptr},
          {u"every", u"5", KeyForm::Seconds},
          {u"timeout", u"30", KeyForm::Seconds}}},
    };
    return kinds;
}

class Reader {
  public:
    explicit Reader(QStringList& faults)
        : faults_(faults) {}

    SensorSettings read(const std::vector<SettingSection>& sections) {
        for (const SettingSection& section : sections)
            readSection(section);
        check();
        return settings_;
    }

  private:
    void fault(int line, const QString& text) {
        faults_.append(u"line %1: %2"_s.arg(line).arg(text));
    }

    void readSection(const SettingSection& section) {
        const auto item = std::ranges::find_if(kItems, [&](const ItemRow& row) {
            return section.kind == row.name && section.name.isEmpty();
        });
        if (section.kind == u"source") {
            readSource(section);
            return;
        }
        if (seen_.contains(section.kind))
            fault(section.line, u"there is a second [%1]"_s.arg(section.kind));
        seen_.append(section.kind);
        if (item != kItems.end())
            readItem(section, *item);
        else if (section.kind == u"sensor")
            readSensor(section);
        else if (section.kind == u"switch")
            readSwitch(section);
        else if (section.kind == u"station")
            readStation(section);
        else
            fault(section.line, u"there is no section [%1]"_s.arg(section.kind));
    }

    // Reads keys by the rows; true when all are there and right.
    bool readKeys(const SettingSection& section, const std::vector<KeyRow>& rows,
                  QMap<QString, QString>& keys, const QStringList& others) {
        bool good = true;
        const auto wrong = [&](int line, const QString& text) {
            fault(line, text);
            good = false;
        };
        for (const KeyRow& row : rows) {
            if (row.start)
                keys.insert(QString::fromUtf16(row.name), QString::fromUtf16(row.start));
        }
        for (const SettingLine& line : section.lines) {
            const auto row = std::ranges::find_if(
                rows, [&](const KeyRow& known) { return line.key == known.name; });
            if (row == rows.end()) {
                if (!others.contains(line.key))
                    wrong(line.line, u"there is no key \"%1\" here"_s.arg(line.key));
                continue;
            }
            if (row->form == KeyForm::Seconds && !seconds(line.value))
                wrong(line.line, u"%1 takes a number of seconds"_s.arg(line.key));
            if (row->form == KeyForm::YesNo && line.value != u"yes" && line.value != u"no")
                wrong(line.line, u"%1 takes yes or no"_s.arg(line.key));
            keys.insert(line.key, line.value);
        }
        for (const KeyRow& row : rows) {
            const QString name = QString::fromUtf16(row.name);
            if (!row.start && keys.value(name).isEmpty())
                wrong(section.line, u"%1 is missing"_s.arg(name));
        }
        return good;
    }

    static std::optional<double> seconds(const QString& text) {
        const std::optional<double> number = plainNumber(text);
        return number && *number >= 0 && *number <= 86'400 ? number : std::nullopt;
    }

    static QString valueOf(const SettingSection& section, QStringView key) {
        for (const SettingLine& line : section.lines) {
            if (line.key == key)
                return line.value;
        }
        return {};
    }

    void readSource(const SettingSection& section) {
        const QString kind = valueOf(section, u"kind");
        const auto row = std::ranges::find_if(
            sourceKinds(), [&](const KindRow& known) { return kind == known.name; });
        if (section.name.isEmpty() || section.name.contains(u':'))
            fault(section.line, u"a source needs a name: [source NAME]"_s);
        else if (settings_.source(section.name))
            fault(section.line, u"there is a second source %1"_s.arg(section.name));
        if (row == sourceKinds().end()) {
            fault(section.line, u"kind is file, command, indi, alpaca or mqtt"_s);
            return;
        }
        SourceSettings source{.name = section.name, .kind = row->kind, .keys = {}};
        readKeys(section, row->keys, source.keys, {u"kind"_s});
        settings_.sources.push_back(source);
    }

    void readSensor(const SettingSection& section) {
        for (const SettingLine& line : section.lines) {
            const QString role = line.value.toUpper();
            if (line.key != u"role")
                fault(line.line, u"there is no key \"%1\" here"_s.arg(line.key));
            else if (role != u"MASTER" && role != u"SLAVE")
                fault(line.line, u"role takes MASTER or SLAVE"_s);
            settings_.master = role == u"MASTER";
        }
    }

    void readSwitch(const SettingSection& section) {
        const QString kind = valueOf(section, u"kind");
        const auto row = std::ranges::find_if(
            switchKinds(), [&](const SwitchRow& known) { return kind == known.name; });
        if (row == switchKinds().end()) {
            fault(section.line, u"kind is indi, alpaca or command"_s);
            return;
        }
        settings_.roof.kind = row->kind;
        std::vector<KeyRow> keys = row->keys;
        keys.push_back({u"close-after", u"180", KeyForm::Seconds});
        readKeys(section, keys, settings_.roof.keys, {u"kind"_s});
        settings_.roof.closeAfterSeconds = settings_.roof.text(u"close-after"_s).toDouble();
    }

    void readStation(const SettingSection& section) {
        StationSettings& station = settings_.station;
        for (const SettingLine& line : section.lines) {
            const QString& value = line.value;
            if (line.key == u"temperature" && (value == u"C" || value == u"F"))
                station.fahrenheit = value == u"F";
            else if (line.key == u"speed" &&
                     QStringList{u"km/h"_s, u"mph"_s, u"m/s"_s, u"kts"_s}.contains(value))
                station.speed = value;
            else if (line.key == u"rain" && (value == u"mm" || value == u"in"))
                station.inches = value == u"in";
            else if (line.key == u"date" && (value == u"dd/mm" || value == u"mm/dd"))
                station.monthFirst = value == u"mm/dd";
            else
                fault(line.line, u"[station] takes temperature = C or F, speed = km/h, mph, m/s or "
                                 u"kts, rain = mm or in, date = dd/mm or mm/dd"_s);
        }
    }

    void readAddress(const SettingLine& line, ValueAddress& address) {
        const qsizetype colon = line.value.indexOf(u':');
        if (colon <= 0 || line.value.sliced(colon + 1).trimmed().isEmpty()) {
            fault(line.line, u"%1 takes SOURCE: ADDRESS"_s.arg(line.key));
            return;
        }
        address = {line.value.first(colon).trimmed(), line.value.sliced(colon + 1).trimmed()};
        addressLines_.push_back({line.line, address.source});
    }

    // "above 3.5"
    void readLimit(const SettingLine& line, std::optional<LevelLimit>& limit) {
        const QString side = line.value.section(u' ', 0, 0, QString::SectionSkipEmpty).toLower();
        const std::optional<double> number =
            plainNumber(line.value.section(u' ', 1, -1, QString::SectionSkipEmpty));
        if ((side == u"above" || side == u"below") && number)
            limit = LevelLimit{side == u"above", *number};
        else
            fault(line.line, u"%1 takes \"above NUMBER\" or \"below NUMBER\""_s.arg(line.key));
    }

    // "Ok 1, Busy 2, Alert 3"
    void readWords(const SettingLine& line, std::vector<LevelRule::Word>& words) {
        for (const QString& piece : line.value.split(u',')) {
            const QString pair = piece.simplified();
            const QString level = pair.section(u' ', -1);
            const QString text = pair.section(u' ', 0, -2);
            if (text.isEmpty() || (level != u"1" && level != u"2" && level != u"3")) {
                fault(line.line, u"levels takes \"TEXT LEVEL, TEXT LEVEL\", LEVEL 1 to 3"_s);
                return;
            }
            words.push_back({text, level.toInt()});
        }
    }

    void readNumber(const SettingLine& line, double& number, bool (*good)(double)) {
        const std::optional<double> read = plainNumber(line.value);
        if (read && good(*read))
            number = *read;
        else
            fault(line.line, u"%1 is no number that can be used here"_s.arg(line.key));
    }

    void readItem(const SettingSection& section, const ItemRow& row) {
        ItemSettings& item = settings_.items[row.item];
        for (const SettingLine& line : section.lines) {
            if (line.key == u"value")
                readAddress(line, item.value);
            else if (line.key == u"scale")
                readNumber(line, item.scale, [](double number) { return number != 0; });
            else if (line.key == u"offset")
                readNumber(line, item.offset, [](double) { return true; });
            else if (line.key == u"max-age")
                readNumber(line, item.maxAgeSeconds,
                           [](double number) { return number > 0 && number <= 86'400; });
            else if (line.key == u"unit")
                readUnit(line, row, item);
            else if (row.hasLevels && line.key == u"level-from")
                readAddress(line, item.levelFrom);
            else if (row.hasLevels && line.key == u"level2")
                readLimit(line, item.levels.level2);
            else if (row.hasLevels && line.key == u"level3")
                readLimit(line, item.levels.level3);
            else if (row.hasLevels && line.key == u"levels")
                readWords(line, item.levels.words);
            else if (row.hasLevels && line.key == u"hysteresis")
                readNumber(line, item.levels.hysteresis, [](double number) { return number >= 0; });
            else if (row.item == Item::Cloud && line.key == u"less-air" &&
                     (line.value == u"yes" || line.value == u"no"))
                item.differenceToAir = line.value == u"yes";
            else
                fault(line.line, u"[%1] has no key \"%2\" of that form"_s.arg(row.name, line.key));
        }
        checkItem(section, row, item);
    }

    void readUnit(const SettingLine& line, const ItemRow& row, ItemSettings& item) {
        const std::optional<UnitStep> unit = unitNamed(line.value, row.measure);
        if (unit)
            item.unit = *unit;
        else if (row.measure != ItemMeasure::Plain && row.measure != ItemMeasure::Angle)
            fault(line.line, u"unit takes one of "_s + unitNames(row.measure));
    }

    void checkItem(const SettingSection& section, const ItemRow& row, const ItemSettings& item) {
        const LevelRule& levels = item.levels;
        if (!item.isSet())
            fault(section.line, u"[%1] has no value"_s.arg(row.name));
        if (row.hasLevels && !levels.any())
            fault(section.line,
                  u"[%1] has neither limits (level2, level3) nor levels"_s.arg(row.name));
        if (!levels.words.empty() && (levels.level2 || levels.level3))
            fault(section.line, u"[%1] has limits as well as levels"_s.arg(row.name));
        if (levels.level2 && levels.level3 &&
            (levels.level2->above != levels.level3->above ||
             (levels.level2->above ? levels.level3->value < levels.level2->value
                                   : levels.level3->value > levels.level2->value)))
            fault(section.line, u"[%1] must reach level 2 before level 3"_s.arg(row.name));
        if (item.differenceToAir && (item.levelFrom.isSet() || !item.value.isSet()))
            fault(section.line, u"less-air needs a sky temperature as value"_s);
    }

    void check() {
        for (const auto& [line, name] : addressLines_) {
            if (!settings_.source(name))
                fault(line, u"there is no [source %1]"_s.arg(name));
        }
        if (settings_.items[Item::Cloud].differenceToAir &&
            !settings_.items[Item::Temperature].isSet())
            faults_.append(u"less-air needs a [temperature]"_s);
        if (settings_.master && settings_.roof.kind == SwitchKind::None)
            faults_.append(u"the role MASTER needs a [switch]"_s);
        if (settings_.roof.kind == SwitchKind::Indi) {
            const SourceSettings* source = settings_.source(settings_.roof.text(u"source"_s));
            if (!source || source->kind != SourceKind::Indi)
                faults_.append(u"the source of [switch] must be one of kind indi"_s);
        }
        if (std::ranges::none_of(settings_.items, &ItemSettings::isSet))
            faults_.append(u"nothing is measured: there is no section with a value"_s);
    }

    QStringList& faults_;
    SensorSettings settings_;
    QStringList seen_;
    std::vector<std::pair<int, QString>> addressLines_;
};

} // namespace

const SourceSettings* SensorSettings::source(const QString& name) const {
    const auto found = std::ranges::find(sources, name, &SourceSettings::name);
    return found == sources.end() ? nullptr : &*found;
}

bool SensorSettings::anyOfSensor() const {
    return std::ranges::any_of(
        kItems, [this](const ItemRow& row) { return row.hasLevels && items[row.item].isSet(); });
}

SensorSettings sensorSettings(QByteArrayView text, QStringList& faults) {
    const std::vector<SettingSection> sections = parseSettings(text, faults);
    return Reader(faults).read(sections);
}

QStringList settingsRemarks(const SensorSettings& settings) {
    QStringList remarks;
    for (const Item item : {Item::Rain, Item::Cloud}) {
        if (settings.anyOfSensor() && !settings.items[item].isSet())
            remarks.append(u"nothing measures %1: it is never unsafe by this program"_s.arg(
                item == Item::Rain ? u"rain" : u"clouds"));
    }
    for (const ItemRow& row : kItems) {
        const LevelRule& levels = settings.items[row.item].levels;
        if (row.hasLevels && settings.items[row.item].isSet() && levels.words.empty() &&
            !levels.level3)
            remarks.append(u"[%1] never reaches level 3"_s.arg(row.name));
    }
    if (settings.master && settings.roof.closeAfterSeconds == 0)
        remarks.append(u"close-after is 0: the roof stays open when the monitor is silent"_s);
    return remarks;
}

QString defaultSettingsPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/Kiv/skyhold-sensor.conf"_s;
}

} // namespace skyhold
