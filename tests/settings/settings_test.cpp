// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/journal.h"
#include "settings/key_table.h"
#include "settings/load_save.h"
#include "settings/reference_page.h"
#include "settings/transfer.h"

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
    const ThreeChecks& dew = records.conditions.Cond[Quantity::Dew];
    EXPECT_TRUE(dew[0].checked() && !dew[1].checked() && !dew[2].checked());
    EXPECT_TRUE(records.conditions.WSDataOldUnsafe.checked());
    EXPECT_EQ(records.conditions.Limit[Quantity::Temperature][0].Value.value(), -5);
    EXPECT_EQ(records.conditions.Cond[Quantity::Temperature][2].Caption.value(), u"Hot"_s);
    EXPECT_EQ(records.session.RefreshRead.chosen(), u"10 secs"_s);
    EXPECT_EQ(records.graphs.ImageQuality.Index.value(), 2);
    EXPECT_FALSE(records.window.Placed);
    EXPECT_FALSE(records.units.Loading);
}

TEST_F(Settings, EveryKeySurvivesARestart) {
    for (const NumberForms& forms : {kPoint, kComma}) {
        Texts texts;
        Records fresh;
        for (const KeyRow& row : keyTable(fresh)) {
            EXPECT_FALSE(texts.contains(nameOf(row))) << qPrintable(nameOf(row));
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
        {"Limit", "WindCalm", "1e-05", kPoint, "1e-05"}, // as it is saved
        {"Setup", "TimeoutREAD", "2.5", kPoint, "2"},
        {"Setup", "TimeoutREAD", " 7 ", kPoint, "7"},
        {"Graphs", "GraphNoPoints", "5", kPoint, "20"},
        {"Graphs", "GraphFreq", "0", kPoint, "1"},
        {"Graphs", "GraphFreq", "1e12", kPoint, "99"},
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

TEST_F(Settings, ChangesAreJoinedIntoStepsAndGoneBackOn) {
    Records records;
    LoadSettings(records, store_, kPoint);
    SettingsJournal journal(records);
    QDateTime now(QDate(2026, 11, 23), QTime(22, 0));
    const Texts loaded = textsOf(records);
    NumberBox& calm = records.conditions.Limit[Quantity::Wind][0];
    CheckBox& clear = records.conditions.Cond[Quantity::Cloud][0];
    const auto look = [&](int seconds, bool byUser = true) {
        now = now.addSecs(seconds);
        journal.look(now, byUser);
        return journal.steps().size();
    };
    calm.set(1);
    EXPECT_EQ(look(1), 1U);
    calm.set(12); // the second digit
    records.window.Left = 77;
    EXPECT_EQ(look(2), 1U);
    clear.set(1);
    EXPECT_EQ(look(20), 2U);
    clear.set(0); // as it was
    EXPECT_EQ(look(2), 1U);
    // A unit changes limits with it, and comes back with them.
    records.units.UnitsSpeed.choose(2);
    calm.set(3.33);
    EXPECT_EQ(look(20), 2U);
    calm.set(4);
    EXPECT_EQ(look(20, false), 3U); // by another program: stays
    EXPECT_EQ(journal.undoable()->changes.size(), 3U);
    journal.undo();
    EXPECT_EQ(records.units.UnitsSpeed.Index.value(), 0);
    EXPECT_EQ(calm.Value.value(), 4);
    calm.set(12);
    look(20, false);
    journal.undo();
    EXPECT_EQ(differences(textsOf(records), loaded), "");
    EXPECT_EQ(journal.undoable(), nullptr);
    journal.redo();
    EXPECT_EQ(calm.Value.value(), 12);
    journal.redo();
    EXPECT_EQ(records.units.UnitsSpeed.Index.value(), 2);
    // What was changed before a session is out of reach while it runs.
    journal.lock();
    journal.undo();
    EXPECT_EQ(records.units.UnitsSpeed.Index.value(), 2);
    clear.set(1);
    look(20);
    journal.undo();
    EXPECT_FALSE(clear.checked());
    journal.unlock();
    EXPECT_NE(journal.undoable(), nullptr);
}

TEST_F(Settings, AnExportComesBackWithoutSecretsAndAnImportListsWhatItRefuses) {
    Records records;
    for (const KeyRow& row : keyTable(records))
        row.load(changedText(row), kPoint);
    records.upload.Files.assign(1, FileItem());
    records.upload.Files[0].fName = u"a=b;\"c\".csv"_s;
    const QString path = folder_.filePath(u"out/settings.ini"_s);
    EXPECT_NE(exportSettings(records, path, kPoint), QString()); // no such folder
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    EXPECT_EQ(exportSettings(records, path, kPoint), QString());

    Records other;
    LoadSettings(other, store_, kPoint);
    Texts expected = textsOf(records);
    for (const KeyRow& row : keyTable(other)) {
        if (row.role == KeyRole::Secret || row.role == KeyRole::State)
            expected[nameOf(row)] = row.text(kPoint);
    }
    const SettingsImport import = readSettingsFile(path, kPoint);
    EXPECT_EQ(import.refused, QStringList());
    takeSettings(other, import, kPoint);
    EXPECT_EQ(differences(textsOf(other), expected), "");

    const auto refused = [&](const QByteArray& bytes) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.close();
        const SettingsImport read = readSettingsFile(path, kPoint);
        takeSettings(other, read, kPoint);
        return (read.fault.isEmpty() ? read.refused.join(u"; "_s) : u"fault"_s).toStdString();
    };
    const std::pair<QByteArray, std::string> files[]{
        {"[Limit]\nWindCalm=abc\nWindWindy=21\n[End]\nWhole=1\n",
         "Limit/WindCalm: \"abc\" is no value of it"},
        {"[Setup]\nTimeoutREAD=1000\nPassword=x\nRefreshRead=2\n[Nowhere]\nKey=1\n[End]\nWhole=1\n",
         "Setup/Password: secrets are not imported; Setup/TimeoutREAD: \"1000\" is no value of it; "
         "Nowhere/Key: not known"},
        {"[Limit]\nUnitsTemp1=False\nWindWindy=22\n",
         "The file was cut short: some settings are missing"},
        {QByteArray("\0\xff\x01PNG", 6), "fault"},
        {"", "fault"},
    };
    for (const auto& [bytes, lines] : files)
        EXPECT_EQ(refused(bytes), lines);
    EXPECT_EQ(other.conditions.Limit[Quantity::Wind][1].Value.value(), 22);
    EXPECT_EQ(other.session.RefreshRead.ListIndex.value(), 2);
    EXPECT_EQ(other.units.UnitsTemp.Index.value(), 0); // one is always chosen
    EXPECT_EQ(other.upload.PassWord.Text.value(), QString());
}
