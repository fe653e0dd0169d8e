// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/choose_path.h"

#include "platform/files.h"
#include "ui/dialogs/dialog_parts.h"

#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QStandardPaths>
#include <QTreeView>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Where a dialog begins that knows no better; empty: where the last one ended, or where the program
// was started, unless that is its own folder, which an update replaces.
QString beginning() {
    if (QDir::current() != QDir(programFolder()))
        return {};
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(documents).exists() ? documents : QDir::homePath();
}

// What was chosen; nothing when it was cancelled.
QStringList ask(QFileDialog& dialog) {
    // There when the platform has no dialog of its own; its columns cut sizes and dates.
    if (auto* list = dialog.findChild<QTreeView*>(u"treeView"_s)) {
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        dialog.resize(760, 480);
    }
    return execOver(dialog) == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

} // namespace

QString chooseStationFile(QWidget* parent, const QString& current) {
    QFileDialog dialog(
        parent, u"Select data file"_s, beginning(),
        u"HTM files(*.htm) (*.htm*);;CSV files(*.csv) (*.csv*);;All files(*.*) (*)"_s);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (!current.isEmpty())
        dialog.selectFile(current);
    return ask(dialog).value(0);
}

QStringList chooseUploadFiles(QWidget* parent) {
    QFileDialog dialog(
        parent, u"Select Files to UPLOAD"_s, beginning(),
        u"PNG images(*.png) (*.png);;JPG Images(*.jpg) (*.jpg);;GIF Images(*.gif) (*.gif);;"
        u"BMP Images(*.bmp) (*.bmp);;HTML Files(*.htm*) (*.htm*);;"
        u"SCRIPT Files (*.vbs;*.js) (*.vbs *.js);;"
        u"ALL Images (*.bmp;*.jpg;*.gif;*.png) (*.bmp *.jpg *.gif *.png);;ALL Files(*.*) (*)"_s);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    return ask(dialog);
}

QString chooseSettingsFile(QWidget* parent, bool write) {
    QFileDialog dialog(parent, write ? u"Export settings"_s : u"Import settings"_s, beginning(),
                       u"Settings (*.ini);;All files (*)"_s);
    dialog.setAcceptMode(write ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(write ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(u"ini"_s);
    if (write)
        dialog.selectFile(u"skyhold-settings.ini"_s);
    return ask(dialog).value(0);
}

QString chooseLogFile(QWidget* parent, const QString& suggested) {
    QFileDialog dialog(parent, u"Export the log"_s, {}, u"CSV files(*.csv) (*.csv)"_s);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(u"csv"_s);
    dialog.selectFile(suggested);
    return ask(dialog).value(0);
}

QString chooseFolder(QWidget* parent, const QString& title, const QString& current) {
    QFileDialog dialog(parent, title, current.isEmpty() ? beginning() : current);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return ask(dialog).value(0);
}

} // namespace skyhold
