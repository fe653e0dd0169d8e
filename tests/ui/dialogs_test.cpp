#include "dialog_driver.h"

#include "ui/dialogs/kiv_cardinal_points.h"
#include "ui/dialogs/kiv_color.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_setup_form.h"
#include "ui/dialogs/kiv_unit_symbols.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/window/simulators.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

TEST(KivErrorDialog, AnswersItsButtonsAndTheSafestWhenClosedOtherwise) {
    struct Case {
        MessageStyle style;
        QStringList buttons;
        QList<MessageAnswer> answers; // of the buttons
        MessageAnswer safest;
    };
    const Case cases[]{
        {MessageStyle::Ok, {u"OK"_s}, {MessageAnswer::Ok}, MessageAnswer::Ok},
        {MessageStyle::YesNo,
         {u"&Yes"_s, u"&No"_s},
         {MessageAnswer::Yes, MessageAnswer::No},
         MessageAnswer::No},
        {MessageStyle::YesNoCancel,
         {u"&Yes"_s, u"&No"_s, u"Cancel"_s},
         {MessageAnswer::Yes, MessageAnswer::No, MessageAnswer::Cancel},
         MessageAnswer::Cancel},
    };
    QWidget window;
    window.setGeometry(100, 100, 600, 400);
    window.show();
    const auto ask = [&](MessageStyle style, const QString& title, const auto& act) {
        MessageAnswer answer{};
        KivError dialog({u"<i>text</i>"_s, style, title}, u"Caption"_s, &window);
        EXPECT_TRUE(duringDialog([&] { answer = dialog.ask(); }, act));
        return answer;
    };
    for (const Case& tried : cases) {
        for (qsizetype i = 0; i < tried.buttons.size(); ++i) {
            const QByteArray name = "Butt" + QByteArray::number(i);
            const MessageAnswer answer = ask(tried.style, {}, [&](QDialog& dialog) {
                EXPECT_EQ(child<QPushButton>(dialog, name)->text(), tried.buttons[i]);
                EXPECT_EQ(dialog.findChildren<QPushButton*>().size(), tried.buttons.size());
                EXPECT_EQ(dialog.windowTitle(), u"Caption"_s);
                click(dialog, name);
            });
            EXPECT_EQ(answer, tried.answers[i]);
        }
        const auto escape = [](QDialog& dialog) {
            QTest::keyClick(&dialog, Qt::Key_Escape);
        };
        const auto closed = [](QDialog& dialog) {
            dialog.close();
        };
        EXPECT_EQ(ask(tried.style, {}, escape), tried.safest);
        EXPECT_EQ(ask(tried.style, {}, closed), tried.safest);
    }
    ask(MessageStyle::Ok, u"Warning"_s, [&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Warning"_s);
        EXPECT_EQ(child<QLabel>(dialog, "LblText")->textFormat(), Qt::PlainText);
        const QPoint offset = dialog.geometry().center() - window.geometry().center();
        EXPECT_LE(offset.manhattanLength(), 4);
        dialog.close();
    });
}

class Editors : public testing::Test {
  protected:
    Editors() { window_.show(); }
    QWidget window_;
};

TEST_F(Editors, ColourAndDescriptionAreWrittenOnOkOnly) {
    Label level;
    CheckBox unsafeBox;
    level.Caption = u"Calm"_s;
    level.BackColor = kSwatchGreen;
    unsafeBox.Caption = u"Calm"_s;
    const auto edit = [&](CheckBox* box, const char* end) {
        EXPECT_TRUE(duringDialog([&] { KivColor(level, box, &window_).exec(); },
                                 [&](QDialog& dialog) {
                                     click(dialog, "Swatch255");
                                     if (box) {
                                         child(dialog, "TxtDescription")->setFocus();
                                         QTest::keyClicks(child(dialog, "TxtDescription"),
                                                          u"  Breezy "_s);
                                     }
                                     click(dialog, end);
                                 }));
    };
    edit(&unsafeBox, "ButtCancel");
    EXPECT_EQ(level.BackColor, kSwatchGreen);
    EXPECT_EQ(level.Caption, u"Calm"_s);
    edit(nullptr, "ButtOK");
    EXPECT_EQ(level.BackColor, kRed);
    EXPECT_EQ(level.Caption, u"Calm"_s);
    level.BackColor = kSwatchGreen;
    edit(&unsafeBox, "ButtOK");
    EXPECT_EQ(level.BackColor, kRed);
    EXPECT_EQ(level.Caption, u"Breezy"_s);
    EXPECT_EQ(unsafeBox.Caption, u"Breezy"_s);
}

