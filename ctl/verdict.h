// The rule that opens a roof: what must be known of the monitor before "safe" is said.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace skyhold {

// The answers of the members named; nothing where there was none, or none of the member's type.
struct VerdictFacts {
    std::optional<bool> running;               // DeviceIsRunning
    std::optional<bool> dataReady;             // DataReady
    std::optional<std::int32_t> sinceGoodData; // SecondsSinceGoodData
    std::optional<bool> safe;                  // Safe
};

enum class Verdict { Safe = 0, Unsafe = 1, Unknown = 2 };

// Unknown unless monitoring runs, data is ready and both sources are healthy.
Verdict verdictOf(const VerdictFacts& facts);

// The one that trusts less.
Verdict worse(Verdict first, Verdict second);

inline constexpr int kStatusFailed = 2;
// 0 safe, 1 unsafe, 2 unknown.
int exitStatus(Verdict verdict);

// "safe", "unsafe", "unknown"
QString verdictName(Verdict verdict);

// Why the verdict is unknown; empty when it is not.
QString unknownCause(const VerdictFacts& facts);

} // namespace skyhold
