// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/clock.h"
#include "platform/media_control.h"
#include "platform/tasks.h"
#include "platform/text_encoding.h"
#include "platform/text_forms.h"
#include "support/eventually.h"
#include "support/test_folder.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <csignal>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const NumberForms kPoint{u"."_s, u","_s};
const NumberForms kComma{u","_s, u"."_s};

TEST(TextForms, numbersByPattern) {
    const struct {
        double value;
        QString pattern, text;
    } cases[] = {
        {-25.25, u"0.0"_s, u"-25.3"_s}, {2.5, u"0"_s, u"3"_s},
        {-2.5, u"0"_s, u"-3"_s},        {1.005, u"0.00"_s, u"1.01"_s},
        {-0.04, u"0.0"_s, u"0.0"_s},    {0.25, u"#0.0"_s, u"0.3"_s},
        {1e4, u"#0.0"_s, u"10000.0"_s}, {3, u"00000"_s, u"00003"_s},
        {1000, u"00000"_s, u"01000"_s}, {46342.916666, u"000000.00000"_s, u"046342.91667"_s},
        {0, u"#0"_s, u"0"_s},           {9.96, u"0.0"_s, u"10.0"_s},
        {-7, u"000"_s, u"-007"_s},      {0.5, u"#.0"_s, u".5"_s},
    };
    for (const auto& [value, pattern, text] : cases) {
        EXPECT_EQ(formatNumber(value, pattern, kPoint), text);
        EXPECT_EQ(formatNumber(value, pattern, kComma), QString(text).replace(u'.', u','));
    }
}

TEST(TextForms, textsThatAreNumbersAndOthers) {
    const struct {
        QString text;
        const NumberForms& forms;
        std::optional<double> value;
    } cases[] = {
        {u" 12.5 "_s, kPoint, 12.5}, {u"1,234.5"_s, kPoint, 1234.5},
        {u"-.5"_s, kPoint, -0.5},    {u"1.234,5"_s, kComma, 1234.5},
        {u"12,5"_s, kComma, 12.5},   {u"+3"_s, kPoint, 3},
        {u"1e3"_s, kPoint, 1000},    {u"1e999"_s, kPoint, {}},
        {u"nan"_s, kPoint, {}},      {u"-inf"_s, kPoint, {}},
        {u""_s, kPoint, {}},         {u"--"_s, kPoint, {}},
        {u"-"_s, kPoint, {}},        {u"12a"_s, kPoint, {}},
        {u"0x10"_s, kPoint, {}},     {u"٣"_s, kPoint, {}},
    };
    for (const auto& [text, forms, value] : cases)
        EXPECT_EQ(numberFromText(text, forms), value) << qPrintable(text);
    EXPECT_EQ(numberText(2.0 / 3, kComma), u"0,666666666666667"_s);
    EXPECT_EQ(leadingNumber(u"5.20."), 5.2);
    EXPECT_EQ(leadingNumber(u"12.5abc"), 12.5);
    EXPECT_EQ(leadingNumber(u"abc"), 0);
}

TEST(TextForms, decimalSeparatorIsOneThatFilesCanHold) {
    const QLocale before;
    for (const auto& [locale, decimal] :
         {std::pair{"de_DE", u","_s}, {"en_US", u"."_s}, {"ar_EG", u"."_s}, {"fa_IR", u"."_s}}) {
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        EXPECT_EQ(localeNumberForms().decimal, decimal) << locale;
    }
    QLocale::setDefault(before);
}

TEST(TextForms, datesAndDayNumbers) {
    const QDateTime time(QDate(2026, 11, 6), QTime(9, 5, 7));
    EXPECT_EQ(formatDate(time, u"dd/mm hh:mm:ss"), u"06/11 09:05:07"_s);
    EXPECT_EQ(formatDate(time, u"mm/dd hh:mm:ss"), u"11/06 09:05:07"_s);
    EXPECT_EQ(formatDate(time, u"hh:mm:ss.ss"), u"09:05:07.07"_s);
    EXPECT_EQ(formatDate(time, u"yyyy-mm-dd"), u"2026-11-06"_s);
    EXPECT_DOUBLE_EQ(daySerial(QDateTime(QDate(1900, 1, 1), QTime(12, 0))), 2.5);
    EXPECT_EQ(fromDaySerial(daySerial(time)), time);
    EXPECT_FALSE(fromDaySerial(std::numeric_limits<double>::quiet_NaN()).isValid());
}

TEST(TextEncoding, bothEncodingsAreRead) {
    EXPECT_EQ(decodeText("\xEF\xBB\xBF"
                         "12 \xC2\xB0"
                         "C"),
              u"12 °C"_s);
    EXPECT_EQ(decodeText("12 \xB0"
                         "C \x80"),
              u"12 °C €"_s);
    // A sequence that the end breaks off is none of UTF-8.
    EXPECT_EQ(decodeText("12 \xB0\xC2"), u"12 °Â"_s);
    EXPECT_EQ(decodeText("12 \xE2\x82"), u"12 â‚"_s);
    EXPECT_EQ(encodeAnsi(u"12 °C € ☂"_s), "12 \xB0"
                                          "C \x80 ?");
}

struct Tasks : testing::Test {
    // A program that has begun in its own folder, and that "{F6}" ends.
    std::optional<Task> begun(const QString& name) const {
        const std::optional<Task> task =
            startTask(folder.writeProgram(name, "trap 'touch keyed; exit' USR1\ntouch begun\n"
                                                "for i in $(seq 500); do sleep 0.02; done\n"));
        EXPECT_TRUE(task && appears(u"begun"_s));
        return task;
    }
    bool appears(const QString& name) const {
        return eventually([&] { return QFile::exists(folder.filePath(name)); });
    }
    static bool ends(const Task& task, int milliseconds = 10'000) {
        return eventually([&] { return !isRunning(task); }, milliseconds);
    }

