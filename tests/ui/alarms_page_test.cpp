#include "window_fixture.h"

#include "core/alarms.h"
#include "ui/widgets/alarm_box.h"

#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class AlarmsPage : public WindowFixture {
  protected:
    AlarmsPage() {
        QDir(folder_->path()).mkpath(u"sounds/more"_s);
        for (const char* name : {"sounds/Bell.wav", "sounds/notes.txt", "sounds/more/Harp.mp3"})
            EXPECT_TRUE(QFile(path(name)).open(QIODevice::WriteOnly));
        records().alarms.LastMusicDir = path("sounds");
        openPage(Page::Unsafe);
    }

    QString path(const char* name) const { return folder_->filePath(QLatin1String(name)); }
    CheckBox& record() { return records().alarms.Alarm[Quantity::Rain][2]; }
    QAbstractButton* box() { return child<QAbstractButton>(*window_, "AlarmRain2"); }
    bool choose(const std::function<void(QDialog&)>& act) {
        return duringDialog([this] { click(*window_, "SoundAlarmRain2"); }, act);
    }
    void chooseBell() {
        EXPECT_TRUE(choose([](QDialog& dialog) {
            clickItem(dialog, "FileList", u"Bell.wav"_s);
            click(dialog, "ButtOK");
        }));
    }
    static QPoint itemPlace(QListWidget& list, const QString& text) {
        const QList<QListWidgetItem*> found = list.findItems(text, Qt::MatchExactly);
        return found.isEmpty() ? QPoint(-1, -1) : list.visualItemRect(found.first()).center();
    }
    static void clickItem(QDialog& dialog, const char* name, const QString& text) {
        auto* list = skyhold::child<QListWidget>(dialog, name);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, itemPlace(*list, text));
    }
    static QStringList texts(QDialog& dialog, const char* name) {
        const auto* list = skyhold::child<QListWidget>(dialog, name);
        QStringList result;
        for (int i = 0; i < list->count(); ++i)
            result.append(list->item(i)->text());
        return result;
    }
};

TEST_F(AlarmsPage, ABoxWithoutASoundCannotBeChecked) {
    for (const auto& tryIt : {std::function<void()>([this] { click(*window_, "AlarmRain2"); }),
                              std::function<void()>([this] { QTest::keyClick(box(), ' '); })}) {
        tryIt();
        EXPECT_FALSE(box()->isChecked());
        EXPECT_FALSE(record().checked());
    }
    chooseBell();
    EXPECT_EQ(messages_, QStringList{u"The alarm of Rain, level 3 is off: its sound will not be "
                                     u"heard. Switch it on?"_s});
    EXPECT_FALSE(record().checked()); // a sound alone enables nothing
    answer_ = MessageAnswer::Yes;
    chooseBell();
    EXPECT_TRUE(record().checked());
    messages_.clear();
    chooseBell();
    EXPECT_EQ(messages_, QStringList()); // is on
    record().set(0);
    click(*window_, "AlarmRain2");
    EXPECT_TRUE(box()->isChecked());
    EXPECT_TRUE(record().checked());
    EXPECT_EQ(child<SoundName>(*window_, "SoundAlarmRain2")->text(), u"Bell"_s);
}

TEST_F(AlarmsPage, ChooserWritesOnOkOnly) {
    EXPECT_TRUE(choose([this](QDialog& dialog) {
        EXPECT_EQ(texts(dialog, "FileList"), QStringList{u"Bell.wav"_s});
        EXPECT_EQ(child<QLineEdit>(dialog, "FileName")->text(), QString());
        clickItem(dialog, "FileList", u"Bell.wav"_s);
        EXPECT_EQ(child<QLineEdit>(dialog, "FileName")->text(), path("sounds/Bell.wav"));
        click(dialog, "ButtCancel");
    }));
    EXPECT_EQ(record().Tag.value(), QString());

    EXPECT_TRUE(choose([](QDialog& dialog) {
        clickItem(dialog, "FileList", u"Bell.wav"_s);
        QTest::keyClick(skyhold::child(dialog, "CheckPlay1"), Qt::Key_Space);
        click(dialog, "ButtOK");
    }));
    EXPECT_EQ(record().Tag.value(), path("sounds/Bell.wav") + u"|repeat"_s);
    EXPECT_TRUE(record().HasIcons);
    click(*window_, "AlarmRain2");
    EXPECT_TRUE(record().checked());

    const auto clearAnd = [](const char* end) {
        return [end](QDialog& dialog) {
            EXPECT_FALSE(skyhold::child<QLineEdit>(dialog, "FileName")->text().isEmpty());
            click(dialog, "ButtClear");
            click(dialog, end);
        };
    };
    EXPECT_TRUE(choose(clearAnd("ButtCancel")));
    EXPECT_TRUE(record().checked());
    EXPECT_TRUE(choose(clearAnd("ButtOK")));
    EXPECT_EQ(record().Tag.value(), QString());
    EXPECT_FALSE(record().HasIcons);
    EXPECT_FALSE(record().checked());
    EXPECT_FALSE(box()->isChecked());
}

// Opening the chooser and pressing OK must not invent a sound.
TEST_F(AlarmsPage, OkWithoutAChoiceIsNoSound) {
    EXPECT_TRUE(choose([](QDialog& dialog) { click(dialog, "ButtOK"); }));
    EXPECT_EQ(record().Tag.value(), QString());
}

