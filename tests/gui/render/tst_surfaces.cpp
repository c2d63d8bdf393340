// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The same picture by shaders, by the processor under OpenGL and without any OpenGL, at each zoom
// and each number of screen pixels for one of the view. These cases run once for each kind of
// OpenGL stack and each scale of the desktop; see the list of tests.
#include "tests/gui/render/BareView.h"
#include "tests/gui/render/DrawnImage.h"
#include "tests/gui/render/ExpectedView.h"

#include <gtest/gtest.h>

#include <QSplitter>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

constexpr int imageWidth = 310;
constexpr int imageHeight = 190;
const QSize viewSize(200, 120);

/// Pixels unlike their neighbours, in the linear part only; lines of gaps, defective and saturated
/// pixels.
MImage patterned()
{
    MImage image(imageWidth, imageHeight, 0);
    MImage mask(imageWidth, imageHeight, 0U);
    auto* pixels = static_cast<int*>(image.data());
    auto* bits = static_cast<unsigned int*>(mask.data());
    for (int y = 0; y < imageHeight; ++y) {
        for (int x = 0; x < imageWidth; ++x) {
            const std::size_t i = std::size_t(y) * imageWidth + std::size_t(x);
            pixels[i] = y % 23 == 7 ? 500 : (x * 7 + y * 13) % 101;
            bits[i] = x % 31 == 5 ? 1 : x % 37 == 3 ? 4 : 0;
        }
    }
    image.optionalData().set_pixel_mask(mask);
    image.optionalData().set_saturation_value(500);
    return image;
}

class AnySurface : public testing::TestWithParam<bool> {
protected:
    AnySurface()
        : _view(viewSize, GetParam())
    {}

    void SetUp() override
    {
        ASSERT_TRUE(_view.open(patterned()));
        _view.service->setContrastData({120, 3, MColorTable::grey(), false});
    }

    BareView& drawer() { return *_view.drawer; }
    void show(double offsetX, double offsetY, int zoomPower)
    {
        _view.service->setViewportData({offsetX, offsetY, zoomPower, 0, 0});
    }
    std::string difference(double ratio = 1)
    {
        return differenceFromImage(drawer().grab(ratio), *_view.service, ratio,
                                   drawer().backgroundColor().rgb());
    }
    QImage grabbed()
    {
        return drawer().grab(drawer().devicePixelRatioF()).convertToFormat(QImage::Format_RGB32);
    }
    /// Does the screen show what the view draws?
    bool onScreen()
    {
        return waitFor([this] { return _view.screen() == grabbed(); });
    }

    DrawnView<BareView> _view;
};

TEST_P(AnySurface, EachPixelStandsWhereTheViewportPutsIt)
{
    struct Row {
        double offsetX, offsetY;
    };
    for (const Row& row : {Row{0, 0}, Row{-50, -20}, Row{55.3, 35.7}, Row{200.4, 120.1},
                           Row{-150.2, 100}, Row{309, 189}, Row{400, 0}, Row{0, -1000}}) {
        // Reduced pictures without shaders average neighbours.
        for (int zoomPower = drawer().usesGlsl() ? -2 : 0; zoomPower <= 6; ++zoomPower) {
            show(row.offsetX, row.offsetY, zoomPower);
            for (const double ratio : {1.0, 1.5, 2.0})
                EXPECT_EQ(difference(ratio), "")
                    << row.offsetX << " " << row.offsetY << " " << ratio;
        }
    }
}

TEST_P(AnySurface, AReducedPictureKeepsAreasOfOneColour)
{
    MImage image(800, 400, 50);
    auto* pixels = static_cast<int*>(image.data());
    for (int y = 0; y < 400; ++y)
        std::fill_n(pixels + y * 800 + 400, 400, 100);
    image.optionalData().set_pixel_mask(MImage(image, 0U));
    ASSERT_TRUE(_view.open(image));
    _view.service->setContrastData({120, 3, MColorTable::grey(), false});
    const MImage colours = colouredImage(*_view.service);
    for (const int zoomPower : {-1, -2}) {
        show(350.4, 20.3, zoomPower);
        const QImage picture = drawer().grab();
        const int edge = drawer().screenX(400);
        EXPECT_EQ(picture.pixel(edge - 2, 40), colours.pixel<unsigned int>(0, 0, 0));
        EXPECT_EQ(picture.pixel(edge + 2, 40), colours.pixel<unsigned int>(799, 0, 0));
    }
}

