// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/upload_list.h"
#include "datafiles/user_data_file.h"
#include "support/full_disk.h"
#include "support/test_folder.h"

#include <algorithm>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const QByteArray kHeader = "\"Wind\",\"Verdict\"\r\n";

QByteArray line(int wind) {
    return '"' + QByteArray::number(wind) + "\",\"Safe\"\r\n";
}

// Two columns are on: the wind speed and the verdict.
class Recorder : public testing::Test {
  protected:
    Recorder() {
        controls.RecOption.Index = 1;
        controls.RecOption.Click = [this](int index) {
            good = RecOption_Click(index, recorder, controls, [this](const Message& message) {
                messages.append(message.text);
                if (onQuestion)
                    onQuestion();
                return answer;
            });
        };
        controls.SaveFreq.Value = 1;
        controls.FileName.Text = u" night "_s;
        controls.LblPathName.Caption = folder.path() + u'\\';
        for (DataColumn& column : controls.Columns)
            column.Prt = false;
        controls.Columns[4] = {u"Wind"_s, 13, true};
        controls.Columns[6] = {u"Verdict"_s, 25, true};
    }

    void cycles(int count) {
        for (int i = 0; i < count; ++i) {
            readings.WindSpeed = ++cycle;
            WriteUserDataLine(recorder, controls, {readings, forms, {}});
        }
    }

    QString path(const QString& name = u"night.csv"_s) const { return folder.filePath(name); }
    void write(const QByteArray& bytes, const QString& name = u"night.csv"_s) const {
        folder.write(name, bytes);
    }
    QByteArray read(const QString& name = u"night.csv"_s) const { return folder.read(name); }

    // Recording and everything that shows it say the same.
    bool recording() const {
        for (const bool editable :
             {controls.FileName.Enabled.value(), controls.ButtPATH.Enabled.value(),
              controls.ButtFileStructure.Enabled.value(), controls.SaveFreq.Enabled.value()})
            EXPECT_EQ(editable, !recorder.recording);
        EXPECT_EQ(controls.RecOption.Index, recorder.recording ? 0 : 1);
        EXPECT_FALSE(recorder.switching);
        return recorder.recording;
    }

    TestFolder folder;
    DataFileControls controls;
    UserDataRecorder recorder;
    CurrentReadings readings;
    const NumberForms forms;
    MessageAnswer answer = MessageAnswer::Cancel;
    std::function<void()> onQuestion;
    QStringList messages;
    bool good = true; // what the last click answered
    int cycle = 0;
};

TEST_F(Recorder, EveryThirdCycleWritesALineWhateverStopsBetween) {
    controls.SaveFreq.Value = 3;
    controls.RecOption.choose(0);
    EXPECT_TRUE(recording());
    EXPECT_EQ(read(), kHeader) << "on disk at once";
    cycles(8);
    const QByteArray first = kHeader + line(1) + line(4) + line(7);
    EXPECT_EQ(read(), first);

    controls.RecOption.choose(1);
    EXPECT_FALSE(recording());
    EXPECT_FALSE(recorder.file.addLine("late")) << "closed";
    cycles(2);
    EXPECT_EQ(read(), first);
    answer = MessageAnswer::Yes;
    controls.RecOption.choose(0);
    cycles(2);
    EXPECT_EQ(read(), first + kHeader + line(12)) << "two of three cycles were counted before";
    EXPECT_EQ(messages, QStringList{u"Append to existing file"_s});
}

