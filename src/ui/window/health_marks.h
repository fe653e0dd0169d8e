// SPDX-License-Identifier: GPL-3.0-or-later
// Small states of what goes on beside the readings: recording, uploads, the network, alarms. A dot
// works, a ring is off, a triangle has failed, an octagon sounds; the word beside it says which.
#pragma once

#include "core/monitoring_core.h"

#include <QWidget>

#include <array>

namespace skyhold {

enum class Health : std::uint8_t { Off, Working, Failed, Sounding };

struct HealthFact {
    Health health = Health::Off;
    QString detail; // one sentence, for a tip
    bool operator==(const HealthFact&) const = default;
};

// In this order.
constexpr std::array<const char16_t*, 4> kHealthNames{u"Recording", u"Upload", u"Network",
                                                      u"Alarms"};
std::array<HealthFact, kHealthNames.size()> healthFacts(const MonitoringCore& core);

class HealthMarks : public QWidget {
    Q_OBJECT

  public:
    explicit HealthMarks(QWidget* parent);

    void show(const std::array<HealthFact, kHealthNames.size()>& facts);

    // How many times as large as in a window of 1280 by 800.
    void grow(qreal unit);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    // In a small window what is all right has no word.
    int widthOf(std::size_t index, bool compact) const;
    QSize sizeWith(bool compact) const;
    bool compact() const { return width() < sizeWith(false).width(); }

    int grown(int length) const { return qRound(length * grown_); }

    std::array<HealthFact, kHealthNames.size()> facts_;
    qreal grown_ = 1;
};

} // namespace skyhold
