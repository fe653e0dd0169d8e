#include "ui/open_editor.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace skyhold {

namespace {

class EditorOpener : public QObject {
  public:
    EditorOpener(QWidget* item, std::function<void()> open)
        : QObject(item)
        , item_(item)
        , open_(std::move(open)) {}

    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            return static_cast<QMouseEvent*>(event)->button() == Qt::RightButton;
        case QEvent::MouseButtonRelease:
            return opensByMouse(*static_cast<QMouseEvent*>(event));
        case QEvent::KeyPress:
            return opensByKey(static_cast<QKeyEvent*>(event)->key());
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

    bool opensByKey(int key) {
        if (key != Qt::Key_Menu && key != Qt::Key_Space && key != Qt::Key_Return &&
            key != Qt::Key_Enter)
            return false;
        open_();
        return true;
    }

    QWidget* item_;
    std::function<void()> open_;
};

} // namespace

void openEditorOn(QWidget* item, std::function<void()> open) {
    item->setFocusPolicy(Qt::TabFocus);
    item->installEventFilter(new EditorOpener(item, std::move(open)));
}

} // namespace skyhold
