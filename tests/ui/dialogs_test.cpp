// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialog_driver.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "support/scripted_sensor.h"
#include "support/web_server.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_setup_form.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/dialogs/news_window.h"
#include "ui/dialogs/update_window.h"
#include "ui/window/simulators.h"
#include "window_fixture.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QtMath>

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
        {MessageStyle::YesNoCancel,
         {u"&Yes"_s, u"&No"_s, u"Cancel"_s},
         {MessageAnswer::Yes, MessageAnswer::No, MessageAnswer::Cancel},
         MessageAnswer::Cancel},
    };
    QWidget window;
    window.show();
    const auto ask = [&](MessageStyle style, const auto& act) {
        MessageAnswer answer{};
        KivError dialog({u"<i>text</i>"_s, style, {}}, u"Caption"_s, &window);
        EXPECT_TRUE(duringDialog([&] { answer = dialog.ask(); }, act));
        return answer;
    };
    for (const Case& tried : cases) {
        for (qsizetype i = 0; i < tried.buttons.size(); ++i) {
            const QByteArray name = "Butt" + QByteArray::number(i);
            const MessageAnswer answer = ask(tried.style, [&](QDialog& dialog) {
                EXPECT_EQ(child<QPushButton>(dialog, name)->text(), tried.buttons[i]);
                EXPECT_EQ(dialog.findChildren<QPushButton*>().size(), tried.buttons.size());
                EXPECT_EQ(dialog.windowTitle(), u"Caption"_s);
                EXPECT_EQ(child<QLabel>(dialog, "LblText")->textFormat(), Qt::PlainText);
                click(dialog, name);
            });
            EXPECT_EQ(answer, tried.answers[i]);
        }
        EXPECT_EQ(
            ask(tried.style, [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }),
            tried.safest);
        EXPECT_EQ(ask(tried.style, [](QDialog& dialog) { dialog.close(); }), tried.safest);
    }
}

