#include "ui/kiv_get_number.h"

#include <QFocusEvent>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QTimer>

namespace skyhold {

KivGetNumber::KivGetNumber(QWidget* parent)
    : QLineEdit(parent)
    , forms_(localeNumberForms()) {
    setAlignment(Qt::AlignRight);
    connect(this, &QLineEdit::textEdited, this, [this] { Q_EMIT valueEdited(value()); });
}

void KivGetNumber::setDigits(int mostSignificant, int decimals, bool allowNegative) {
    decimals_ = decimals;
    QString pattern = allowNegative ? QStringLiteral("-?") : QString();
    pattern += QStringLiteral("[0-9]{0,%1}").arg(mostSignificant);
    if (decimals > 0)
        pattern += QStringLiteral("(%1[0-9]{0,%2})?")
                       .arg(QRegularExpression::escape(forms_.decimal))
                       .arg(decimals);
    setValidator(new QRegularExpressionValidator(QRegularExpression(pattern), this));
}

double KivGetNumber::value() const {
    return numberFromText(text(), forms_).value_or(0);
}

void KivGetNumber::setValue(double value) {
    QString shown = numberText(value, forms_);
    const qsizetype point = shown.indexOf(forms_.decimal);
    if (point >= 0)
        shown.truncate(decimals_ > 0 ? point + forms_.decimal.size() + decimals_ : point);
    setText(shown);
}

void KivGetNumber::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    // After the press of a click has set its caret.
    QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

} // namespace skyhold
