// SPDX-License-Identifier: GPL-3.0-or-later
#include "conditions/sector_text.h"

#include "platform/text_forms.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kLastDegree = 359;
constexpr int kMostMinutes = 99;

std::optional<int> leadingInteger(QStringView column) {
    const QStringView text = column.trimmed();
    const bool isSigned = text.startsWith(u'-') || text.startsWith(u'+');
    if (text.size() <= isSigned || text[isSigned] < u'0' || text[isSigned] > u'9')
        return std::nullopt;
    return static_cast<int>(leadingNumber(text));
}

QString paddedColumn(int value, QStringView pattern, qsizetype width) {
    return formatNumber(value, pattern, {}).leftJustified(width, u' ', true);
}

QString boundWords(int degrees, const std::array<QString, 16>& cardinal) {
    constexpr double kApart = 22.5;
    const int turned = (degrees % 360 + 360) % 360;
    const auto point = static_cast<std::size_t>(std::lround(turned / kApart));
    const QString& label = cardinal[point % cardinal.size()];
    const bool near = std::abs(turned - static_cast<double>(point) * kApart) <= 1;
    return near && !label.isEmpty() ? label : QString::number(turned) + u'°';
}

} // namespace

std::optional<Sector> parseSector(const QString& text) {
    const QString columns = text.trimmed() + u"0000 0000 000"_s;
    const std::optional<int> from = leadingInteger(QStringView(columns).mid(0, 4));
    const std::optional<int> to = leadingInteger(QStringView(columns).mid(5, 4));
    const std::optional<int> minutes = leadingInteger(QStringView(columns).mid(10, 2));
    if (!from || !to || !minutes)
        return std::nullopt;
    return Sector{*from, *to, *minutes};
}

QString sectorText(const Sector& sector) {
    return paddedColumn(sector.from, u"000", 4) + u' ' + paddedColumn(sector.to, u"000", 4) + u' ' +
           paddedColumn(sector.minutes, u"00", 3);
}

QString sectorWords(const QString& text, const std::array<QString, 16>& cardinal) {
    const std::optional<Sector> sector =
        text.trimmed().isEmpty() ? std::nullopt : parseSector(text);
    if (!sector) // restricts nothing
        return u"all directions, at once"_s;
    // A text may say more than a direction can be.
    const int from = sector->from;
    const int to = std::clamp(sector->to, -1, kLastDegree);
    const int width = to - from;
    const QString wait =
        sector->minutes > 0 ? u", after %1 min"_s.arg(sector->minutes) : u", at once"_s;
    if (width >= kLastDegree)
        return u"all directions"_s + wait;
    if (width < 0)
        return u"no direction"_s;
    if (width == 0)
        return u"only "_s + boundWords(from, cardinal) + wait;
    return boundWords(from, cardinal) + u" to "_s + boundWords(to, cardinal) + wait;
}

Sector sectorForEditing(const QString& text) {
    const Sector parsed = parseSector(text).value_or(Sector{});
    Sector sector;
    sector.to = std::clamp(parsed.to, 0, kLastDegree);
    sector.minutes = std::clamp(parsed.minutes, 0, kMostMinutes);
    moveSectorFrom(sector, parsed.from);
    return sector;
}

void moveSectorFrom(Sector& sector, int from) {
    sector.from = std::clamp(from, sector.to - kLastDegree, sector.to);
}

void moveSectorTo(Sector& sector, int to) {
    const int widest = std::min(sector.from + kLastDegree, kLastDegree);
    sector.to = std::clamp(to, std::max(sector.from, 0), widest);
}

Sector sectorBetween(int from, int to, int minutes) {
    return {.from = from <= to ? from : from - 360, .to = to, .minutes = minutes};
}

QString editedSectorText(Sector sector) {
    if (sector.from == sector.to)
        sector.from = sector.to = 0;
    return sectorText(sector);
}

} // namespace skyhold
