#include "settings/key_table.h"
#include "settings/load_save.h"
#include "settings/reference_page.h"

#include "support/test_folder.h"

#include <QFileInfo>
#include <QMap>

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

// Lets a failed comparison show its texts.
static void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << qPrintable(text) << '"';
}

namespace {

const NumberForms kPoint{.decimal = u"."_s, .thousand = u","_s};
const NumberForms kComma{.decimal = u","_s, .thousand = u"."_s};

using Texts = QMap<QString, QString>; // by "section/key"

QString nameOf(const KeyRow& row) {
    return row.section + u'/' + row.key;
}

// The present text of every key.
Texts textsOf(Records& records, const NumberForms& forms = kPoint) {
    Texts texts;
    for (const KeyRow& row : keyTable(records))
        texts[nameOf(row)] = row.text(forms);
    for (const KeyRow& row : uploadEntryRows(records.upload))
        texts[nameOf(row)] = row.text(forms);
    return texts;
}

// "key: text, expected text" of every key that differs; empty when none does.
std::string differences(const Texts& texts, const Texts& expected) {
    QStringList lines;
    Texts all = expected;
    all.insert(texts);
    for (const QString& name : all.keys()) {
        if (texts.value(name) != expected.value(name) ||
            texts.contains(name) != expected.contains(name))
            lines +=
                u"%1: \"%2\", expected \"%3\""_s.arg(name, texts.value(name), expected.value(name));
    }
    return lines.join(u'\n').toStdString();
}

Texts defaultTexts() {
    Texts texts;
    Records records;
    for (const KeyRow& row : keyTable(records))
        texts[nameOf(row)] = row.defaultText;
    return texts;
}

// A valid text for the key that differs from its default.
QString changedText(const KeyRow& row) {
    // Of the options of one choice only one can be "True".
    static const QStringList chosen{u"UnitsTemp1"_s, u"UnitsSpeed2"_s, u"DateFormat1"_s,
                                    u"SWRole1"_s,    u"QualityTop"_s,  u"RoofAtStop2"_s,
                                    u"Reach1"_s};
    switch (row.type) {
    case KeyType::Text:
        return u"%1: x, \"y\"; =\\é"_s.arg(row.key).left(25);
    case KeyType::Integer: {
        const int value = row.defaultText.toInt();
        return QString::number(value > row.lowest ? value - 1 : value + 1);
    }
    case KeyType::Number:
        return QString::number(row.defaultText.toDouble() + 0.5);
    case KeyType::Boolean:
        return chosen.contains(row.key) ? u"True"_s : u"False"_s;
    case KeyType::CheckBox:
        return row.defaultText == u"1"_s ? u"0"_s : u"1"_s;
    case KeyType::Colour:
        break;
    }
    return QString::number(row.defaultText.toInt() ^ 0x010203);
}

class Settings : public testing::Test {
  protected:
    void save(const QString& section, const QString& key, const QString& text) {
        store_.SaveSetting(section, key, text);
    }
    QString saved(const QString& section, const QString& key) const {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(section, key, u"absent"_s);
    }

    const SettingsFolder folder_; // before the store, which is made in it
    SettingsStore store_{u"Kiv_Skyhold"_s};
};

} // namespace

TEST_F(Settings, FreshStoreYieldsTheDefaults) {
    Records records;
    LoadSettings(records, store_, kPoint);
    EXPECT_EQ(differences(textsOf(records), defaultTexts()), "");

    // What the table's defaults mean in the records, with the keys that run against the levels.
    const ConditionControls& c = records.conditions;
    const auto unsafe = [](const ThreeChecks& boxes) {
        return std::array{boxes[0].checked(), boxes[1].checked(), boxes[2].checked()};
    };
    using Levels = std::array<bool, 3>;
    EXPECT_EQ(unsafe(c.Cond[Quantity::Cloud]), (Levels{false, false, true}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Rain]), (Levels{false, true, true}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Brightness]), (Levels{false, false, true}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Wind]), (Levels{false, true, true}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Gust]), (Levels{false, true, true}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Temperature]), (Levels{true, false, true}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Dew]), (Levels{true, false, false}));
    EXPECT_EQ(unsafe(c.Cond[Quantity::Humidity]), (Levels{false, false, true}));
    EXPECT_TRUE(c.WSDataOldUnsafe.checked());
    EXPECT_TRUE(c.NBDataOldUnsafe.checked());
    EXPECT_EQ(c.Limit[Quantity::Temperature][0].Value.value(), -5);
    EXPECT_EQ(c.Color[Quantity::Dew][0].BackColor.value(), kSwatchOrange);
    EXPECT_EQ(c.Cond[Quantity::Temperature][2].Caption.value(), u"Hot"_s);
    EXPECT_EQ(c.Cond[Quantity::Brightness][2].Caption.value(), u"Very Light"_s);
    EXPECT_EQ(c.Direction[Quantity::Gust][2].Caption.value(), u"000  359  01"_s);
    EXPECT_EQ(records.units.UnitsSpeed.Index.value(), 0);
    EXPECT_EQ(records.units.Cardinal[15], u"NNW"_s);
    EXPECT_EQ(records.session.RefreshRead.chosen(), u"10 secs"_s);
    EXPECT_EQ(records.upload.RefreshUpload.chosen(), u"60 sec"_s);
    EXPECT_EQ(records.graphs.GraphColor[2][1].BackColor.value(), kRed);
    EXPECT_EQ(records.graphs.ImageQuality.Index.value(), 2);
    EXPECT_EQ(records.dataFile.Columns[24].Hdr, u"Safe Condtition"_s);
    EXPECT_FALSE(records.window.Placed);
    EXPECT_FALSE(records.units.Loading);
}