TEST_F(AlarmsPage, PreviewPlaysTheChosenSoundAndEndsWithTheDialog) {
    for (const char* end : {"ButtOK", "ButtCancel", "ButtStop"}) {
        EXPECT_TRUE(choose([&](QDialog& dialog) {
            clickItem(dialog, "FileList", u"Bell.wav"_s);
            media_.heard();
            click(dialog, "ButtPlay");
            EXPECT_EQ(media_.heard(), u"Bell"_s);
            click(dialog, end);
            EXPECT_EQ(media_.heard(), u"-"_s) << end;
            dialog.reject();
        }));
    }
    EXPECT_FALSE(records().alarms.ButtStopAlarm.Visible);
}

TEST_F(AlarmsPage, FoldersAreEnteredByDoubleClickAndByReturn) {
    EXPECT_TRUE(choose([this](QDialog& dialog) {
        auto* folders = child<QListWidget>(dialog, "FolderList");
        EXPECT_EQ(texts(dialog, "FolderList"), (QStringList{u".."_s, u"more"_s}));
        clickItem(dialog, "FolderList", u"more"_s);
        QTest::mouseDClick(folders->viewport(), Qt::LeftButton, {}, itemPlace(*folders, u"more"_s));
        EXPECT_EQ(texts(dialog, "FileList"), QStringList{u"Harp.mp3"_s});
        clickItem(dialog, "FolderList", u".."_s);
        QTest::keyClick(folders, Qt::Key_Return);
        EXPECT_EQ(texts(dialog, "FileList"), QStringList{u"Bell.wav"_s});
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    }));
    EXPECT_EQ(records().alarms.LastMusicDir, path("sounds"));
}

TEST_F(AlarmsPage, StopAlarmIsInViewOnEveryPageWhileASoundIsStarted) {
    chooseBell();
    click(*window_, "AlarmRain2");
    openPage(Page::Sources);
    click(*window_, "ButtStart");
    QCoreApplication::processEvents();
    EXPECT_FALSE(visible("ButtStopAlarm"));
    const std::array still{"LblCause",  "SafeDelayMsg",  "WSAlarmMsg", "NBAlarmMsg",
                           "LblStatus", "LValWindSpeed", "ButtStop"};
    const auto places = [&] {
        QList<QRect> result;
        for (const char* name : still)
            result.append({child(*window_, name)->mapTo(window_.get(), QPoint()),
                           child(*window_, name)->size()});
        return result;
    };
    const QList<QRect> before = places();
    sensor_.values[u"Condition_Rain"_s] = 3;
    media_.heard();
    cycle();
    QCoreApplication::processEvents();
    EXPECT_EQ(media_.heard(), u"Bell"_s);
    EXPECT_TRUE(visible("ButtStopAlarm"));
    EXPECT_EQ(places(), before);
    EXPECT_TRUE(child<PlayMark>(*window_, "PlayAlarm1")->isPlaying());

    click(*window_, "ButtStopAlarm");
    EXPECT_EQ(media_.heard(), u"-"_s);
    EXPECT_FALSE(visible("ButtStopAlarm"));
    EXPECT_FALSE(child<PlayMark>(*window_, "PlayAlarm1")->isPlaying());
    cycle();
    EXPECT_EQ(media_.heard(), QString()); // acknowledged: it does not begin again
}

TEST_F(AlarmsPage, AnAlarmThatIsNotHeardSaysSo) {
    chooseBell();
    click(*window_, "AlarmRain2");
    click(*window_, "ButtStart");
    sensor_.values[u"Condition_Rain"_s] = 3;
    cycle();
    const auto mark = [this] {
        return child(*window_, "PlayAlarm1")->toolTip();
    };
    EXPECT_EQ(mark(), u"This alarm sounds"_s);
    EXPECT_FALSE(visible("SoundFault"));
    media_.silent(u"no audio device"_s);
    EXPECT_TRUE(visible("SoundFault"));
    EXPECT_EQ(shown("SoundFault"), u"No sound: no audio device"_s);
    EXPECT_TRUE(mark().startsWith(u"This alarm is due but cannot be heard."_s));
    startAlarm(*core_, record().Tag);
    EXPECT_FALSE(visible("SoundFault"));
    QFile::remove(path("sounds/Bell.wav"));
    startAlarm(*core_, record().Tag);
    EXPECT_EQ(shown("SoundFault"), u"No sound: Bell.wav cannot be opened"_s);
}

// A master sensor program sounds its own alarm.
TEST_F(AlarmsPage, SensorAlarmIsHiddenBesideAMaster) {
    click(*window_, "ButtStart");
    for (const char* name : {"AlarmNB", "SoundAlarmNB", "NBDataOldUnsafe"})
        EXPECT_FALSE(visible(name)) << name;
    EXPECT_EQ(shown("LblMaster"), u"Master: its failure is unsafe"_s); // the row is not empty
    EXPECT_TRUE(visible("LblMaster"));
    EXPECT_FALSE(child<QWidget>(*window_, "SoundAlarmWS")->isEnabled());
    click(*window_, "ButtStop");
    sensor_.values[u"Kiv_DeviceRole"_s] = u"SLAVE"_s;
    click(*window_, "ButtStart");
    for (const char* name : {"AlarmNB", "SoundAlarmNB", "NBDataOldUnsafe"})
        EXPECT_TRUE(visible(name)) << name;
    EXPECT_FALSE(visible("LblMaster"));
}

} // namespace

} // namespace skyhold
