// SPDX-License-Identifier: GPL-3.0-or-later
// The six graphs of a read cycle, drawn and saved after a new point of the history: beside the
// same strokes and the same encoding without anything around them, and beside rrdtool.
#include "graphs/history.h"
#include "graphs/render.h"
#include "platform/image_functions.h"
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>

namespace {

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

constexpr int kSecondsPerPoint = 60;
constexpr std::array<Colour, 3> kBands{kSwatchGreen, kSwatchYellow, kSwatchOrange};
const std::array kCaptions{u"Calm"_s, u"Windy"_s, u"Very Windy"_s};

// The value of quantity q at point i: wanders through all three bands.
double value(int i, int q) {
    return 15 + 12 * std::sin(0.05 * i + q) + 2 * std::sin(0.9 * i);
}

// A monitor whose history is full.
struct Monitor {
    Monitor(int points, bool png)
        : time(QDate(2026, 11, 16), QTime(19, 0)) {
        graphs.ImageType.Value = png ? 1 : 0;
        graphs.ImageQuality.Index = 2;
        graphs.GraphImagePath.Caption = folder.path();
        refreshRead.Entries = {u"60 secs"_s};
        refreshRead.ListIndex = 0;
        graphs.GraphNoPoints.Value = points;
        graphs.GraphFreq.Value = 1;
        SetSampleEvery(history, graphs, refreshRead);
        for (std::size_t i = 0; i < 6; ++i) {
            graphs.GraphGenerate[i].Value = 1;
            graphs.GraphImage[i].Value = 1;
            graphs.GraphColor[i][0].BackColor = 0x404040;
            graphs.GraphColor[i][1].BackColor = 0xC00000;
            graphs.GraphColor[i][2].BackColor = 0xFFFFC0;
        }
        for (const Quantity quantity : kStationQuantities) {
            for (std::size_t i = 0; i < 3; ++i) {
                conditions.Limit[quantity][i].Value = std::array{10.0, 20.0, 99.0}[i];
                conditions.Color[quantity][i].BackColor = kBands[i];
                conditions.Color[quantity][i].Caption = kCaptions[i];
            }
        }
        for (int i = 0; i < points; ++i)
            addPoint();
    }

    void addPoint() {
        ++added;
        time = time.addSecs(kSecondsPerPoint);
        readings.LastReading = time;
        readings.WindSpeed = value(added, 0);
        readings.GustSpeed = value(added, 1);
        readings.WindDirection = 10 * value(added, 2);
        readings.StationTemperature = value(added, 3);
        readings.DewPointValue = value(added, 4);
        readings.HumidityValue = value(added, 5);
        AddReading(history, readings, graphs.GraphNoPoints);
    }

    bool render() {
        DrawGraphs({history, conditions, graphs}, pictures, rendered);
        const QString code = SaveImages(graphs, pictures, library, writer);
        writer.finish();
        return code.isEmpty() && !writer.failed();
    }

