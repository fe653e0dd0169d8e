// SPDX-License-Identifier: GPL-3.0-or-later
// The numeric entry box: one line that takes a number with a limited count of digits, with the
// locale's separators as they were when the box was made.
//
// Alignment, border, colours, font, caret, selection and text are those of every line edit. While
// what is typed is not a number yet ("" or "-") no value is reported: a limit that is being
// retyped must not count as 0 meanwhile. A box that is left so stands for 0, and shows it.
//
// What it refuses, or cuts off, it shows: it flashes, and a tip says why. Otherwise 12.5 typed into
// a box for whole numbers would become 125 unnoticed.
#pragma once

#include "ui/widgets/number_text.h"

#include <QLineEdit>
#include <QTimer>

namespace skyhold {

class KivGetNumber : public QLineEdit {
    Q_OBJECT
    Q_PROPERTY(int DigitsMostSignificant READ digitsMostSignificant WRITE setDigitsMostSignificant)
    Q_PROPERTY(int DigitsDecimal READ digitsDecimal WRITE setDigitsDecimal)
    Q_PROPERTY(bool AllowNegative READ allowNegative WRITE setAllowNegative)
    Q_PROPERTY(QString DisplayFormat READ displayFormat WRITE setDisplayFormat)
    Q_PROPERTY(double Value READ value WRITE setValue)

  public:
    explicit KivGetNumber(QWidget* parent);

    int digitsMostSignificant() const { return entry_.DigitsMostSignificant; }
    void setDigitsMostSignificant(int digits) { entry_.DigitsMostSignificant = digits; }
    int digitsDecimal() const { return entry_.DigitsDecimal; }
    void setDigitsDecimal(int digits) { entry_.DigitsDecimal = digits; }
    bool allowNegative() const { return entry_.AllowNegative; }
    void setAllowNegative(bool allow) { entry_.AllowNegative = allow; }
    // A pattern of "#", "0" and "."; the text takes its form when a value is set and when the box
    // loses the focus. Empty: the plain number.
    QString displayFormat() const { return displayFormat_; }
    void setDisplayFormat(const QString& format) { displayFormat_ = format; }

    // The number that the text stands for, 0 for none.
    double value() const;
    void setValue(double value);
    bool holdsNumber() const;
    // Takes what was typed as entered, as Enter does. Nothing when it is not a number.
    void enterNumber();

  Q_SIGNALS:
    // The user changed the text, which stands for `value` now, 0 for none. Comes before the others.
    void textTyped(double value);
    // The user changed the text, and it is a number.
    void valueEdited(double value);
    // The user pressed Enter, left the box, or closed its window, after changing the text.
    void valueEntered(double value);

    void Change(); // before and after the change rule
    void Click();
    void DblClick();
    void KeyDown(QKeyEvent* event);
    void KeyPress(QChar key); // 0 when the key was refused
    void KeyUp(QKeyEvent* event);
    void MouseDown(QMouseEvent* event);
    void MouseMove(QMouseEvent* event);
    void MouseUp(QMouseEvent* event);

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void followChange();
    void showText(const QString& text);
    void selectWhole();
    void showRefusal(const QString& why);

    NumberEntry entry_;
    QString displayFormat_;
    bool inChangeRule_ = false;
    bool beingEdited_ = false; // between the user's change and its end
    bool edited_ = false;      // the user changed the text since a value was set
    bool pressSelects_ = false;
    QTimer flash_; // runs while a refusal is shown
};

} // namespace skyhold
