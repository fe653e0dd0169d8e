// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/value_graph.h"

#include "graphs/graph_paper.h"
#include "platform/text_forms.h"

#include <cmath>
#include <optional>
#include <vector>

namespace skyhold {

namespace {

constexpr int kLineWidth = 2;

int wholeUnits(double position) {
    return static_cast<int>(roundHalfEven(position));
}

void drawBands(GraphPaper& paper, const std::array<ConditionBand, 3>& bands) {
    const auto third = [](int height, int i) {
        return wholeUnits(height * i / 3.0);
    };
    paper.setFont(kCaptionPoints);
    for (int i = 0; i < 3; ++i) {
        const ConditionBand& band = bands[static_cast<std::size_t>(i)];
        const int top = third(paper.bottom(), i);
        paper.painter().fillRect(0, top, paper.width(), third(paper.bottom(), i + 1) - top,
                                 paintColour(band.colour));
    }
    // The captions share the whole picture's height.
    for (int i = 0; i < 3; ++i) {
        const int top = third(paper.height(), i);
        paper.drawCentred({0, top, paper.width(), third(paper.height(), i + 1) - top},
                          bands[static_cast<std::size_t>(i)].caption);
    }
}

// From point to point. All points of one column together are one upright bar, and from the last
// of a column a line leads to the first of the next: thousands of points cost no more than there
// are columns. A missing value parts the line.
void drawLine(GraphPaper& paper, const TimeAxis& axis, const ValueGraph& graph) {
    constexpr int kHalf = kLineWidth / 2;
    std::vector<QRect> bars;
    std::vector<QLine> lines;
    std::optional<QPoint> last;
    for (const TimedValue& timed : graph.series.points) {
        if (std::isnan(timed.value)) {
            last.reset();
            continue;
        }
        const QPoint point(axis.position(timed.time),
                           verticalPosition(timed.value, graph.thresholds, paper.bottom()));
        const QRect dot(point.x() - kHalf, point.y() - kHalf, kLineWidth, kLineWidth);
        if (last && last->x() == point.x()) {
            bars.back() |= dot;
        } else {
            bars.push_back(dot);
            if (last)
                lines.emplace_back(*last, point);
        }
        last = point;
    }
    QPainter& painter = paper.painter();
    const QColor colour = paintColour(graph.lineColour);
    painter.setPen(QPen(colour, kLineWidth, Qt::SolidLine, Qt::FlatCap));
    painter.drawLines(lines.data(), static_cast<int>(lines.size()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRects(bars.data(), static_cast<int>(bars.size()));
}

} // namespace

int verticalPosition(double value, const std::array<double, 3>& thresholds, int bottom) {
    const auto& [t0, t1, t2] = thresholds;
    const double floor = t0 >= 0 ? 0 : 2 * t0;
    const double third = bottom / 3.0;
    if (value <= floor)
        return 1;
    if (value < t0)
        return wholeUnits(third - third * std::abs((value - t0) / (t0 - floor)));
    if (value < t1)
        return wholeUnits(2 * third - third * std::abs((value - t1) / (t1 - t0)));
    if (value < t2)
        return wholeUnits(bottom - third * std::abs((value - t2) / (t2 - t1)));
    return bottom - 1;
}

void DrawValueGraph(const ValueGraph& graph, Picture& picture) {
    GraphPaper paper(picture, graph.textColour);
    const TimeAxis axis = timeAxis(graph.series, paper.width());
    drawBands(paper, graph.bands);
    paper.drawTimeTicks(axis);
    paper.drawMarker();
    drawLine(paper, axis, graph);
}

} // namespace skyhold
