// SPDX-License-Identifier: GPL-3.0-or-later
// Times as people write them.
#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

namespace skyhold {

// Milliseconds since 1970, UTC, of "2026-11-23", "2026-11-23T05:12" (or with a blank, with seconds,
// with "Z" or an offset; else local), "23:41" or "23:41:10" (the last such time before `now`), or
// how long before `now`: "40s", "90min", "12h", "7d". Nothing for any other text.
std::optional<std::int64_t> parseTime(const QString& text, const QDateTime& now);

} // namespace skyhold
