// Every item with an editor of its own: all ways to it open the same editor, which writes on OK.
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
    const Editor soundEditor{Page::Unsafe,
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
        {Page::Limits, "ColorWind0", "EditColorWind0", "KivColor", red, [&] { return fill(level); },
         [&] {
             level.BackColor = kSwatchGreen;
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

} // namespace

} // namespace skyhold
