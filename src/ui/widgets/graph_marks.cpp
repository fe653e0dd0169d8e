// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/graph_marks.h"

#include "graphs/graph_paper.h"
#include "platform/clock.h"
#include "platform/text_forms.h"
#include "ui/look/look.h"
#include "ui/widgets/timeline_paint.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kPixels = 11;
constexpr int kPlateAlpha = 235; // of 255

const GraphSeries* seriesOf(const RenderedGraph& graph) {
    if (const auto* values = std::get_if<ValueGraph>(&graph))
        return &values->series;
    const auto* directions = std::get_if<DirectionGraph>(&graph);
    return directions ? &directions->series : nullptr;
}

int heightOf(const RenderedGraph& graph, double value, int bottom) {
    const auto* values = std::get_if<ValueGraph>(&graph);
    return values ? verticalPosition(value, values->thresholds, bottom)
                  : directionPosition(value, bottom);
}

// A text on a plate that dims what lies under it.
void paintPlate(QPainter& painter, const QRectF& place, const QString& text) {
    QColor plate = look::kCard;
    plate.setAlpha(kPlateAlpha);
    painter.fillRect(place, plate);
    painter.setPen(look::kText);
    painter.drawText(place, Qt::AlignCenter, text);
}

} // namespace

void paintScale(QPainter& painter, const RenderedGraph& graph, const Picture& picture) {
    const auto* values = std::get_if<ValueGraph>(&graph);
    if (!values)
        return;
    const int bottom = plotBottom(picture);
    const auto& limits = values->thresholds;
    if (!(limits[0] < limits[1] && limits[1] < limits[2]))
        return; // the bands do not stand for a scale
    painter.setFont(pixelFont(kPixels));
    const QFontMetricsF metrics(painter.font());
    const double height = metrics.height();
    const std::array<double, 4> borders{limits[0] >= 0 ? 0 : 2 * limits[0], limits[0], limits[1],
                                        limits[2]};
    for (std::size_t i = 0; i < borders.size(); ++i) {
        const QString text = numberText(std::round(borders[i] * 10) / 10, localeNumberForms());
        const double top = std::clamp(bottom * static_cast<double>(i) / 3 - height / 2, 0.0,
                                      std::max(bottom - height, 0.0));
        paintPlate(painter, {2, top, metrics.horizontalAdvance(text) + 6, height}, text);
    }
}

void paintPointAt(QPainter& painter, const RenderedGraph& graph, const Picture& picture, double x,
                  const QString& unit) {
    const GraphSeries* series = seriesOf(graph);
    if (!series || series->points.empty())
        return;
    const TimeAxis axis = timeAxis(*series, picture.Size.width());
    const auto away = [&](const TimedValue& point) {
        return std::abs(axis.position(point.time) - x);
    };
    const TimedValue& point = *std::ranges::min_element(series->points, {}, away);
    const double at = axis.position(point.time);
    const int bottom = plotBottom(picture);
    painter.setPen(QPen(look::kText, 1));
    painter.drawLine(QPointF(at + 0.5, 0), QPointF(at + 0.5, bottom));
    QString text = fromDaySerial(point.time).toString(u"HH:mm:ss"_s) + u"   "_s;
    if (std::isnan(point.value)) {
        text += u"no value"_s;
    } else {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(look::kText);
        painter.setPen(QPen(look::kCard, 1));
        painter.drawEllipse(QPointF(at + 0.5, heightOf(graph, point.value, bottom)), 3.5, 3.5);
        painter.setRenderHint(QPainter::Antialiasing, false);
        text += formatNumber(point.value, u"0.0", localeNumberForms()) + u' ' + unit;
    }
    painter.setFont(pixelFont(kPixels + 1, true));
    const QFontMetricsF metrics(painter.font());
    const double width = metrics.horizontalAdvance(text) + 14;
    const double left =
        std::clamp(at - width / 2, 0.0, std::max(picture.Size.width() - width, 0.0));
    // Where the curve is not.
    const bool low = !std::isnan(point.value) && heightOf(graph, point.value, bottom) < bottom / 2;
    const double height = metrics.height() + 4;
    paintPlate(painter, {left, low ? bottom - height - 2 : 2, width, height}, text);
}

} // namespace skyhold
