// Wind-direction sectors: a wind or gust level only counts after the wind has blown from the
// level's sector for the level's time.
#pragma once

#include "records/condition_controls.h"
#include "model/current_readings.h"

#include <optional>

namespace skyhold {

enum class SectorKind : char { Wind = 'W', Gust = 'G' };

// Whole degrees, bounds included; a negative `from` wraps through north. Whole minutes.
struct Sector {
    int from = 0;
    int to = 0;
    int minutes = 0;
};

// Reads "from" in columns 1-4, "to" in 6-9 and minutes in 11-12 of the trimmed text; missing
// columns count as 0. Nothing when a column does not begin with a number.
std::optional<Sector> parseSector(const QString& text);

// The text of a sector: columns as above, with one blank behind the minutes.
QString sectorText(const Sector& sector);

// True when `direction` (degrees) has been inside the sector of `text` for its minutes; a
// direction outside restarts the wait of the kind. A direction that is not known may be inside, and
// counts as inside. A text without a sector restricts nothing: always true, and the wait goes on.
bool SectorHolds(SectorKind kind, const QString& text, std::optional<double> direction,
                 SectorState& sectors, std::int64_t nowMs);

// True when the level is the current one and its sector holds; the sector of another level is not
// tested, so that it does not restart the wait.
bool WindLevelHolds(std::int32_t level, const CurrentReadings& readings,
                    const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs);
bool GustLevelHolds(std::int32_t level, const CurrentReadings& readings,
                    const ConditionControls& controls, SectorState& sectors, std::int64_t nowMs);

// The sector editor: what it opens with, what moving one bound gives (from -359..359, to 0..359,
// from not above to, at most 359 degrees wide), and the text that OK writes.
Sector sectorForEditing(const QString& text);
void moveSectorFrom(Sector& sector, int from);
void moveSectorTo(Sector& sector, int to);
QString editedSectorText(Sector sector);

} // namespace skyhold
