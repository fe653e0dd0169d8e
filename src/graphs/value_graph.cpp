#include "graphs/value_graph.h"

#include "graphs/graph_paper.h"
#include "platform/text_forms.h"

#include <QPolygon>

#include <cmath>

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

void drawLine(GraphPaper& paper, const TimeAxis& axis, const ValueGraph& graph) {
    QPolygon line;
    const auto append = [&line](const QPoint& point) {
        if (line.isEmpty() || line.constLast() != point)
            line.append(point);
    };
    for (const TimedValue& point : graph.series.points) {
        const int y = verticalPosition(point.value, graph.thresholds, paper.bottom());
        if (line.isEmpty())
            append({0, y});
        append({axis.position(point.time), y});
    }
    QPen pen(paintColour(graph.lineColour), kLineWidth);
    pen.setJoinStyle(Qt::RoundJoin);
    paper.painter().setPen(pen);
    paper.painter().drawPolyline(line);
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
