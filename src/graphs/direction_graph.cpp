#include "graphs/direction_graph.h"

#include "graphs/graph_paper.h"
#include "platform/text_forms.h"

#include <QList>

#include <algorithm>

namespace skyhold {

namespace {

// A ground on which both a pale grid and dark text can be seen.
const QColor kGround(0xdd, 0xe2, 0xe7);
constexpr int kParts = 8;
constexpr int kDegreesPerPart = 45;
constexpr int kDotSize = 3;
constexpr int kLabelMargin = 4;

int borderPosition(const GraphPaper& paper, int border) {
    const double y = roundHalfEven(paper.bottom() * border / double{kParts});
    return std::min(static_cast<int>(y), paper.bottom() - 1);
}

struct GridLabel {
    QRect place;
    QString text;
};

// Centred on their lines, which pause for them; the outermost ones stay inside the plot.
std::vector<GridLabel> gridLabels(GraphPaper& paper) {
    std::vector<GridLabel> labels;
    paper.setFont(kLabelPoints);
    for (int border = 0; border <= kParts; ++border) {
        const QString text =
            QString::number(border * kDegreesPerPart).rightJustified(3, u'0') + u'°';
        const QSize size = paper.textSize(text);
        const int top = std::clamp(borderPosition(paper, border) - size.height() / 2, 1,
                                   std::max(paper.bottom() - 1 - size.height(), 1));
        labels.push_back({{kLabelMargin, top, size.width() + 3, size.height()}, text});
    }
    return labels;
}

void drawGrid(GraphPaper& paper, const std::vector<GridLabel>& labels, QColor grid) {
    QPainter& painter = paper.painter();
    painter.fillRect(0, 0, paper.width(), paper.bottom(), kGround);
    for (int border = 0; border <= kParts; ++border)
        painter.fillRect(1, borderPosition(paper, border), paper.width() - 2, 1, grid);
    for (const GridLabel& label : labels)
        painter.fillRect(label.place, kGround);
}

void drawPoints(GraphPaper& paper, const TimeAxis& axis, const DirectionGraph& graph) {
    QList<QPoint> dots;
    for (const TimedValue& point : graph.series.points)
        dots.append({axis.position(point.time), directionPosition(point.value, paper.bottom())});
    QPen pen(paintColour(graph.pointColour), kDotSize);
    pen.setCapStyle(Qt::RoundCap);
    paper.painter().setPen(pen);
    paper.painter().drawPoints(dots.constData(), static_cast<int>(dots.size()));
}

// After the points, so that both stay visible where they meet.
void drawLabels(GraphPaper& paper, const std::vector<GridLabel>& labels) {
    paper.setFont(kLabelPoints);
    for (const GridLabel& label : labels)
        paper.drawRightAligned(label.place, label.text);
}

} // namespace

int directionPosition(double degrees, int bottom) {
    const double inside = std::clamp(bottom * degrees / 360, 1.0, std::max(bottom - 1.0, 1.0));
    return static_cast<int>(roundHalfEven(inside));
}

void DrawDirectionGraph(const DirectionGraph& graph, Picture& picture) {
    GraphPaper paper(picture, graph.textColour);
    const TimeAxis axis = timeAxis(graph.series, paper.width());
    const std::vector<GridLabel> labels = gridLabels(paper);
    drawGrid(paper, labels, paintColour(graph.gridColour));
    paper.drawTimeTicks(axis);
    paper.drawMarker();
    drawPoints(paper, axis, graph);
    drawLabels(paper, labels);
}

} // namespace skyhold
