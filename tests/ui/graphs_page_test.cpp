#include "window_fixture.h"

#include "ui/look/look.h"

#include <QLabel>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

class GraphsPage : public WindowFixture {
  protected:
    Picture& wind() { return records().pictures[0]; }
    QWidget* view() { return child(*window_, "GraphWind"); }
    QImage screen() { return view()->grab().toImage().convertToFormat(QImage::Format_RGB32); }
};

TEST_F(GraphsPage, PictureIsAsLargeAsItsViewAndShownDotForDot) {
    click(*window_, "ButtStart");
    EXPECT_EQ(wind().Image.size(), QSize(600, 200)); // nobody has looked at it yet
    openPage(Page::Graphs);
    EXPECT_EQ(wind().Size, view()->size());
    EXPECT_EQ(screen(), wind().Image);

    window_->resize(window_->size() + QSize(90, 60));
    QCoreApplication::processEvents();
    EXPECT_EQ(wind().Image.size(), view()->size());
    cycle({.wind = u"19"_s}, 3600);
    for (int i = 0; i < 6; ++i)
        cycle({.wind = u"19"_s}, 3600);
    EXPECT_EQ(screen(), wind().Image);

    click(*window_, "ButtStop");
    QTest::keyClick(child(*window_, "GraphGenerateWind"), Qt::Key_Space);
    const int drawings = wind().Drawings;
    window_->resize(window_->size() + QSize(50, 50));
    QCoreApplication::processEvents();
    EXPECT_EQ(wind().Drawings, drawings); // it keeps its last drawing
    EXPECT_EQ(wind().Size, view()->size());
}

TEST_F(GraphsPage, ColoursAreEditedWithoutADescriptionAndShownAtOnce) {
    click(*window_, "ButtStart");
    openPage(Page::Graphs);
    Label& line = records().graphs.GraphColor[0][1];
    const QImage before = wind().Image;
    const auto edit = [&](const char* end) {
        EXPECT_TRUE(duringDialog(
            [&] { QTest::mouseClick(child(*window_, "GraphColorWind1"), Qt::RightButton); },
            [&](QDialog& dialog) {
                EXPECT_EQ(dialog.objectName(), u"KivColor"_s);
                EXPECT_EQ(dialog.findChild<QWidget*>(u"TxtDescription"_s), nullptr);
                click(dialog, "Swatch255");
                click(dialog, end);
            }));
    };
    edit("ButtCancel");
    EXPECT_EQ(wind().Image, before);
    edit("ButtOK");
    EXPECT_EQ(line.BackColor, kRed);
    EXPECT_EQ(line.Caption.value(), QString());
    EXPECT_EQ(child<Swatch>(*window_, "GraphColorWind1")->fill(), screenColour(kRed));
    EXPECT_NE(wind().Image, before);
    EXPECT_EQ(screen(), wind().Image);
}

TEST_F(GraphsPage, SpanFollowsItsTwoBoxes) {
    openPage(Page::Graphs);
    const auto span = [this] {
        return child<QLabel>(*window_, "GraphSpan")->text() + u" = "_s +
               child<QLabel>(*window_, "GraphSpanDesc")->text();
    };
    const auto enter = [this](const char* name, const QString& number) {
        QWidget* box = child(*window_, name);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, number);
        QTest::keyClick(box, Qt::Key_Tab);
    };
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    EXPECT_EQ(span(), u"7200 = 02 h 00 m 00 s"_s);
    enter("GraphFreq", u"1"_s);
    EXPECT_EQ(span(), u"1200 = 00 h 20 m 00 s"_s);
    enter("GraphNoPoints", u"5"_s); // 20 is the least
    EXPECT_EQ(span(), u"200 = 00 h 03 m 20 s"_s);
    EXPECT_EQ(records().graphs.GraphNoPoints.Value, 20);
}

} // namespace

} // namespace skyhold