TEST_F(Editors, SectorsAreTurnedBySlidersAndByDraggingTheCompass) {
    struct Case {
        QString before;
        std::function<void(QDialog&)> act;
        QString after;
    };
    const auto slide = [](const char* name, int value) {
        return [=](QDialog& dialog) {
            child<QSlider>(dialog, name)->setValue(value);
        };
    };
    const auto drag = [](Qt::MouseButton button, int up) {
        return [=](QDialog& dialog) {
            QWidget* diagram = child(dialog, "Diagram");
            QTest::mousePress(diagram, button, {}, QPoint(120, 120));
            QMouseEvent move(QEvent::MouseMove, QPointF(120, 120 - up),
                             diagram->mapToGlobal(QPointF(120, 120 - up)), button, button, {});
            QApplication::sendEvent(diagram, &move);
            QTest::mouseRelease(diagram, button, {}, QPoint(120, 120 - up));
        };
    };
    const auto minutes = [](const QString& typed) {
        return [=](QDialog& dialog) {
            auto* box = child<QLineEdit>(dialog, "Duration");
            box->selectAll();
            QTest::keyClick(box, Qt::Key_Backspace);
            QTest::keyClicks(box, typed);
        };
    };
    const auto press = [](const char* slider, Qt::Key key) {
        return [=](QDialog& dialog) {
            QTest::keyClick(child(dialog, slider), key);
        };
    };
    const Case cases[]{
        {u"000  359  01"_s, [](QDialog&) {}, u"000  359  01 "_s},
        {u"000  359  01"_s, slide("SliderFrom", -30), u"000  359  01 "_s}, // 359 wide already
        {u"010  090  01"_s, slide("SliderFrom", -30), u"-030 090  01 "_s},
        {u"010  090  01"_s, slide("SliderFrom", 200), u"000  000  01 "_s}, // meets "to"
        {u"010  090  01"_s, slide("SliderTo", -180), u"010  180  01 "_s},
        {u"-030 045  05"_s, slide("SliderTo", -359), u"-030 329  05 "_s},
        {u"010  090  01"_s, drag(Qt::LeftButton, 15), u"025  090  01 "_s},
        {u"010  090  01"_s, drag(Qt::RightButton, -20), u"010  070  01 "_s},
        {u"010  090  01"_s, press("SliderFrom", Qt::Key_Up), u"011  090  01 "_s},
        {u"010  090  01"_s, press("SliderTo", Qt::Key_Up), u"010  091  01 "_s},
        {u"010  090  01"_s, press("SliderTo", Qt::Key_PageDown), u"010  080  01 "_s},
        {u"010  090  01"_s, minutes(u"123"_s), u"010  090  12 "_s},
        {u"010  090  01"_s, minutes({}), u"010  090  00 "_s},
    };
    for (const Case& tried : cases) {
        Label sector;
        sector.Caption = tried.before;
        const auto edit = [&](const char* end) {
            EXPECT_TRUE(duringDialog([&] { KivWindPars(sector, &window_).exec(); },
                                     [&](QDialog& dialog) {
                                         tried.act(dialog);
                                         click(dialog, end);
                                     }));
        };
        edit("ButtCancel");
        EXPECT_EQ(sector.Caption, tried.before);
        edit("ButtOK");
        EXPECT_EQ(sector.Caption.value().toStdString(), tried.after.toStdString());
    }
}

