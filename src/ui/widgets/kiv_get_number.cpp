// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/kiv_get_number.h"

#include "ui/look/look.h"
#include "ui/widgets/hold_focus.h"

#include <QFocusEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QToolTip>
#include <QValidator>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kFlashMs = 400;
constexpr int kTipMs = 3000;

// Undoes what is pasted or dropped and could not be typed. A text of another kind may be shown all
// the same.
class TypedOnly : public QValidator {
  public:
    TypedOnly(const NumberEntry& entry, QObject* parent)
        : QValidator(parent)
        , entry_(entry) {}

    State validate(QString& text, int&) const override {
        return canBeTyped(text, entry_) ? Acceptable : Invalid;
    }

  private:
    const NumberEntry& entry_;
};

// The character that a key press types; none for shortcuts and keys that move.
QChar typedCharacter(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Backspace)
        return u'\b';
    const QString text = event.text();
    const bool shortcut = event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    return !shortcut && text.size() == 1 && text[0].isPrint() ? text[0] : QChar();
}

} // namespace

KivGetNumber::KivGetNumber(QWidget* parent)
    : QLineEdit(parent)
    , entry_{.forms = localeNumberForms()} {
    setAlignment(Qt::AlignRight);
    setValidator(new TypedOnly(entry_, this));
    connect(this, &QLineEdit::textEdited, this, [this] { beingEdited_ = true; });
    connect(this, &QLineEdit::textChanged, this, [this] { followChange(); });
    connect(this, &QLineEdit::returnPressed, this, &KivGetNumber::enterNumber);
    connect(this, &QLineEdit::inputRejected, this,
            [this] { showRefusal(u"A number goes here"_s); });
    flash_.setSingleShot(true);
    flash_.setInterval(kFlashMs);
    connect(&flash_, &QTimer::timeout, this, [this] { update(); });
}

double KivGetNumber::value() const {
    return numberOfText(text(), entry_.forms);
}

void KivGetNumber::setValue(double value) {
    showText(textOfNumber(value, displayFormat_, entry_));
    edited_ = false;
}

bool KivGetNumber::holdsNumber() const {
    return beginsWithNumber(text(), entry_.forms);
}

void KivGetNumber::enterNumber() {
    if (edited_ && holdsNumber())
        Q_EMIT valueEntered(value());
}

// A number that others set is shown whole, whatever can be typed.
void KivGetNumber::showText(const QString& text) {
    const QScopedValueRollback guard(inChangeRule_, true);
    setText(text);
}

void KivGetNumber::followChange() {
    Q_EMIT Change();
    if (inChangeRule_)
        return;
    const QString cut = textAfterChange(text(), entry_);
    if (cut != text()) {
        const int caret = cursorPosition();
        showText(cut);
        setCursorPosition(caret);
        if (beingEdited_)
            showRefusal(digitsText(entry_));
    }
    Q_EMIT Change();
    if (!beingEdited_)
        return;
    beingEdited_ = false;
    edited_ = true;
    Q_EMIT textTyped(value());
    if (holdsNumber())
        Q_EMIT valueEdited(value());
}

void KivGetNumber::selectWhole() {
    const auto length = static_cast<int>(text().size());
    setSelection(length, -length); // the caret at the start
}

void KivGetNumber::showRefusal(const QString& why) {
    flash_.start();
    update();
    QToolTip::showText(mapToGlobal(QPoint(0, height())), why, this, rect(), kTipMs);
}

void KivGetNumber::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (!flash_.isActive())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look::light(screenColour(kOrange)), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
}

void KivGetNumber::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (!leavesControl(event->reason()))
        return; // back from another window: what is selected stays so
    selectWhole();
    pressSelects_ = event->reason() == Qt::MouseFocusReason;
}

void KivGetNumber::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (!leavesControl(event->reason()))
        return;
    const bool edited = edited_;
    if (edited && !holdsNumber())
        showText(textOfNumber(0, displayFormat_, entry_));
    else if (!displayFormat_.trimmed().isEmpty())
        showText(textOfNumber(value(), displayFormat_, entry_));
    edited_ = false;
    if (edited)
        Q_EMIT valueEntered(value());
}

void KivGetNumber::keyPressEvent(QKeyEvent* event) {
    Q_EMIT KeyDown(event);
    const QChar key = typedCharacter(*event);
    if (key.isNull()) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    const TextSelection selection{hasSelectedText() ? selectionStart() : cursorPosition(),
                                  selectionLength()};
    const bool passes = keyPasses(key, text(), selection, entry_);
    Q_EMIT KeyPress(passes ? key : QChar());
    if (passes)
        QLineEdit::keyPressEvent(event);
    else
        showRefusal(refusalText(key, text(), selection, entry_));
}

void KivGetNumber::keyReleaseEvent(QKeyEvent* event) {
    QLineEdit::keyReleaseEvent(event);
    Q_EMIT KeyUp(event);
}

void KivGetNumber::mousePressEvent(QMouseEvent* event) {
    Q_EMIT MouseDown(event);
    QLineEdit::mousePressEvent(event);
    if (pressSelects_)
        selectWhole(); // the press has set its caret
}

void KivGetNumber::mouseMoveEvent(QMouseEvent* event) {
    Q_EMIT MouseMove(event);
    // The hand that gives the focus may tremble.
    if (!pressSelects_)
        QLineEdit::mouseMoveEvent(event);
}

void KivGetNumber::mouseReleaseEvent(QMouseEvent* event) {
    pressSelects_ = false;
    QLineEdit::mouseReleaseEvent(event);
    Q_EMIT MouseUp(event);
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT Click();
}

void KivGetNumber::mouseDoubleClickEvent(QMouseEvent* event) {
    QLineEdit::mouseDoubleClickEvent(event);
    Q_EMIT DblClick();
}

} // namespace skyhold
