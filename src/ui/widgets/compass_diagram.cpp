#include "ui/widgets/compass_diagram.h"

#include "ui/look/look.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace skyhold {

namespace {

QPointF onCircle(const QPointF& centre, double radius, double degrees) {
    const double radians = degrees * std::numbers::pi / 180;
    return centre + QPointF(std::sin(radians), -std::cos(radians)) * radius;
}

} // namespace

CompassDiagram::CompassDiagram(QWidget* parent)
    : QWidget(parent) {
    setFixedSize(240, 240);
    setCursor(Qt::SizeVerCursor);
}

void CompassDiagram::setSector(int from, int to) {
    from_ = from;
    to_ = to;
    update();
}

void CompassDiagram::paintEvent(QPaintEvent*) {
    constexpr double kRadius = 94;
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
}

void CompassDiagram::mousePressEvent(QMouseEvent* event) {
    lastY_ = event->pos().y();
}

void CompassDiagram::mouseMoveEvent(QMouseEvent* event) {
    const int degrees = lastY_ - event->pos().y();
    lastY_ = event->pos().y();
    if (degrees == 0)
        return;
    if (event->buttons() & Qt::LeftButton)
        Q_EMIT fromDragged(degrees);
    else if (event->buttons() & Qt::RightButton)
        Q_EMIT toDragged(degrees);
}

} // namespace skyhold