TEST_F(Settings, EveryKeyStandsOnceAndItsDefaultConverts) {
    Records records;
    QStringList names;
    QStringList sections; // in the order of loading
    for (const KeyRow& row : keyTable(records)) {
        SCOPED_TRACE(qPrintable(nameOf(row)));
        EXPECT_FALSE(names.contains(nameOf(row)));
        names += nameOf(row);
        if (sections.isEmpty() || sections.last() != row.section)
            sections += row.section;
        EXPECT_TRUE(row.load(row.defaultText, kPoint));
        EXPECT_FALSE(row.holds.isEmpty());
    }
    EXPECT_EQ(sections.join(u' '), u"Window Limit Window Setup Limit Description Color Unsafe "
                                   u"Alarms Graphs Alarms Window File Update Verdict View "
                                   "History Network Notices"_s);
    // 41 in "Window", 23 in "Limit", 15 + 15 levels, 30 in "Unsafe", 56 in "Alarms", 19 in
    // "Setup", 32 in "Graphs", 76 in "File", 1 each in "Update" and "View", 9 in
    // "Verdict", 3 each in "History" and "Notices", 14 in "Network".
    EXPECT_EQ(names.size(), 41 + 23 + 15 + 15 + 30 + 56 + 19 + 32 + 76 + 1 + 9 + 1 + 3 + 14 + 3);
}

TEST_F(Settings, EveryKeySurvivesARestart) {
    for (const NumberForms& forms : {kPoint, kComma}) {
        Texts texts;
        Records fresh;
        for (const KeyRow& row : keyTable(fresh)) {
            texts[nameOf(row)] = changedText(row);
            if (row.type == KeyType::Number)
                texts[nameOf(row)].replace(u'.', forms.decimal);
        }
        texts[u"Setup/NoFiles"_s] = u"2"_s;
        for (const QString& n : {u"1"_s, u"2"_s}) {
            texts[u"Setup/FileName"_s + n] = u"graph, %1.png"_s.arg(n);
            texts[u"Setup/FilePath"_s + n] = u"C:\\images"_s;
            texts[u"Setup/FileUpload"_s + n] = u"True"_s;
        }
        for (auto text = texts.begin(); text != texts.end(); ++text)
            save(text.key().section(u'/', 0, 0), text.key().section(u'/', 1), text.value());
        ASSERT_TRUE(store_.flush());

        Records records;
        LoadSettings(records, SettingsStore(u"Kiv_Skyhold"_s), forms);
        EXPECT_EQ(differences(textsOf(records, forms), texts), "");

        // The same again from what SaveSettings writes.
        ASSERT_TRUE(QFile::remove(store_.filePath()));
        SettingsStore again(u"Kiv_Skyhold"_s);
        ASSERT_TRUE(SaveSettings(records, again, forms));
        Records reloaded;
        LoadSettings(reloaded, SettingsStore(u"Kiv_Skyhold"_s), forms);
        EXPECT_EQ(differences(textsOf(reloaded, forms), texts), "");
        EXPECT_TRUE(reloaded.window.Placed);
    }
}