    QTemporaryDir folder;
    QDateTime time;
    int added = 0;
    CurrentReadings readings;
    GraphHistory history;
    GraphControls graphs;
    ConditionControls conditions;
    ComboBox refreshRead;
    GraphPictures pictures;
    RenderedGraphs rendered;
    ImageLibrary library;
    ImageWriter writer{library};
};

void renderEach(benchmark::State& state, int points, bool png, bool newPoint) {
    Monitor monitor(points, png);
    monitor.render();
    for (auto _ : state) {
        if (newPoint)
            monitor.addPoint();
        if (!monitor.render())
            state.SkipWithError("a picture could not be saved");
    }
}

void BM_png_120(benchmark::State& state) {
    renderEach(state, 120, true, true);
}
void BM_png_2000(benchmark::State& state) {
    renderEach(state, 2000, true, true);
}
void BM_jpeg_120(benchmark::State& state) {
    renderEach(state, 120, false, true);
}
void BM_jpeg_2000(benchmark::State& state) {
    renderEach(state, 2000, false, true);
}
// A reading that is no point of the history.
void BM_png_unchanged(benchmark::State& state) {
    renderEach(state, 120, true, false);
}

// The strokes of a value graph, at places known beforehand.
void bareGraph(QImage& image, const QPolygon& line) {
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font(u"DejaVu Sans"_s);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    font.setPointSizeF(14);
    painter.setFont(font);
    for (int i = 0; i < 3; ++i)
        painter.fillRect(0, 63 * i, 600, 63,
                         QColor::fromRgb(static_cast<QRgb>(kBands[static_cast<std::size_t>(i)])));
    painter.setPen(QColor(0x40, 0x40, 0x40));
    for (int i = 0; i < 3; ++i)
        painter.drawText(QRect(0, 66 * i, 600, 66), Qt::AlignCenter,
                         kCaptions[static_cast<std::size_t>(i)]);
    font.setPointSizeF(7);
    painter.setFont(font);
    for (int x = 50; x < 600; x += 50) {
        painter.fillRect(x, 186, 1, 4, Qt::black);
        painter.drawText(QRect(x - 13, 190, 26, 10), Qt::AlignCenter, u"19:10"_s);
    }
    font.setPointSizeF(9);
    painter.setFont(font);
    painter.drawText(QRect(520, 0, 80, 14), Qt::AlignRight, u"Kiv_Skyhold"_s);
    painter.setPen(QPen(QColor(0, 0, 0xC0), 2));
    painter.drawPolyline(line);
}

// Encodes straight into the file of that name.
bool bareSave(const QImage& image, const ImageFunctions& f, FREE_IMAGE_FORMAT format,
              const QByteArray& name, int flags) {
    FIBITMAP* bitmap = f.Allocate(image.width(), image.height(), 32, 0, 0, 0);
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(f.GetBits(bitmap) + (image.height() - 1 - y) * image.bytesPerLine(),
                    image.constScanLine(y), static_cast<std::size_t>(image.bytesPerLine()));
    FIBITMAP* converted = f.ConvertTo24Bits(bitmap);
    const bool saved = f.Save(format, converted, name.constData(), flags) == TRUE;
    f.Unload(converted);
    f.Unload(bitmap);
    return saved;
}

void bareEach(benchmark::State& state, FREE_IMAGE_FORMAT format, int flags) {
    const QTemporaryDir folder;
    ImageLibrary library;
    const ImageFunctions* functions = library.functions();
    if (functions == nullptr) {
        state.SkipWithError("there is no image library");
        return;
    }
    QImage image(600, 200, QImage::Format_RGB32);
    image.setDotsPerMeterX(3780);
    image.setDotsPerMeterY(3780);
    int point = 0;
    for (auto _ : state) {
        ++point;
        for (int q = 0; q < 6; ++q) {
            QPolygon line;
            for (int i = 0; i < 120; ++i)
                line.append({5 * i, static_cast<int>(5 * value(point + i, q))});
            bareGraph(image, line);
            if (!bareSave(image, *functions, format,
                          folder.filePath(QString::number(q)).toLocal8Bit(), flags))
                state.SkipWithError("a picture could not be saved");
        }
    }
}

void BM_png_bare(benchmark::State& state) {
    bareEach(state, FIF_PNG, 0);
}
void BM_jpeg_bare(benchmark::State& state) {
    bareEach(state, FIF_JPEG, JPEG_QUALITYNORMAL);
}

// rrdtool as a process that takes commands, with a database of six quantities.
class RrdTool {
  public:
    explicit RrdTool(int points)
        : points_(points) {
        process_.setWorkingDirectory(folder_.path());
        process_.start(u"rrdtool"_s, {u"-"_s});
        QByteArray create = "create h.rrd --start " + QByteArray::number(time_) + " --step " +
                            QByteArray::number(kSecondsPerPoint);
        for (int q = 0; q < 6; ++q)
            create += " DS:q" + QByteArray::number(q) + ":GAUGE:300:U:U";
        create += " RRA:AVERAGE:0.5:1:" + QByteArray::number(points + 1);
        working_ = process_.waitForStarted() && run(create);
        for (int i = 0; i < points && working_; ++i)
            working_ = addPoint();
    }
    ~RrdTool() {
        process_.closeWriteChannel();
        process_.waitForFinished();
    }

