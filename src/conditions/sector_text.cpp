#include "conditions/sector_text.h"

#include "platform/text_forms.h"

#include <algorithm>

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

QString editedSectorText(Sector sector) {
    if (sector.from == sector.to)
        sector.from = sector.to = 0;
    return sectorText(sector);
}

} // namespace skyhold
