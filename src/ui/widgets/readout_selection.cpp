// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/readout_selection.h"

#include "ui/look/look.h"
#include "ui/widgets/hold_focus.h"
#include "ui/widgets/readout.h"

#include <QFocusEvent>
#include <QLabel>
#include <QMouseEvent>

namespace skyhold {

namespace {

// Stands over the readout, and looks like it, while it has the focus.
class SelectableText : public QLabel {
  public:
    explicit SelectableText(Readout* readout)
        : QLabel(readout->text(), readout) {
        setTextFormat(Qt::PlainText);
        setTextInteractionFlags(Qt::TextSelectableByMouse);
        setWordWrap(true);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
        setIndent(0);
        setAutoFillBackground(true);
        readout->installEventFilter(this);
        followLook(this, [this, readout] { lookLike(*readout); });
        connect(readout, &Readout::textChanged, this, [this, readout](const QString& changed) {
            const bool all = selectedText() == text();
            lookLike(*readout);
            setText(changed);
            if (all)
                selectAll();
        });
        show();
        setFocus(Qt::MouseFocusReason);
        selectAll();
    }

    // The readout takes another size with its window.
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Resize)
            lookLike(*static_cast<const Readout*>(parentWidget()));
        return false;
    }

  protected:
    void focusOutEvent(QFocusEvent* event) override {
        QLabel::focusOutEvent(event);
        if (leavesControl(event->reason()))
            deleteLater();
    }

  private:
    void lookLike(const Readout& readout) {
        setGeometry(readout.rect());
        setFont(readout.fittedFont());
        QPalette palette;
        palette.setColor(QPalette::Window, look::kCard);
        palette.setColor(QPalette::WindowText, readout.shownInk());
        setPalette(palette);
    }

    void selectAll() { setSelection(0, static_cast<int>(text().size())); }
};

class SelectionOpener : public QObject {
  public:
    explicit SelectionOpener(Readout* readout)
        : QObject(readout)
        , readout_(readout) {}

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::MouseButtonPress || readout_->text().isEmpty() ||
            static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
            return false;
        new SelectableText(readout_);
        return true;
    }

  private:
    Readout* readout_;
};

} // namespace

void allowMouseSelection(Readout* readout) {
    readout->setCursor(Qt::IBeamCursor);
    readout->installEventFilter(new SelectionOpener(readout));
}

} // namespace skyhold
