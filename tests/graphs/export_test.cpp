#include "graphs/export.h"

#include "graphs/graph_paper.h"

#include "support/full_disk.h"
#include "support/test_folder.h"

#include <QFileInfo>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

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

TEST(ImageOptions, SaveFlags) {
    const struct {
        bool png;
        int quality, flags;
    } cases[] = {{true, 0, 0},      {true, 2, 0},      {false, 0, 0x80},
                 {false, 1, 0x100}, {false, 2, 0x200}, {false, -1, 0}};
    for (const auto& c : cases) {
        GraphControls graphs;
        graphs.ImageType.Value = c.png ? 1 : 0;
        graphs.ImageQuality.Index = c.quality;
        EXPECT_EQ(ImageSaveFlags(graphs), c.flags) << c.png << c.quality;
    }
}

TEST_F(Export, PngHoldsEveryPixel) {
    for (const double ratio : {1.0, 2.0}) {
        picture.PixelRatio = ratio;
        draw(kOrange);
        ASSERT_TRUE(save());
        ASSERT_EQ(image().size(), picture.Image.size());
        EXPECT_FALSE(image().hasAlphaChannel());
        EXPECT_TRUE(image().convertToFormat(QImage::Format_RGB32) == picture.Image) << ratio;
    }
    EXPECT_EQ(folder.names(), QStringList{u"picture.img"_s});
    EXPECT_TRUE(QFile::permissions(path).testFlag(QFileDevice::ReadOther));
}

TEST_F(Export, JpegGrowsWithItsQuality) {
    qint64 last = 0;
    for (const int flags : {0x200, 0x100, 0x80}) {
        ASSERT_TRUE(save(ImageFormat::Jpeg, flags));
        ASSERT_EQ(image("JPEG").size(), picture.Image.size());
        const QColor ground = image("JPEG").pixelColor(20, 20);
        EXPECT_NEAR(ground.red(), 0, 8);
        EXPECT_NEAR(ground.green(), 255, 8);
        EXPECT_NEAR(ground.blue(), 0, 8);
        EXPECT_GT(bytes().size(), last);
        last = bytes().size();
    }
}

TEST_F(Export, EverySaveWritesTheDrawingOfNow) {
    ASSERT_TRUE(save());
    const QByteArray first = bytes();
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(save()); // the same drawing again
    EXPECT_EQ(bytes(), first);
    draw(kRed);
    ASSERT_TRUE(save());
    EXPECT_EQ(image().pixel(5, 5), paintColour(kRed).rgb());
}

TEST_F(Export, PlantedLinkIsReplacedAndNotFollowed) {
    const QString victim = folder.write(u"victim"_s, "precious");
    for (int i = 0; i < 2; ++i) { // encoded, and written again
        QFile::remove(path);
        ASSERT_TRUE(QFile::link(victim, path));
        ASSERT_TRUE(save());
        EXPECT_FALSE(QFileInfo(path).isSymLink());
        EXPECT_EQ(image().size(), picture.Image.size());
        EXPECT_EQ(folder.read(u"victim"_s), "precious");
    }
}

TEST_F(Export, FullDiskLeavesTheOldFile) {
    ASSERT_TRUE(save());
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

TEST_F(Export, WhatCannotBeWrittenIsRefused) {
    const auto savedTo = [this](const Picture& drawn, const QString& file, ImageLibrary& with) {
        return SavePicture({drawn.Image, drawn.Drawings, file, ImageFormat::Png, 0}, with, saved);
    };
    ImageLibrary missing(u"no_such_image_library"_s);
    EXPECT_FALSE(savedTo(picture, path, missing));
    EXPECT_FALSE(missing.loaded());
    EXPECT_FALSE(savedTo(Picture(), path, library)) << "never drawn";
    EXPECT_FALSE(savedTo(picture, folder.filePath(u"none/picture.png"_s), library));
    EXPECT_EQ(folder.names(), QStringList());
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"picture.img"_s));
    EXPECT_FALSE(save()) << "a folder of that name";
    EXPECT_EQ(folder.names(), QStringList{u"picture.img"_s});
}

} // namespace
} // namespace skyhold
