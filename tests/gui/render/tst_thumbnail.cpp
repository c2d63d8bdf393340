// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The small view that steers a main view.
#include "gui/render/ImageDrawerThumbnail.h"

#include "gui/render/ThumbnailFrame.h"
#include "tests/gui/render/MouseEvents.h"
#include "tests/gui/render/SharedView.h"
#include "tests/support/WaitFor.h"

namespace {

TEST(ThumbnailFrame, IsTheVisiblePartReduced)
{
    const QRectF frame = render::thumbnailFrame(QRectF(100, 50, 400, 200), 0.2);
    EXPECT_EQ(frame, QRectF(20, 10, 80, 40));
    EXPECT_FALSE(render::frameNeedsCross(frame));
    EXPECT_TRUE(render::frameNeedsCross(QRectF(0, 0, 4.9, 80)));
    EXPECT_TRUE(render::frameNeedsCross(QRectF(0, 0, 80, 4.9)));
    EXPECT_FALSE(render::frameNeedsCross(QRectF(0, 0, 5, 5)));
    EXPECT_EQ(render::thumbnailFrame(QRectF(), 0.2), QRectF());
}

/// With shaders and without. One thumbnail of each kind serves all cases.
class Thumbnail : public EitherView<ImageDrawerMain> {
protected:
    Thumbnail()
        : EitherView(QSize(300, 200))
        , _thumbnail(_shown())
    {}
    static void TearDownTestSuite()
    {
        _thumbnails = {};
        EitherView::TearDownTestSuite();
    }
    /// 1000 by 800 pixels, a fifth of it in the thumbnail.
    void SetUp() override
    {
        ASSERT_TRUE(_view.openAnew(images::withGeometry(1000, 800, 5, 500, 400)));
        setGrey(5);
        fit();
    }
    void fit()
    {
        _thumbnail.resize(_thumbnail.sizeHint());
        settle();
    }
    QColor at(int x, int y) { return _thumbnail.grab().pixelColor(x, y); }

private:
    ImageDrawerThumbnail& _shown()
    {
        auto& thumbnail = _thumbnails[GetParam()];
        if (!thumbnail) {
            thumbnail = std::make_unique<ImageDrawerThumbnail>(&drawer());
            thumbnail->show();
            (void)QTest::qWaitForWindowExposed(thumbnail.get(), Patience);
            settle();
        }
        return *thumbnail;
    }
    static inline std::array<std::unique_ptr<ImageDrawerThumbnail>, 2> _thumbnails;

protected:
    ImageDrawerThumbnail& _thumbnail;
};

INSTANTIATE_TEST_SUITE_P(Colouring, Thumbnail, testing::Bool(),
                         [](const auto& row) { return row.param ? "Shaders" : "Processor"; });

TEST_P(Thumbnail, HasTheSizeOfTheReducedImage)
{
    EXPECT_EQ(_thumbnail.sizeHint(), QSize(200, 160));
    EXPECT_EQ(_thumbnail.minimumSizeHint(), QSize(200, 160));
    EXPECT_EQ(_thumbnail.imgX(40), 200) << "coordinates are those of the image";
    EXPECT_EQ(_thumbnail.screenX(500), 100);
}

/// A view whose image is too large for the card draws this image, and no other, on the processor.
TEST_P(Thumbnail, HasTheShadersThatItsViewMayUse)
{
    DrawnImage view(QSize(300, 200), GetParam());
    view.drawer->limitTextureSize(1);
    ASSERT_TRUE(view.open(images::uniform(1000, 800, 5)));
    ASSERT_FALSE(view.drawer->usesGlsl());
    ImageDrawerThumbnail late(view.drawer.get());
    late.show();
    (void)QTest::qWaitForWindowExposed(&late, Patience);
    settle();
    EXPECT_EQ(late.canPlot3d(), GetParam());
    EXPECT_FALSE(late.hasSurface()) << "surfaces are left to main views";
}

TEST_P(Thumbnail, DarkensWhatTheMainViewShows)
{
    ASSERT_EQ(viewport(), ViewportData(350, 300, 0, 0, 0));
    const QColor bare = at(10, 10);
    const QColor dark = at(100, 80);
    EXPECT_NEAR(dark.red(), bare.red() * 105 / 255, 1);
    EXPECT_EQ(at(71, 61), dark) << "from 350 / 5, 300 / 5";
    EXPECT_EQ(at(68, 61), bare);
    EXPECT_EQ(at(128, 98), dark) << "to 650 / 5, 500 / 5";
    EXPECT_EQ(at(131, 98), bare);
    drawer().resize(600, 200);
    settle();
    EXPECT_EQ(at(42, 80), dark) << "a larger main view shows more";
    EXPECT_EQ(at(158, 80), dark);
    mouse::drag(_thumbnail, Qt::LeftButton, {100, 80}, {{101, 80}});
    EXPECT_EQ(viewport().offsetX, 200 + 5) << "a drag starts from there";
    look(-100, 0, -2);
    EXPECT_EQ(at(1, 1), dark) << "and everything at its lowest zoom";
    EXPECT_EQ(at(198, 158), dark);
}

TEST_P(Thumbnail, ASmallPartIsMarkedByACross)
{
    look(500, 400, 6);
    const QImage picture = _thumbnail.grab();
    for (const QPoint black : {QPoint(100, 80), QPoint(100, 75), QPoint(105, 80)})
        EXPECT_EQ(picture.pixelColor(black), QColor(Qt::black)) << black.x();
    EXPECT_EQ(picture.pixelColor(104, 81), QColor(Qt::white));
    EXPECT_NE(picture.pixelColor(100, 70), QColor(Qt::black));
}

TEST_P(Thumbnail, ADragMovesTheFrameWithTheCursor)
{
    mouse::drag(_thumbnail, Qt::LeftButton, {100, 80}, {{90, 85}, {88, 86}});
    EXPECT_EQ(viewport(), ViewportData(350 - 60, 300 + 30, 0, 0, 0));
    look(350, 300, 3);
    mouse::drag(_thumbnail, Qt::LeftButton, {10, 10}, {{11, 13}});
    EXPECT_EQ(viewport(), ViewportData(355, 315, 3, 0, 0)) << "nor does it jump to the cursor";
    mouse::drag(_thumbnail, Qt::RightButton, {10, 10}, {{40, 40}});
    EXPECT_EQ(viewport(), ViewportData(355, 315, 3, 0, 0));
}

TEST_P(Thumbnail, TheMainViewRefusesAWiderBorder)
{
    mouse::drag(_thumbnail, Qt::LeftButton, {100, 80}, {{30, 70}});
    EXPECT_EQ(drawer().visibleRange(), QRectF(0, 250, 300, 200));
    mouse::drag(_thumbnail, Qt::LeftButton, {100, 80}, {{95, 70}});
    EXPECT_EQ(drawer().visibleRange(), QRectF(0, 200, 300, 200)) << "one axis only";
}

TEST_P(Thumbnail, TheWheelZoomsTheMainViewAboutThePointUnderTheCursor)
{
    mouse::hover(_thumbnail, {40, 120});
    mouse::wheel(_thumbnail, {40, 120}, {0, 120});
    EXPECT_EQ(viewport(), ViewportData(200 - 75, 600 - 50, 1, 0, 0));
    EXPECT_EQ(QPointF(drawer().imgX(150), drawer().imgY(100)), QPointF(200, 600));
    mouse::wheel(_thumbnail, {40, 120}, {0, -120});
    mouse::wheel(_thumbnail, {40, 120}, {0, 0});
    EXPECT_EQ(viewport(), ViewportData(200 - 150, 600 - 100, 0, 0, 0));
}

TEST_P(Thumbnail, ShowsThreeRingsAtAnyZoomOfTheMainView)
{
    service().toggleShowResolutionRings(true);
    double x = 0, y = 0;
    std::vector<double> radii;
    std::vector<QString> labels;
    service().recommendResolutionRadius(3, x, y, radii, labels);
    ASSERT_EQ(radii.size(), 3U);
    const int smallest = int(radii[0] / 5);
    for (const int power : {0, 6}) {
        look(0, 0, power);
        const QImage picture = _thumbnail.grab();
        int blue = 0;
        for (int row = 80 + smallest - 2; row <= 80 + smallest + 1; ++row)
            blue += picture.pixelColor(100, row).blue() > 200 &&
                    picture.pixelColor(100, row).red() < 100;
        EXPECT_GE(blue, 1) << "the lowest point of the first ring at zoom power " << power;
    }
}

TEST_P(Thumbnail, WorksWithoutImageAndWithOnePixel)
{
    DrawnImage view(QSize(300, 200), GetParam());
    ImageDrawerThumbnail thumbnail(view.drawer.get());
    EXPECT_EQ(thumbnail.sizeHint(), QSize(200, 100));
    thumbnail.resize(200, 100);
    thumbnail.show();
    (void)QTest::qWaitForWindowExposed(&thumbnail, Patience);
    settle();
    EXPECT_EQ(thumbnail.grab().pixelColor(100, 50), QColor(Qt::darkGray));
    mouse::drag(thumbnail, Qt::LeftButton, {10, 10}, {{50, 50}});
    mouse::wheel(thumbnail, {10, 10}, {0, 120});
    EXPECT_EQ(view.service->viewportData(), ViewportData());
    ASSERT_TRUE(view.open(images::withGeometry(1, 1, 5, 0.5F, 0.5F)));
    EXPECT_EQ(thumbnail.sizeHint(), QSize(1, 1));
    for (const QSize size : {QSize(1, 1), QSize(0, 0), QSize(200, 100)}) {
        thumbnail.resize(size);
        settle();
        mouse::drag(thumbnail, Qt::LeftButton, {0, 0}, {{5, 5}});
        mouse::wheel(thumbnail, {0, 0}, {0, 120});
        (void)thumbnail.grab();
    }
}

/// A strip detector: less than half a row of the reduced picture.
TEST_P(Thumbnail, RestsWhereTheReducedImageIsEmpty)
{
    testing::internal::CaptureStderr();
    ASSERT_TRUE(_view.open(images::withGeometry(1280, 1, 5, 640, 0.5F)));
    ASSERT_EQ(_thumbnail.sizeHint(), QSize(200, 0));
    QSignalSpy newImages(&_thumbnail, &ImageDrawer::newCursorCoordinates);
    for (int i = 0; i < 3; ++i) {
        _thumbnail.repaint();
        settle();
    }
    EXPECT_EQ(newImages.count(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(at(100, 80), QColor(Qt::darkGray)) << "nothing of the image before";
    SetUp();
    EXPECT_NE(at(100, 80), QColor(Qt::darkGray));
}

}  // namespace
