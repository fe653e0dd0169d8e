// SPDX-License-Identifier: GPL-3.0-or-later
// Alpaca's set-up pages, which clients open in a browser: what is set, and where to change it.
#pragma once

#include "gateway/alpaca.h"
#include "gateway/request.h"

namespace skyhold {

// Of "/setup" and "/setup/v1/TYPE/0/setup", 403 for another below it; nothing for any other path.
std::optional<Answer> setupAnswer(const QByteArray& path, const AlpacaServer& server,
                                  const QString& site);

} // namespace skyhold
