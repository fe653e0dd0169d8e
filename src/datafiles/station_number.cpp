// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_number.h"

#include <cstdint>

namespace skyhold {

namespace {

// No number, date or time of a station comes near this; a longer text stands for none.
constexpr qsizetype kLongestText = 100;

// The whole text as a signed 16-bit number.
std::optional<int> smallInteger(QStringView text) {
    const QStringView trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.size() > kLongestText)
        return std::nullopt;
    const bool signedText = trimmed[0] == u'-' || trimmed[0] == u'+';
    for (const QChar c : trimmed.sliced(signedText ? 1 : 0)) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
    }
    bool fits = false;
    const int value = trimmed.toShort(&fits);
    return fits ? std::optional(value) : std::nullopt;
}

int fullYear(int year) {
    if (year >= 0 && year <= 29)
        return 2000 + year;
    return year >= 30 && year <= 99 ? 1900 + year : year;
}

// With the locale's decimal separator for the first ".".
QString inLocaleForm(QStringView text, const NumberForms& forms) {
    QString local = text.toString();
    const qsizetype point = local.indexOf(u'.');
    return point < 0 ? local : local.replace(point, 1, forms.decimal);
}

} // namespace

std::optional<double> ParseStationNumber(QStringView text, const NumberForms& forms) {
    const QStringView trimmed = text.trimmed();
    if (trimmed.size() > kLongestText)
        return std::nullopt;
    return numberFromText(inLocaleForm(trimmed, forms), {forms.decimal, {}});
}

double parseLocaleNumber(QStringView text, const NumberForms& forms) {
    const QStringView trimmed = text.trimmed();
    if (trimmed.size() > kLongestText)
        return 0;
    return numberFromText(trimmed, forms).value_or(0);
}

std::optional<QDate> ParseStationDate(QStringView text, int dateFormat) {
    const char16_t separator = text.contains(u'/') ? u'/' : text.contains(u'-') ? u'-' : u'.';
    const qsizetype first = text.indexOf(separator);
    const qsizetype second = first < 0 ? -1 : text.indexOf(separator, first + 1);
    if (second < 0)
        return std::nullopt;

    const auto a = smallInteger(text.first(first));
    const auto b = smallInteger(text.sliced(first + 1, second - first - 1));
    const auto year = smallInteger(text.sliced(second + 1));
    if (!a || !b || !year || *year < 0)
        return std::nullopt;
    const int day = dateFormat == 1 ? *b : *a;
    const int month = dateFormat == 1 ? *a : *b;
    const QDate date = QDate(fullYear(*year), 1, 1).addMonths(month - 1).addDays(day - 1);
    if (date.year() < 100 || date.year() > 9999)
        return std::nullopt;
    return date;
}

std::optional<QTime> parseStationTime(QStringView text) {
    QStringView clock = text.trimmed();
    if (clock.size() > kLongestText)
        return std::nullopt;
    const bool am = clock.endsWith(u"AM", Qt::CaseInsensitive);
    const bool pm = clock.endsWith(u"PM", Qt::CaseInsensitive);
    if (am || pm)
        clock = clock.chopped(2).trimmed();
    const qsizetype blank = clock.lastIndexOf(u' ');
    if (blank >= 0 && !ParseStationDate(clock.first(blank), 0))
        return std::nullopt;
    clock = clock.sliced(blank + 1);

    const auto parts = clock.split(clock.contains(u':') ? u':' : u'.');
    if (parts.size() < 2 || parts.size() > 3)
        return std::nullopt;
    std::array<int, 3> numbers{};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QStringView part = parts[i];
        const auto number = smallInteger(part);
        if (part.size() > 2 || !number || !part[0].isDigit())
            return std::nullopt;
        numbers[static_cast<std::size_t>(i)] = *number;
    }
    int hour = numbers[0];
    if (am || pm) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (pm ? 12 : 0);
    }
    const QTime time(hour, numbers[1], numbers[2]);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

} // namespace skyhold
