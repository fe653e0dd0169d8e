// Texts of wind-direction sectors, from the settings or from a client.
#include "target.h"

#include "conditions/sectors.h"
#include "platform/text_encoding.h"

#include <cmath>
#include <limits>

namespace skyhold::fuzz {

namespace {

bool equal(const Sector& a, const Sector& b) {
    return a.from == b.from && a.to == b.to && a.minutes == b.minutes;
}

void requireSoundForEditing(const Sector& sector) {
    require(sector.from >= -359 && sector.from <= 359, "from is on the slider");
    require(sector.to >= 0 && sector.to <= 359, "to is on the slider");
    require(sector.from <= sector.to && sector.to - sector.from <= 359,
            "a sector is at most a circle");
    require(sector.minutes >= 0 && sector.minutes <= 99, "minutes have two digits");
    const QString text = sectorText(sector);
    require(text.size() == 13, "a sector's text has its columns");
    const auto again = parseSector(text);
    require(again && equal(*again, sector), "a sector's text reads as the sector");
}

void sector(QByteArrayView bytes) {
    Input input(bytes);
    const double directions[]{0.0, 359.9, input.number<double>(), std::nan(""),
                              std::fmod(input.byte() * 1.5, 360)};
    const auto from = input.number<std::int32_t>();
    const auto to = input.number<std::int32_t>();
    const QString text = decodeText(input.rest().toByteArray());

    const std::optional<Sector> parsed = parseSector(text);
    if (parsed) {
        require(std::abs(parsed->from) <= 9999 && std::abs(parsed->to) <= 9999 &&
                    std::abs(parsed->minutes) <= 99,
                "a number fits its column");
    }
    Sector edited = sectorForEditing(text);
    requireSoundForEditing(edited);
    moveSectorFrom(edited, from);
    requireSoundForEditing(edited);
    moveSectorTo(edited, to);
    requireSoundForEditing(edited);
    moveSectorFrom(edited, from);
    requireSoundForEditing(edited);
    const QString written = editedSectorText(edited);
    require(parseSector(written).has_value(), "what the editor writes is a sector");

    constexpr std::int64_t kNow = 1'000'000'000;
    constexpr std::int64_t kSince = kNow - 5 * 60'000;
    for (const double direction : directions) {
        for (const SectorKind kind : {SectorKind::Wind, SectorKind::Gust}) {
            SectorState state{kSince, kSince};
            const bool holds = SectorHolds(kind, text, direction, state, kNow);
            const bool wind = kind == SectorKind::Wind;
            const std::int64_t own = wind ? state.WindOutsideSince : state.GustOutsideSince;
            require((wind ? state.GustOutsideSince : state.WindOutsideSince) == kSince,
                    "a kind leaves the other's wait alone");
            require(own == kSince || own == kNow, "a wait goes on or begins now");
            require(own == kSince || !holds, "a direction outside does not hold");
            const bool restricts = parsed && !text.trimmed().isEmpty();
            require(restricts || (holds && own == kSince), "what is no sector restricts nothing");
            require(std::isfinite(direction) || own == kSince, "an unknown direction is inside");
            if (restricts && own == kSince)
                require(holds == (parsed->minutes <= 5), "inside, the minutes count");
        }
    }
}

} // namespace

const Target kSector{"sector", sector};

} // namespace skyhold::fuzz
