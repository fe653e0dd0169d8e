// SPDX-License-Identifier: GPL-3.0-or-later
// Wind-direction sectors as texts, and the rules of their editor.
#pragma once

#include "model/sector.h"

#include <QString>

#include <array>
#include <optional>

namespace skyhold {

// Reads "from" in columns 1-4, "to" in 6-9 and minutes in 11-12 of the trimmed text; missing
// columns count as 0. Nothing when a column does not begin with a number.
std::optional<Sector> parseSector(const QString& text);

// The text of a sector: columns as above, with one blank behind the minutes.
QString sectorText(const Sector& sector);

// A sector's text in words, with the labels of the compass where a bound is within a degree of one:
// "all directions, after 1 min", "SW to 300°, at once".
QString sectorWords(const QString& text, const std::array<QString, 16>& cardinal);

// The sector editor: what it opens with, what moving one bound gives (from -359..359, to 0..359,
// from not above to, at most 359 degrees wide), and the text that OK writes.
Sector sectorForEditing(const QString& text);
void moveSectorFrom(Sector& sector, int from);
void moveSectorTo(Sector& sector, int to);
QString editedSectorText(Sector sector);
// The sector from one direction clockwise to another, each 0..359.
Sector sectorBetween(int from, int to, int minutes);

} // namespace skyhold
