#include "platform/text_forms.h"

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
    return {locale.decimalPoint().left(4), locale.groupSeparator().left(4)};
}

QString GetDecimalSeparator() {
    return localeNumberForms().decimal;
}

QString GetThousandSeparator() {
    return localeNumberForms().thousand;
}

QString formatNumber(double value, QStringView pattern, const NumberForms& forms) {
    const qsizetype point = pattern.indexOf(u'.');
    const QStringView before = point < 0 ? pattern : pattern.left(point);
    const auto decimals = static_cast<std::size_t>(point < 0 ? 0 : pattern.size() - point - 1);
    const auto leadingZeros = static_cast<std::size_t>(before.count(u'0'));

    // 1.005 is stored a hair below its decimal text; one step outwards lets the half that the
    // user sees round away from zero.
    const double scale = decimals == 0 ? 1 : std::pow(10.0, static_cast<double>(decimals));
    const double scaled = std::min(std::abs(value) * scale, std::numeric_limits<double>::max());
    const double outwards = std::nextafter(scaled, std::numeric_limits<double>::max());
    const double rounded = std::floor(outwards + 0.5);

    // All digits without the point; the largest number has 309.
    std::array<char, 320> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), rounded,
                                   std::chars_format::fixed, 0);
    const std::string_view digits(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
    std::string_view whole =
        digits.size() > decimals ? digits.substr(0, digits.size() - decimals) : std::string_view();
    if (whole == "0")
        whole = {}; // only the pattern's zeros stand there
    const std::string_view fraction =
        digits.substr(digits.size() - std::min(digits.size(), decimals));

    const auto zeros = [](std::size_t width, std::string_view text) {
        return static_cast<qsizetype>(width - std::min(width, text.size()));
    };
    const auto latin1 = [](std::string_view text) {
        return QLatin1String(text.data(), static_cast<qsizetype>(text.size()));
    };
    QString text;
    text.reserve(static_cast<qsizetype>(digits.size() + leadingZeros + decimals) + 5);
    if (value < 0 && rounded != 0)
        text += u'-';
    text.resize(text.size() + zeros(leadingZeros, whole), u'0');
    text += latin1(whole);
    if (decimals > 0) {
        text += forms.decimal;
        text.resize(text.size() + zeros(decimals, fraction), u'0');
        text += latin1(fraction);
    }
    return text;
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

QString formatDate(const QDateTime& time, QStringView pattern) {
    const QDate date = time.date();
    const QTime clock = time.time();
    QString text;
    text.reserve(pattern.size());
    const auto add = [&text](int number, int width) {
        const QString digits = QString::number(number);
        text.resize(text.size() + std::max<qsizetype>(0, width - digits.size()), u'0');
        text += digits;
    };
    bool afterHours = false;
    for (qsizetype i = 0; i < pattern.size();) {
        const QStringView rest = pattern.mid(i);
        if (rest.startsWith(u"yyyy")) {
            add(date.year(), 4);
            i += 4;
            continue;
        }
        const QStringView token = rest.left(2);
        if (token == u"yy") {
            add(date.year() % 100, 2);
        } else if (token == u"dd") {
            add(date.day(), 2);
        } else if (token == u"hh") {
            add(clock.hour(), 2);
            afterHours = true;
        } else if (token == u"mm") {
            add(afterHours ? clock.minute() : date.month(), 2);
        } else if (token == u"ss") {
            add(clock.second(), 2);
        } else {
            text += pattern[i];
            ++i;
            continue;
        }
        i += 2;
    }
    return text;
}

double roundHalfEven(double value) {
    return std::nearbyint(value);
}

} // namespace skyhold
