// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The same picture by shaders, by the processor under OpenGL and without any OpenGL, at each zoom
// and each number of screen pixels for one of the view. These cases run once for each kind of
// OpenGL stack and each scale of the desktop; see the list of tests.
#include "tests/gui/render/ExpectedView.h"
#include "tests/gui/render/SharedView.h"
#include "tests/support/WaitFor.h"

#include <QSplitter>

namespace {

using morvend::imglib::MColorTable;
using morvend::imglib::MImage;

const QSize viewSize(200, 120);

/// In the linear part only; with lines of gaps, defective and saturated pixels.
MImage striped()
{
    MImage image = images::of<int>(
        310, 190, [](int x, int y) { return y % 23 == 7 ? 500 : (x * 7 + y * 13) % 101; });
    image.optionalData().set_pixel_mask(images::of<unsigned int>(310, 190, [](int x, int) {
        return x % 31 == 5 ? 1 : x % 37 == 3 ? 4 : 0;
    }));
    image.optionalData().set_saturation_value(500);
    return image;
}

class AnySurface : public EitherView<BareView> {
protected:
    AnySurface()
        : EitherView(viewSize)
    {}
    void SetUp() override
    {
        ASSERT_TRUE(_view.openAnew(striped()));
        setGrey(120, 3);
    }
    std::string difference(double ratio = 1)
    {
        return differenceFromImage(drawer().grab(ratio), service(), ratio,
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
};

TEST_P(AnySurface, EachPixelStandsWhereTheViewportPutsIt)
{
    // Reduced pictures without shaders average neighbours.
    int zoomPower = drawer().usesGlsl() ? -2 : 0;
    using At = QPointF;
    for (const At& at :
         {At(0, 0), At(-50, -20), At(55.3, 35.7), At(200.4, 120.1), At(-150.2, 100), At(309, 189),
          At(30.5, -7.25), At(-20.375, 40.125), At(400, 0), At(0, -1000), At(17.6, -3.1)}) {
        // Each offset at some of the zooms, so that each zoom meets several.
        for (int turn = 0; turn < 3; ++turn) {
            look(at.x(), at.y(), zoomPower);
            for (const double ratio : {1.0, 1.5, 2.0})
                EXPECT_EQ(difference(ratio), "") << at.x() << " " << at.y() << " " << ratio;
            zoomPower = zoomPower < 6 ? zoomPower + 1 : drawer().usesGlsl() ? -2 : 0;
        }
        zoomPower = zoomPower < 6 ? zoomPower + 1 : 0;
    }
}

TEST_P(AnySurface, AReducedPictureKeepsAreasOfOneColour)
{
    ASSERT_TRUE(
        _view.open(images::of<int>(800, 400, [](int x, int) { return x < 400 ? 50 : 100; })));
    setGrey(120, 3);
    const MImage colours = colouredImage(service());
    for (const int zoomPower : {-1, -2}) {
        look(350.4, 20.3, zoomPower);
        const QImage picture = drawer().grab();
        const int edge = drawer().screenX(400);
        EXPECT_EQ(picture.pixel(edge - 2, 40), colours.pixel<unsigned int>(0, 0, 0));
        EXPECT_EQ(picture.pixel(edge + 2, 40), colours.pixel<unsigned int>(799, 0, 0));
    }
}

TEST_P(AnySurface, TheScreenShowsWhatIsGrabbed)
{
    look(20, 10, 0);
    EXPECT_TRUE(onScreen());
    service().setContrastData({60, 3, MColorTable::heat(), false});
    look(20, 10, 2);
    EXPECT_TRUE(onScreen());
    EXPECT_EQ(difference(drawer().devicePixelRatioF()), "");
}

TEST_P(AnySurface, ThePictureIsBackAfterAllThatHappensToAView)
{
    look(20, 10, 1);
    EXPECT_TRUE(onScreen()) << "before";
    const QImage before = grabbed();
    const auto back = [&] {
        drawer().show();
        settle();
        look(20, 10, 1);
        return onScreen() && grabbed() == before;
    };
    drawer().hide();
    settle();
    EXPECT_TRUE(back()) << "shown again";

    drawer().resize(0, 0);
    settle();
    EXPECT_TRUE(drawer().grab().isNull());
    drawer().resize(viewSize);
    EXPECT_TRUE(back()) << "resized to nothing and back";

    QSplitter splitter;
    splitter.resize(viewSize);
    splitter.show();
    splitter.addWidget(&drawer());
    EXPECT_TRUE(back()) << "moved to another window";

    drawer().hide();
    service().setContrastData({60, 3, MColorTable::heat(), false});
    ASSERT_TRUE(_view.open(striped()));
    drawer().show();
    settle();
    look(20, 10, 1);
    EXPECT_TRUE(onScreen());
    EXPECT_EQ(difference(), "") << "what changed behind a hidden view";
    drawer().setParent(nullptr);
}

TEST_P(AnySurface, AContrastWithoutTableHasTheDefaultOne)
{
    const auto picture = [&](const MColorTable* table) {
        service().setContrastData({60, 3, table, false});
        return drawer().grab();
    };
    for (const auto mode : {PlottingMode::Flat, PlottingMode::ThreeDimensional}) {
        drawer().setPlottingMode(mode);
        service().setDefaultColorTable(MColorTable::heat());
        const QImage heat = picture(MColorTable::heat()), grey = picture(MColorTable::grey());
        const auto colour = [&] {
            return drawer().rgbData(20, 10, 1, 1).pixel<unsigned int>(0, 0, 0);
        };
        picture(MColorTable::heat());
        const auto hot = colour();
        EXPECT_EQ(picture(nullptr), heat);
        EXPECT_EQ(colour(), hot);
        picture(nullptr);
        service().setDefaultColorTable(MColorTable::grey());
        EXPECT_EQ(drawer().grab(), grey);
        service().setDefaultColorTable(nullptr);
        EXPECT_EQ(drawer().grab(), picture(MColorTable::hdr()));
    }
    service().setDefaultColorTable(MColorTable::hdr());
}

TEST_P(AnySurface, WithoutShadersAPlotIsTheFlatImageOnBlack)
{
    look(-20, -10, 0);
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
    look(20, 10, 2);
    drawer().grab();
    const auto before = drawer().work();
    service().setContrastData({61, 3, MColorTable::grey(), true});
    drawer().grab();
    const std::size_t step = drawer().work().colouredPixels - before.colouredPixels;
    drawer().grab();
    EXPECT_EQ(step, drawer().usesGlsl() ? 0U : 50U * 30);
    EXPECT_EQ(drawer().work().imageUploads, before.imageUploads);
    EXPECT_EQ(drawer().work().tableUploads, before.tableUploads);
    EXPECT_EQ(before.imageUploads > 0, drawer().usesGlsl());
    EXPECT_EQ(drawer().work().colouredPixels, before.colouredPixels + step) << "nothing changed";
}

INSTANTIATE_TEST_SUITE_P(Path, AnySurface, testing::Values(true, false), [](const auto& row) {
    return row.param ? "WithShadersWherePossible" : "WithoutShaders";
});

}  // namespace
