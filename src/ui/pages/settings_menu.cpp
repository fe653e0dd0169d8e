// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/settings_menu.h"
#include "ui/dialogs/dialog_parts.h"

#include "core/monitoring_core.h"
#include "datafiles/upload_list.h"
#include "settings/transfer.h"
#include "ui/dialogs/choose_path.h"
#include "ui/pages/find_setting.h"
#include "ui/pages/settings_changes.h"
#include "ui/pages/settings_pages.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr qsizetype kMostRefused = 12; // lines of a message

void goTo(SettingsPages& pages, const SettingPlace& place) {
    pages.open(place.page);
    // Once the page, which may be new, has its size.
    QMetaObject::invokeMethod(
        &pages,
        [&pages, control = place.control] {
            if (auto* found = pages.findChild<QWidget*>(control))
                found->setFocus(Qt::ShortcutFocusReason);
        },
        Qt::QueuedConnection);
}

void find(SettingsPages& pages, MonitoringCore& core) {
    FindSetting dialog(settingPlaces(core.records), &pages);
    if (execOver(dialog) == QDialog::Accepted)
        goTo(pages, dialog.chosen());
}

void exportAll(QMainWindow& window, MonitoringCore& core) {
    const QString path = chooseSettingsFile(&window, true);
    if (path.isEmpty())
        return;
    const QString fault = exportSettings(core.records, path);
    core.showMessage(
        {fault.isEmpty() ? u"The settings are in %1, without passwords"_s.arg(path) : fault,
         MessageStyle::Ok,
         {}});
}

QString listed(const QStringList& refused) {
    QStringList lines = refused.mid(0, kMostRefused);
    if (refused.size() > kMostRefused)
        lines += u"and %1 more"_s.arg(refused.size() - kMostRefused);
    return lines.join(u'\n');
}

} // namespace

void importSettings(const QString& path, SettingsPages& pages, MonitoringCore& core) {
    const auto say = [&core](const QString& text, MessageStyle style = MessageStyle::Ok) {
        return core.showMessage({text, style, {}});
    };
    const QString locked = u"Settings are locked while a session runs. Stop it first."_s;
    if (core.records.session.begun()) {
        say(locked);
        return;
    }
    const SettingsImport import = readSettingsFile(path);
    if (!import.fault.isEmpty()) {
        say(import.fault + (import.refused.isEmpty() ? QString() : u'\n' + listed(import.refused)));
        return;
    }
    QString question = u"%1 settings of %2 are valid."_s.arg(import.values.size()).arg(path);
    if (!import.refused.isEmpty())
        question += u"\n\nRefused are:\n"_s + listed(import.refused);
    if (say(question + u"\n\nTake over what is valid?"_s, MessageStyle::YesNo) !=
        MessageAnswer::Yes)
        return;
    if (core.records.session.begun()) { // by another program, meanwhile
        say(locked);
        return;
    }
    takeSettings(core.records, import);
    RefreshFileList(core.records.upload);
    pages.changes().noteUser();
}

void addSettingsMenu(QMainWindow& window, SettingsPages& pages, MonitoringCore& core) {
    QMenu* menu = window.menuBar()->addMenu(u"Settings"_s);
    menu->setObjectName(u"mSettings"_s);
    const auto add = [menu](const char* name, const QString& text, const QKeySequence& keys,
                            auto act) {
        QAction* action = menu->addAction(text);
        action->setObjectName(QString::fromLatin1(name));
        action->setShortcut(keys);
        QObject::connect(action, &QAction::triggered, menu, act);
        return action;
    };
    SettingsChanges& changes = pages.changes();
    QAction* undo = add("mnuUndo", u"&Undo"_s, QKeySequence::Undo, [&changes] { changes.undo(); });
    QAction* redo = add("mnuRedo", u"&Redo"_s, QKeySequence::Redo, [&changes] { changes.redo(); });
    redo->setShortcuts({u"Ctrl+Shift+Z"_s, u"Ctrl+Y"_s}); // desktops differ
    menu->addSeparator();
    pages.onFind = [&pages, &core] {
        find(pages, core);
    };
    add("mnuFind", u"&Find…"_s, QKeySequence::Find, pages.onFind);
    menu->addSeparator();
    add("mnuExport", u"&Export…"_s, {}, [&window, &core] { exportAll(window, core); });
    QAction* import = add("mnuImport", u"&Import…"_s, {}, [&window, &pages, &core] {
        const QString path = chooseSettingsFile(&window, false);
        if (!path.isEmpty())
            importSettings(path, pages, core);
    });
    const auto show = [=, &changes, &core] {
        const auto name = [](const QString& act, QString what) {
            return what.isEmpty() ? act : act + u": "_s + what.replace(u'&', u"&&"_s);
        };
        undo->setText(name(u"&Undo"_s, changes.undoText()));
        redo->setText(name(u"&Redo"_s, changes.redoText()));
        redo->setEnabled(!changes.redoText().isEmpty());
        import->setEnabled(!core.records.session.begun());
    };
    QObject::connect(menu, &QMenu::aboutToShow, menu, show);
    QObject::connect(menu, &QMenu::aboutToHide, redo, [redo] { redo->setEnabled(true); });
}

} // namespace skyhold
