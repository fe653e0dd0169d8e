// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenshots/keyboard_walk.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QSet>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QString kindOf(const QWidget* widget) {
    return QString::fromLatin1(widget->metaObject()->className()).section(u"::"_s, -1);
}

QString lineOf(QWidget* widget) {
    QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(widget);
    const QString name = heard ? heard->text(QAccessible::Name).simplified() : QString();
    const QString value = heard ? heard->text(QAccessible::Value).simplified() : QString();
    return u"%1  %2 (%3)%4\n"_s.arg(widget->objectName(), -20)
        .arg(name.isEmpty() ? u"NO NAME"_s : u'"' + name + u'"', kindOf(widget),
             value.isEmpty() || value == name ? QString() : u" = "_s + value);
}

void pressTab(QWidget* at) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent key(type, Qt::Key_Tab, Qt::NoModifier);
        QApplication::sendEvent(at, &key);
    }
}

} // namespace

QString keyboardWalk(QWidget* first) {
    first->window()->activateWindow();
    QCoreApplication::processEvents();
    first->setFocus(Qt::TabFocusReason);
    QString lines;
    QSet<const QWidget*> met;
    for (QWidget* at = QApplication::focusWidget(); at && !met.contains(at);
         at = QApplication::focusWidget()) {
        met += at;
        lines += lineOf(at);
        pressTab(at);
    }
    return lines;
}

} // namespace skyhold
