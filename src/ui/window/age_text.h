// SPDX-License-Identifier: GPL-3.0-or-later
// How old a source's data are, in words: "12 s ago", "4 min ago".
#pragma once

#include <QDateTime>
#include <QString>

namespace skyhold {

// The age that data of the time `read` will have when the text is next renewed, `stands` seconds
// after `now`: as long as it stands it never says less than the truth. Minutes, hours and days are
// rounded up. A time of more than a minute ahead is shown as such, since a clock is wrong; an
// invalid time has no age.
QString ageText(const QDateTime& read, const QDateTime& now, int stands);

} // namespace skyhold
