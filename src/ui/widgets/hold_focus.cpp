// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/hold_focus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTabWidget>

namespace skyhold {

namespace {

bool leftByUser(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::MouseFocusReason || reason == Qt::ShortcutFocusReason;
}

// The page of tabs that `box` stands on may have been turned away.
void turnToPageOf(const QWidget* box) {
    for (QWidget* above = box->parentWidget(); above; above = above->parentWidget()) {
        auto* pages = qobject_cast<QTabWidget*>(above);
        for (int i = 0; pages && i < pages->count(); ++i) {
            if (pages->widget(i)->isAncestorOf(box))
                pages->setCurrentIndex(i);
        }
    }
}

class FocusHolder : public QObject {
  public:
    FocusHolder(QWidget* box, std::function<QString()> fault,
                std::function<void(const QString&)> show)
        : QObject(box)
        , box_(box)
        , fault_(std::move(fault))
        , show_(std::move(show)) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == box_ && event->type() == QEvent::FocusOut)
            return refuses(static_cast<QFocusEvent*>(event)->reason());
        if (watched == box_ && event->type() == QEvent::KeyPress && isReturn(*event))
            return refuses(Qt::OtherFocusReason, true);
        return dropsClick_ && isPress(event->type()) && dropClick();
    }

  private:
    static bool isPress(QEvent::Type type) {
        return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    }

    static bool isReturn(const QEvent& event) {
        const int key = static_cast<const QKeyEvent&>(event).key();
        return key == Qt::Key_Return || key == Qt::Key_Enter;
    }

    bool refuses(Qt::FocusReason reason, bool entered = false) {
        if (refusing_)
            return true;
        if (!entered && !leftByUser(reason))
            return false;
        const QString text = fault_();
        if (text.isEmpty())
            return false;
        refusing_ = true;
        // The control that was clicked has the focus already; its click comes next.
        dropsClick_ = reason == Qt::MouseFocusReason;
        if (dropsClick_)
            qApp->installEventFilter(this);
        box_->setFocus();
        // A dialog must not open in the middle of a change of focus.
        QMetaObject::invokeMethod(
            this, [this, text] { say(text); }, Qt::QueuedConnection);
        return true;
    }

    bool dropClick() {
        dropsClick_ = false;
        qApp->removeEventFilter(this);
        return true;
    }

    void say(const QString& text) {
        if (dropsClick_)
            dropClick();
        turnToPageOf(box_);
        box_->setFocus();
        refusing_ = false;
        show_(text);
    }

    QWidget* box_;
    std::function<QString()> fault_;
    std::function<void(const QString&)> show_;
    bool refusing_ = false;
    bool dropsClick_ = false;
};

} // namespace

void holdFocusWhile(QWidget* box, std::function<QString()> fault,
                    std::function<void(const QString&)> show) {
    box->installEventFilter(new FocusHolder(box, std::move(fault), std::move(show)));
}

bool leavesControl(Qt::FocusReason reason) {
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
           reason != Qt::MenuBarFocusReason;
}

} // namespace skyhold
