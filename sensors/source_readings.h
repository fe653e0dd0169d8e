// SPDX-License-Identifier: GPL-3.0-or-later
// What a source has found: the latest text at each address, and when it came.
#pragma once

#include "platform/clock.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <cstdint>
#include <functional>

namespace skyhold {

struct SourceSample {
    QString text;
    std::int64_t atMs = 0; // by bootMs
};

class SourceReadings {
  public:
    // An address that is not wanted is not kept, so that a talkative source does not grow.
    void want(const QString& address) { wanted_.insert(address); }
    const QSet<QString>& wanted() const { return wanted_; }
    bool wants(const QString& address) const { return wanted_.contains(address); }

    void take(const QString& address, const QString& text, std::int64_t atMs);
    // The source says no longer what is there.
    void drop(const QString& address) { samples_.remove(address); }
    void dropAll() { samples_.clear(); }

    const SourceSample* find(const QString& address) const;

    // Whether the source works, in words; empty when it does.
    void setTrouble(const QString& text);
    const QString& trouble() const { return trouble_; }

    std::function<void(const QString& address)> Arrived;
    std::function<void()> TroubleChanged;

  private:
    QSet<QString> wanted_;
    QHash<QString, SourceSample> samples_;
    QString trouble_ = QStringLiteral("not asked yet");
};

// Something that fills readings from its start on.
class ValueSource {
  public:
    virtual ~ValueSource() = default;
    virtual void start() = 0;
};

} // namespace skyhold
