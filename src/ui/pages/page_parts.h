// SPDX-License-Identifier: GPL-3.0-or-later
// What the pages of settings are made of.
#pragma once

#include "records/controls.h"

#include <QStringList>

#include <functional>

class QBoxLayout;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace skyhold {

class KivGetNumber;

// A page with the margins of the window.
QVBoxLayout* pageColumn(QWidget* page);
// A titled group with its column.
QVBoxLayout* addGroup(QWidget* page, const QString& title);
// An explaining line in the dimmer text colour.
QLabel* addHint(QBoxLayout* into, const QString& text);

// Object names are control names, those of an array followed by the index.
QString indexed(const QByteArray& control, std::size_t index);

QCheckBox* makeCheck(QWidget* parent, const QString& name, const QString& text, CheckBox& record);
KivGetNumber* makeNumber(QWidget* parent, const QString& name, NumberBox& record);
// "caption [box] unit" in one row.
KivGetNumber* addNumberRow(QBoxLayout* into, const QString& caption, const QString& name,
                           NumberBox& record, const QString& unit);
// A text box that selects its whole text on focus.
QLineEdit* makeText(QWidget* parent, const QString& name, TextBox& record);
// Calls `rule` whenever the focus leaves the box for another control, and when the box is locked.
void onLeaving(QLineEdit* box, std::function<void()> rule);
// A path that is chosen, not typed: its text can be selected and copied. A long one shows its end.
QLineEdit* makePath(QWidget* parent, const QString& name, Label& record);
// A button that lets the user choose a folder, and the folder that is chosen.
struct FolderChoice {
    QPushButton* button;
    QLineEdit* folder;
};
FolderChoice makeFolderChoice(QWidget* parent, const QString& buttonName, Button& button,
                              const QString& folderName, Label& folder, const QString& dialogTitle);
// Radio buttons in one row, named `control` with their index.
QButtonGroup* addOptions(QBoxLayout* into, const char* control, const QStringList& captions,
                         OptionGroup& record);

} // namespace skyhold