TEST_F(Recorder, UserStarts) {
    const QStringList append{u"Append to existing file"_s};
    const QStringList define{u"Define the PATH for User Data File"_s};
    auto& place = controls.LblPathName.Caption;
    using enum MessageAnswer;
    const QByteArray fresh = kHeader + line(1);
    const auto holding = [this](const QByteArray& bytes) {
        return std::function([this, bytes] { write(bytes); });
    };
    const auto linked = [this](const char* target) {
        return std::function([this, target] { QFile::link(path(QLatin1String(target)), path()); });
    };
    const auto set = [](auto& property, const QString& text) {
        return std::function([&property, text] { property = text; });
    };
    write("precious", u"other"_s);
    const struct {
        const char* what;
        std::function<void()> prepare;
        MessageAnswer answer;
        QStringList asked;
        bool recording, good;
        QByteArray content; // of night.csv after a cycle
    } cases[] = {
        {"no file", [] {}, Cancel, {}, true, true, fresh},
        {"append", holding("old\r\n"), Yes, append, true, true, "old\r\n" + fresh},
        {"to a torn line", holding("old\r\nto"), Yes, append, true, true, "old\r\nto\r\n" + fresh},
        {"append to nothing", holding(""), Yes, append, true, true, fresh},
        {"overwrite", holding(QByteArray(500, 'x')), No, append, true, true, fresh},
        {"cancel", holding("old\r\n"), Cancel, append, false, true, "old\r\n"},
        {"no name", set(controls.FileName.Text, u"  "_s), Yes, {}, false, true, "no file"},
        {"no folder", set(place, u" "_s), Yes, define, false, true, "no file"},
        {"folder is missing", set(place, path(u"gone"_s)), Yes, {}, false, false, "no file"},
        {"a folder in its place", [&] { QDir().mkdir(path()); }, Yes, append, false, false,
         "no file"},
        {"a link in its place", linked("other"), No, append, false, false, "precious"},
        {"a link to nothing", linked("new"), Yes, append, false, false, "no file"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QFile::remove(path());
        QDir().rmdir(path());
        controls.FileName.Text = u"night"_s;
        controls.LblPathName.Caption = folder.path();
        messages.clear();
        cycle = recorder.cycleCounter = 0;
        c.prepare();
        answer = c.answer;
        controls.RecOption.choose(0);
        EXPECT_EQ(good, c.good);
        EXPECT_EQ(recording(), c.recording);
        EXPECT_EQ(messages, c.asked);
        cycles(1);
        EXPECT_EQ(read(), c.content);
        controls.RecOption.choose(1);
        EXPECT_FALSE(recording());
    }
    EXPECT_FALSE(QFile::exists(path(u"new"_s)));
}

TEST_F(Recorder, OtherProgramsStartAndStopWithoutAQuestion) {
    write("old\r\n");
    EXPECT_TRUE(Record_Start(true, recorder, controls));
    EXPECT_TRUE(recording());
    cycles(1);
    EXPECT_EQ(read(), "old\r\n" + kHeader + line(1));
    Record_Stop(recorder, controls);
    EXPECT_FALSE(recording());
    EXPECT_TRUE(Record_Start(false, recorder, controls));
    EXPECT_EQ(read(), kHeader);

    controls.FileName.Text = u" "_s;
    EXPECT_TRUE(Record_Start(true, recorder, controls));
    EXPECT_FALSE(recording());
    controls.FileName.Text = u"night"_s;
    controls.LblPathName.Caption = path(u"gone"_s);
    EXPECT_FALSE(Record_Start(true, recorder, controls));
    EXPECT_FALSE(recording());

    // A pipe holds nobody; a name of another case is the same file.
    controls.LblPathName.Caption = folder.path();
    QFile::remove(path());
    ASSERT_EQ(::mkfifo(qPrintable(path()), 0600), 0);
    EXPECT_FALSE(Record_Start(true, recorder, controls));
    QFile::remove(path());
    write("old\r\n", u"Night.CSV"_s);
    EXPECT_TRUE(Record_Start(true, recorder, controls));
    EXPECT_EQ(read(u"Night.CSV"_s), "old\r\n" + kHeader);
    EXPECT_EQ(messages, QStringList());
}

TEST_F(Recorder, OtherProgramsAnswerTheOpenQuestion) {
    write("old\r\n");
    answer = MessageAnswer::No;
    onQuestion = [this] {
        Record_Start(true, recorder, controls);
        cycles(1);
    };
    controls.RecOption.choose(0);
    EXPECT_TRUE(recording());
    EXPECT_EQ(read(), "old\r\n" + kHeader + line(1));

    controls.RecOption.choose(1);
    onQuestion = [this] {
        cycles(1);
        Record_Stop(recorder, controls);
    };
    controls.RecOption.choose(0);
    EXPECT_FALSE(recording());
    EXPECT_EQ(read(), "old\r\n" + kHeader + line(1));
}

TEST_F(Recorder, FullDiskCostsOnlyTheLinesThatDoNotFit) {
    controls.RecOption.choose(0);
    cycles(1);
    const QByteArray written = kHeader + line(1);
    QByteArray whileFull;
    bool stillRecording = false;
    {
        const FullDisk full(static_cast<rlim_t>(written.size() + line(2).size() / 2));
        cycles(2);
        whileFull = read();
        stillRecording = recorder.recording;
    }
    EXPECT_EQ(whileFull, written) << "no half line";
    EXPECT_TRUE(stillRecording);
    cycles(1);
    EXPECT_EQ(read(), written + line(4));

    // A start whose header does not fit fails and leaves what there was.
    bool started = true;
    {
        const FullDisk full(static_cast<rlim_t>(read().size()) + 3);
        started = Record_Start(true, recorder, controls);
    }
    EXPECT_FALSE(started);
    EXPECT_FALSE(recording());
    EXPECT_EQ(read(), written + line(4));
}

TEST_F(Recorder, KilledProgramLosesNoFinishedLine) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        controls.RecOption.choose(0);
        cycles(3);
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(read(), kHeader + line(1) + line(2) + line(3));
}