TEST_F(Settings, RubbishInAKeyYieldsItsDefaultAndNothingElseChanges) {
    const Texts defaults = defaultTexts();
    Records fresh;
    for (const KeyRow& row : keyTable(fresh)) {
        QStringList rubbish{u"rubbish"_s, u"nan"_s, u"inf"_s, u"1e999"_s, u"1 2"_s, u""_s};
        if (row.type == KeyType::Text)
            continue;
        if (row.type == KeyType::CheckBox)
            rubbish += {u"2"_s, u"-1"_s};
        if (row.type == KeyType::Colour)
            rubbish += {u"-1"_s, u"16777216"_s};
        if (row.type == KeyType::Integer && !row.clamped)
            rubbish += {QString::number(row.lowest - 1), QString::number(row.highest + 1),
                        u"99999999999"_s};
        for (const QString& text : std::as_const(rubbish)) {
            save(row.section, row.key, text);
            Records records;
            LoadSettings(records, store_, kPoint);
            EXPECT_EQ(differences(textsOf(records), defaults), "")
                << qPrintable(nameOf(row) + u" = "_s + text);
        }
        save(row.section, row.key, row.defaultText);
    }
}

TEST_F(Settings, StoredTextsConvert) {
    const struct {
        const char *section, *key, *stored;
        const NumberForms& forms;
        const char* loaded;
    } cases[] = {
        {"Limit", "WindCalm", "0,5", kComma, "0,5"},
        // Saved under another locale: never fifteen times the limit that was meant.
        {"Limit", "WindCalm", "1,5", kPoint, "1.5"},
        {"Limit", "WindCalm", "12.5", kComma, "12,5"},
        {"Limit", "WindCalm", "1,234.5", kPoint, "10"},
        {"Limit", "WindCalm", "1.012.5", kPoint, "10"},
        {"Limit", "WindCalm", "1.012.5", kComma, "10"},
        {"Limit", "WindCalm", "1e-05", kPoint, "1e-05"}, // as it is saved
        {"Limit", "WindCalm", "1,5e-05", kComma, "1,5e-05"},
        {"Window", "SafeDelayVal", "100000", kPoint, "100000"},
        {"Setup", "TimeoutREAD", "2.5", kPoint, "2"},
        {"Setup", "TimeoutREAD", " 7 ", kPoint, "7"},
        {"Graphs", "GraphNoPoints", "5", kPoint, "20"},
        {"Graphs", "GraphNoPoints", "5000", kPoint, "2000"},
        {"Graphs", "GraphFreq", "0", kPoint, "1"},
        {"Graphs", "GraphFreq", "-4", kPoint, "1"},
        {"Graphs", "GraphFreq", "100", kPoint, "99"},
        {"Graphs", "GraphFreq", "1e12", kPoint, "99"},
        {"Graphs", "GraphColorWind0", "255", kPoint, "255"},
        {"Window", "FreqSave", "0", kPoint, "1"},
        {"File", "Prt03", "FALSE", kPoint, "False"},
        {"File", "Hdr03", "A heading of more than 25 letters", kPoint, "A heading of more than 25"},
        {"Window", "FileNameCCDAP4", "", kPoint, ""},
    };
    for (const auto& c : cases) {
        const QString section = QString::fromLatin1(c.section);
        const QString key = QString::fromLatin1(c.key);
        save(section, key, QString::fromLatin1(c.stored));
        Records records;
        LoadSettings(records, store_, c.forms);
        EXPECT_EQ(textsOf(records, c.forms)[section + u'/' + key], QString::fromLatin1(c.loaded))
            << c.key << " = " << c.stored;
    }
}

TEST_F(Settings, OneOptionIsAlwaysChosen) {
    const struct {
        QString stored0, stored1;
        int chosen;
    } cases[] = {{u"True"_s, u"False"_s, 0},  {u"False"_s, u"True"_s, 1}, {u"True"_s, u"True"_s, 1},
                 {u"False"_s, u"False"_s, 0}, {u"what"_s, u"False"_s, 0}, {u"what"_s, u"True"_s, 1},
                 {u"False"_s, u"what"_s, 0}};
    for (const auto& c : cases) {
        save(u"Limit"_s, u"UnitsTemp0"_s, c.stored0);
        save(u"Limit"_s, u"UnitsTemp1"_s, c.stored1);
        Records records;
        int lastClicked = -1;
        records.units.UnitsTemp.Click = [&](int index) {
            lastClicked = index;
            EXPECT_TRUE(records.units.Loading);
        };
        LoadSettings(records, store_, kPoint);
        EXPECT_EQ(records.units.UnitsTemp.Index.value(), c.chosen)
            << qPrintable(c.stored0 + c.stored1);
        EXPECT_EQ(lastClicked, c.chosen);
    }
}

