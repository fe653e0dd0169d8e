#include "datafiles/user_data_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sys/resource.h>
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
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray read(const QString& name = u"night.csv"_s) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    bool editable() const {
        const int enabled = controls.FileName.Enabled + controls.ButtPATH.Enabled +
                            controls.ButtFileStructure.Enabled + controls.SaveFreq.Enabled;
        EXPECT_TRUE(enabled == 0 || enabled == 4);
        return enabled == 4;
    }

    // Recording and everything that shows it say the same.
    bool recording() const {
        EXPECT_EQ(editable(), !recorder.recording);
        EXPECT_EQ(controls.RecOption.Index, recorder.recording ? 0 : 1);
        EXPECT_FALSE(recorder.switching);
        return recorder.recording;
    }

    QTemporaryDir folder;
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
    const QString append = u"Append to existing file"_s;
    constexpr auto kYes = MessageAnswer::Yes;
    constexpr auto kNo = MessageAnswer::No;
    constexpr auto kCancel = MessageAnswer::Cancel;
    const QByteArray fresh = kHeader + line(1);
    const struct {
        const char* what;
        std::function<void()> prepare;
        MessageAnswer answer;
        QStringList asked;
        bool recording;
        bool good;
        QByteArray content; // of night.csv after a cycle
    } cases[] = {
        {"no file", [] {}, kCancel, {}, true, true, fresh},
        {"append", [&] { write("old\r\n"); }, kYes, {append}, true, true, "old\r\n" + fresh},
        {"append to a torn line",
         [&] { write("old\r\nto"); },
         kYes,
         {append},
         true,
         true,
         "old\r\nto\r\n" + fresh},
        {"append to nothing", [&] { write(""); }, kYes, {append}, true, true, fresh},
        {"overwrite",
         [&] { write("older and longer than what follows, by far\r\n"); },
         kNo,
         {append},
         true,
         true,
         fresh},
        {"cancel", [&] { write("old\r\n"); }, kCancel, {append}, false, true, "old\r\n"},
        {"no name", [&] { controls.FileName.Text = u"  "_s; }, kYes, {}, false, true, "no file"},
        {"no folder",
         [&] { controls.LblPathName.Caption = u" "_s; },
         kYes,
         {u"Define the PATH for User Data File"_s},
         false,
         true,
         "no file"},
        {"folder is missing",
         [&] { controls.LblPathName.Caption = path(u"gone"_s); },
         kYes,
         {},
         false,
         false,
         "no file"},
        {"a folder in its place",
         [&] { QDir().mkdir(path()); },
         kYes,
         {append},
         false,
         false,
         "no file"},
        {"a link in its place",
         [&] {
             write("precious", u"other"_s);
             QFile::link(path(u"other"_s), path());
         },
         kNo,
         {append},
         false,
         false,
         "precious"},
        {"a link to nothing",
         [&] { QFile::link(path(u"new"_s), path()); },
         kYes,
         {append},
         false,
         false,
         "no file"},
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
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
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

// Files may not grow beyond a size while this lives: a write stops there, as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes)
        : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limited = before_;
        limited.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    void (*handler_)(int);
    rlimit before_{};
};

TEST_F(Recorder, FullDiskCostsOnlyTheLinesThatDoNotFit) {
    controls.RecOption.choose(0);
    cycles(1);
    const QByteArray written = kHeader + line(1);
    QByteArray whileFull;
    bool stillRecording = false;
    {
        const FileSizeLimit full(static_cast<rlim_t>(written.size() + line(2).size() / 2));
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
        const FileSizeLimit full(static_cast<rlim_t>(read().size()) + 3);
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
    const std::vector<std::pair<double, double>> intervals = {{0, 1},   {-5, 1},  {0.4, 1},
                                                              {2.5, 2}, {3.5, 4}, {12, 12}};
    for (const auto& [typed, shown] : intervals) {
        NumberBox box;
        box.Value = typed;
        SetSaveFreq(box);
        EXPECT_EQ(box.Value, shown) << typed;
    }
    const QString taken = u"AZaz09_\b"_s;
    const QString dropped = u"@[`{/:. -\\*?\u00C4\u0660\n"_s;
    EXPECT_TRUE(std::ranges::all_of(taken, dataFileNameAccepts));
    EXPECT_TRUE(std::ranges::none_of(dropped, dataFileNameAccepts));
}

} // namespace
} // namespace skyhold