TEST_F(Editors, UnitSymbolsAndCardinalPointsAreWrittenInUpperCaseOnOk) {
    UnitControls units;
    units.StringDC = u"C"_s;
    units.ExcChrHumidity = u"%"_s;
    units.Cardinal[1] = u"NNE"_s;
    const auto editSymbols = [&](const char* end) {
        return duringDialog([&] { KivUnitSymbols(units, &window_).exec(); },
                            [&](QDialog& dialog) {
                                QTest::keyClicks(child(dialog, "SymbolDC"), u";degc"_s);
                                QTest::keyClicks(child(dialog, "ExcChrHumidity"), u"rh"_s);
                                click(dialog, end);
                            });
    };
    EXPECT_TRUE(editSymbols("ButtCancel"));
    EXPECT_EQ(units.StringDC, u"C"_s);
    EXPECT_TRUE(editSymbols("ButtOK"));
    EXPECT_EQ(units.StringDC, u"C;DEGC"_s);
    EXPECT_EQ(units.ExcChrHumidity, u"%rh"_s);

    const auto editPoints = [&](const char* end) {
        return duringDialog([&] { KivCardinalPoints(units.Cardinal, &window_).exec(); },
                            [&](QDialog& dialog) {
                                auto* box = child<QLineEdit>(dialog, "Symbol1");
                                QTest::keyClick(box, Qt::Key_Home);
                                QTest::keyClicks(box, u"ab"_s);
                                EXPECT_EQ(box->text(), u"ABNNE"_s);
                                click(dialog, end);
                            });
    };
    EXPECT_TRUE(editPoints("ButtCancel"));
    EXPECT_EQ(units.Cardinal[1], u"NNE"_s);
    EXPECT_TRUE(editPoints("ButtOK"));
    EXPECT_EQ(units.Cardinal[1], u"ABNNE"_s);
}

class SetupForm : public testing::Test {
  protected:
    SetupForm() { qputenv("XDG_CONFIG_HOME", folder_.path().toLocal8Bit()); }

    bool runWith(const std::function<void(QDialog&)>& act) {
        SettingsStore settings(u"Kiv_Skyhold"_s);
        QObject owner;
        Simulators& simulators = Simulators::of(&owner);
        bool done = false;
        EXPECT_TRUE(duringDialog([&] { done = runSetupForm(settings, simulators); }, act));
        return done;
    }
    // What a later start finds on the disk.
    QString stored(const QString& section, const QString& key) {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(section, key, u"absent"_s);
    }

    QTemporaryDir folder_;
};

TEST_F(SetupForm, SavesNothingWithoutAStationFile) {
    EXPECT_FALSE(runWith([](QDialog& dialog) {
        dialog.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        click(dialog, "ButtNext");
        EXPECT_FALSE(child(dialog, "HTMFile")->isVisible());
        EXPECT_TRUE(duringDialog([&] { click(dialog, "ButtOK"); },
                                 [](QDialog& message) {
                                     EXPECT_EQ(
                                         child<QLabel>(message, "LblText")->text(),
                                         u"Please define path for Weather Station Data File"_s);
                                     click(message, "Butt0");
                                 }));
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.focusWidget(), child(dialog, "HTMFile")); // back to what is missing
        click(dialog, "Command1");
    }));
    EXPECT_EQ(stored(u"Setup"_s, u"HTMFile"_s), u"absent"_s);
    EXPECT_EQ(stored(u"Limit"_s, u"UnitsTemp0"_s), u"absent"_s);
}