TEST_P(AnySurface, TheScreenShowsWhatIsGrabbed)
{
    show(20, 10, 0);
    EXPECT_TRUE(onScreen());
    _view.service->setContrastData({60, 3, MColorTable::heat(), false});
    show(20, 10, 2);
    EXPECT_TRUE(onScreen());
    EXPECT_EQ(difference(drawer().devicePixelRatioF()), "");
}

TEST_P(AnySurface, ThePictureIsBackAfterAllThatHappensToAView)
{
    show(20, 10, 1);
    EXPECT_TRUE(onScreen()) << "before";
    const QImage before = grabbed();
    const auto back = [&] {
        settle();
        return onScreen() && grabbed() == before;
    };
    drawer().hide();
    settle();
    drawer().show();
    EXPECT_TRUE(back()) << "shown again";

    drawer().resize(0, 0);
    settle();
    EXPECT_TRUE(drawer().grab().isNull());
    drawer().resize(viewSize);
    show(20, 10, 1);
    EXPECT_TRUE(back()) << "resized to nothing and back";

    QSplitter splitter;
    splitter.resize(viewSize);
    splitter.show();
    splitter.addWidget(&drawer());
    drawer().show();
    settle();
    show(20, 10, 1);
    EXPECT_TRUE(back()) << "moved to another window";

    drawer().hide();
    _view.service->setContrastData({60, 3, MColorTable::heat(), false});
    ASSERT_TRUE(_view.open(patterned()));
    drawer().show();
    settle();
    show(20, 10, 1);
    EXPECT_TRUE(onScreen());
    EXPECT_EQ(difference(), "") << "what changed behind a hidden view";
    drawer().setParent(nullptr);
}

TEST_P(AnySurface, WithoutShadersAPlotIsTheFlatImageOnBlack)
{
    show(-20, -10, 0);
    if (drawer().usesGlsl())
        GTEST_SKIP() << "shaders draw the plot";
    drawer().setPlottingMode(PlottingMode::ThreeDimensional);
    EXPECT_EQ(drawer().grab().pixelColor(0, 0), QColor(Qt::black));
    EXPECT_EQ(difference(), "");
    drawer().setPlottingMode(PlottingMode::Flat);
    EXPECT_EQ(drawer().grab().pixelColor(0, 0), QColor(Qt::darkGray));
}

/// Only the part on show is coloured, and only when it or its colours change.
TEST_P(AnySurface, TheProcessorColoursNoMoreThanIsShown)
{
    show(20, 10, 2);
    drawer().grab();
    const auto before = drawer().work();
    _view.service->setContrastData({61, 3, MColorTable::grey(), true});
    drawer().grab();
    const std::size_t step = drawer().work().colouredPixels - before.colouredPixels;
    drawer().grab();
    if (drawer().usesGlsl()) {
        EXPECT_EQ(step, 0U);
        EXPECT_EQ(drawer().work().imageUploads, before.imageUploads);
        EXPECT_EQ(drawer().work().tableUploads, before.tableUploads);
    } else {
        EXPECT_EQ(step, 50U * 30);
        EXPECT_EQ(drawer().work().imageUploads, 0);
    }
    EXPECT_EQ(drawer().work().colouredPixels, before.colouredPixels + step) << "nothing changed";
}

INSTANTIATE_TEST_SUITE_P(Path, AnySurface, testing::Values(true, false), [](const auto& row) {
    return row.param ? "WithShadersWherePossible" : "WithoutShaders";
});

}  // namespace
