// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/open_editor.h"

#include "ui/widgets/readout.h"

#include <QAbstractButton>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kPencilWidth = 20;

class EditorOpener : public QObject {
  public:
    EditorOpener(QWidget* item, bool spaceOpens, std::function<void()> open)
        : QObject(item)
        , item_(item)
        , spaceOpens_(spaceOpens)
        , open_(std::move(open)) {}

    bool eventFilter(QObject*, QEvent* event) override {
        if (!item_->isEnabled())
            return false;
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            return static_cast<QMouseEvent*>(event)->button() == Qt::RightButton;
        case QEvent::MouseButtonRelease:
            return opensByMouse(*static_cast<QMouseEvent*>(event));
        case QEvent::KeyPress:
            return opensByKey(*static_cast<QKeyEvent*>(event));
        case QEvent::ContextMenu:
            return true; // the release of the button has opened the editor
        case QEvent::FocusIn:
        case QEvent::FocusOut:
            item_->update();
            return false;
        default:
            return false;
        }
    }

  private:
    bool opensByMouse(const QMouseEvent& event) {
        if (event.button() != Qt::RightButton)
            return false;
        if (item_->rect().contains(event.position().toPoint()))
            open_();
        return true;
    }

    bool opensByKey(const QKeyEvent& event) {
        const int key = event.key();
        const bool presses = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
        if (!asksForMenu(event) && !(presses && spaceOpens_))
            return false;
        open_();
        return true;
    }

    QWidget* item_;
    bool spaceOpens_; // a button takes these keys itself
    std::function<void()> open_;
};

// Stands at the right end of its item, for the mouse alone: keys open the editor from the item.
class Pencil : public QAbstractButton {
  public:
    explicit Pencil(QWidget* item)
        : QAbstractButton(item) {
        setObjectName(u"Edit"_s + item->objectName());
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::PointingHandCursor);
        setAttribute(Qt::WA_Hover);
        QMargins room = item->contentsMargins();
        room.setRight(room.right() + kPencilWidth);
        item->setContentsMargins(room);
        item->installEventFilter(this);
        place();
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Resize)
            place();
        return false;
    }

    void paintEvent(QPaintEvent*) override {
        const auto* item = qobject_cast<const Readout*>(parentWidget());
        const QColor ink = item ? item->shownInk() : palette().color(QPalette::WindowText);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (underMouse() && isEnabled()) {
            QColor veil = ink;
            veil.setAlpha(isDown() ? 90 : 50);
            painter.setPen(Qt::NoPen);
            painter.setBrush(veil);
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 2, -2, -2), 3, 3);
        }
        drawPencil(painter, ink);
    }

  private:
    void place() {
        const QRect item = parentWidget()->rect();
        setGeometry(item.right() - kPencilWidth + 1, item.top(), kPencilWidth, item.height());
    }

    // Drawn lying, its tip to the left, and turned.
    void drawPencil(QPainter& painter, const QColor& ink) const {
        painter.translate(QRectF(rect()).center());
        painter.rotate(-45);
        painter.setPen(QPen(ink, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        QPainterPath shaft(QPointF(-6.5, 0));
        shaft.lineTo(-3.5, -1.8);
        shaft.lineTo(6, -1.8);
        shaft.lineTo(6, 1.8);
        shaft.lineTo(-3.5, 1.8);
        shaft.closeSubpath();
        painter.drawPath(shaft);
        painter.drawLine(QPointF(3.6, -1.8), QPointF(3.6, 1.8));
    }
};

} // namespace

bool asksForMenu(const QKeyEvent& event) {
    return event.key() == Qt::Key_Menu ||
           (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

void openEditorOn(QWidget* item, std::function<void()> open) {
    item->setFocusPolicy(Qt::TabFocus);
    item->installEventFilter(new EditorOpener(item, true, std::move(open)));
}

void openEditorFrom(QAbstractButton* button, std::function<void()> open) {
    QObject::connect(button, &QAbstractButton::clicked, button, open);
    button->installEventFilter(new EditorOpener(button, false, std::move(open)));
}

void makeEditable(QWidget* item, const QString& what, std::function<void()> open) {
    item->setToolTip(what + u": click the pencil, right-click, or press the menu key or "
                            u"Shift+F10"_s);
    item->setAccessibleDescription(what);
    item->setMinimumHeight(std::max(item->minimumHeight(), kPencilWidth));
    auto* pencil = new Pencil(item);
    pencil->setAccessibleName(what);
    QObject::connect(pencil, &QAbstractButton::clicked, item, open);
    openEditorOn(item, std::move(open));
}

} // namespace skyhold
