// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/export.h"
#include "graphs/graph_paper.h"
#include "graphs/render.h"
#include "pictures.h"
#include "support/full_disk.h"
#include "support/test_folder.h"

#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {
namespace {

const QStringList kNames{u"Kiv_ImageWindCondition"_s,    u"Kiv_ImageGustCondition"_s,
                         u"Kiv_ImageWindDirCondition"_s, u"Kiv_ImageDewCondition"_s,
                         u"Kiv_ImageHumCondition"_s,     u"Kiv_ImageTempCondition"_s};

class Render : public testing::Test {
  protected:
    Render() {
        for (std::size_t i = 0; i < 6; ++i) {
            graphs.GraphGenerate[i].Value = 1;
            graphs.GraphImage[i].Value = 1;
            for (Label& colour : graphs.GraphColor[i])
                colour.BackColor = 0x404040;
            graphs.GraphColor[i][1].BackColor = lineColour(i);
        }
        graphs.ImageType.Value = 1;
        graphs.GraphSpan.Caption = u"7200"_s;
        graphs.GraphImagePath.Caption = folder.path();
        for (const Quantity quantity : kStationQuantities) {
            for (std::size_t i = 0; i < 3; ++i) {
                conditions.Limit[quantity][i].Value = std::array{10.0, 20.0, 99.0}[i];
                conditions.Color[quantity][i].BackColor = kSwatchGreen;
            }
        }
        // Quantity i stands at one sixth of the plot area lower than the one before.
        history.Points.assign(21, {});
        history.FirstElem = 1;
        history.LastElem = 2;
        history.point(1) = {kNight, 2, 6, 30, 11, 16, 50};
        history.point(2) = {kNight + 7200 * kSecond, 2, 6, 30, 11, 16, 50};
    }

    static Colour lineColour(std::size_t i) { return 0x200000 * (static_cast<Colour>(i) + 1); }

    void render() {
        DrawGraphs({history, conditions, graphs}, pictures, rendered);
        codes_ = SaveImages(graphs, pictures, library, writer);
        writer.finish();
        if (writer.failed())
            codes_ = u"i23"_s;
    }
    QString codes() const { return codes_; }
    // The pictures of these graphs, in the order of a folder.
    static QStringList files(const QString& graphs, const QString& extension) {
        QStringList names;
        for (const QChar graph : graphs)
            names += kNames[graph.digitValue()] + extension;
        names.sort();
        return names;
    }
    QImage saved(std::size_t graph, const QString& extension = u".png"_s) const {
        return QImage(folder.filePath(kNames[static_cast<qsizetype>(graph)] + extension));
    }

    TestFolder folder;
    GraphHistory history;
    ConditionControls conditions;
    GraphControls graphs;
    GraphPictures pictures;
    RenderedGraphs rendered;
    ImageLibrary library;
    ImageWriter writer{library};
    QString codes_;
};

TEST_F(Render, EveryGraphShowsItsOwnQuantity) {
    render();
    const int bottom = plotBottom(pictures[0].Size);
    const std::array<double, 6> values{2, 6, 30, 11, 16, 50};
    for (std::size_t i = 0; i < 6; ++i) {
        const int y = i == 2 ? directionPosition(30, bottom)
                             : verticalPosition(values[i], {10, 20, 99}, bottom);
        EXPECT_EQ(pixel(pictures[i], 0, y), rgb(lineColour(i))) << i;
        EXPECT_EQ(saved(i).pixel(0, y), rgb(lineColour(i))) << i;
    }
    EXPECT_EQ(folder.names(), files(u"012345"_s, u".png"_s));
    EXPECT_EQ(codes(), QString());
}

TEST_F(Render, DrawsAgainOnlyWhatHasChanged) {
    const auto set = [](auto& field, auto value) {
        return std::function([&field, value] { field = value; });
    };
    const struct {
        const char* what;
        std::function<void()> change;
        const char* again; // one letter a graph: x is drawn again
    } cases[] = {
        {"nothing", [] {}, "......"},
        {"a new point",
         [this] {
             history.point(++history.LastElem) = {kNight + 0.1, 3, 7};
         },
         "xxxxxx"},
        {"a limit", set(conditions.Limit[Quantity::Dew][1].Value, 30), "...x.."},
        {"a level's colour", set(conditions.Color[Quantity::Temperature][0].BackColor, kRed),
         ".....x"},
        {"a graph's colour", set(graphs.GraphColor[2][2].BackColor, kRed), "..x..."},
        {"the time span", set(graphs.GraphSpan.Caption, u"9000"_s), "xxxxxx"},
        {"a size", set(pictures[1].Size, QSize(700, 240)), ".x...."},
        {"a pixel ratio", set(pictures[0].PixelRatio, 1.5), "x....."},
        {"nothing any more", [] {}, "......"},
    };
    render();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::array<int, 6> before{};
        std::ranges::transform(pictures, before.begin(),
                               [](const Picture& picture) { return picture.Drawings.value(); });
        c.change();
        for (const QString& file : folder.names())
            QFile::remove(folder.filePath(file));
        render();
        std::string again;
        for (std::size_t i = 0; i < 6; ++i) {
            again += pictures[i].Drawings == before[i] ? '.' : 'x';
            // The files are written every time, and show what the pictures show.
            EXPECT_TRUE(saved(i).convertToFormat(QImage::Format_RGB32) == pictures[i].Image) << i;
        }
        EXPECT_EQ(again, c.again);
    }
}

