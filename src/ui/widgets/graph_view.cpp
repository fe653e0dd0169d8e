// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/graph_view.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/graph_marks.h"

#include <QMouseEvent>
#include <QPainter>

namespace skyhold {

GraphView::GraphView(Picture& picture, const RenderedGraph& graph, std::function<void()> redraw,
                     QWidget* parent)
    : QWidget(parent)
    , picture_(picture)
    , graph_(graph)
    , redraw_(std::move(redraw)) {
    setMinimumSize(180, 96);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    follow(this, picture.Drawings, [this](int) { update(); });
}

QSize GraphView::sizeHint() const {
    return {300, 110};
}

void GraphView::resizeEvent(QResizeEvent*) {
    fitPicture();
}

void GraphView::fitPicture() {
    picture_.Size = size();
    picture_.PixelRatio = devicePixelRatioF();
    if (!picture_.Image.isNull() && !picture_.fits())
        redraw_();
}

void GraphView::paintEvent(QPaintEvent*) {
    // The window may have come to a screen of another resolution.
    if (picture_.PixelRatio != devicePixelRatioF())
        fitPicture();
    QPainter painter(this);
    if (picture_.Image.isNull()) {
        painter.fillRect(rect(), look::kField);
        painter.setPen(look::kDisabledText);
        painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("Not drawn yet"));
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !picture_.fits());
    painter.drawImage(rect(), look::graph(picture_.Image));
    // A picture that is not drawn any more may have another size.
    painter.scale(static_cast<double>(width()) / picture_.Size.width(),
                  static_cast<double>(height()) / picture_.Size.height());
    paintScale(painter, graph_, picture_);
    if (pointed_)
        paintPointAt(painter, graph_, picture_, *pointed_, unit_);
}

void GraphView::setUnit(const QString& unit) {
    unit_ = unit;
    update();
}

void GraphView::mouseMoveEvent(QMouseEvent* event) {
    pointed_ = event->position().x();
    update();
}

void GraphView::leaveEvent(QEvent*) {
    pointed_.reset();
    update();
}

} // namespace skyhold
