// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/graph_paper.h"

#include <QFontDatabase>

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

const QColor kPaper(0xff, 0xff, 0xff);
constexpr int kDotsPerMetre = 3780; // 96 dots per inch
constexpr int kTickHeight = 4;
constexpr int kLabelGap = 10; // between two time labels, at least

// Plain faces that stay legible at seven points.
const QString& fontFamily() {
    static const QString family = [] {
        for (const char* name : {"DejaVu Sans", "Noto Sans", "Liberation Sans", "Open Sans"}) {
            if (QFontDatabase::hasFamily(QString::fromLatin1(name)))
                return QString::fromLatin1(name);
        }
        return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    }();
    return family;
}

QFont graphFont(double points) {
    QFont font(fontFamily());
    font.setPointSizeF(points);
    // Coloured edges are made for one screen; these pictures are shown on others.
    font.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

// Of the time labels.
int stripHeight(const QImage& image) {
    return static_cast<int>(std::lround(QFontMetricsF(graphFont(kLabelPoints), &image).height()));
}

void fitImage(Picture& picture) {
    if (picture.fits())
        return;
    picture.Image = QImage(picture.imageSize(), QImage::Format_RGB32);
    picture.Image.setDevicePixelRatio(picture.PixelRatio);
    picture.Image.setDotsPerMeterX(kDotsPerMetre);
    picture.Image.setDotsPerMeterY(kDotsPerMetre);
}

} // namespace

GraphPaper::GraphPaper(Picture& picture, Colour text)
    : picture_(picture)
    , text_(paintColour(text))
    , width_(picture.Size.width())
    , height_(picture.Size.height()) {
    fitImage(picture);
    picture.Image.fill(kPaper);
    painter_.begin(&picture.Image);
    painter_.setRenderHint(QPainter::Antialiasing);
    setFont(kLabelPoints);
    stripHeight_ = stripHeight(picture.Image);
    bottom_ = plotBottom(picture);
}

GraphPaper::~GraphPaper() {
    painter_.end();
    picture_.Drawings = picture_.Drawings + 1;
}

void GraphPaper::setFont(double points) {
    painter_.setFont(graphFont(points));
}

QSize GraphPaper::textSize(const QString& text) const {
    const QFontMetricsF metrics(painter_.font(), painter_.device());
    return {static_cast<int>(std::lround(metrics.horizontalAdvance(text))),
            static_cast<int>(std::lround(metrics.height()))};
}

void GraphPaper::drawText(const QRect& rectangle, int alignment, const QString& text) {
    painter_.setPen(text_);
    painter_.drawText(rectangle, alignment | Qt::TextSingleLine | Qt::TextDontClip, text);
}

void GraphPaper::drawCentred(const QRect& rectangle, const QString& text) {
    drawText(rectangle, Qt::AlignCenter, text);
}

void GraphPaper::drawRightAligned(const QRect& rectangle, const QString& text) {
    // A trailing blank counts: it keeps the text off the edge.
    drawText(rectangle, Qt::AlignRight | Qt::AlignVCenter | Qt::TextIncludeTrailingSpaces, text);
}

void GraphPaper::drawTimeTicks(const TimeAxis& axis) {
    setFont(kLabelPoints);
    std::optional<int> lastRight;
    for (const TimeTick& tick : timeTicks(axis)) {
        painter_.fillRect(tick.x, bottom_ - kTickHeight, 1, kTickHeight, Qt::black);
        const int labelWidth = textSize(tick.label).width();
        const int left = tick.x - labelWidth / 2;
        if (lastRight && left < *lastRight + kLabelGap)
            continue;
        lastRight = left + labelWidth;
        drawCentred({left, bottom_, labelWidth, stripHeight_}, tick.label);
    }
}

void GraphPaper::drawMarker() {
    setFont(kMarkerPoints);
    const QString marker = QStringLiteral("Kiv_Skyhold ");
    const QSize size = textSize(marker);
    drawRightAligned({width_ - size.width(), 0, size.width(), size.height()}, marker);
}

int plotBottom(const Picture& picture) {
    return std::max(picture.Size.height() - stripHeight(picture.Image), 0);
}

QColor paintColour(Colour colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

} // namespace skyhold