    bool working() const { return working_; }

    bool addPoint() {
        ++added_;
        time_ += kSecondsPerPoint;
        QByteArray update = "update h.rrd " + QByteArray::number(time_);
        for (int q = 0; q < 6; ++q)
            update += ':' + QByteArray::number((q == 2 ? 10 : 1) * value(added_, q));
        return run(update);
    }

    bool graphs() {
        const QByteArray end = QByteArray::number(time_);
        const QByteArray start = QByteArray::number(time_ - points_ * kSecondsPerPoint);
        for (int q = 0; q < 6; ++q) {
            const QByteArray name = QByteArray::number(q);
            if (!run("graph " + name + ".png --imgformat PNG --full-size-mode -w 600 -h 200 -s " +
                     start + " -e " + end + " -l 0 -u " + (q == 2 ? "360" : "30") + " -r DEF:q" +
                     name + "=h.rrd:q" + name + ":AVERAGE CDEF:band=q" + name +
                     ",UN,10,10,IF AREA:band#C0FFC0:Calm AREA:band#FFFFC0:Windy:STACK "
                     "AREA:band#FFE0C0:Very:STACK LINE2:q" +
                     name + "#0000C0"))
                return false;
        }
        return true;
    }

  private:
    // Its answer ends in a line that begins with OK or ERROR.
    bool run(const QByteArray& command) {
        process_.write(command + '\n');
        for (;;) {
            while (process_.canReadLine()) {
                const QByteArray line = process_.readLine();
                if (line.startsWith("OK"))
                    return true;
                if (line.startsWith("ERROR"))
                    return false;
            }
            if (!process_.waitForReadyRead(10'000))
                return false;
        }
    }

    QTemporaryDir folder_;
    QProcess process_;
    int points_;
    int added_ = 0;
    qint64 time_ = 1'700'000'040; // a whole minute
    bool working_ = false;
};

void rrdEach(benchmark::State& state, int points) {
    RrdTool tool(points);
    for (auto _ : state) {
        if (!tool.working() || !tool.addPoint() || !tool.graphs()) {
            state.SkipWithError("rrdtool refused a command");
            return;
        }
    }
}

void BM_rrdtool_120(benchmark::State& state) {
    rrdEach(state, 120);
}
void BM_rrdtool_2000(benchmark::State& state) {
    rrdEach(state, 2000);
}

BENCHMARK(BM_png_120)->UseRealTime();
BENCHMARK(BM_png_bare)->UseRealTime();
BENCHMARK(BM_jpeg_120)->UseRealTime();
BENCHMARK(BM_jpeg_bare)->UseRealTime();
BENCHMARK(BM_rrdtool_120)->UseRealTime();
BENCHMARK(BM_png_2000)->UseRealTime();
BENCHMARK(BM_jpeg_2000)->UseRealTime();
BENCHMARK(BM_rrdtool_2000)->UseRealTime();
BENCHMARK(BM_png_unchanged)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return runAndPrintRatios(
        argc, argv,
        {{"six PNG to bare drawing and encoding (at most 1.2)", "BM_png_120", "BM_png_bare"},
         {"six JPEG to bare drawing and encoding", "BM_jpeg_120", "BM_jpeg_bare"},
         {"six JPEG to six PNG", "BM_jpeg_120", "BM_png_120"},
         {"six PNG to rrdtool, 120 points", "BM_png_120", "BM_rrdtool_120"},
         {"six PNG to rrdtool, 2000 points", "BM_png_2000", "BM_rrdtool_2000"},
         {"six JPEG to rrdtool, 120 points (at most 0.25)", "BM_jpeg_120", "BM_rrdtool_120"},
         {"six JPEG to rrdtool, 2000 points (at most 0.25)", "BM_jpeg_2000", "BM_rrdtool_2000"},
         {"reading without a new point to one with", "BM_png_unchanged", "BM_png_120"}});
}
