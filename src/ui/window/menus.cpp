// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/menus.h"

#include "core/session.h"
#include "ui/pages/settings_menu.h"
#include "ui/pages/settings_pages.h"
#include "ui/widgets/bind.h"
#include "ui/window/main_window.h"

#include <QActionGroup>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

template <class Act>
QAction* addEntry(QMenu* menu, const QString& name, const QString& text, Act act) {
    QAction* action = menu->addAction(text);
    action->setObjectName(name);
    QObject::connect(action, &QAction::triggered, menu, act);
    return action;
}

template <class Act>
QAction* addEntry(QMenu* menu, const QString& name, const QString& text, MenuEntry& record,
                  Act act) {
    QAction* action = addEntry(menu, name, text, act);
    bind(action, record);
    return action;
}

QAction* addSeparator(QMenu* menu, const QString& name) {
    QAction* action = menu->addSeparator();
    action->setObjectName(name);
    return action;
}

void showAbout(MonitoringCore& core) {
    core.showMessage({core.version.title() +
                          u"\n\nA monitor of sky and weather conditions for an observatory."_s,
                      MessageStyle::Ok, u"About"_s});
}

void addLooks(QMenu* view, WindowControls& controls) {
    struct Entry {
        const char* name;
        const char* text;
        Qt::Key key;
    };
    constexpr std::array<Entry, 3> entries{{{"mnuLook0", "&Dark panel", Qt::Key_1},
                                            {"mnuLook1", "&Night vision", Qt::Key_2},
                                            {"mnuLook2", "As the des&ktop", Qt::Key_3}}};
    auto* group = new QActionGroup(view);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = entries[i];
        const int look = static_cast<int>(i);
        QAction* action =
            addEntry(view, QString::fromLatin1(entry.name), QString::fromLatin1(entry.text),
                     [&controls, look] { controls.Look = look; });
        action->setCheckable(true);
        action->setShortcut(QKeyCombination(Qt::ControlModifier | Qt::AltModifier, entry.key));
        group->addAction(action);
        follow(action, controls.Look,
               [action, look](int chosen) { action->setChecked(chosen == look); });
    }
}

} // namespace

void makeMenuBar(KivSHMainform& window, MonitoringCore& core) {
    WindowControls& controls = core.records.window;
    QMenu* file = window.menuBar()->addMenu(u"&File"_s);
    file->setObjectName(u"Filemenu"_s);
    addEntry(file, u"mnuStart"_s, u"&Start"_s, controls.mnuStart, [&core] { StartSession(core); });
    addEntry(file, u"mnuStop"_s, u"S&top"_s, controls.mnuStop, [&core] { StopByUser(core); });
    bind(addSeparator(file, u"mSep0"_s), controls.mSep0);
    addEntry(file, u"MnuExit"_s, u"E&xit"_s, controls.MnuExit, [&window] { window.close(); });

    QMenu* view = window.menuBar()->addMenu(u"&View"_s);
    view->setObjectName(u"mView"_s);
    addLooks(view, controls);
    view->addSeparator()->setObjectName(u"mSepView"_s);
    QAction* only = addEntry(view, u"mnuPanelOnly"_s, u"&Panel only"_s, [] {});
    only->setCheckable(true);
    only->setShortcut(Qt::Key_F11);
    window.addAction(only); // its key works while the menu bar is hidden
    QObject::connect(only, &QAction::triggered, &window, &KivSHMainform::showPanelOnly);
    QObject::connect(&window, &KivSHMainform::panelOnlyChanged, only, &QAction::setChecked);

    addSettingsMenu(window, *window.findChild<SettingsPages*>(), core);

    QMenu* help = window.menuBar()->addMenu(u"&Help"_s);
    help->setObjectName(u"mHelp"_s);
    addEntry(help, u"mnuHelp1"_s, u"&Contents"_s, [&window] {
        window.explainPage();
    })->setShortcut(QKeySequence::HelpContents);
    addSeparator(help, u"mSpe0"_s);
    QAction* update = addEntry(help, u"mnuUpdate"_s, u"Check &update"_s, controls.mnuUpdate,
                               [&window] { window.onUpdate(); });
    addSeparator(help, u"mSpe1"_s);
    addEntry(help, u"mnuAbout"_s, u"&About"_s, [&core] { showAbout(core); });
    QObject::connect(help, &QMenu::aboutToShow, update,
                     [&window, update] { update->setVisible(window.onUpdate != nullptr); });
}

QMenu* makePopupSys(KivSHMainform& window, MonitoringCore& core) {
    WindowControls& controls = core.records.window;
    auto* menu = new QMenu(u"&SysTray"_s, &window);
    menu->setObjectName(u"mPopupSys"_s);
    addEntry(menu, u"mPopStart"_s, u"&Start"_s, controls.mPopStart,
             [&core] { StartSession(core); });
    addEntry(menu, u"mPopStop"_s, u"S&top"_s, controls.mPopStop, [&core] { StopByUser(core); });
    bind(addSeparator(menu, u"mSep1"_s), controls.mSep1);
    addEntry(menu, u"mPopRestore"_s, u"&Restore"_s, controls.mPopRestore,
             [&window] { window.restore(); });
    addEntry(menu, u"mPopMinimize"_s, u"&Minimize"_s, controls.mPopMinimize,
             [&window] { window.minimise(); });
    addSeparator(menu, u"mSep2"_s);
    addEntry(menu, u"mPopExit"_s, u"&Exit"_s, controls.mPopExit, [&window] { window.close(); });
    return menu;
}

} // namespace skyhold
