// Plays the user in front of a modal dialog.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>

#include <functional>

namespace skyhold {

// Runs `open`, which shows a modal dialog and waits for its end; once the dialog is up, `act` is
// to end it. False when no dialog came up.
inline bool duringDialog(const std::function<void()>& open,
                         const std::function<void(QDialog&)>& act) {
    bool acted = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
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
