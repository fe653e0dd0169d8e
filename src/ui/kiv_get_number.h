// The numeric entry box: one line that takes a number with a limited count of digits.
#pragma once

#include "platform/text_forms.h"

#include <QLineEdit>

namespace skyhold {

class KivGetNumber : public QLineEdit {
    Q_OBJECT

  public:
    explicit KivGetNumber(QWidget* parent);

    // Digits allowed before and after the decimal separator; 0 decimals forbid the separator.
    void setDigits(int mostSignificant, int decimals, bool allowNegative);

    // The number that the text stands for, 0 for none.
    double value() const;
    // Shows a number in the locale's form, with no more decimals than may be typed.
    void setValue(double value);

  Q_SIGNALS:
    // The user changed the text.
    void valueEdited(double value);

  protected:
    void focusInEvent(QFocusEvent* event) override;

  private:
    NumberForms forms_;
    int decimals_ = 2;
};

} // namespace skyhold
