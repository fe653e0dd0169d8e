// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of every page, dialog and look of the window, made without a person or a display.
//
// usage: screenshots [--panel] FOLDER [SIZE...]      a size of the window as "1280x800"
//
// --panel: only the panel, not the pages and dialogs. A contact sheet of each look has the window
// in every moment, and beside it what an eye sees of it from three metres.
//
// QT_SCALE_FACTOR=2 makes them for a screen of twice the resolution. Fails when a picture could not
// be written or would show a password. "keyboard-walk.txt" lists where Tab leads.
#include "conditions/alarms.h"
#include "core/clients.h"
#include "core/session.h"
#include "platform/files.h"
#include "screenshots/keyboard_walk.h"
#include "screenshots/simulated_monitor.h"
#include "ui/dialogs/help_window.h"
#include "ui/dialogs/kiv_cardinal_points.h"
#include "ui/dialogs/kiv_color.h"
#include "ui/dialogs/kiv_error.h"
#include "ui/dialogs/kiv_file_struct_form.h"
#include "ui/dialogs/kiv_legend.h"
#include "ui/dialogs/kiv_setup_form.h"
#include "ui/dialogs/kiv_sound_form.h"
#include "ui/dialogs/kiv_unit_symbols.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/dialogs/news_window.h"
#include "ui/dialogs/update_window.h"
#include "ui/look/look.h"
#include "ui/look/verdict_icon.h"
#include "ui/pages/find_setting.h"
#include "ui/pages/settings_changes.h"
#include "ui/pages/settings_pages.h"
#include "ui/widgets/readout.h"
#include "ui/window/main_window.h"
#include "ui/window/simulators.h"
#include "ui/window/wall_panel.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QTabBar>

#include <cstdio>
#include <map>

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QSize kWallSize(1920, 1080);
constexpr std::array kLooks{"panel", "night", "desktop"};

