// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulators/faults.h"

namespace skyhold {

Faults::Faults(const QStringList& names)
    : names_(names) {}

bool Faults::set(const QString& text) {
    const QString name = text.section(u'=', 0, 0).trimmed();
    if (name == QStringLiteral("none")) {
        clear();
        return true;
    }
    if (!names_.contains(name))
        return false;
    inForce_.insert(name, text.section(u'=', 1).trimmed());
    return true;
}

int Faults::number(const QString& name, int otherwise) const {
    bool whole = false;
    const int number = value(name).toInt(&whole);
    return whole && number >= 0 ? number : otherwise;
}

} // namespace skyhold
