#include "conditions/sectors.h"

#include "platform/text_forms.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kLastDegree = 359;
constexpr int kMostMinutes = 99;
constexpr std::int64_t kMsPerMinute = 60'000;

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

bool isInside(const Sector& sector, double direction) {
    if (sector.from < 0)
        return direction >= sector.from + 360 || direction <= sector.to;
    return sector.from <= direction && direction <= sector.to;
}

bool levelHolds(SectorKind kind, std::int32_t level, std::int32_t current,
                const ThreeLabels& directions, std::optional<double> direction,
                SectorState& sectors, std::int64_t nowMs) {
    if (level != current || level < 1 || level > 3)
        return false;
    const QString text = directions[static_cast<std::size_t>(level - 1)].Caption;
    return SectorHolds(kind, text, direction, sectors, nowMs);
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

bool SectorHolds(SectorKind kind, const QString& text, std::optional<double> direction,
                 SectorState& sectors, std::int64_t nowMs) {
    if (text.trimmed().isEmpty())
        return true;
    const std::optional<Sector> sector = parseSector(text);
    if (!sector)
        return true;

    std::int64_t& outsideSince =
        kind == SectorKind::Wind ? sectors.WindOutsideSince : sectors.GustOutsideSince;
    const bool known = direction && std::isfinite(*direction);
    if (known && !isInside(*sector, *direction)) {
        outsideSince = nowMs;
        return false;
    }
    return nowMs - outsideSince >= sector->minutes * kMsPerMinute;
}

bool WindLevelHolds(std::int32_t level, const CurrentReadings& readings,
                    const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs) {
    return levelHolds(SectorKind::Wind, level, readings.Condition[Quantity::Wind], controls.Direction[Quantity::Wind],
                      readings.WindDirection, sectors, nowMs);
}

bool GustLevelHolds(std::int32_t level, const CurrentReadings& readings,
                    const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs) {
    return levelHolds(SectorKind::Gust, level, readings.Condition[Quantity::Gust], controls.Direction[Quantity::Gust],
                      readings.WindDirection, sectors, nowMs);
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
