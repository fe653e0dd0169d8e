// SPDX-License-Identifier: GPL-3.0-or-later
// Texts of wind-direction sectors, from the settings or from a client.
#include "target.h"

#include "conditions/sector_text.h"
#include "judge/sectors.h"
#include "platform/text_encoding.h"

#include <cmath>
#include <limits>

namespace skyhold::fuzz {

namespace {

void requireSoundForEditing(const Sector& sector) {
    require(sector.from >= -359 && sector.from <= 359, "from is on the slider");
    require(sector.to >= 0 && sector.to <= 359, "to is on the slider");
    require(sector.from <= sector.to && sector.to - sector.from <= 359,
            "a sector is at most a circle");
    require(sector.minutes >= 0 && sector.minutes <= 99, "minutes have two digits");
    const QString text = sectorText(sector);
    require(text.size() == 13, "a sector's text has its columns");
    const auto again = parseSector(text);
    require(again == sector, "a sector's text reads as the sector");
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
        const std::optional<double> known =
            std::isfinite(direction) ? std::optional(direction) : std::nullopt;
        std::int64_t since = kSince;
        const bool holds = SectorHolds(parsed, known, since, kNow);
        require(since == kSince || since == kNow, "a wait goes on or begins now");
        require(since == kSince || !holds, "a direction outside does not hold");
        require(parsed || (holds && since == kSince), "what is no sector restricts nothing");
        require(known || since == kSince, "an unknown direction is inside");
        if (parsed && since == kSince)
            require(holds == (parsed->minutes <= 5), "inside, the minutes count");
    }
}

} // namespace

const Target kSector{"sector", sector};

} // namespace skyhold::fuzz
