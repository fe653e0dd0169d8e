// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/source_readings.h"

namespace skyhold {

namespace {

constexpr qsizetype kLongestText = 255;

} // namespace

void SourceReadings::take(const QString& address, const QString& text, std::int64_t atMs) {
    if (!wants(address))
        return;
    samples_[address] = {text.left(kLongestText), atMs};
    if (Arrived)
        Arrived(address);
}

const SourceSample* SourceReadings::find(const QString& address) const {
    const auto found = samples_.constFind(address);
    return found == samples_.constEnd() ? nullptr : &*found;
}

void SourceReadings::setTrouble(const QString& text) {
    if (text == trouble_)
        return;
    trouble_ = text;
    if (TroubleChanged)
        TroubleChanged();
}

} // namespace skyhold
