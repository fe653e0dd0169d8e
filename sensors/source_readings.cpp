#include "sensors/source_readings.h"

#include <ctime>

namespace skyhold {

namespace {

constexpr qsizetype kLongestText = 255;

} // namespace

std::int64_t bootMs() {
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

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
