// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/direction_graph.h"

#include "graphs/graph_paper.h"
#include "platform/text_forms.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

// A ground on which both a pale grid and dark text can be seen.
const QColor kGround(0xdd, 0xe2, 0xe7);
constexpr int kParts = 8;
constexpr int kDegreesPerPart = 45;
constexpr int kDotSize = 3;
constexpr int kLabelMargin = 4;
constexpr int kPlateAlpha = 170; // of 255

int borderPosition(const GraphPaper& paper, int border) {
    const double y = roundHalfEven(paper.bottom() * border / double{kParts});
    return std::min(static_cast<int>(y), paper.bottom() - 1);
}

void drawGrid(GraphPaper& paper, QColor grid) {
    QPainter& painter = paper.painter();
    painter.fillRect(0, 0, paper.width(), paper.bottom(), kGround);
    for (int border = 0; border <= kParts; ++border)
        painter.fillRect(1, borderPosition(paper, border), paper.width() - 2, 1, grid);
}

// One round dot, drawn once and stamped for every point.
QImage dotStamp(QColor colour, double pixelRatio) {
    const auto pixels = static_cast<int>(std::ceil(kDotSize * pixelRatio));
    QImage stamp(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    stamp.setDevicePixelRatio(pixelRatio);
    stamp.fill(Qt::transparent);
    QPainter painter(&stamp);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(QRectF(0, 0, kDotSize, kDotSize));
    return stamp;
}

void drawPoints(GraphPaper& paper, const TimeAxis& axis, const DirectionGraph& graph) {
    const QImage stamp =
        dotStamp(paintColour(graph.pointColour), paper.painter().device()->devicePixelRatioF());
    for (const TimedValue& point : graph.series.points) {
        if (std::isnan(point.value))
            continue;
        paper.painter().drawImage(
            QPoint(axis.position(point.time) - kDotSize / 2,
                   directionPosition(point.value, paper.bottom()) - kDotSize / 2),
            stamp);
    }
}

// Centred on their lines; the outermost ones stay inside the plot. They dim what lies under them
// and do not hide it, for the points run below them too.
void drawLabels(GraphPaper& paper) {
    QColor plate = kGround;
    plate.setAlpha(kPlateAlpha);
    paper.setFont(kLabelPoints);
    // In a low picture only every second or fourth line has a label.
    const int room = paper.textSize(QStringLiteral("000°")).height() * 3 / 2; // the edges move some
    int step = 1;
    while (step < kParts && paper.bottom() * step < room * kParts)
        step *= 2;
    for (int border = 0; border <= kParts; border += step) {
        const QString label =
            QString::number(border * kDegreesPerPart).rightJustified(3, u'0') + u'°';
        const QSize size = paper.textSize(label);
        const int top = std::clamp(borderPosition(paper, border) - size.height() / 2, 1,
                                   std::max(paper.bottom() - 1 - size.height(), 1));
        const QRect place(kLabelMargin, top, size.width() + 3, size.height());
        paper.painter().fillRect(place, plate);
        paper.drawRightAligned(place, label);
    }
}

} // namespace

int directionPosition(double degrees, int bottom) {
    const double inside = std::clamp(bottom * degrees / 360, 1.0, std::max(bottom - 1.0, 1.0));
    return static_cast<int>(roundHalfEven(inside));
}

void DrawDirectionGraph(const DirectionGraph& graph, Picture& picture) {
    GraphPaper paper(picture, graph.textColour);
    const TimeAxis axis = timeAxis(graph.series, paper.width());
    drawGrid(paper, paintColour(graph.gridColour));
    paper.drawTimeTicks(axis);
    paper.drawMarker();
    drawPoints(paper, axis, graph);
    drawLabels(paper);
}

} // namespace skyhold