// An eye resolves a minute of arc: at three metres 0.87 mm, on a screen of 24 inches and 1920 dots
// a row 3.15 dots.
QImage fromThreeMetres(const QImage& picture) {
    constexpr double kDots = 3.15;
    const QSize seen = (QSizeF(picture.size()) / kDots).toSize();
    return picture.scaled(seen, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .scaled(picture.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

// One below the other, each with what is seen of it from three metres at its right.
QImage contactSheet(const std::vector<QImage>& pictures) {
    constexpr QSize kCell(800, 500);
    const auto rows = static_cast<int>(pictures.size());
    QImage sheet(2 * kCell.width(), rows * kCell.height(), QImage::Format_RGB32);
    sheet.fill(Qt::darkGray);
    QPainter painter(&sheet);
    for (int row = 0; row < rows; ++row) {
        const QImage& near = pictures[static_cast<std::size_t>(row)];
        const QPoint place(0, row * kCell.height());
        const auto fitted = [&kCell](const QImage& picture) {
            return picture.scaled(kCell, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        };
        painter.drawImage(place, fitted(near));
        painter.drawImage(place + QPoint(kCell.width(), 0), fitted(fromThreeMetres(near)));
    }
    return sheet;
}

class Album {
  public:
    explicit Album(const QString& folder)
        : folder_(folder) {}

    int failures() const { return failures_; }

    void choose(std::size_t look, WindowControls& window) {
        look_ = QString::fromLatin1(kLooks[look]);
        window.Look = static_cast<int>(look);
    }

    // "FOLDER/LOOK-NAME-WIDTHxHEIGHT.png", the size in pixels.
    void take(QWidget& widget, const QString& name, bool withSize = true) {
        // A layout asks for the next one as often as they stand within each other.
        constexpr int kLayouts = 20;
        for (int i = 0; i < kLayouts; ++i)
            QCoreApplication::processEvents();
        if (showsPassword(widget)) {
            std::fprintf(stderr, "%s would show a password\n", qPrintable(name));
            ++failures_;
            return;
        }
        const QPixmap picture = widget.grab();
        const QString size =
            withSize ? u"-%1x%2"_s.arg(picture.width()).arg(picture.height()) : QString();
        const QString scale = picture.devicePixelRatio() > 1 ? u"@2x"_s : QString();
        const QString file = joinPath(folder_, look_ + u'-' + name + size + scale + u".png"_s);
        save(picture.toImage(), file);
    }

    // The window, and beside it in the contact sheet what an eye sees of it from afar.
    void takeForSheet(QWidget& widget, const QString& name) {
        take(widget, name);
        sheets_[look_].push_back(widget.grab().toImage());
    }

    void saveSheets() {
        for (const auto& [look, pictures] : sheets_)
            save(contactSheet(pictures), joinPath(folder_, u"sheet-%1.png"_s.arg(look)));
    }

    void takeDialog(QDialog& dialog, const QString& name) {
        dialog.show();
        take(dialog, u"dialog-"_s + name, false);
        dialog.hide();
    }

  private:
    void save(const QImage& picture, const QString& file) {
        if (picture.save(file))
            return;
        std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
        ++failures_;
    }

    static bool showsPassword(const QWidget& widget) {
        const auto* box = widget.findChild<QLineEdit*>(u"PassWord"_s);
        return box && box->echoMode() == QLineEdit::Normal;
    }

    QString folder_;
    QString look_;
    std::map<QString, std::vector<QImage>> sheets_; // by look
    int failures_ = 0;
};

// A thread writes the history, and another one reads it.
void awaitNight(const KivSHMainform& window) {
    window.findChild<SettingsPages*>()->open(Page::Tonight);
    const QDeadlineTimer deadline(1'500);
    while (!deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

constexpr std::array kPageNames{"tonight",   "sources", "limits", "caution", "graphs",
                                "data-file", "ccdap",   "images", "upload",  "network"};

// "FOLDER/keyboard-walk.txt": where Tab leads on each page, from the strip of pages on.
bool writeKeyboardWalk(const QString& folder, KivSHMainform& window) {
    auto* pages = window.findChild<SettingsPages*>();
    QString walk;
    for (std::size_t i = 0; i < kPageNames.size(); ++i) {
        pages->open(static_cast<Page>(i));
        walk += u"== %1\n"_s.arg(QLatin1String(kPageNames[i])) + keyboardWalk(pages->tabBar());
    }
    QFile file(joinPath(folder, u"keyboard-walk.txt"_s));
    return file.open(QIODevice::WriteOnly) && file.write(walk.toUtf8()) > 0;
}

void takePages(Album& album, KivSHMainform& window) {
    auto* pages = window.findChild<SettingsPages*>();
    for (std::size_t i = 0; i < kPageNames.size(); ++i) {
        pages->open(static_cast<Page>(i));
        if (auto* check = window.findChild<QPushButton*>(u"ButtCheckStation"_s))
            check->click();
        if (auto* graph = window.findChild<QWidget*>(u"GraphGust"_s)) { // the mouse is on it
            const QPointF at(graph->width() / 2.0, 20);
            QMouseEvent move(QEvent::MouseMove, at, graph->mapToGlobal(at), Qt::NoButton,
                             Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(graph, &move);
        }
        album.take(window, QString::fromLatin1(kPageNames[i]));
    }
    pages->open(Page::Tonight);
}

// At every moment: what the table marks differs.
void takeLimits(Album& album, KivSHMainform& window, const QString& moment) {
    auto* pages = window.findChild<SettingsPages*>();
    pages->open(Page::Limits);
    // The times of the levels are read by a thread, and another one judges the week again.
    const auto* tonight = window.findChild<Readout*>(u"TonightRain0"_s);
    const auto* whatIf = window.findChild<QLabel*>(u"WhatIfDayUnsafe0"_s);
    const QDeadlineTimer deadline(2'000);
    while ((tonight->text().isEmpty() || whatIf->text().isEmpty()) && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    album.take(window, u"limits-"_s + moment);
    pages->open(Page::Tonight);
}

// What the list of changes is about.
void changeSettings(Records& r, SettingsChanges& changes) {
    r.alarms.Alarm[Quantity::Gust][2].Tag = u"/sounds/Wind warning.wav"_s;
    r.alarms.Alarm[Quantity::Gust][2].HasIcons = true;
    changes.noteUser();
    r.alarms.Alarm[Quantity::Gust][2].set(1);
    changes.noteUser();
    r.conditions.Limit[Quantity::Gust][0].set(12);
    changes.noteUser();
    r.conditions.Direction[Quantity::Gust][2].Caption = u"225  315  02"_s;
    changes.noteUser();
}

void takeDialogs(Album& album, SimulatedMonitor& monitor, KivSHMainform& window) {
    Records& r = monitor.records();
    const auto take = [&album](QDialog&& dialog, const char* name) {
        album.takeDialog(dialog, QString::fromLatin1(name));
    };
    take(KivColor(r.conditions.Color[Quantity::Wind][1], &r.conditions.Cond[Quantity::Wind][1],
                  &window),
         "level");
    take(KivColor(r.graphs.GraphColor[0][1], nullptr, &window), "colour");
    take(KivWindPars(r.conditions.Direction[Quantity::Gust][2], &window, 270), "sector");
    take(FindSetting(settingPlaces(r), &window), "find");
    take(KivCardinalPoints(r.units.Cardinal, &window), "cardinal");
    take(KivUnitSymbols(r.units, &window), "units");
    take(KivFileStructForm(r.dataFile.Columns, &window), "columns");
    take(KivSoundForm(r.alarms.Alarm[Quantity::Rain][2], r.alarms.LastMusicDir,
                      monitor.core().media, &window),
         "sound");
    take(KivLegend(&window), "codes");
    take(KivError({u"Safe delay 5 minutes: a return to safe is told five minutes late. Is that "
                   u"what you want?"_s,
                   MessageStyle::YesNoCancel,
                   {}},
                  window.windowTitle(), &window),
         "question");
    take(KivError({monitor.core().version.title() +
                       u"\n\nA monitor of sky and weather conditions for an observatory."_s,
                   MessageStyle::Ok, u"About"_s},
                  window.windowTitle(), &window),
         "about");
    take(NewsWindow(u"Version 2.30.005\n\nA new look for the night.\nAges of all readings."_s,
                    &window),
         "news");
    UpdateControls update;
    update.Label1.Caption = monitor.core().version.text();
    take(UpdateWindow(update, monitor.core(), QDir::tempPath(), &window), "update");
    HelpWindow help(&window);
    help.open(findGuidePage(helpFolders(), guidePage(Page::Sources)));
    take(std::move(help), "help");

    KivSetupForm setup(monitor.settings(), Simulators::of(&window), monitor.sensorProgram(),
                       monitor.core().clock, window.windowTitle());
    setup.findChild<QLineEdit*>(u"HTMFile"_s)->setText(r.stationFile.HTMFile.Caption);
    for (int step = 1;; ++step) {
        album.takeDialog(setup, u"setup-%1"_s.arg(step));
        auto* next = setup.findChild<QPushButton*>(u"ButtNext"_s);
        if (!next || !next->isEnabled() || next->isHidden() || step == 6)
            break;
        setup.show();
        next->click();
    }

    QFileDialog folder(&window, u"Folder"_s, QString::fromLocal8Bit(SKYHOLD_SOURCES));
    album.takeDialog(folder, u"file"_s);

    QWidget tray; // as large as a panel shows it
    auto* icons = new QHBoxLayout(&tray);
    for (const VerdictIcon verdict :
         {VerdictIcon::None, VerdictIcon::Safe, VerdictIcon::Unsafe, VerdictIcon::Fault}) {
        auto* icon = new QLabel(&tray);
        icon->setPixmap(drawVerdictIcon(verdict).pixmap(22));
        icons->addWidget(icon);
    }
    album.take(tray, u"tray-icons"_s, false);

    QList<QMenu*> menus{window.findChild<QMenu*>(u"mPopup1"_s)};
    for (const QAction* entry : window.menuBar()->actions())
        menus += entry->menu();
    for (QMenu* menu : menus) {
        menu->popup({0, 0});
        album.take(*menu, u"menu-"_s + menu->title().remove(u'&').toLower(), false);
        menu->hide();
    }
}

// A moment that matters, and how the monitor comes to it.
struct Scene {
    const char* name;
    void (*reach)(SimulatedMonitor& monitor);
};

constexpr Scene kMoments[]{
    {"idle",
     [](SimulatedMonitor&) {
     }},
    {"safe",
     [](SimulatedMonitor& monitor) {
         monitor.runUntil({20, 40});
     }},
    {"near",
     [](SimulatedMonitor& monitor) {
         NumberBox& calm = monitor.records().conditions.Limit[Quantity::Wind][0];
         const double usual = calm.Value;
         calm.Value = 5.3; // it blows with 5.2
         monitor.cycle();
         calm.Value = usual;
     }},
    {"rain",
     [](SimulatedMonitor& monitor) {
         monitor.runUntil({0, 50});
         monitor.records().alarms.SoundFault.Caption = QString(); // as if it were heard
     }},
    {"waiting",
     [](SimulatedMonitor& monitor) {
         const Label& left = monitor.records().conditions.SafeDelayMsg;
         for (int i = 0; i < 1000 && left.Caption.value().isEmpty(); ++i)
             monitor.cycle();
         monitor.cycle();
     }},
    {"client",
     [](SimulatedMonitor& monitor) {
         RegisterUsers(monitor.records(), monitor.core().clock, 1);
         HasControl(monitor.core(), true, u"Roof controller"_s);
     }},
    {"failed",
     [](SimulatedMonitor& monitor) {
         HasControl(monitor.core(), false, {});
         RegisterUsers(monitor.records(), monitor.core().clock, -1);
         monitor.sensorFails = true;
         monitor.stationStands = true;
         for (int i = 0; i < 30; ++i)
             monitor.cycle();
     }},
    {"stopped",
     [](SimulatedMonitor& monitor) {
         monitor.sensorFails = false;
         monitor.stationStands = false;
         monitor.cycle();
         StopSession(monitor.core());
         // What settings and clients may leave: out of order, and with more than can be typed.
         ThreeBoxes& limits = monitor.records().conditions.Limit[Quantity::Temperature];
         limits[0].Value = -20.5556;
         limits[1].Value = -75;
         limits[2].Value = -7.5;
         monitor.records().conditions.Limit[Quantity::Gust][2].Value = 999.9;
         reportSilence(monitor.records().alarms, u"no audio device"_s);
     }},
};
constexpr std::string_view kStartingMoment = "starting"; // the session before it has ended
constexpr std::string_view kSettingsMoment = "safe";     // at which pages and dialogs are shown

std::vector<QSize> sizesFrom(const QStringList& texts) {
    std::vector<QSize> sizes;
    for (const QString& text : texts)
        sizes.emplace_back(text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt());
    return sizes;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QStringList arguments = application.arguments();
    const bool panelOnly = arguments.removeAll(u"--panel"_s) > 0;
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: screenshots [--panel] FOLDER [SIZE...]\n");
        return 2;
    }
    QDir().mkpath(arguments[1]);
    const std::vector<QSize> sizes =
        sizesFrom(arguments.size() > 2 ? arguments.mid(2) : QStringList{u"1280x800"_s});

    applyLook(application);
    SimulatedMonitor monitor(QDateTime(QDate(2026, 11, 16), QTime(19, 20)));
    KivSHMainform window(monitor.core());
    window.show();
    changeSettings(monitor.records(), window.findChild<SettingsPages*>()->changes());
    Album album(arguments[1]);
    WallPanel wall(monitor.core(), nullptr);
    wall.resize(kWallSize);
    wall.show(); // what is not seen reads no history
    const auto takeNow = [&](const char* name) {
        const QString moment = QString::fromLatin1(name);
        awaitNight(window);
        for (std::size_t look = 0; look < kLooks.size(); ++look) {
            album.choose(look, monitor.records().window);
            for (const QSize& size : sizes) {
                window.resize(size);
                if (size == sizes.front())
                    album.takeForSheet(window, u"now-"_s + moment);
                else
                    album.take(window, u"now-"_s + moment);
            }
            album.take(wall, u"wall-"_s + moment);
        }
    };
    std::array<double, kLevelCount> usualLimits{};
    for (std::size_t i = 0; i < kLevelCount; ++i)
        usualLimits[i] = monitor.records().conditions.Limit[Quantity::Temperature][i].Value;
    for (const Scene& moment : kMoments) {
        moment.reach(monitor);
        takeNow(moment.name);
        if (panelOnly)
            continue;
        for (std::size_t look = 0; look < kLooks.size(); ++look) {
            album.choose(look, monitor.records().window);
            for (const QSize& size : sizes) {
                window.resize(size);
                if (moment.name == kSettingsMoment)
                    takePages(album, window);
                takeLimits(album, window, QString::fromLatin1(moment.name));
            }
            if (moment.name == kSettingsMoment)
                takeDialogs(album, monitor, window);
        }
    }
    // A limit that is out of order keeps the focus, and with it its page.
    for (std::size_t i = 0; i < kLevelCount; ++i)
        monitor.records().conditions.Limit[Quantity::Temperature][i].Value = usualLimits[i];
    const bool walked = writeKeyboardWalk(arguments[1], window);
    monitor.start([&takeNow] { takeNow(kStartingMoment.data()); });
    album.saveSheets();
    return album.failures() == 0 && walked ? 0 : 1;
}
