// SPDX-License-Identifier: GPL-3.0-or-later
// Draws docs/graphs.png and docs/graphs@2x.png: the six graphs of a simulated night on one sheet.
//
// usage: graphs_sheet FILE [PIXEL_RATIO]
#include "graphs/history.h"
#include "graphs/render.h"
#include "platform/clock.h"
#include "settings/load_save.h"
#include "simulators/scenario.h"

#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>

#include <cstdio>

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kReadSeconds = 30;
constexpr int kReadsPerPoint = 12;
constexpr int kGap = 18;
constexpr int kTitleHeight = 22;
constexpr std::array kTitles{"Wind", "Gust", "Direction", "Dew point", "Humidity", "Temperature"};

// The records of a monitor that was just installed.
void loadDefaults(Records& records) {
    const QTemporaryDir empty;
    qputenv("XDG_CONFIG_HOME", empty.path().toLocal8Bit());
    LoadSettings(records, SettingsStore(u"Kiv_Skyhold"_s));
}

void playNight(Records& records) {
    records.session.RefreshRead.ListIndex = 2; // 30 seconds
    records.graphs.GraphFreq.Value = kReadsPerPoint;
    SetSampleEvery(records.history, records.graphs, records.session.RefreshRead);
    SetCapacity(records.history, records.graphs, records.session.RefreshRead);

    // The oldest point has been replaced by the end, so that the axis begins at 19:00.
    const QDateTime dusk(QDate(2026, 11, 16), QTime(18, 54));
    const qint64 span = records.graphs.GraphSpan.Caption.value().toLongLong();
    for (qint64 second = 0; second <= span; second += kReadSeconds) {
        CurrentReadings& readings = records.readings;
        readings.LastReading = dusk.addSecs(second);
        const Weather weather = weatherAt(Scenario::Night, dusk, readings.LastReading);
        readings.WindSpeed = weather.wind;
        readings.GustSpeed = weather.gust;
        readings.WindDirection = weather.direction;
        readings.StationTemperature = weather.temperature;
        readings.DewPointValue = weather.dewPoint;
        readings.HumidityValue = weather.humidity;
        AddReading(records.history, readings, records.graphs.GraphNoPoints);
    }
}

// Two columns, each graph under its title.
QImage sheetOf(const GraphPictures& pictures, double ratio) {
    const QSize one = pictures[0].Size;
    const QSize size(2 * one.width() + 3 * kGap, 3 * (one.height() + kTitleHeight + kGap) + kGap);
    QImage sheet((QSizeF(size) * ratio).toSize(), QImage::Format_RGB32);
    sheet.setDevicePixelRatio(ratio);
    sheet.fill(QColor(0xf3, 0xf5, 0xf7));
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(14);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(QColor(0x2a, 0x33, 0x3d));
    for (int i = 0; i < 6; ++i) {
        const QPoint place(kGap + i % 2 * (one.width() + kGap),
                           kGap + i / 2 * (one.height() + kTitleHeight + kGap));
        painter.drawText(QRect(place, QSize(one.width(), kTitleHeight - 4)),
                         Qt::AlignLeft | Qt::AlignVCenter,
                         QString::fromLatin1(kTitles[static_cast<std::size_t>(i)]));
        painter.drawImage(place + QPoint(0, kTitleHeight),
                          pictures[static_cast<std::size_t>(i)].Image);
    }
    return sheet;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: graphs_sheet FILE [PIXEL_RATIO]\n");
        return 2;
    }
    const double ratio = arguments.value(2, u"1"_s).toDouble();

    Records records;
    loadDefaults(records);
    playNight(records);
    GraphPictures pictures;
    RenderedGraphs rendered;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        pictures[i].PixelRatio = ratio;
        drawGraph(i, {records.history, records.conditions, records.graphs}, pictures[i],
                  rendered[i]);
    }
    return sheetOf(pictures, ratio).save(arguments[1], "PNG") ? 0 : 1;
}
