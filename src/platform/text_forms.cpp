// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/text_forms.h"

#include "platform/text_encoding.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace skyhold {

NumberForms localeNumberForms() {
    const QLocale locale;
    const NumberForms forms{locale.decimalPoint().left(4), locale.groupSeparator().left(4)};
    return encodeAnsi(forms.decimal).contains('?') ? NumberForms{} : forms;
}

QString GetDecimalSeparator() {
    return localeNumberForms().decimal;
}

QString GetThousandSeparator() {
    return localeNumberForms().thousand;
}

void appendNumber(TextBuffer& text, double value, QStringView pattern, const NumberForms& forms) {
    std::size_t decimals = 0;
    std::size_t leadingZeros = 0;
    bool afterPoint = false;
    for (const QChar c : pattern) {
        if (c == u'.')
            afterPoint = true;
        else if (afterPoint)
            ++decimals;
        else if (c == u'0')
            ++leadingZeros;
    }

    // 1.005 is stored slightly below its decimal text; one step outwards lets the half that the
    // user sees round away from zero.
    constexpr double kExactInteger = 9007199254740992.0; // 2^53
    const double size = std::min(std::abs(value), std::numeric_limits<double>::max());
    // Larger numbers have no decimals, and the largest no room to be scaled by any.
    const std::size_t scaledDecimals = size < kExactInteger ? decimals : 0;
    double scale = 1;
    for (std::size_t i = 0; i < scaledDecimals; ++i)
        scale *= 10;
    const double outwards = std::nextafter(size * scale, std::numeric_limits<double>::max());
    const double rounded = size < kExactInteger ? std::floor(outwards + 0.5) : size;

    // All digits without the point; the largest number has 309.
    std::array<char, 320> buffer;
    const auto end =
        rounded < kExactInteger
            ? std::to_chars(buffer.begin(), buffer.end(), static_cast<std::uint64_t>(rounded))
            : std::to_chars(buffer.begin(), buffer.end(), rounded, std::chars_format::fixed, 0);
    const std::string_view digits(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
    std::string_view whole = digits.size() > scaledDecimals
                                 ? digits.substr(0, digits.size() - scaledDecimals)
                                 : std::string_view();
    if (whole == "0")
        whole = {}; // only the pattern's zeros stand there
    const std::string_view fraction =
        digits.substr(digits.size() - std::min(digits.size(), scaledDecimals));

    const auto addPadded = [&text](std::string_view part, std::size_t width) {
        for (std::size_t i = part.size(); i < width; ++i)
            text.append(u'0');
        for (const char digit : part)
            text.append(QLatin1Char(digit));
    };
    if (value < 0 && rounded != 0)
        text.append(u'-');
    addPadded(whole, leadingZeros);
    if (decimals > 0) {
        appendText(text, forms.decimal);
        addPadded(fraction, decimals);
    }
}

QString formatNumber(double value, QStringView pattern, const NumberForms& forms) {
    TextBuffer text;
    appendNumber(text, value, pattern, forms);
    return QString(text.constData(), text.size());
}

QString numberText(double value, const NumberForms& forms) {
    QString text = QString::number(value, 'g', 15);
    text.replace(u'.', forms.decimal);
    return text;
}

std::optional<double> numberFromText(QStringView text, const NumberForms& forms) {
    QString plain = text.trimmed().toString();
    if (!forms.thousand.isEmpty())
        plain.remove(forms.thousand);
    if (forms.decimal != QStringLiteral(".")) {
        if (plain.contains(u'.'))
            return std::nullopt;
        plain.replace(forms.decimal, QStringLiteral("."));
    }
    QByteArray bytes = plain.toLatin1();
    if (bytes.startsWith('+'))
        bytes.remove(0, 1);
    // from_chars would also take "inf" and "nan".
    const qsizetype first = bytes.startsWith('-') ? 1 : 0;
    if (bytes.size() <= first ||
        !(std::isdigit(static_cast<unsigned char>(bytes[first])) || bytes[first] == '.'))
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(bytes.cbegin(), bytes.cend(), value);
    if (error != std::errc() || end != bytes.cend() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

double leadingNumber(QStringView text) {
    const QStringView trimmed = text.trimmed();
    qsizetype end = 0;
    bool point = false;
    for (; end < trimmed.size(); ++end) {
        const QChar c = trimmed[end];
        if (c == u'.' && !point)
            point = true;
        else if (!(c >= u'0' && c <= u'9') && !(end == 0 && (c == u'-' || c == u'+')))
            break;
    }
    const double value = trimmed.left(end).toDouble();
    return std::isfinite(value) ? value : 0;
}

void appendDate(TextBuffer& text, const QDateTime& time, QStringView pattern) {
    const QDate date = time.date();
    const QTime clock = time.time();
    const auto addTwoDigits = [&text](int number) {
        text.append(QChar(u'0' + number / 10 % 10));
        text.append(QChar(u'0' + number % 10));
    };
    bool afterHours = false;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (i + 1 == pattern.size() || pattern[i + 1] != c) {
            text.append(c);
            continue;
        }
        switch (c.unicode()) {
        case u'y':
            if (pattern.mid(i).startsWith(u"yyyy")) {
                addTwoDigits(date.year() / 100);
                i += 2;
            }
            addTwoDigits(date.year());
            break;
        case u'd':
            addTwoDigits(date.day());
            break;
        case u'h':
            addTwoDigits(clock.hour());
            afterHours = true;
            break;
        case u'm':
            addTwoDigits(afterHours ? clock.minute() : date.month());
            break;
        case u's':
            addTwoDigits(clock.second());
            break;
        default:
            text.append(c);
            continue;
        }
        ++i;
    }
}

QString formatDate(const QDateTime& time, QStringView pattern) {
    TextBuffer text;
    appendDate(text, time, pattern);
    return QString(text.constData(), text.size());
}

QString durationText(std::int64_t seconds) {
    const std::int64_t hours = seconds / 3600;
    const std::int64_t minutes = seconds / 60 % 60;
    if (hours > 0)
        return QStringLiteral("%1 h %2 min").arg(hours).arg(minutes);
    if (minutes > 0)
        return QStringLiteral("%1 min %2 s").arg(minutes).arg(seconds % 60);
    return QStringLiteral("%1 s").arg(seconds);
}

QString clockText(std::int64_t utcMs) {
    return QDateTime::fromMSecsSinceEpoch(utcMs).toString(QStringLiteral("HH:mm:ss"));
}

double roundHalfEven(double value) {
    return std::nearbyint(value);
}

} // namespace skyhold
