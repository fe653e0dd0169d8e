// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/compass_diagram.h"

#include "ui/look/look.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace skyhold {

namespace {

constexpr double kRadius = 94;
constexpr double kRim = 14;  // the hand takes what is so near to the rim
constexpr int kTogether = 6; // degrees between edges that lie under one hand

QPointF onCircle(const QPointF& centre, double radius, double degrees) {
    const double radians = degrees * std::numbers::pi / 180;
    return centre + QPointF(std::sin(radians), -std::cos(radians)) * radius;
}

// Whole degrees, 0..359.
int directionOf(const QPointF& at, const QPointF& centre) {
    const QPointF way = at - centre;
    const double degrees = std::atan2(way.x(), -way.y()) * 180 / std::numbers::pi;
    return (static_cast<int>(std::lround(degrees)) + 360) % 360;
}

// The shorter way from one direction to another, -180..179; clockwise is positive.
int wayBetween(int from, int to) {
    return (to - from + 540) % 360 - 180;
}

} // namespace

CompassDiagram::CompassDiagram(QWidget* parent)
    : QWidget(parent) {
    setFixedSize(240, 240);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Edges of the sector"));
    setMouseTracking(true);
}

int CompassDiagram::edge(Edge which) const {
    return ((which == Edge::From ? from_ : to_) % 360 + 360) % 360;
}

void CompassDiagram::setWind(std::optional<double> from) {
    wind_ = from;
    update();
}

void CompassDiagram::setSector(int from, int to) {
    from_ = from;
    to_ = to;
    update();
}

void CompassDiagram::paintEvent(QPaintEvent*) {
    const QPointF centre = QRectF(rect()).center();
    const QRectF circle(centre.x() - kRadius, centre.y() - kRadius, 2 * kRadius, 2 * kRadius);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look::kEdge, 1.5));
    painter.setBrush(look::kField);
    painter.drawEllipse(circle);

    // Pies run counterclockwise from three o'clock in sixteenths of a degree.
    painter.setBrush(look::ground(QColor(0xd6, 0x3a, 0x3a, 150)));
    painter.setPen(QPen(look::light(QColor(0xff, 0x6b, 0x6b)), 1.5));
    painter.drawPie(circle, (90 - to_) * 16, (to_ - from_) * 16);

    painter.setPen(QPen(look::kDimText, 1));
    for (int degrees = 0; degrees < 360; degrees += 10) {
        const double length = degrees % 90 == 0 ? 10 : degrees % 30 == 0 ? 7 : 4;
        painter.drawLine(onCircle(centre, kRadius, degrees),
                         onCircle(centre, kRadius - length, degrees));
    }
    painter.setPen(look::kText);
    QFont letters = font();
    letters.setBold(true);
    painter.setFont(letters);
    constexpr std::array<char16_t, 4> kNames{u'N', u'E', u'S', u'W'};
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        const QPointF at = onCircle(centre, kRadius + 14, static_cast<double>(i) * 90);
        painter.drawText(QRectF(at.x() - 12, at.y() - 12, 24, 24), Qt::AlignCenter,
                         QString(QChar(kNames[i])));
    }
    drawWind(painter);
    drawHandle(painter, Edge::From);
    drawHandle(painter, Edge::To);
}

// Both edges are discs; the one that the keys turn has a ring.
void CompassDiagram::drawHandle(QPainter& painter, Edge which) const {
    const QPointF at = onCircle(QRectF(rect()).center(), kRadius, edge(which));
    const bool keys = hasFocus() && active_ == which;
    painter.setPen(QPen(keys ? look::kAccent : look::kField, keys ? 3 : 1.5));
    painter.setBrush(look::kText);
    painter.drawEllipse(at, keys ? 7 : 6, keys ? 7 : 6);
}

