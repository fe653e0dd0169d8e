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

    QSize sizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    bool compact() const; // no room for words
    int widthOf(std::size_t index) const;

    std::array<HealthFact, kHealthNames.size()> facts_;
};

} // namespace skyhold