TEST_F(SetupForm, SavesItsChoicesAndSwitchesOffWhatHasNoFolder) {
    EXPECT_TRUE(runWith([](QDialog& dialog) {
        QTest::keyClicks(child(dialog, "HTMFile"), u"/data/station.htm"_s);
        child<QRadioButton>(dialog, "DateFormat1")->click();
        click(dialog, "ButtNext");
        EXPECT_TRUE(child(dialog, "OptSensor0")->isVisible());
        click(dialog, "ButtNext");
        child<QRadioButton>(dialog, "UnitsSpeed2")->click();
        click(dialog, "ButtNext");
        QTest::keyClicks(child(dialog, "GraphImagePath"), u"/data/images"_s);
        click(dialog, "ButtOK");
    }));
    const QList<std::array<QString, 3>> expected{
        {u"Setup"_s, u"HTMFile"_s, u"/data/station.htm"_s},
        {u"Window"_s, u"FileNameCCDAP4"_s, QString()},
        {u"Window"_s, u"PathNameCCDAP4"_s, QString()},
        {u"Graphs"_s, u"GraphImagePath"_s, u"/data/images"_s},
        {u"Graphs"_s, u"ImageWind"_s, u"absent"_s},
        {u"Limit"_s, u"UnitsTemp0"_s, u"True"_s},
        {u"Limit"_s, u"UnitsTemp1"_s, u"False"_s},
        {u"Limit"_s, u"UnitsSpeed0"_s, u"False"_s},
        {u"Limit"_s, u"UnitsSpeed2"_s, u"True"_s},
        {u"Limit"_s, u"DateFormat1"_s, u"True"_s},
        {u"Verdict"_s, u"BeyondLimitUnsafe"_s, u"1"_s},
        {u"Verdict"_s, u"QuickReaction"_s, u"1"_s},
        {u"Verdict"_s, u"FlapClosures"_s, u"3"_s},
    };
    for (const auto& [section, key, text] : expected)
        EXPECT_EQ(stored(section, key), text) << key.toStdString();

    EXPECT_TRUE(runWith([](QDialog& dialog) {
        QTest::keyClicks(child(dialog, "HTMFile"), u"/data/station.htm"_s);
        click(dialog, "ButtOK");
    }));
    for (const QString& key : {u"ImageWind"_s, u"ImageGust"_s, u"ImageDir"_s, u"ImageHum"_s,
                               u"ImageDew"_s, u"ImageTemp"_s})
        EXPECT_EQ(stored(u"Graphs"_s, key), u"0"_s) << key.toStdString();
}

TEST_F(SetupForm, HasTheSensorsSettingsWritten) {
    const auto settings = [this] {
        QFile file(folder_.filePath(u"Kiv/skyhold-sensor.conf"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("absent");
    };
    EXPECT_FALSE(runWith([&](QDialog& dialog) {
        QTest::keyClicks(child(dialog, "HTMFile"), u"/data/station.htm"_s);
        click(dialog, "ButtNext");
        EXPECT_FALSE(child(dialog, "SensorWhere")->isVisible());
        child<QRadioButton>(dialog, "OptSensor5")->click();
        EXPECT_TRUE(duringDialog([&] { click(dialog, "ButtOK"); },
                                 [](QDialog& message) { click(message, "Butt0"); }));
        EXPECT_EQ(settings(), "absent"); // it has not said where
        child<QRadioButton>(dialog, "OptStation1")->click();
        click(dialog, "ButtBack");
        click(dialog, "ButtNext"); // past the sensor, which is simulated
        EXPECT_TRUE(child(dialog, "UnitsSpeed0")->isVisible());
        click(dialog, "Command1");
    }));
    EXPECT_TRUE(runWith([](QDialog& dialog) {
        QTest::keyClicks(child(dialog, "HTMFile"), u"/data/station.htm"_s);
        click(dialog, "ButtNext");
        child<QRadioButton>(dialog, "OptSensor3")->click();
        child<QLineEdit>(dialog, "SensorWhere")->setText(u"hub:1884"_s);
        EXPECT_EQ(child<QLineEdit>(dialog, "SensorDevice")->text(), u"observatory/sensor"_s);
        click(dialog, "ButtOK");
    }));
    EXPECT_TRUE(settings().contains("kind = mqtt\nbroker = hub:1884\n"));
    EXPECT_TRUE(settings().contains("\n[rain]\nvalue = main: observatory/sensor#rain\n"));
    EXPECT_TRUE(settings().contains("role = SLAVE"));
    // What is set up stays.
    EXPECT_TRUE(runWith([](QDialog& dialog) {
        EXPECT_FALSE(child(dialog, "OptSensor1")->isEnabled());
        QTest::keyClicks(child(dialog, "HTMFile"), u"/data/station.htm"_s);
        click(dialog, "ButtOK");
    }));
}

} // namespace

} // namespace skyhold
