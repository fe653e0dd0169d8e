#include "platform/text_forms.h"

#include <QLocale>

#include <charconv>
#include <cmath>
#include <limits>

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
    const int decimals = point < 0 ? 0 : static_cast<int>(pattern.size() - point - 1);
    const auto leadingZeros = before.count(u'0');

    // 1.005 is stored a hair below its decimal text; one step outwards lets the half that the
    // user sees round away from zero.
    const double scale = std::pow(10.0, decimals);
    const double scaled = std::min(std::abs(value) * scale, std::numeric_limits<double>::max());
    const double outwards = std::nextafter(scaled, std::numeric_limits<double>::max());
    QString digits = QString::number(std::floor(outwards + 0.5), 'f', 0);
    if (decimals > 0)
        digits = digits.rightJustified(decimals + 1, u'0');

    QString whole = digits.chopped(decimals);
    if (whole == QStringLiteral("0") && leadingZeros == 0)
        whole.clear();
    QString text = whole.rightJustified(leadingZeros, u'0');
    if (decimals > 0)
        text += forms.decimal + digits.right(decimals);
    const bool negative = value < 0 && digits.count(u'0') != digits.size();
    return negative ? u'-' + text : text;
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
    const auto two = [](int number) {
        return QString::number(number).rightJustified(2, u'0');
    };
    QString text;
    bool afterHours = false;
    for (qsizetype i = 0; i < pattern.size();) {
        const QStringView rest = pattern.mid(i);
        if (rest.startsWith(u"yyyy")) {
            text += QString::number(date.year()).rightJustified(4, u'0');
            i += 4;
        } else if (rest.startsWith(u"yy")) {
            text += two(date.year() % 100);
            i += 2;
        } else if (rest.startsWith(u"dd")) {
            text += two(date.day());
            i += 2;
        } else if (rest.startsWith(u"hh")) {
            text += two(clock.hour());
            afterHours = true;
            i += 2;
        } else if (rest.startsWith(u"mm")) {
            text += two(afterHours ? clock.minute() : date.month());
            i += 2;
        } else if (rest.startsWith(u"ss")) {
            text += two(clock.second());
            i += 2;
        } else {
            text += pattern[i];
            ++i;
        }
    }
    return text;
}

double roundHalfEven(double value) {
    return std::nearbyint(value);
}

} // namespace skyhold