TEST(SectorEditor, SectorsAreTurnedBySlidersAndOnTheCompass) {
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
    const auto rim = [](int from, int to) {
        return [=](QDialog& dialog) {
            QWidget* diagram = child(dialog, "Diagram");
            const auto at = [](int degrees) {
                const double radians = qDegreesToRadians(static_cast<double>(degrees));
                return QPointF(120 + 94 * std::sin(radians), 120 - 94 * std::cos(radians));
            };
            QTest::mousePress(diagram, Qt::LeftButton, {}, at(from).toPoint());
            QMouseEvent move(QEvent::MouseMove, at(to), diagram->mapToGlobal(at(to)),
                             Qt::LeftButton, Qt::LeftButton, {});
            QApplication::sendEvent(diagram, &move);
            QTest::mouseRelease(diagram, Qt::LeftButton, {}, at(to).toPoint());
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
    const auto press = [](const char* name, Qt::Key key) {
        return [=](QDialog& dialog) {
            QTest::keyClick(child(dialog, name), key);
        };
    };
    const Case cases[]{
        {u"010  090  01"_s, slide("SliderFrom", -30), u"-030 090  01 "_s},
        {u"-030 045  05"_s, slide("SliderTo", -359), u"-030 329  05 "_s},
        {u"010  090  01"_s, drag(Qt::LeftButton, 15), u"025  090  01 "_s},
        {u"010  090  01"_s, drag(Qt::RightButton, -20), u"010  070  01 "_s},
        {u"010  090  01"_s, rim(90, 200), u"010  200  01 "_s},
        {u"010  090  01"_s, rim(10, 300), u"-060 090  01 "_s},
        {u"200  300  01"_s, rim(300, 30), u"-160 030  01 "_s}, // through north
        {u"-030 045  05"_s, rim(45, 20), u"-030 020  05 "_s},
        {u"000  359  01"_s, rim(0, 90), u"090  359  01 "_s}, // the edges of a circle lie together
        {u"000  359  01"_s, rim(0, 270), u"000  270  01 "_s},
        {u"000  000  01"_s, rim(0, 90), u"000  090  01 "_s},
        {u"010  090  01"_s, press("Diagram", Qt::Key_Right), u"011  090  01 "_s},
        {u"005  090  01"_s, press("Diagram", Qt::Key_PageDown), u"-005 090  01 "_s},
        {u"010  090  01"_s,
         [](QDialog& dialog) {
             for (const Qt::Key key : {Qt::Key_Space, Qt::Key_PageUp, Qt::Key_Left})
                 QTest::keyClick(child(dialog, "Diagram"), key);
         },
         u"010  099  01 "_s},
        {u"010  090  01"_s, minutes(u"123"_s), u"010  090  12 "_s},
    };
    QWidget window;
    window.show();
    for (const Case& tried : cases) {
        Label sector;
        sector.Caption = tried.before;
        EXPECT_TRUE(duringDialog([&] { KivWindPars(sector, &window).exec(); },
                                 [&](QDialog& dialog) {
                                     tried.act(dialog);
                                     click(dialog, "ButtOK");
                                 }));
        EXPECT_EQ(sector.Caption.value().toStdString(), tried.after.toStdString());
    }
}

class SetupForm : public testing::Test {
  protected:
    SetupForm() { qputenv("XDG_CONFIG_HOME", folder_.path().toLocal8Bit()); }

    bool runWith(const std::function<void(QDialog&)>& act) {
        SettingsStore settings(u"Kiv_Skyhold"_s);
        QObject owner;
        Simulators& simulators = Simulators::of(&owner);
        bool done = false;
        EXPECT_TRUE(duringDialog(
            [&] { done = runSetupForm(settings, simulators, sensor_.creator(), clock_); }, act));
        return done;
    }
    // What a later start finds on the disk.
    QString stored(const QString& section, const QString& key) {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(section, key, u"absent"_s);
    }

    static QStringList values(QDialog& dialog, const char* name) {
        QStringList texts;
        for (const QLabel* label : child(dialog, name)->findChildren<QLabel*>())
            texts += label->text();
        return texts;
    }

    QTemporaryDir folder_;
    ScriptedSensor sensor_;
    SystemClock clock_;
};

TEST_F(SetupForm, SavesNothingWithoutAStationFile) {
    EXPECT_FALSE(runWith([](QDialog& dialog) {
        dialog.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        for (const char* button : {"ButtNext", "ButtOK"}) {
            EXPECT_TRUE(duringDialog([&] { click(dialog, button); },
                                     [](QDialog& message) {
                                         EXPECT_EQ(
                                             child<QLabel>(message, "LblText")->text(),
                                             u"Please define path for Weather Station Data File"_s);
                                         click(message, "Butt0");
                                     }));
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(dialog.focusWidget(), child(dialog, "HTMFile")); // back to what is missing
        }
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

TEST_F(SetupForm, ShowsWhatTheChosenFileGivesAtOnceAndAtItsEnd) {
    const QString path = folder_.filePath(u"station.csv"_s);
    const auto write = [&path](const QByteArray& wind) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const QDateTime now = QDateTime::currentDateTime();
        file.write(now.toString(u"'Date,,'MM/dd/yyyy'\r\nTime,,'hh:mm:ss'\r\n'"_s).toLatin1() +
                   "OutTemp,C,12.5\r\nWindSpeed,m/s," + wind +
                   "\r\nGust,m/s,4\r\nWindDirection,,SW\r\nOutHumidity,%,80%\r\nDewPoint,C,9\r\n");
    };
    write("3");
    sensor_.values[u"DeviceIsRunning"_s] = false;
    EXPECT_FALSE(runWith([&](QDialog& dialog) {
        const auto shown = [&dialog] {
            return child<QLabel>(dialog, "LblCheckBrief")->text();
        };
        child<QLineEdit>(dialog, "HTMFile")->setText(path);
        EXPECT_TRUE(QTest::qWaitFor([&] { return shown().contains(u"WindSpeed 3 m/s"_s); }));
        EXPECT_TRUE(shown().contains(u"day first"_s));
        child<QRadioButton>(dialog, "DateFormat1")->click();
        EXPECT_TRUE(shown().contains(u"month first"_s));
        for (int step = 0; step < 4; ++step)
            click(dialog, "ButtNext");
        EXPECT_TRUE(values(dialog, "ValuesStation").contains(u"3 m/s"_s));
        EXPECT_TRUE(child<QLabel>(dialog, "LblAgeStation")->text().startsWith(u"Written "_s));
        // A master, which may have a roof, is left alone.
        EXPECT_FALSE(child(dialog, "ValuesSensor")->isVisible());
        EXPECT_FALSE(sensor_.calls.join(u' ').contains(u"Device_Start"_s));
        write("7");
        sensor_.values[u"DeviceIsRunning"_s] = true;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return values(dialog, "ValuesStation").contains(u"7 m/s"_s) &&
                   values(dialog, "ValuesSensor").contains(u"-25.3 °C"_s);
        }));
        EXPECT_FALSE(sensor_.calls.join(u' ').contains(u"Kiv_LocalControl"_s));
        click(dialog, "Command1");
    }));
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
    EXPECT_FALSE(runWith([&](QDialog& dialog) {
        QTest::keyClicks(child(dialog, "HTMFile"), u"/data/station.htm"_s);
        click(dialog, "ButtNext");
        child<QRadioButton>(dialog, "OptSensor5")->click();
        child<QLineEdit>(dialog, "SensorWhere")->setText(u"echo sky_temperature=-21.5"_s);
        click(dialog, "ButtNext");
        click(dialog, "ButtNext");
        auto* data = child<QLineEdit>(dialog, "PathName");
        EXPECT_FALSE(data->text().startsWith(programFolder()));
        const QString offered = data->text();
        data->setText(programFolder() + u"/data"_s);
        EXPECT_TRUE(duringDialog([&] { click(dialog, "ButtNext"); },
                                 [](QDialog& message) { click(message, "Butt0"); }));
        EXPECT_EQ(dialog.focusWidget(), data);
        data->setText(offered);
        click(dialog, "ButtNext");
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return values(dialog, "ValuesSensor").contains(u"-21.5 °C"_s); }));
        EXPECT_TRUE(child<QLabel>(dialog, "LblOutcomeSensor")->text().contains(u"unsafe"_s));
        EXPECT_EQ(settings(), "absent"); // until it is accepted
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

class Updates : public WindowFixture {
  protected:
    Updates() {
        core_->showNews = [this](const QString& text) {
            showNewsOver(*window_, *core_, text);
        };
        core_->closeWindow = [this] {
            ++closed_;
        };
        records().window.UpdateBaseAddress = server_.address();
        serve("Kiv_SkyholdNews.txt", "ab");
        serve("Kiv_Skyhold.txt", "2.31.000");
        serve("Kiv_SkyholdUpdater.txt", "instructions");
    }
    ~Updates() override { QFile::remove(instructions()); }

    void serve(const QByteArray& name, const QByteArray& body) {
        server_.answers["/kiv/skyhold220/" + name] = WebServer::ok(body);
    }
    static QString instructions() {
        return joinPath(writableProgramFolder(), u"Kiv_Updater.txt"_s);
    }
    void run(const std::function<void(QDialog&)>& act) {
        EXPECT_TRUE(duringDialog([&] { runUpdateWindow(*core_, *window_); }, act));
    }
    QString storedNews() {
        return SettingsStore(u"Kiv_Skyhold"_s).GetSetting(u"Window"_s, u"Kiv_News"_s, u"none"_s);
    }

    WebServer server_;
    int closed_ = 0;
};

TEST_F(Updates, NewsComeAtStartUntilTheyAreDiscarded) {
    const QString news = u"<b>News</b>\r\nof two lines"_s;
    settings_.saveNow(u"Window"_s, u"Kiv_News"_s, news);
    records().window.Kiv_News = news;
    const auto start = [&](const std::function<void(QDialog&)>& act) {
        return duringDialog([&] { core_->Timer6.Tick(); }, act);
    };
    EXPECT_TRUE(start([this](QDialog& dialog) {
        EXPECT_EQ(child<QLabel>(dialog, "LblNews")->text(), u"<b>News</b>\nof two lines"_s);
        EXPECT_EQ(child<QLabel>(dialog, "LblNews")->textFormat(), Qt::PlainText);
        EXPECT_TRUE(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
        click(dialog, "ButtClose");
    }));
    EXPECT_EQ(storedNews(), news);
    // However it is closed.
    EXPECT_TRUE(start([this](QDialog& dialog) {
        child<QCheckBox>(dialog, "CheckDiscard")->setChecked(true);
        dialog.close();
    }));
    EXPECT_EQ(records().window.Kiv_News, QString());
    EXPECT_EQ(storedNews(), QString());
    EXPECT_FALSE(start([](QDialog&) {}));
}

TEST_F(Updates, ADownloadIsOfferedAfterTheCheckAndEndsTheProgram) {
    run([&](QDialog& dialog) {
        EXPECT_FALSE(child(dialog, "FrameDownload")->isVisible());
        EXPECT_TRUE(child<QLabel>(dialog, "LblWarning")->text().contains(u"not https"_s));
        EXPECT_TRUE(child(dialog, "LblWarning")->isVisible());
        click(dialog, "ButtCheck");
        EXPECT_EQ(child<QLabel>(dialog, "Label1")->text(), u"2.30.004"_s);
        EXPECT_EQ(child<QLabel>(dialog, "Label2")->text(), u"2.31.000"_s);
        EXPECT_EQ(child<QLabel>(dialog, "LblStatusLine")->text(), u"Sucessful response"_s);
        EXPECT_TRUE(child(dialog, "FrameDownload")->isVisible());
        EXPECT_EQ(
            readFile(instructions(), 1000).bytes,
            u"\"Title\",\"Kiv_Skyhold\",%1,%2,\"Kiv_Skyhold.exe\"\r\ninstructions"_s.arg(dialog.x())
                .arg(dialog.y())
                .toLatin1());
        click(dialog, "ButtClose");
    });
    EXPECT_EQ(closed_, 0);
    EXPECT_FALSE(QFile::exists(instructions()));
    EXPECT_EQ(storedNews(), u"ab"_s);

    run([&](QDialog& dialog) {
        click(dialog, "ButtCheck");
        click(dialog, "ButtDownload");
    });
    EXPECT_EQ(closed_, 1);
    EXPECT_TRUE(QFile::exists(instructions()));

    serve("Kiv_Skyhold.txt", "2.30.004"); // the same version
    for (const auto& [button, chosen] :
         QList<std::pair<const char*, bool>>{{"Butt1", false}, {"Butt0", true}}) {
        closed_ = 0;
        run([&](QDialog& dialog) {
            click(dialog, "ButtCheck");
            EXPECT_TRUE(duringDialog([&] { click(dialog, "ButtDownload"); },
                                     [&](QDialog& question) { click(question, button); }));
        });
        EXPECT_EQ(closed_, chosen ? 1 : 0);
        EXPECT_EQ(QFile::exists(instructions()), chosen);
    }
}

} // namespace
} // namespace skyhold