TEST_F(Settings, SoundsAreLoadedBeforeAlarmsAreSwitchedOn) {
    save(u"Alarms"_s, u"DewLow"_s, u"/sounds/dew.wav|repeat"_s);
    save(u"Alarms"_s, u"NBAlarm"_s, u"/sounds/failed.wav"_s);
    for (const QString& key :
         {u"DewLowStat"_s, u"DewHighStat"_s, u"WSAlarmStat"_s, u"NBAlarmStat"_s})
        save(u"Alarms"_s, key, u"1"_s);

    Records records;
    AlarmControls& alarms = records.alarms;
    const std::pair<CheckBox*, bool> boxes[] = {{&alarms.Alarm[Quantity::Dew][0], true},
                                                {&alarms.Alarm[Quantity::Dew][2], false},
                                                {&alarms.AlarmWS, false},
                                                {&alarms.AlarmNB, true}};
    for (const auto& [box, hasSound] : boxes)
        box->Click = [box = box] {
            if (box->Tag.value().isEmpty())
                box->Value = 0;
        };
    LoadSettings(records, store_, kPoint);
    for (const auto& [box, hasSound] : boxes)
        EXPECT_EQ(box->checked(), hasSound);
    EXPECT_TRUE(alarms.Alarm[Quantity::Dew][0].HasIcons.value());
    EXPECT_FALSE(alarms.Alarm[Quantity::Dew][2].HasIcons.value());
}

TEST_F(Settings, DescriptionsStandBesideTheirUnsafeBoxes) {
    save(u"Description"_s, u"TempLow"_s, u"Frost"_s);
    save(u"Description"_s, u"DewHigh"_s, u"Dry air"_s);
    Records records;
    LoadSettings(records, store_, kPoint);
    EXPECT_EQ(records.conditions.Color[Quantity::Temperature][0].Caption.value(), u"Frost"_s);
    EXPECT_EQ(records.conditions.Cond[Quantity::Temperature][0].Caption.value(), u"Frost"_s);
    EXPECT_EQ(records.conditions.Cond[Quantity::Dew][2].Caption.value(), u"Dry air"_s);
}

TEST_F(Settings, WindowIsPlacedOnlyByTwoCoordinates) {
    const QString x = u"x"_s;
    for (const auto& [left, top] :
         {std::pair{u"-40"_s, u"25"_s}, {x, u"25"_s}, {u"40"_s, x}, {QString(), QString()}}) {
        save(u"Window"_s, u"Left"_s, left);
        save(u"Window"_s, u"Top"_s, top);
        Records records;
        LoadSettings(records, store_, kPoint);
        EXPECT_EQ(records.window.Placed, left == u"-40"_s) << qPrintable(left + u' ' + top);
        EXPECT_EQ(records.window.Left.value() == -40, left == u"-40"_s);
    }
}

TEST_F(Settings, ShortenedUploadListLeavesItsOldKeysUnread) {
    Records records;
    LoadSettings(records, store_, kPoint);
    for (const QString& name : {u"a.png"_s, u"b.png"_s, u"c.png"_s})
        records.upload.Files.push_back({false, {}, u"/images"_s, name});
    for (const std::size_t left : {3U, 1U}) {
        records.upload.Files.resize(left);
        ASSERT_TRUE(SaveSettings(records, store_, kPoint));
        EXPECT_EQ(saved(u"Setup"_s, u"NoFiles"_s), QString::number(left));
        EXPECT_EQ(saved(u"Setup"_s, u"FileName3"_s), u"c.png"_s);
    }
    Records reloaded;
    LoadSettings(reloaded, store_, kPoint);
    ASSERT_EQ(reloaded.upload.Files.size(), 1U);
    EXPECT_EQ(reloaded.upload.Files[0].fName, u"a.png"_s);
}

TEST_F(Settings, AFailureToSaveIsReported) {
    Records records;
    LoadSettings(records, store_, kPoint);
    // A folder in the file's place fails for every user, root included.
    ASSERT_TRUE(QDir().mkpath(store_.filePath()));
    EXPECT_FALSE(SaveSettings(records, store_, kPoint));
}

TEST_F(Settings, ReferencePageIsUpToDate) {
    const QString here = QFileInfo(QString::fromLocal8Bit(__FILE__)).absolutePath();
    QFile page(here + u"/../../docs/settings.md"_s);
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(page.readAll()), settingsReference())
        << "rebuild it with ./dev docs";
}