    TestFolder folder;
};

TEST_F(Tasks, aTaskIsKnownByItsStartTimeAndTakesTheKey) {
    // The name is part of what the system tells of a process.
    const std::optional<Task> task = begun(u"a) (b 1 2 3"_s);
    ASSERT_TRUE(task);
    EXPECT_TRUE(isRunning(*task));

    Task other = *task; // ended, and its id was given to the one that runs
    other.startTime -= 1;
    EXPECT_FALSE(isRunning(other));
    sendKeyF6(other);
    EXPECT_FALSE(ends(*task, 200));

    sendKeyF6(*task);
    EXPECT_TRUE(ends(*task));
    EXPECT_TRUE(appears(u"keyed"_s));
    EXPECT_FALSE(isRunning(Task()));
}

TEST_F(Tasks, onlyAnAbsolutePathOfAProgramStarts) {
    for (const QString& path : {folder.filePath(u"missing"_s), u"true"_s, QString()})
        EXPECT_FALSE(startTask(path)) << qPrintable(path);
}

TEST_F(Tasks, aLockLastsAsLongAsItsHolder) {
    const QString path = folder.filePath(u"lock"_s);
    EXPECT_FALSE(isLocked(path));
    std::optional<Task> task;
    {
        TaskLock first;
        TaskLock second;
        EXPECT_TRUE(first.take(path));
        EXPECT_TRUE(isLocked(path));
        EXPECT_FALSE(second.take(path));
        task = begun(u"started"_s); // whatever is started meanwhile does not hold it
        ASSERT_TRUE(task);
    }
    EXPECT_FALSE(isLocked(path));
    TaskLock third;
    EXPECT_TRUE(third.take(path));
    EXPECT_TRUE(isRunning(*task));
    sendKeyF6(*task);
    EXPECT_TRUE(ends(*task));
}

// In place of the player a script, which leaves its process id and its arguments in the file
// "told" beside it.
struct SoundPlayer : testing::Test {
    void write(const QByteArray& script) const {
        folder.writeProgram(u"player"_s, "cd \"${0%/*}\"\n"
                                         "printf '%s\\n' $$ \"$@\" >new && mv new told\n" +
                                             script + "\n");
    }
    // What the script was told: its process id, then the arguments.
    QStringList told() const {
        EXPECT_TRUE(eventually([this] { return QFile::exists(folder.filePath(u"told"_s)); }));
        const QStringList lines = QString::fromUtf8(folder.read(u"told"_s)).trimmed().split(u'\n');
        QFile::remove(folder.filePath(u"told"_s));
        return lines;
    }
    static bool runs(const QString& pid) { return ::kill(pid.toInt(), 0) == 0; }

    bool open() { return media->send(mediaOpenCommand(sound)) == 0; }
    bool send(const QString& command) { return media->send(command) == 0; }
    QString mode() {
        QString answer;
        return media->send(kMediaMode, &answer, 9) == 0 ? answer : u"refused"_s;
    }
    bool stops() {
        return eventually([this] { return mode() == u"stopped"_s; });
    }

    TestFolder folder;
    const QString program = folder.filePath(u"player"_s);
    const QString sound = folder.write(u"a bell.wav"_s);
    QStringList reports;
    std::unique_ptr<MediaControl> media = std::make_unique<SoundPlayerProgram>(
        program, [this](const QString& reason) { reports.append(reason); });
};

TEST_F(SoundPlayer, PlaysByAProcessThatIsEndedWithTheSound) {
    write("exec sleep 1000");
    EXPECT_FALSE(send(kMediaPlay)) << "nothing is open";
    EXPECT_FALSE(send(kMediaStop));
    EXPECT_EQ(mode(), u"refused"_s);
    EXPECT_FALSE(send(mediaOpenCommand(folder.filePath(u"missing.wav"_s))));
    EXPECT_FALSE(send(mediaOpenCommand(folder.path())));

    ASSERT_TRUE(open());
    EXPECT_FALSE(open()) << "is open already";
    EXPECT_FALSE(send(u"record KivNubiloPlayer"_s));
    EXPECT_EQ(mode(), u"stopped"_s);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"told"_s))) << "no process for an open alone";

    EXPECT_TRUE(send(kMediaPlayRepeat));
    EXPECT_EQ(mode(), u"playing"_s);
    const QStringList repeated = told();
    EXPECT_EQ(repeated.sliced(1), (QStringList{u"--repeat"_s, sound}));

    // From the beginning again, in place of the first.
    EXPECT_TRUE(send(kMediaPlay));
    const QStringList once = told();
    EXPECT_EQ(once.sliced(1), QStringList{sound});
    EXPECT_TRUE(eventually([&] { return !runs(repeated[0]); }));
    EXPECT_TRUE(send(kMediaClose));
    EXPECT_EQ(mode(), u"refused"_s);
    EXPECT_TRUE(eventually([&] { return !runs(once[0]); }));

    // The end of the monitor is the end of the sound.
    EXPECT_TRUE(open() && send(kMediaPlay));
    const QString pid = told()[0];
    media.reset();
    EXPECT_FALSE(runs(pid));
    EXPECT_EQ(reports, QStringList());
}

} // namespace
} // namespace skyhold
