// SPDX-License-Identifier: GPL-3.0-or-later
// Plays the user in front of a dialog that is waited for.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>

#include <functional>

namespace skyhold {

// The modal dialog, or else the one that came up beside the windows of `before`.
inline QDialog* dialogSince(const QWidgetList& before) {
    if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
        return modal;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<QDialog*>(window);
        if (dialog && dialog->isVisible() && !before.contains(window))
            return dialog;
    }
    return nullptr;
}

// Runs `open`, which shows a dialog and waits for its end; once the dialog is up, `act` is to end
// it. False when no dialog came up.
inline bool duringDialog(const std::function<void()>& open,
                         const std::function<void(QDialog&)>& act) {
    bool acted = false;
    QWidgetList before;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            before += window;
    }
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        if (QDialog* dialog = dialogSince(before)) {
            acted = true;
            act(*dialog);
        }
    });
    timer.start(0);
    open();
    return acted;
}

template <class Widget = QWidget>
Widget* child(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QString::fromLatin1(name));
    if (!found)
        qFatal("no widget %s", name);
    return found;
}

inline void click(QWidget& window, const char* name) {
    QTest::mouseClick(child(window, name), Qt::LeftButton);
}

} // namespace skyhold
