// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers and dates as text, with the locale's separators.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <QVarLengthArray>

#include <optional>

namespace skyhold {

// A line that is being built from many short pieces, without a QString for each of them.
using TextBuffer = QVarLengthArray<QChar, 512>;

inline void appendText(TextBuffer& text, QStringView piece) {
    text.append(piece.data(), piece.size());
}

struct NumberForms {
    QString decimal = QStringLiteral(".");
    QString thousand = QStringLiteral(",");
};

// The separators of the user's locale as it is now, at most four characters each; the point and
// the comma for a locale whose decimal separator a file of ANSI text cannot hold.
NumberForms localeNumberForms();
QString GetDecimalSeparator();
QString GetThousandSeparator();

// Formats with a pattern of "#" and "0" and at most one ".": as many decimals as stand after the
// point, at least as many digits before it as there are "0" there. A half rounds away from zero.
QString formatNumber(double value, QStringView pattern, const NumberForms& forms);
void appendNumber(TextBuffer& text, double value, QStringView pattern, const NumberForms& forms);

// The shortest plain text of a number, at most 15 significant digits.
QString numberText(double value, const NumberForms& forms);

// The number that the whole text stands for: sign, digits, the decimal separator, an exponent;
// thousands separators and blanks around are ignored. Nothing for any other text, and nothing for
// a number that is not finite.
std::optional<double> numberFromText(QStringView text, const NumberForms& forms);

// The leading number of a text with "." as its decimal separator, 0 when there is none.
double leadingNumber(QStringView text);

// Formats with the tokens "yyyy", "yy", "dd", "mm" (minutes when they follow "hh", else the
// month), "hh", "ss"; every other character stands for itself.
QString formatDate(const QDateTime& time, QStringView pattern);
void appendDate(TextBuffer& text, const QDateTime& time, QStringView pattern);

// "2 h 5 min", "2 min 10 s", "40 s".
QString durationText(std::int64_t seconds);

// "hh:mm:ss", local; milliseconds since 1970, UTC.
QString clockText(std::int64_t utcMs);

// To the nearest integer, halves to the even neighbour.
double roundHalfEven(double value);

} // namespace skyhold
