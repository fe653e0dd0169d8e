// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/number_text.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// A converted limit has decimals without end.
constexpr int kLeastDecimalsShown = 2;
constexpr double kRoundedBelow = 1e9; // larger ones have no such decimals to lose

// With "." as its separator.
QString plainForm(QString text, const NumberForms& forms) {
    if (!forms.thousand.isEmpty())
        text.remove(forms.thousand);
    const qsizetype separator = text.indexOf(forms.decimal);
    if (separator >= 0)
        text.replace(separator, forms.decimal.size(), QStringLiteral("."));
    return text;
}

bool isDigit(QChar key) {
    return key >= u'0' && key <= u'9';
}

bool digitPasses(QStringView text, TextSelection selection, const NumberEntry& entry) {
    if (selection.SelLength > 0)
        return true;
    const qsizetype before = text.indexOf(entry.forms.decimal); // -1: no separator
    if (before < 0)
        return text.size() <= entry.DigitsMostSignificant;
    if (selection.SelStart <= before)
        return before <= entry.DigitsMostSignificant;
    if (selection.SelStart > before + 1)
        return text.size() - entry.DigitsMostSignificant - 1 <= entry.DigitsDecimal;
    return true;
}

// A second separator passes only where it replaces the first and something before it.
bool separatorPasses(QStringView text, TextSelection selection, const NumberEntry& entry) {
    if (entry.DigitsDecimal < 1)
        return false;
    const qsizetype before = text.indexOf(entry.forms.decimal);
    return before < 0 || (selection.SelStart < before && selection.SelLength > 1 &&
                          selection.SelStart + selection.SelLength > before);
}

} // namespace

double numberOfText(const QString& text, const NumberForms& forms) {
    return leadingNumber(plainForm(text, forms)) + 0.0; // "-0" is 0
}

bool beginsWithNumber(const QString& text, const NumberForms& forms) {
    const QString plain = plainForm(text, forms).trimmed();
    qsizetype first = 0;
    if (plain.startsWith(u'-') || plain.startsWith(u'+'))
        ++first;
    if (plain.mid(first).startsWith(u'.'))
        ++first;
    return first < plain.size() && isDigit(plain[first]);
}

bool keyPasses(QChar key, QStringView text, TextSelection selection, const NumberEntry& entry) {
    if (key == u'\b')
        return true;
    if (isDigit(key))
        return digitPasses(text, selection, entry);
    if (key == u'-')
        return entry.AllowNegative && !text.contains(u'-') && selection.SelStart == 0;
    return key == entry.forms.decimal.front() && separatorPasses(text, selection, entry);
}

QString refusalText(QChar key, QStringView text, TextSelection selection,
                    const NumberEntry& entry) {
    const QString separator = entry.forms.decimal.left(1);
    if (isDigit(key))
        return digitsText(entry);
    if (key == u'-') {
        if (!entry.AllowNegative)
            return u"No negative numbers"_s;
        return selection.SelStart == 0 ? u"There is a minus sign already"_s
                                       : u"The minus sign goes to the start"_s;
    }
    if (key == u'.' || key == u',') {
        if (entry.DigitsDecimal < 1)
            return u"Whole numbers only: \"%1\" was left out"_s.arg(key);
        if (key != separator.front())
            return u"The decimal separator here is \"%1\""_s.arg(separator);
        return text.contains(separator) ? u"There is a decimal separator already"_s : QString();
    }
    return u"A number goes here"_s;
}

QString digitsText(const NumberEntry& entry) {
    const QString whole = u"At most %1 digits"_s.arg(entry.DigitsMostSignificant);
    return entry.DigitsDecimal < 1
               ? whole
               : whole + u" before the separator, %1 after it"_s.arg(entry.DigitsDecimal);
}

QString textAfterChange(const QString& text, const NumberEntry& entry) {
    const bool negative = text.contains(u'-');
    const QString sign = negative ? QStringLiteral("-") : QString();
    const QString body = text.mid(sign.size());
    const qsizetype separator = body.indexOf(entry.forms.decimal);
    if (separator < 0)
        return body.size() > entry.DigitsMostSignificant
                   ? sign + body.left(entry.DigitsMostSignificant)
                   : text;

    QString whole = body.left(separator);
    if (numberOfText(body, entry.forms) > std::pow(10, entry.DigitsMostSignificant) - 1)
        whole.truncate(entry.DigitsMostSignificant);
    return sign + whole + entry.forms.decimal +
           body.mid(separator + entry.forms.decimal.size(), entry.DigitsDecimal);
}

bool canBeTyped(QStringView text, const NumberEntry& entry) {
    if (entry.AllowNegative && text.startsWith(u'-'))
        text = text.mid(1);
    const qsizetype separator = entry.DigitsDecimal > 0 ? text.indexOf(entry.forms.decimal) : -1;
    const auto digits = [](QStringView part) {
        return std::all_of(part.begin(), part.end(), isDigit);
    };
    if (separator < 0)
        return digits(text);
    return digits(text.left(separator)) && digits(text.mid(separator + entry.forms.decimal.size()));
}

QString textOfNumber(double value, const QString& displayFormat, const NumberEntry& entry) {
    const double shownTo = std::pow(10, std::max(kLeastDecimalsShown, entry.DigitsDecimal));
    if (std::abs(value) < kRoundedBelow)
        value = std::round(value * shownTo) / shownTo + 0.0;
    const QString text = displayFormat.trimmed().isEmpty()
                             ? numberText(value, entry.forms)
                             : formatNumber(value, displayFormat, entry.forms);
    // "1.5e+16" would be read as 1.5.
    return text.contains(u'e') ? formatNumber(value, u"0", entry.forms) : text;
}

} // namespace skyhold
