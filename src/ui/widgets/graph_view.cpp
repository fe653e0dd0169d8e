// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/graph_view.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"

#include <QPainter>

namespace skyhold {

GraphView::GraphView(Picture& picture, std::function<void()> redraw, QWidget* parent)
    : QWidget(parent)
    , picture_(picture)
    , redraw_(std::move(redraw)) {
    setMinimumSize(180, 96);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent);
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
}

} // namespace skyhold