TEST_F(Recorder, FileShortenedOrDeletedByAnotherProgram) {
    controls.RecOption.choose(0);
    cycles(2);
    ASSERT_TRUE(QFile::resize(path(), kHeader.size()));
    cycles(1);
    EXPECT_EQ(read(), kHeader + line(3)) << "goes on at the new end";

    ASSERT_TRUE(QDir(folder.path()).removeRecursively());
    cycles(2); // lost: nobody told the recorder to make a folder
    ASSERT_TRUE(QDir().mkpath(folder.path()));
    cycles(2);
    EXPECT_EQ(read(), kHeader + line(6) + line(7)) << "made anew when there is a place for it";
}

const QDateTime kEarlier(QDate(2026, 11, 16), QTime(22, 0));

class UploadList : public testing::Test {
  protected:
    // A file that was modified that long after kEarlier.
    void touch(const QString& name, int milliseconds = 0) {
        QFile file(folder_.write(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            file.setFileTime(kEarlier.addMSecs(milliseconds), QFileDevice::FileModificationTime));
    }
    void list(const QString& name, bool once = false) { Add(upload_, name, folder_.path(), once); }
    QString stored(const QString& key) {
        return SettingsStore(kUploaderArea).GetSetting(u"Setup"_s, key, u"absent"_s);
    }
    int handOff(HandOff wanted = HandOff::Due) {
        SettingsStore area(kUploaderArea);
        WriteUploadList(upload_, area, wanted);
        return stored(u"NoFiles"_s).toInt();
    }

    SettingsFolder folder_;
    UploadControls upload_;
};

TEST_F(UploadList, isDueWhenEveryFileIsThereAndModifiedOrUploadedOnce) {
    constexpr int kNever = -1;
    struct Item {
        bool once;
        int stampedAt;  // milliseconds after kEarlier; kNever: not handed off yet
        int modifiedAt; // the same; kNever: no such file
    };
    const Item modified{false, 0, 1}, unmodified{false, 0, 0}, missing{false, kNever, kNever};
    const struct {
        const char* what;
        std::vector<Item> items;
        bool due;
    } cases[] = {
        {"empty list", {}, true},
        {"never handed off", {{false, kNever, 0}}, true},
        {"modified since", {modified}, true},
        {"not modified", {unmodified}, false},
        {"once, not modified", {{true, 1000, 1000}}, true},
        {"once, missing", {{true, kNever, kNever}}, false},
        {"missing", {missing}, false},
        {"one of two modified", {modified, unmodified}, false},
        {"one missing holds all back", {modified, missing}, false},
        {"once never holds others back", {modified, {true, 0, 0}}, true},
    };
    for (const auto& [what, items, due] : cases) {
        upload_.Files.clear();
        for (const Item& item : items) {
            const QString name = u"file"_s + QString::number(upload_.Files.size());
            QFile::remove(folder_.filePath(name));
            if (item.modifiedAt != kNever)
                touch(name, item.modifiedAt);
            list(name, item.once);
            if (item.stampedAt != kNever)
                upload_.Files.back().fDateTimeStamp = kEarlier.addMSecs(item.stampedAt);
        }
        EXPECT_EQ(IsUploadDue(upload_), due) << what;
    }
}

TEST_F(UploadList, handOffListsWhatIsDueAndStampsIt) {
    upload_.ServerAddress.Text = u"ftp.example.org:2121/"_s;
    upload_.ServerPath.Text = u"web/data/"_s;
    upload_.UserName.Text = u"observer"_s;
    upload_.PassWord.Text = u"@ \"a;b\", %41=\\ä"_s;
    upload_.TimeoutUPLOAD.Value = 45;
    upload_.UploadDir = u"/somewhere"_s;
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        touch(QLatin1String(name));
        list(QLatin1String(name), *name == 'b');
    }
    EXPECT_EQ(handOff(), 5);
    const std::pair<const char*, QString> expected[] = {
        {"Server", u"ftp.example.org:2121/"_s},
        {"ServerPath", u"web/data/"_s},
        {"Username", u"observer"_s},
        {"Password", upload_.PassWord.Text},
        {"TimeoutUPLOAD", u"45"_s},
        {"UploadDir", u"/somewhere"_s},
        {"File1", folder_.filePath(u"a"_s)},
        {"File5", folder_.filePath(u"e"_s)},
    };
    for (const auto& [key, text] : expected)
        EXPECT_EQ(stored(QLatin1String(key)), text) << key;
    EXPECT_EQ(upload_.Files[1].fDateTimeStamp, kEarlier);
    EXPECT_FALSE(IsUploadDue(upload_));

