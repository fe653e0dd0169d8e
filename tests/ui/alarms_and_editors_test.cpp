// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/alarms.h"
#include "ui/widgets/alarm_box.h"
#include "window_fixture.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

class AlarmsPage : public WindowFixture {
  protected:
    AlarmsPage() {
        folder_->write(u"sounds/Bell.wav"_s);
        records().alarms.LastMusicDir = path("sounds");
        openPage(Page::Limits);
    }

    QString path(const char* name) const { return folder_->filePath(QLatin1String(name)); }
    CheckBox& record() { return records().alarms.Alarm[Quantity::Rain][2]; }
    QAbstractButton* box() { return child<QAbstractButton>(*window_, "AlarmRain2"); }
    bool choose(const std::function<void(QDialog&)>& act) {
        return duringDialog([this] { click(*window_, "SoundAlarmRain2"); }, act);
    }
    void chooseBell() {
        EXPECT_TRUE(choose([](QDialog& dialog) {
            auto* files = skyhold::child<QListWidget>(dialog, "FileList");
            QTest::mouseClick(files->viewport(), Qt::LeftButton, {},
                              files->visualItemRect(files->item(0)).center());
            click(dialog, "ButtOK");
        }));
    }
};

TEST_F(AlarmsPage, ABoxWithoutASoundCannotBeChecked) {
    click(*window_, "AlarmRain2");
    EXPECT_FALSE(box()->isChecked());
    EXPECT_FALSE(record().checked());
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

TEST_F(AlarmsPage, StopAlarmIsInViewOnEveryPageWhileASoundIsStarted) {
    chooseBell();
    click(*window_, "AlarmRain2");
    openPage(Page::Sources);
    click(*window_, "ButtStart");
    QCoreApplication::processEvents();
    EXPECT_FALSE(visible("ButtStopAlarm"));
    sensor_.values[u"Condition_Rain"_s] = 3;
    media_.heard();
    cycle();
    QCoreApplication::processEvents();
    EXPECT_EQ(media_.heard(), u"Bell"_s);
    EXPECT_TRUE(visible("ButtStopAlarm"));
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
    openPage(Page::Limits);
    for (const char* name : {"AlarmNB", "SoundAlarmNB", "NBDataOldUnsafe"})
        EXPECT_FALSE(visible(name)) << name;
    EXPECT_EQ(shown("LblMaster"), u"Master: its failure is unsafe"_s); // the row is not empty
    EXPECT_TRUE(visible("LblMaster"));
    click(*window_, "ButtStop");
    sensor_.values[u"Kiv_DeviceRole"_s] = u"SLAVE"_s;
    click(*window_, "ButtStart");
    openPage(Page::Limits);
    for (const char* name : {"AlarmNB", "SoundAlarmNB", "NBDataOldUnsafe"})
        EXPECT_TRUE(visible(name)) << name;
    EXPECT_FALSE(visible("LblMaster"));
}

// Every item with an editor of its own: all ways to it open the same editor, which writes on OK.

class ItemEditors : public WindowFixture {
  protected:
    struct Editor {
        Page page;
        const char* item;
        const char* button; // the visible one that opens it, too
        const char* dialog;
        std::function<void(QDialog&)> change;
        std::function<QString()> state;
        std::function<void()> reset;
    };

    void end(QDialog& dialog, bool ok) {
        if (auto* files = qobject_cast<QFileDialog*>(&dialog))
            QTest::mouseClick(child<QDialogButtonBox>(*files, "buttonBox")
                                  ->button(ok ? QDialogButtonBox::Open : QDialogButtonBox::Cancel),
                              Qt::LeftButton);
        else
            click(dialog, ok ? "ButtOK" : "ButtCancel");
        EXPECT_FALSE(dialog.isVisible());
        if (dialog.isVisible())
            dialog.reject();
    }

    // The ways to the editor of an item.
    QList<std::function<void()>> waysTo(const Editor& editor) {
        QWidget* item = child(*window_, editor.item);
        const auto key = [item](Qt::Key pressed, Qt::KeyboardModifiers modifiers) {
            return [=] {
                QTest::keyClick(item, pressed, modifiers);
            };
        };
        return {[item] {
                    QTest::mousePress(item, Qt::RightButton);
                    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "on the press";
                    QTest::mouseRelease(item, Qt::RightButton);
                },
                [this, &editor] { click(*window_, editor.button); }, key(Qt::Key_Menu, {}),
                key(Qt::Key_F10, Qt::ShiftModifier)};
    }

    QString fill(const Label& label) { return QString::number(label.BackColor.value()); }
};

TEST_F(ItemEditors, OpenByMousePencilAndKeysAndWriteOnOkOnly) {
    ConditionControls& conditions = records().conditions;
    Label& level = conditions.Color[Quantity::Wind][0];
    Label& sector = conditions.Direction[Quantity::Gust][2];
    Label& grid = records().graphs.GraphColor[2][2];
    CheckBox& alarm = records().alarms.Alarm[Quantity::Rain][1];
    UnitControls& units = records().units;
    DataColumns& columns = records().dataFile.Columns;
    QProperty<QString>& stationFile = records().stationFile.HTMFile.Caption;
    const QString otherFile = folder_->filePath(u"other.htm"_s);
    ASSERT_TRUE(QFile(otherFile).open(QIODevice::WriteOnly));

    const auto red = [](QDialog& dialog) {
        click(dialog, "Swatch255");
    };
    const auto type = [](const char* box) {
        return [box](QDialog& dialog) {
            QTest::keyClicks(skyhold::child(dialog, box), u"X"_s);
        };
    };
    const Editor unitsEditor{Page::Sources,
                             "ButtUnits",
                             "ButtUnits",
                             "KivUnitSymbols",
                             type("SymbolMPH"),
                             [&] { return units.StringMPH; },
                             [&] {
                                 units.StringMPH = u"MPH"_s;
                             }};
    const Editor soundEditor{Page::Limits,
                             "AlarmRain1",
                             "SoundAlarmRain1",
                             "KivSoundForm",
                             type("FileName"),
                             [&] { return alarm.Tag.value(); },
                             [&] {
                                 alarm.Tag = QString();
                             }};
    Editor soundName = soundEditor;
    soundName.item = soundEditor.button;
    const Editor editors[]{
        {Page::Limits, "ColorWind0", "EditColorWind0", "KivColor",
         [](QDialog& dialog) {
             click(dialog, "Swatch255");
             QTest::keyClicks(skyhold::child(dialog, "TxtDescription"), u" X "_s);
         },
         [&] { return fill(level) + level.Caption + conditions.Cond[Quantity::Wind][0].Caption; },
         [&, calm = level.Caption.value()] {
             level.BackColor = kSwatchGreen;
             level.Caption = calm;
             conditions.Cond[Quantity::Wind][0].Caption = calm;
         }},
        {Page::Limits, "DirectionGust2", "EditDirectionGust2", "KivWindPars",
         [](QDialog& dialog) { skyhold::child<QSlider>(dialog, "SliderTo")->setValue(-90); },
         [&] { return sector.Caption.value(); },
         [&] {
             sector.Caption = u"000  359  01"_s;
         }},
        {Page::Graphs, "GraphColorDir2", "EditGraphColorDir2", "KivColor", red,
         [&] { return fill(grid); },
         [&, unchanged = grid.BackColor.value()] {
             grid.BackColor = unchanged;
         }},
        soundEditor,
        soundName,
        unitsEditor,
        {Page::Sources, "ButtCardinal", "ButtCardinal", "KivCardinalPoints", type("Symbol3"),
         [&] { return units.Cardinal[3]; },
         [&] {
             units.Cardinal[3] = u"ENE"_s;
         }},
        {Page::DataFile, "ButtFileStructure", "ButtFileStructure", "KivFileStructForm",
         [](QDialog& dialog) {
             skyhold::child<QListWidget>(dialog, "ListCol")->setCurrentRow(4);
             click(dialog, "ButtArrUp");
         },
         [&] { return columns[3].Hdr; },
         [&] {
             std::swap(columns[3], columns[4]);
         }},
        {Page::Sources, "HTMFile", "ButtHTMPath", "QFileDialog",
         [&](QDialog& dialog) {
             EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
             QTest::keyClicks(child<QLineEdit>(dialog, "fileNameEdit"), otherFile);
         },
         [&] { return stationFile.value(); },
         [&] {
             stationFile = stationPath();
         }},
    };
    for (const Editor& editor : editors) {
        SCOPED_TRACE(editor.item);
        openPage(editor.page);
        QWidget* button = child(*window_, editor.button);
        EXPECT_TRUE(button->isVisible() && button->width() >= 16 && button->height() >= 16);
        EXPECT_FALSE(child(*window_, editor.item)->toolTip().isEmpty());
        const QString before = editor.state();
        const QList<std::function<void()>> ways = waysTo(editor);
        for (qsizetype way = 0; way < ways.size(); ++way) {
            SCOPED_TRACE(way);
            for (const bool ok : {false, true}) {
                EXPECT_TRUE(duringDialog(ways[way], [&](QDialog& dialog) {
                    EXPECT_TRUE(dialog.inherits(editor.dialog) ||
                                dialog.objectName() == QLatin1String(editor.dialog))
                        << dialog.objectName().toStdString();
                    editor.change(dialog);
                    end(dialog, ok);
                }));
                EXPECT_EQ(editor.state() != before, ok) << editor.state().toStdString();
            }
            editor.reset();
            ASSERT_EQ(editor.state(), before);
        }
    }
    // The left button on the item itself is for no editor; nor is what is locked edited.
    for (const char* item : {"ColorWind0", "DirectionGust2", "AlarmRain1", "HTMFile"})
        EXPECT_FALSE(
            duringDialog([&] { click(*window_, item); }, [](QDialog& dialog) { dialog.reject(); }))
            << item;
    units.ButtUnits.Enabled = false;
    records().stationFile.ButtHTMPath.Enabled = false;
    for (const auto& open : waysTo(unitsEditor) + waysTo(editors[8]))
        EXPECT_FALSE(duringDialog(open, [](QDialog& dialog) { dialog.reject(); }));
    // A sound that has been edited may begin.
    alarm.Tag = u"bell.wav"_s;
    records().readings.AlarmSoundId = u"R1"_s;
    EXPECT_TRUE(duringDialog(waysTo(soundEditor)[0], [](QDialog& dialog) { dialog.reject(); }));
    EXPECT_EQ(records().readings.AlarmSoundId, QString());
}

// What must be stopped can be stopped while an editor is open, and the verdict stays in sight.
TEST_F(ItemEditors, HoldUpNeitherTheSessionNorTheBanner) {
    openPage(Page::Graphs);
    const auto edit = [this] {
        click(*window_, "EditGraphColorDir2");
    };
    EXPECT_TRUE(duringDialog(edit, [&](QDialog& dialog) {
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        const QWidget* banner = child(*window_, "LblStatus")->parentWidget();
        EXPECT_FALSE(dialog.frameGeometry().intersects(
            QRect(banner->mapToGlobal(QPoint()), banner->size())));
        click(*window_, "ButtStart");
        EXPECT_TRUE(running());
        click(*window_, "ButtStop");
        EXPECT_FALSE(running());
        edit(); // one at a time
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    }));
}

} // namespace
} // namespace skyhold
