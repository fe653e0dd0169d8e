// SPDX-License-Identifier: GPL-3.0-or-later
// The verdict as INDI's weather safety proxy reads it, from a page or from a script.
#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace skyhold {

// {"roof_status":{"open_ok":1,"reasons":"…"}} in one line: always valid JSON with an integer, since
// the proxy keeps its last "safe" after anything else. `document` is a state document, from whose
// causes the reasons are taken; `safe` is for the caller to say, who knows its age.
QByteArray roofStatusJson(bool safe, const QJsonObject& document);

} // namespace skyhold
