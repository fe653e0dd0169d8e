// SPDX-License-Identifier: GPL-3.0-or-later
#include "gateway/request.h"

namespace skyhold {

namespace {

int hexDigit(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::optional<QByteArray> decoded(QByteArrayView text) {
    QByteArray plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            plain += text[i] == '+' ? ' ' : text[i];
            continue;
        }
        if (i + 2 >= text.size())
            return std::nullopt;
        const int high = hexDigit(text[i + 1]);
        const int low = hexDigit(text[i + 2]);
        if (high < 0 || low < 0)
            return std::nullopt;
        plain += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return plain;
}

} // namespace

Answer textAnswer(int status, const QByteArray& text) {
    return {.status = status, .type = "text/plain; charset=utf-8", .body = text + '\n'};
}

Answer jsonAnswer(const QByteArray& body) {
    return {.body = body};
}

std::optional<Parameters> parseForm(const QByteArray& text) {
    Parameters all;
    for (const QByteArray& part : text.split('&')) {
        if (part.isEmpty())
            continue;
        const qsizetype equals = part.indexOf('=');
        const std::optional<QByteArray> name =
            decoded(part.first(equals < 0 ? part.size() : equals));
        const std::optional<QByteArray> value =
            decoded(equals < 0 ? QByteArrayView() : QByteArrayView(part).sliced(equals + 1));
        if (!name || !value)
            return std::nullopt;
        all.emplaceBack(*name, *value);
    }
    return all;
}

std::optional<QByteArray> parameter(const Parameters& all, const char* name, bool anyCase) {
    for (const auto& [key, value] : all) {
        if (key.compare(name, anyCase ? Qt::CaseInsensitive : Qt::CaseSensitive) == 0)
            return value;
    }
    return std::nullopt;
}

} // namespace skyhold
