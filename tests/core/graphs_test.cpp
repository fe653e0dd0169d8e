// The graphs of a read cycle, and the choice of the image format.
#include "support/core_fixture.h"

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

using GraphCycle = CoreFixture;

TEST_F(GraphCycle, CyclesDrawAndSaveTheHistory) {
    const QString wind = folder_->filePath(u"Kiv_ImageWindCondition.png"_s);
    StartSession(*core_);
    EXPECT_EQ(records().pictures[0].Drawings, 1);
    EXPECT_EQ(QImage(wind).size(), QSize(600, 200));

    // The next five readings are no points: the same picture is saved again.
    ASSERT_TRUE(QFile::remove(wind));
    for (int i = 0; i < 5; ++i)
        cycle();
    EXPECT_EQ(records().pictures[0].Drawings, 1);
    EXPECT_EQ(QImage(wind).size(), QSize(600, 200));
    cycle();
    EXPECT_EQ(records().pictures[0].Drawings, 2);
    EXPECT_EQ(codes(), QString());

    records().graphs.GraphImagePath.Caption = folder_->filePath(u"none"_s);
    cycle();
    EXPECT_EQ(codes(), u"i23"_s);
}

TEST_F(GraphCycle, ImageTypeNamesItselfAndShowsTheQuality) {
    GraphControls& graphs = records().graphs;
    EXPECT_EQ(graphs.ImageType.Caption.value(), u"Image PNG"_s); // the default, as loaded
    EXPECT_FALSE(graphs.ImageQuality.Visible);
    graphs.ImageType.set(0);
    EXPECT_EQ(graphs.ImageType.Caption.value(), u"Image JPEG"_s);
    EXPECT_TRUE(graphs.ImageQuality.Visible);
    graphs.ImageType.set(1);
    EXPECT_EQ(graphs.ImageType.Caption.value(), u"Image PNG"_s);
    EXPECT_FALSE(graphs.ImageQuality.Visible);
}

} // namespace
} // namespace skyhold
