// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/copy_text.h"

#include "ui/widgets/readout.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>

namespace skyhold {

namespace {

// Stands over the readout while it has the focus.
class CopyLine : public QLineEdit {
  public:
    explicit CopyLine(Readout* readout)
        : QLineEdit(readout->text(), readout) {
        setReadOnly(true);
        setFont(readout->font());
        setToolTip(readout->toolTip());
        setContextMenuPolicy(Qt::NoContextMenu);
        setGeometry(readout->rect());
        connect(readout, &Readout::textChanged, this, [this](const QString& text) {
            const bool all = selectedText() == this->text();
            setText(text);
            if (all)
                selectAll();
        });
        // Else going back would lead from the line to the readout, and so to the line again.
        readout->setFocusPolicy(Qt::NoFocus);
        setAccessibleName(readout->accessibleName());
        QWidget::setTabOrder(readout, this);
        show();
    }

  protected:
    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        if (event->reason() == Qt::PopupFocusReason ||
            event->reason() == Qt::ActiveWindowFocusReason)
            return;
        parentWidget()->setFocusPolicy(Qt::StrongFocus);
        deleteLater();
    }

    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::RightButton)
            event->ignore();
        else
            QLineEdit::mousePressEvent(event);
    }

    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::RightButton)
            event->ignore();
        else
            QLineEdit::mouseReleaseEvent(event);
    }
};

class CopyOpener : public QObject {
  public:
    explicit CopyOpener(Readout* readout)
        : QObject(readout)
        , readout_(readout) {}

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress) {
            auto* press = static_cast<QMouseEvent*>(event);
            if (press->button() != Qt::LeftButton)
                return false;
            open(Qt::MouseFocusReason);
            return true;
        }
        if (event->type() == QEvent::FocusIn) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason)
                // The focus may only move on once it has come.
                QMetaObject::invokeMethod(
                    this, [this, reason] { open(reason); }, Qt::QueuedConnection);
        }
        return false;
    }

  private:
    void open(Qt::FocusReason reason) {
        if (readout_->text().isEmpty() || (line_ && line_->hasFocus()))
            return;
        line_ = new CopyLine(readout_);
        line_->setFocus(reason);
        line_->selectAll();
    }

    Readout* readout_;
    QPointer<CopyLine> line_;
};

} // namespace

void allowCopying(Readout* readout) {
    readout->setFocusPolicy(Qt::StrongFocus);
    readout->setCursor(Qt::IBeamCursor);
    readout->installEventFilter(new CopyOpener(readout));
}

} // namespace skyhold