    // Regular files are listed whenever there is a hand-off, the others when they have changed.
    // What an earlier hand-off has left beyond their number stays.
    Remove(upload_, 5);
    Remove(upload_, 4);
    touch(u"a"_s, 5);
    QFile::remove(folder_.filePath(u"c"_s));
    touch(u"late"_s, 5);
    list(u"late"_s, true);
    EXPECT_EQ(handOff(), 2);
    EXPECT_FALSE(IsRetryDue(upload_));
    NoteUploadFaults(upload_, {{folder_.filePath(u"none of these"_s), {}, {}}});
    EXPECT_FALSE(IsRetryDue(upload_));
    EXPECT_EQ(stored(u"File1"_s), folder_.filePath(u"a"_s));
    EXPECT_EQ(stored(u"File2"_s), folder_.filePath(u"late"_s));
    EXPECT_EQ(stored(u"File4"_s), folder_.filePath(u"d"_s));
    EXPECT_EQ(upload_.Files[0].fDateTimeStamp, kEarlier.addMSecs(5));
    EXPECT_EQ(upload_.Files[1].fDateTimeStamp, kEarlier);
    EXPECT_EQ(upload_.Files[2].fDateTimeStamp, kEarlier); // missing: as it was
}

TEST_F(UploadList, chosenFilesAreListedOnce) {
    AddChosenFiles(upload_, {u"/web/a.htm"_s, u"/web/a.htm"_s, u"\\web\\a.htm"_s, u"/Web/a.htm"_s,
                             u"/root.txt"_s, u"/web/"_s, u"bare"_s});
    EXPECT_EQ(upload_.FileLines.value(),
              (QStringList{u"     /web/a.htm"_s, u"     /Web/a.htm"_s, u"     /root.txt"_s}));
}

} // namespace
} // namespace skyhold
