// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/night_reader.h"

#include "ui/widgets/bind.h"

#include <algorithm>

namespace skyhold {

namespace {

constexpr int kWrittenMs = 400; // until the history surely has a verdict
// As many as the page of the night has: fewer would mix values of neighbouring levels.
constexpr int kPoints = 2'400;

} // namespace

NightReader::NightReader(MonitoringCore& core, int everyMs, QObject* parent)
    : QObject(parent)
    , core_(core) {
    pool_.setMaxThreadCount(1);
    due_.setSingleShot(true);
    connect(&due_, &QTimer::timeout, this, &NightReader::read);
    connect(this, &NightReader::changed, &due_, [this, everyMs] {
        if (wanted_)
            due_.start(everyMs);
    });
    follow(this, core.records.session.verdict, [this](Verdict) {
        if (wanted_)
            due_.start(kWrittenMs);
    });
}

NightReader::~NightReader() {
    pool_.waitForDone();
}

void NightReader::setWanted(bool wanted) {
    if (wanted == wanted_)
        return;
    wanted_ = wanted;
    if (wanted)
        read();
    else
        due_.stop();
}

void NightReader::read() {
    if (reading_ || !core_.history.state().on)
        return;
    reading_ = true;
    const std::int64_t now = core_.clock.now().toMSecsSinceEpoch();
    pool_.start([this, now, running = core_.records.session.running()] {
        const QString path = historyPath();
        NightRecord record = readNight(path, nightUntil(path, now), now, kPoints);
        record.running = running;
        const auto night = std::make_shared<Night>(nightOf(std::move(record)));
        night->record.points.clear(); // of no use here
        for (TimelineRow& row : night->rows)
            row.runs.clear();
        QMetaObject::invokeMethod(this, [this, night] {
            reading_ = false;
            if (night->record.fault.isEmpty())
                night_ = night;
            Q_EMIT changed();
        });
    });
}

std::optional<Gauge> observedGauge(const Night* night, Quantity quantity, double value) {
    if (!night)
        return std::nullopt;
    const auto row = std::ranges::find(night->rows, measured(quantity), &TimelineRow::index);
    if (row == night->rows.end() || !std::ranges::any_of(row->lines, &LimitLine::observed))
        return std::nullopt;
    const auto place = [&row](double at) {
        return at == -kNoBound  ? 0.0
               : at == kNoBound ? 1.0
                                : std::clamp(row->shareOf(at), 0.0, 1.0);
    };
    Gauge gauge{.marker = place(value), .limits = {}, .unsafe = {}};
    for (const LimitLine& line : row->lines)
        gauge.limits.push_back(
            {place(line.value), line.unsafe, QStringLiteral("≈ ") + row->text(line.value)});
    for (const Zone& zone : row->zones)
        gauge.unsafe.push_back({place(zone.low), place(zone.high)});
    return gauge;
}

} // namespace skyhold
