#include "datafiles/user_data_file.h"

#include "support/full_disk.h"
#include "support/test_folder.h"

#include <algorithm>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

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

TEST_F(Recorder, PipeInThePlaceOfTheFileHoldsNobody) {
    ASSERT_EQ(::mkfifo(qPrintable(path()), 0600), 0);
    EXPECT_FALSE(Record_Start(true, recorder, controls));
    EXPECT_FALSE(Record_Start(false, recorder, controls));
    EXPECT_FALSE(recording());
}

TEST_F(Recorder, NameOfAnotherCaseIsTheSameFile) {
    write("old\r\n", u"Night.CSV"_s);
    answer = MessageAnswer::Yes;
    controls.RecOption.choose(0);
    EXPECT_EQ(messages.size(), 1);
    EXPECT_EQ(read(u"Night.CSV"_s), "old\r\n" + kHeader);
    EXPECT_TRUE(Record_Start(false, recorder, controls));
    EXPECT_EQ(read(u"Night.CSV"_s), kHeader);
    EXPECT_EQ(folder.names().size(), 1);
}

TEST_F(Recorder, OtherProgramsStartAndStopWithoutAQuestion) {
    write("old\r\n");
    EXPECT_TRUE(Record_Start(true, recorder, controls));
    EXPECT_TRUE(recording());
    cycles(1);
    EXPECT_TRUE(Record_Start(true, recorder, controls));
    cycles(1);
    EXPECT_EQ(read(), "old\r\n" + kHeader + line(1) + kHeader + line(2));
    Record_Stop(recorder, controls);
    EXPECT_FALSE(recording());
    cycles(1);
    EXPECT_TRUE(Record_Start(false, recorder, controls));
    EXPECT_EQ(read(), kHeader);

    controls.FileName.Text = u" "_s;
    EXPECT_TRUE(Record_Start(true, recorder, controls));
    EXPECT_FALSE(recording());
    controls.FileName.Text = u"night"_s;
    controls.LblPathName.Caption = path(u"gone"_s);
    EXPECT_FALSE(Record_Start(true, recorder, controls));
    EXPECT_FALSE(recording());
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
    ASSERT_TRUE(WIFSIGNALED(status));
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

TEST(RecorderControls, IntervalAndFileNameRules) {
    for (const auto& [typed, shown] : std::initializer_list<std::pair<double, double>>{
             {0, 1}, {-5, 1}, {0.4, 1}, {2.5, 2}, {3.5, 4}, {12, 12}}) {
        NumberBox box;
        box.Value = typed;
        SetSaveFreq(box);
        EXPECT_EQ(box.Value, shown) << typed;
    }
    EXPECT_TRUE(std::ranges::all_of(u"AZaz09_\b"_s, dataFileNameAccepts));
    EXPECT_TRUE(std::ranges::none_of(u"@[`{/:. -\\*?\u00C4\u0660\n"_s, dataFileNameAccepts));
}

} // namespace
} // namespace skyhold