// From where it comes towards the middle.
void CompassDiagram::drawWind(QPainter& painter) const {
    if (!wind_)
        return;
    const QPointF centre = QRectF(rect()).center();
    const QPointF tip = onCircle(centre, kRadius * 0.25, *wind_);
    painter.setPen(QPen(look::kAccent, 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(onCircle(centre, kRadius - 8, *wind_), tip);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::kAccent);
    const std::array<QPointF, 3> head{onCircle(centre, kRadius * 0.12, *wind_),
                                      onCircle(tip, 8, *wind_ + 60), onCircle(tip, 8, *wind_ - 60)};
    painter.drawPolygon(head.data(), static_cast<int>(head.size()));
}

void CompassDiagram::mousePressEvent(QMouseEvent* event) {
    const QPointF centre = QRectF(rect()).center();
    const QPointF way = event->position() - centre;
    lastY_ = event->pos().y();
    grip_ = Grip::Bounds;
    const bool onRim = std::abs(std::hypot(way.x(), way.y()) - kRadius) <= kRim;
    if (event->button() != Qt::LeftButton || !onRim)
        return;
    const int direction = directionOf(event->position(), centre);
    const int fromAway = std::abs(wayBetween(edge(Edge::From), direction));
    const int toAway = std::abs(wayBetween(edge(Edge::To), direction));
    if (std::abs(wayBetween(edge(Edge::From), edge(Edge::To))) <= kTogether &&
        std::min(fromAway, toAway) <= kTogether) {
        grip_ = Grip::Either;
        return;
    }
    grip_ = Grip::Edge;
    active_ = fromAway <= toAway ? Edge::From : Edge::To;
    turn(active_, direction);
}

void CompassDiagram::mouseMoveEvent(QMouseEvent* event) {
    const QPointF centre = QRectF(rect()).center();
    const QPointF way = event->position() - centre;
    if (event->buttons() == Qt::NoButton) {
        const bool onRim = std::abs(std::hypot(way.x(), way.y()) - kRadius) <= kRim;
        setCursor(onRim ? Qt::PointingHandCursor : Qt::SizeVerCursor);
        return;
    }
    const int direction = directionOf(event->position(), centre);
    if (grip_ == Grip::Either) {
        const int moved = wayBetween(edge(Edge::From), direction);
        if (std::abs(moved) <= kTogether)
            return;
        // A full circle is made smaller, a sector without width wider.
        active_ = (moved > 0) == wide() ? Edge::From : Edge::To;
        grip_ = Grip::Edge;
    }
    if (grip_ == Grip::Edge) {
        turn(active_, direction);
        return;
    }
    const int degrees = lastY_ - event->pos().y();
    lastY_ = event->pos().y();
    if (degrees == 0)
        return;
    if (event->buttons() & Qt::LeftButton)
        Q_EMIT fromDragged(degrees);
    else if (event->buttons() & Qt::RightButton)
        Q_EMIT toDragged(degrees);
}

void CompassDiagram::mouseReleaseEvent(QMouseEvent*) {
    grip_ = Grip::None;
}

void CompassDiagram::keyPressEvent(QKeyEvent* event) {
    const auto by = [this](int degrees) {
        turn(active_, (edge(active_) + degrees + 360) % 360);
    };
    switch (event->key()) {
    case Qt::Key_Right:
    case Qt::Key_Up:
        by(1);
        return;
    case Qt::Key_Left:
    case Qt::Key_Down:
        by(-1);
        return;
    case Qt::Key_PageUp:
        by(10);
        return;
    case Qt::Key_PageDown:
        by(-10);
        return;
    case Qt::Key_Space:
        active_ = active_ == Edge::From ? Edge::To : Edge::From;
        update();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void CompassDiagram::turn(Edge which, int direction) {
    if (direction == edge(which))
        return;
    Q_EMIT edgesTurned(which == Edge::From ? direction : edge(Edge::From),
                       which == Edge::To ? direction : edge(Edge::To));
}

} // namespace skyhold