TEST_F(Render, BoxesChooseWhatIsDrawnAndSaved) {
    graphs.ImageType.Value = 0;
    graphs.ImageQuality.Index = 2;
    graphs.GraphGenerate[0].Value = 0; // saved, not drawn
    graphs.GraphImage[1].Value = 0;    // drawn, not saved
    render();
    EXPECT_EQ(folder.names(), files(u"02345"_s, u".jpg"_s));
    EXPECT_EQ(saved(0, u".jpg"_s).pixelColor(300, 100), QColor(Qt::white));
    EXPECT_EQ(pictures[1].Drawings, 1);
}

TEST_F(Render, FailuresAreReportedAndTriedAgain) {
    int changes = 0;
    writer.failedChanged = [&changes] {
        ++changes;
    };
    graphs.GraphImagePath.Caption = folder.filePath(u"images"_s);
    render();
    render();
    EXPECT_EQ(codes(), u"i23"_s);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(pictures[5].Drawings, 1); // the cycle went on

    ASSERT_TRUE(QDir(folder.path()).mkpath(u"images/Kiv_ImageWindCondition.png"_s));
    render();
    EXPECT_EQ(codes(), u"i23"_s) << "a folder of that name";
    ASSERT_TRUE(QDir(folder.path()).rmdir(u"images/Kiv_ImageWindCondition.png"_s));
    render();
    EXPECT_FALSE(writer.failed());
    EXPECT_EQ(changes, 2);
    EXPECT_TRUE(QFile::exists(folder.filePath(u"images/Kiv_ImageTempCondition.png"_s)));

    // What is not saved any more does not fail any more.
    graphs.GraphImagePath.Caption = folder.filePath(u"none"_s);
    render();
    graphs.GraphImagePath.Caption = QString();
    render();
    EXPECT_EQ(codes(), QString());

    graphs.GraphImagePath.Caption = folder.path();
    ImageLibrary missing(u"no_such_image_library"_s);
    EXPECT_EQ(SaveImages(graphs, pictures, missing, writer), u"i24"_s);
}

class Export : public testing::Test {
  protected:
    Export() { draw(kGreen); }

    // Something that takes some room: text on a colour.
    void draw(Colour colour) {
        GraphPaper paper(picture, kNavy);
        paper.painter().fillRect(0, 0, 600, 200, paintColour(colour));
        for (int y = 0; y < 160; y += 20)
            paper.drawCentred({100, y, 500, 20}, u"The quick brown fox, 0123456789"_s);
    }
    bool save(ImageFormat format = ImageFormat::Png, int flags = 0) {
        return SavePicture({picture.Image, picture.Drawings, path, format, flags}, library, saved);
    }
    QByteArray bytes() const { return folder.read(u"picture.img"_s); }
    QImage image(const char* format = "PNG") const { return QImage(path, format); }

    TestFolder folder;
    const QString path = folder.filePath(u"picture.img"_s);
    Picture picture;
    ImageLibrary library;
    SavedImage saved;
};

TEST_F(Export, FullDiskLeavesTheOldFile) {
    ASSERT_TRUE(save());
    EXPECT_TRUE(QFile::permissions(path).testFlag(QFileDevice::ReadOther));
    const QByteArray old = bytes();
    draw(kRed);
    // The library notices a write that fails, but not one of the last bytes.
    for (const rlim_t room : {rlim_t{0}, rlim_t{1000}, static_cast<rlim_t>(old.size() - 100)}) {
        const FullDisk full(room);
        EXPECT_FALSE(save()) << room;
        EXPECT_FALSE(save(ImageFormat::Jpeg, 0x80)) << room;
    }
    EXPECT_EQ(bytes(), old);
    EXPECT_EQ(folder.names(), QStringList{u"picture.img"_s});

    ASSERT_TRUE(save());
    {
        const FullDisk full(1000);
        EXPECT_FALSE(save()) << "the same drawing again";
    }
    EXPECT_EQ(image().pixel(5, 5), paintColour(kRed).rgb());
}

} // namespace
} // namespace skyhold
