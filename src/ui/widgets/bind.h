// SPDX-License-Identifier: GPL-3.0-or-later
// Ties one record to one widget. What the user does goes into the record through its `set` or
// `choose`, so that its click rule runs once; what changes in the record shows in the widget
// without running the rule again. The record outlives the widget.
#pragma once

#include "records/controls.h"

#include <QObject>
#include <QProperty>

class QAction;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace skyhold {

class KivGetNumber;
class LampWidget;
class Readout;
class Swatch;

// Holds `notifier` for as long as `owner` lives.
void holdNotifier(QObject* owner, QPropertyNotifier notifier);

// Calls `apply` with the property's value, now and after every change while `owner` lives.
template <typename T, typename Apply>
void follow(QObject* owner, QProperty<T>& property, Apply apply) {
    apply(property.value());
    holdNotifier(owner, property.addNotifier([&property, apply] { apply(property.value()); }));
}

// For a control whose text stands fixed in its window.
void followVisible(QWidget* widget, QProperty<bool>& visible);

// A colour of 0 in a label means the widget's own text colour.
void bind(QLabel* widget, Label& record);
void bind(Readout* widget, Label& record);
void bind(Swatch* widget, Label& record);
// An empty caption shows the text that the widget was made with.
void bind(QCheckBox* widget, CheckBox& record);
void bind(QPushButton* widget, Button& record);
// The record takes every number as it is typed, or, when it has a rule, once it has been entered. A
// number that was only shown, perhaps rounded, is never written back.
void bind(KivGetNumber* widget, NumberBox& record);
// The ids of the group's buttons are the option indices. A click on the chosen one changes nothing.
void bind(QButtonGroup* widget, OptionGroup& record);
void bind(QComboBox* widget, ComboBox& record);
void bind(QLineEdit* widget, TextBox& record);
void bind(LampWidget* widget, Lamp& record);
void bind(LampWidget* first, LampWidget* second, LampPair& record);
void bind(QWidget* widget, Frame& record);
void bind(QAction* action, MenuEntry& record);

} // namespace skyhold
