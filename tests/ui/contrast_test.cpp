// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/look/look.h"
#include "ui/look/shades.h"
#include "ui/window/banner_look.h"
#include "ui/window/panel_inks.h"

#include <QApplication>

#include <gtest/gtest.h>

namespace skyhold {
namespace {

class Contrast : public testing::TestWithParam<Look> {
  protected:
    Contrast() { applyLook(*qApp, GetParam()); }
    ~Contrast() override { applyLook(*qApp); }
};

struct Pair {
    const char* name;
    QColor ink;
    QColor ground;
};

TEST_P(Contrast, WhatMustBeReadCanBeRead) {
    std::vector<Pair> pairs;
    for (const auto& [name, ground] : {std::pair{"on the window", look::kWindow},
                                       {"on a card", look::kCard},
                                       {"in a group", look::kGroup},
                                       {"in a field", look::kField}}) {
        pairs.push_back({name, look::kText, ground});
        pairs.push_back({name, look::kDimText, ground});
        pairs.push_back({name, panel::warning(ground), ground});
    }
    pairs.push_back({"strip of a culprit", panel::onAlarmStrip(), panel::alarmStrip()});
    pairs.push_back({"limit", panel::limitNumber(), look::kCard});
    for (const Colour stated : {kGreen, kCyan, kOrange})
        pairs.push_back({"culprit", look::ink(screenColour(stated), panel::alarmGround()),
                         panel::alarmGround()});
    // Headings of lost tiles, and "Closed".
    pairs.push_back({"red", look::ink(screenColour(kRed), look::kCard), look::kField});
    pairs.push_back({"strip", look::kStripText, look::kStrip});
    for (const Colour stated : {kNavy, kDarkGreen, kRed})
        pairs.push_back({"status", look::ink(screenColour(stated), look::kStrip), look::kStrip});
    for (const Colour stated : {kGreen, kYellow, kCyan, kOrange})
        pairs.push_back({"reading", look::ink(screenColour(stated), look::kCard), look::kCard});
    for (int kind = 0; kind <= static_cast<int>(BannerKind::SourceFailed); ++kind) {
        const BannerLook shown = bannerLook(static_cast<BannerKind>(kind));
        pairs.push_back({"banner", shown.ink, shown.fill});
    }
    for (const Pair& pair : pairs)
        EXPECT_GE(contrast(pair.ink, pair.ground), kReadable)
            << pair.name << ' ' << pair.ink.name().toStdString() << " on "
            << pair.ground.name().toStdString();
}

// Of what is painted, the verdict stands out most.
TEST(NightContrast, NoTextIsBrighterThanTheVerdict) {
    applyLook(*qApp, Look::Night);
    for (const BannerKind kind : {BannerKind::Safe, BannerKind::Waiting, BannerKind::SourceFailed})
        for (const QColor& ink :
             {look::kText, look::kDimText, look::kStripText, look::ink(Qt::red, look::kCard)})
            EXPECT_GE(bannerLook(kind).ink.red(), ink.red());
    EXPECT_EQ(bannerLook(BannerKind::Unsafe).fill, QColor(Qt::red)); // the largest bright area
    applyLook(*qApp);
}

INSTANTIATE_TEST_SUITE_P(Looks, Contrast, testing::Values(Look::Panel, Look::Night, Look::Desktop));

TEST(DarkGraphs, HaveDarkGroundsUnderBrightLetters) {
    for (const Colour band : {kSwatchGreen, kSwatchYellow, kSwatchOrange, Colour{0xFFFFFF}}) {
        QImage graph(2, 1, QImage::Format_RGB32);
        graph.setPixelColor(0, 0, screenColour(band));
        graph.setPixelColor(1, 0, Qt::black);
        const QImage shown = darkPicture(graph);
        const QColor ground = shown.pixelColor(0, 0);
        EXPECT_LT(ground.lightness(), 80) << band;
        EXPECT_GE(contrast(shown.pixelColor(1, 0), ground), kReadable) << band;
        if (band != 0xFFFFFF) {
            EXPECT_NEAR(ground.hslHue(), screenColour(band).hslHue(), 3) << band;
        }
    }
}

} // namespace
} // namespace skyhold
