// SPDX-License-Identifier: GPL-3.0-or-later
// What one client may take: connections and requests.
#pragma once

#include <QByteArray>
#include <QHash>

#include <cstdint>

namespace skyhold {

inline constexpr int kMostConnections = 768;
// This computer's own programs share one address, and their user can end them.
inline constexpr int kMostOfThisComputer = 640;
inline constexpr int kMostOfAClient = 48;

// So many requests at once, and so many a second after that. Programs of this computer are not
// counted: whoever floods from here can take its time in other ways.
class RateLimit {
  public:
    static constexpr double kBurst = 200;
    static constexpr double kPerSecond = 50;

    bool allows(const QByteArray& client, std::int64_t nowMs);

  private:
    struct Bucket {
        double left = kBurst;
        std::int64_t atMs = 0;
    };
    static constexpr qsizetype kMostClients = 4096;
    QHash<QByteArray, Bucket> buckets_;
};

inline bool RateLimit::allows(const QByteArray& client, std::int64_t nowMs) {
    if (buckets_.size() >= kMostClients && !buckets_.contains(client))
        buckets_.clear();
    auto bucket = buckets_.find(client);
    if (bucket == buckets_.end())
        bucket = buckets_.insert(client, {kBurst, nowMs});
    const double gained = static_cast<double>(nowMs - bucket->atMs) / 1000 * kPerSecond;
    bucket->left = std::min(kBurst, bucket->left + gained);
    bucket->atMs = nowMs;
    if (bucket->left < 1)
        return false;
    bucket->left -= 1;
    return true;
}

} // namespace skyhold
