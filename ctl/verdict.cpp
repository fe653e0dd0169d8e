#include "ctl/verdict.h"

#include <algorithm>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// What SecondsSinceGoodData answers while both sources are healthy.
constexpr std::int32_t kHealthy = 3;

} // namespace

Verdict verdictOf(const VerdictFacts& facts) {
    const bool trusted = facts.running == true && facts.dataReady == true &&
                         facts.sinceGoodData == kHealthy && facts.safe.has_value();
    if (!trusted)
        return Verdict::Unknown;
    return *facts.safe ? Verdict::Safe : Verdict::Unsafe;
}

Verdict worse(Verdict first, Verdict second) {
    return std::max(first, second);
}

int exitStatus(Verdict verdict) {
    switch (verdict) {
    case Verdict::Safe:
        return 0;
    case Verdict::Unsafe:
        return 1;
    case Verdict::Unknown:
        break;
    }
    return kStatusFailed;
}

QString verdictName(Verdict verdict) {
    switch (verdict) {
    case Verdict::Safe:
        return u"safe"_s;
    case Verdict::Unsafe:
        return u"unsafe"_s;
    case Verdict::Unknown:
        break;
    }
    return u"unknown"_s;
}

QString unknownCause(const VerdictFacts& facts) {
    if (!facts.running || !facts.dataReady || !facts.sinceGoodData || !facts.safe)
        return u"Kiv_Skyhold gave an odd answer"_s;
    if (!*facts.running)
        return u"monitoring is not running; start it with: skyholdctl start"_s;
    if (*facts.sinceGoodData != kHealthy)
        return u"data of the station or the sensor program is old or missing"_s;
    return *facts.dataReady ? QString() : u"the sensor program has no data yet"_s;
}

} // namespace skyhold
