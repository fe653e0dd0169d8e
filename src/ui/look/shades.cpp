// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/look/shades.h"

#include <algorithm>
#include <cmath>

namespace skyhold {

namespace {

double linear(double channel) {
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& colour) {
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

// From 1 for red over 0.5 for yellow to 0 for green, blue and greys.
double warmth(int red, int green, int blue) {
    const auto [least, most] = std::minmax({red, green, blue});
    const double spread = most - least;
    if (spread == 0)
        return 0;
    if (red == most)
        return 1 - 0.5 * (std::max(green, blue) - least) / spread;
    return green == most && red > blue ? 0.5 * (red - blue) / spread : 0;
}

bool isGrey(const QColor& colour) {
    constexpr int kFaint = 16;
    const auto [least, most] = std::minmax({colour.red(), colour.green(), colour.blue()});
    return most - least < kFaint;
}

// Between `dark` and `bright`; a grey by its own brightness, up to `white`.
QColor redShade(const QColor& colour, int dark, int bright, int white) {
    const double share = isGrey(colour) ? double{colour.valueF()} * (white - dark) / (bright - dark)
                                        : warmth(colour.red(), colour.green(), colour.blue());
    return QColor(dark + static_cast<int>(std::lround(share * (bright - dark))), 0, 0,
                  colour.alpha());
}

QRgb nightPixel(QRgb pixel) {
    const int red = qRed(pixel);
    const int green = qGreen(pixel);
    const int blue = qBlue(pixel);
    constexpr double kBrightest = 210;
    constexpr double kWarmest = 60;
    const double brightness = (0.3 * red + 0.59 * green + 0.11 * blue) / 255;
    const bool band = brightness > 0.5 && !isGrey(QColor(pixel));
    const double shade = band ? kWarmest * (0.2 + warmth(red, green, blue)) : 0;
    return qRgba(static_cast<int>(std::min(255.0, kBrightest * (1 - brightness) + shade)), 0, 0,
                 qAlpha(pixel));
}

// Light grounds become dark and dark letters bright; a colour keeps its hue.
QRgb darkPixel(QRgb pixel) {
    constexpr float kDarkest = 0.10F; // of white paper
    constexpr float kBrightest = 0.92F;
    constexpr float kMostSaturated = 0.6F; // of what was a pastel
    float hue = 0, saturation = 0, lightness = 0;
    QColor(pixel).getHslF(&hue, &saturation, &lightness);
    return QColor::fromHslF(std::max(hue, 0.0F), std::min(saturation, kMostSaturated),
                            kBrightest - lightness * (kBrightest - kDarkest),
                            static_cast<float>(qAlpha(pixel)) / 255)
        .rgba();
}

QImage recoloured(const QImage& picture, QRgb (*shade)(QRgb)) {
    QImage shown = picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                     : QImage::Format_RGB32);
    QRgb last = 0;
    QRgb lastShown = shade(last);
    for (int y = 0; y < shown.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(shown.scanLine(y));
        for (int x = 0; x < shown.width(); ++x) {
            if (line[x] != last) { // neighbours are mostly alike
                last = line[x];
                lastShown = shade(last);
            }
            line[x] = lastShown;
        }
    }
    return shown;
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableInk(const QColor& ink, const QColor& ground, double wanted) {
    const bool darken = luminance(ground) > 0.18; // black is the better end from here on
    QColor shown = ink;
    for (int step = 1; step <= 20 && contrast(shown, ground) < wanted; ++step) {
        float hue = 0, saturation = 0, lightness = 0;
        ink.getHslF(&hue, &saturation, &lightness);
        const float end = darken ? 0.0F : 1.0F;
        const float share = static_cast<float>(step) / 20;
        shown = QColor::fromHslF(std::max(hue, 0.0F), saturation,
                                 lightness + (end - lightness) * share, ink.alphaF());
    }
    return shown;
}

QColor nightInk(const QColor& colour) {
    return redShade(colour, 0xf0, 0xff, 0xf4); // 4.6 : 1 on a card at the least
}

QColor nightLight(const QColor& colour) {
    return redShade(colour, 0x60, 0xff, 0x40);
}

QColor nightGround(const QColor& colour) {
    return redShade(colour, 0x20, 0x58, 0x38);
}

QImage nightPicture(const QImage& picture) {
    return recoloured(picture, nightPixel);
}

QImage darkPicture(const QImage& picture) {
    return recoloured(picture, darkPixel);
}

QImage nightPhoto(const QImage& picture) {
    return recoloured(picture,
                      [](QRgb pixel) { return qRgba(qGray(pixel) * 3 / 4, 0, 0, qAlpha(pixel)); });
}

} // namespace skyhold
