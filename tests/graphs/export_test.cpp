#include "graphs/export.h"

#include "graphs/graph_paper.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

// While it lives, no file of this process grows beyond `bytes`: a disk that is full.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes)
        : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_{};
    void (*handler_)(int);
};

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
        return SavePicture(picture, path, format, flags, library, saved);
    }
    QByteArray bytes() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList names() const {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"picture.img"_s);
    Picture picture;
    ImageLibrary library;
    SavedImage saved;
};

TEST(ImageOptions, SaveFlags) {
    const struct {
        bool png;
        int quality;
        int flags;
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
        const QImage read(path, "PNG");
        ASSERT_EQ(read.size(), picture.Image.size());
        EXPECT_FALSE(read.hasAlphaChannel());
        EXPECT_TRUE(read.convertToFormat(QImage::Format_RGB32) == picture.Image) << ratio;
    }
    EXPECT_EQ(names(), QStringList{u"picture.img"_s});
    EXPECT_TRUE(QFile::permissions(path).testFlag(QFileDevice::ReadOther));
}

TEST_F(Export, JpegGrowsWithItsQuality) {
    qint64 last = 0;
    for (const int flags : {0x200, 0x100, 0x80}) {
        ASSERT_TRUE(save(ImageFormat::Jpeg, flags));
        const QImage read(path, "JPEG");
        ASSERT_EQ(read.size(), picture.Image.size());
        const QColor ground = read.pixelColor(20, 20);
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
    EXPECT_NE(bytes(), first);
    EXPECT_EQ(QImage(path, "PNG").pixel(5, 5), paintColour(kRed).rgb());
}

TEST_F(Export, PlantedLinkIsReplacedAndNotFollowed) {
    const QString victim = folder.filePath(u"victim"_s);
    QFile file(victim);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    for (int i = 0; i < 2; ++i) { // encoded, and written again
        QFile::remove(path);
        ASSERT_TRUE(QFile::link(victim, path));
        ASSERT_TRUE(save());
        EXPECT_FALSE(QFileInfo(path).isSymLink());
        EXPECT_EQ(QImage(path, "PNG").size(), picture.Image.size());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), "precious");
        file.close();
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
    EXPECT_EQ(names(), QStringList{u"picture.img"_s});

    ASSERT_TRUE(save());
    {
        const FullDisk full(1000);
        EXPECT_FALSE(save()) << "the same drawing again";
    }
    EXPECT_EQ(QImage(path, "PNG").pixel(5, 5), paintColour(kRed).rgb());
}

TEST_F(Export, WhatCannotBeWrittenIsRefused) {
    Picture never;
    EXPECT_FALSE(SavePicture(never, path, ImageFormat::Png, 0, library, saved));
    EXPECT_FALSE(SavePicture(picture, folder.filePath(u"none/picture.png"_s), ImageFormat::Png, 0,
                             library, saved));
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"picture.img"_s));
    EXPECT_FALSE(save()) << "a folder of that name";
    EXPECT_EQ(names(), QStringList{u"picture.img"_s});
}

TEST_F(Export, MissingLibrary) {
    ImageLibrary missing(u"no_such_image_library"_s);
    EXPECT_FALSE(SavePicture(picture, path, ImageFormat::Png, 0, missing, saved));
    EXPECT_FALSE(missing.loaded());
    EXPECT_TRUE(names().isEmpty());
}

} // namespace
} // namespace skyhold
